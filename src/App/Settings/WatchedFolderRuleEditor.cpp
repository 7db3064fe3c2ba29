// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "WatchedFolderRuleEditor.h"

#include "Libraries/Core/Localized.h"
#include "WatchedFolderRuleRow.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStyle>
#include <QVBoxLayout>
#include <utility>

namespace Vantrope {

namespace {

using Operator = DirectoryObserverFilter::OperatorType;

} // namespace

WatchedFolderRuleEditor::WatchedFolderRuleEditor(QWidget* parent)
    : QWidget(parent)
    , m_operator(new QComboBox(this))
    , m_rows(new QVBoxLayout)
    , m_empty(new QLabel(Localized("settings.folders.rules.empty",
                                   "No rules: every new item in the folder goes on a shelf."),
                         this))
    , m_problem(new QLabel(this))
    , m_add(new QPushButton(QIcon::fromTheme(QStringLiteral("list-add")),
                            Localized("settings.folders.rules.add", "Add Rule"), this))
{
    m_operator->setObjectName(QStringLiteral("ruleOperator"));
    m_operator->addItem(Localized("settings.folders.rules.all", "all"), int(Operator::And));
    m_operator->addItem(Localized("settings.folders.rules.any", "any"), int(Operator::Or));
    m_problem->setObjectName(QStringLiteral("ruleProblem"));
    m_problem->setWordWrap(true);
    m_problem->setTextFormat(Qt::PlainText);
    m_problem->setVisible(false);
    m_add->setObjectName(QStringLiteral("addRule"));
    m_empty->setWordWrap(true);

    auto* header = new QHBoxLayout;
    header->addWidget(
        new QLabel(Localized("settings.folders.rules.match-before", "New items must match"), this));
    header->addWidget(m_operator);
    header->addWidget(new QLabel(Localized("settings.folders.rules.match-after", "of these rules:"), this));
    header->addStretch();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(header);
    layout->addLayout(m_rows);
    layout->addWidget(m_empty);
    layout->addWidget(m_problem);
    auto* footer = new QHBoxLayout;
    footer->addWidget(m_add);
    footer->addStretch();
    layout->addLayout(footer);

    connect(m_operator, &QComboBox::activated, this, &WatchedFolderRuleEditor::edited);
    connect(m_add, &QPushButton::clicked, this, [this] {
        addRow();
        updateEmptyState();
        Q_EMIT edited();
    });
    updateEmptyState();
}

void WatchedFolderRuleEditor::setRules(const QList<DirectoryObserverFilter>& rules)
{
    for (WatchedFolderRuleRow* row : std::as_const(m_rowWidgets)) {
        delete row;
    }
    m_rowWidgets.clear();
    bool any = !rules.isEmpty();
    for (const DirectoryObserverFilter& rule : rules) {
        addRow()->setMatcher(rule.matcher);
        any = any && rule.operatorType == Operator::Or;
    }
    const QSignalBlocker blocker(m_operator);
    m_operator->setCurrentIndex(m_operator->findData(int(any ? Operator::Or : Operator::And)));
    showProblem({});
    updateEmptyState();
}

std::expected<QList<DirectoryObserverFilter>, QString> WatchedFolderRuleEditor::rules() const
{
    const auto operatorType = Operator(m_operator->currentData().toInt());
    QList<DirectoryObserverFilter> rules;
    for (const WatchedFolderRuleRow* row : m_rowWidgets) {
        auto matcher = row->matcher();
        if (!matcher) {
            return std::unexpected(matcher.error());
        }
        rules.append({operatorType, *matcher});
    }
    return rules;
}

void WatchedFolderRuleEditor::showProblem(const QString& problem)
{
    if (problem.isEmpty()) {
        m_problem->clear();
        m_problem->setVisible(false);
        return;
    }
    const int size = m_problem->fontMetrics().height();
    m_problem->setText(QStringLiteral("⚠ ") + problem);
    m_problem->setToolTip(problem);
    m_problem->setMinimumHeight(size);
    m_problem->setVisible(true);
}

WatchedFolderRuleRow* WatchedFolderRuleEditor::addRow()
{
    auto* row = new WatchedFolderRuleRow(this);
    row->setObjectName(QStringLiteral("rule%1").arg(m_rowWidgets.size()));
    m_rows->addWidget(row);
    m_rowWidgets.append(row);
    connect(row, &WatchedFolderRuleRow::edited, this, &WatchedFolderRuleEditor::edited);
    connect(row, &WatchedFolderRuleRow::removeRequested, this, [this, row] { removeRow(row); });
    return row;
}

void WatchedFolderRuleEditor::removeRow(WatchedFolderRuleRow* row)
{
    m_rowWidgets.removeOne(row);
    row->deleteLater();
    row->hide();
    updateEmptyState();
    Q_EMIT edited();
}

void WatchedFolderRuleEditor::updateEmptyState()
{
    m_empty->setVisible(m_rowWidgets.isEmpty());
}

} // namespace Vantrope
