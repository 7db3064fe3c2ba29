// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DisplayEnvironment.h"
#include "Settings/ApplicationDataSettingsPage.h"

#include <functional>
#include <QWidget>

class QLabel;
class QListWidget;
class QStackedWidget;

namespace Vantrope {

class DragMonitor;
class Preferences;
class UserScreenshotObserver;
class WatchedFolderController;

// The settings: a list of pages at the side, the page chosen beside it. Every control applies at once.
// Other parts of the program add their own pages with `addPage`.
class SettingsWindow final : public QWidget {
    Q_OBJECT
public:
    // What the pages work on. A page whose part is missing is left out.
    struct Context {
        Preferences& preferences;
        DisplayEnvironment::Kind session = DisplayEnvironment::Kind::none;
        // Tells which activation methods work and lists the running programs.
        DragMonitor* dragMonitor = nullptr;
        WatchedFolderController* watchedFolders = nullptr;
        UserScreenshotObserver* screenshots = nullptr;
        // Runs after the screenshot folder changed.
        std::function<void()> screenshotFolderChanged;
        ApplicationDataSettingsPage::Purge purgeTemporaryData;
        // Shown under Application data; empty for the usual place.
        QString preferencesFile;
    };

    // The built-in pages' identifiers.
    static constexpr QLatin1StringView generalPage{"general"};
    static constexpr QLatin1StringView shelvesPage{"shelves"};
    static constexpr QLatin1StringView activationPage{"activation"};
    static constexpr QLatin1StringView watchedFoldersPage{"watched-folders"};
    static constexpr QLatin1StringView screenshotsPage{"screenshots"};
    static constexpr QLatin1StringView applicationDataPage{"application-data"};

    explicit SettingsWindow(const Context& context, QWidget* parent = nullptr);
    // Only the pages that need nothing but the preferences.
    explicit SettingsWindow(Preferences& preferences, QWidget* parent = nullptr);

    // Adds a page under `title` with the theme icon `iconName`, before the page at `before` or at the
    // end; the window owns `page`. An identifier already in use replaces nothing and is refused.
    bool addPage(const QString& identifier, const QString& title, const QString& iconName, QWidget* page,
                 const QString& before = {});
    QStringList pageIdentifiers() const;
    QWidget* page(const QString& identifier) const;
    QString currentPage() const;
    bool showPage(const QString& identifier);

Q_SIGNALS:
    // The standard Quit shortcut, which the termination rule judges.
    void quitRequested();

private:
    void showRow(int row);
    // The user chose the page at `row`: shown and remembered.
    void pageChosen(int row);

    Preferences& m_preferences;
    QListWidget* m_sidebar;
    QLabel* m_title;
    QStackedWidget* m_pages;
    // The page remembered from last time, until it is added.
    QString m_pageToRestore;
};

} // namespace Vantrope
