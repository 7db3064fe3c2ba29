// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DirectoryObserver/DirectoryObserverItemMatcher.h"

#include <expected>
#include <QWidget>

class QComboBox;
class QLineEdit;
class QStackedWidget;
class QToolButton;

namespace Vantrope {

// One rule of a watched folder: the property, the comparison and the value, as a row of controls.
class WatchedFolderRuleRow final : public QWidget {
    Q_OBJECT
public:
    explicit WatchedFolderRuleRow(QWidget* parent = nullptr);

    void setMatcher(const DirectoryObserverItemMatcher& matcher);
    // The rule the row shows, or what is wrong with it in words for the user.
    std::expected<DirectoryObserverItemMatcher, QString> matcher() const;

Q_SIGNALS:
    void edited();
    void removeRequested();

private:
    void showComparisons(DirectoryObserverItemMatcher::Property property);

    QComboBox* m_property;
    QComboBox* m_comparison;
    QStackedWidget* m_value;
    QLineEdit* m_text;
    QLineEdit* m_size;
    QComboBox* m_unit;
    QComboBox* m_kind;
    QToolButton* m_remove;
};

} // namespace Vantrope
