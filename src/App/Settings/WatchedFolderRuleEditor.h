// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DirectoryObserver/DirectoryObserverFilter.h"

#include <expected>
#include <QList>
#include <QWidget>

class QComboBox;
class QLabel;
class QPushButton;
class QVBoxLayout;

namespace Vantrope {

class WatchedFolderRuleRow;

// The rules of one watched folder: which new items reach a shelf. Items match all rules or any of them.
class WatchedFolderRuleEditor final : public QWidget {
    Q_OBJECT
public:
    explicit WatchedFolderRuleEditor(QWidget* parent = nullptr);

    void setRules(const QList<DirectoryObserverFilter>& rules);
    // The rules as shown, or the first problem in words for the user.
    std::expected<QList<DirectoryObserverFilter>, QString> rules() const;
    // Shows what is wrong with the rules, or nothing.
    void showProblem(const QString& problem);

Q_SIGNALS:
    // Any change to a rule, complete or not.
    void edited();

private:
    WatchedFolderRuleRow* addRow();
    void removeRow(WatchedFolderRuleRow* row);
    void updateEmptyState();

    QComboBox* m_operator;
    QVBoxLayout* m_rows;
    QLabel* m_empty;
    QLabel* m_problem;
    QPushButton* m_add;
    QList<WatchedFolderRuleRow*> m_rowWidgets;
};

} // namespace Vantrope
