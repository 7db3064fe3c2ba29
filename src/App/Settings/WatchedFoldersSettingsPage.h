// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DirectoryObserver/WatchedFolderController.h"
#include "SettingsPage.h"

#include <optional>

class QCheckBox;
class QLabel;
class QPushButton;
class QTimer;
class QTreeWidget;
class QWidget;

namespace Vantrope {

class WatchedFolderRuleEditor;

// The watched folders: the list with each one's state, adding, removing and pausing them, and the
// options and rules of the one selected, saved as they are changed.
class WatchedFoldersSettingsPage final : public SettingsPage {
    Q_OBJECT
public:
    // How long the rules wait after the last keystroke before they are saved and the folder restarts.
    static constexpr int ruleSaveDelayMs = 400;

    explicit WatchedFoldersSettingsPage(WatchedFolderController& controller, QWidget* parent = nullptr);

    static QString stateTitle(WatchedFolderController::State state);

private:
    void showFolders();
    void showSelectedFolder();
    std::optional<WatchedFolderController::Folder> selectedFolder() const;
    std::optional<WatchedFolderController::Folder> folder(const QString& identifier) const;
    void chooseFolderToAdd();
    void addFolder(const QString& path);
    void removeSelectedFolder();
    void togglePause();
    void saveOptions();
    void saveRules();
    void showMessage(const QString& text);

    WatchedFolderController& m_controller;
    QTreeWidget* m_list;
    QPushButton* m_add;
    QPushButton* m_remove;
    QPushButton* m_pause;
    QLabel* m_message;
    QWidget* m_detail;
    QLabel* m_detailTitle;
    QCheckBox* m_appends;
    QCheckBox* m_caseSensitive;
    QCheckBox* m_nested;
    WatchedFolderRuleEditor* m_rules;
    QTimer* m_ruleSaveTimer;
    // The folder whose options and rules the detail shows.
    QString m_shownIdentifier;
};

} // namespace Vantrope
