// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "QtActionsMenu.h"

#include <QIcon>
#include <QMenu>

namespace Vantrope {

namespace {

QIcon themeIcon(const QString& name)
{
    return name.isEmpty() ? QIcon() : QIcon::fromTheme(name);
}

} // namespace

QMenu* QtActionsMenu::build(const ActionsControllerMenu& menu, QWidget* parent, const Choose& choose)
{
    auto* qmenu = new QMenu(menu.title, parent);
    addEntries(*qmenu, menu.entries, choose);
    return qmenu;
}

void QtActionsMenu::addEntries(QMenu& menu, const std::vector<ActionMenuEntry>& entries, const Choose& choose)
{
    for (const ActionMenuEntry& entry : entries) {
        if (std::holds_alternative<ActionMenuEntry::Separator>(entry.value)) {
            // Never two in a row, nor one at the top: a group whose rows all fell away leaves none.
            const auto actions = menu.actions();
            if (!actions.isEmpty() && !actions.last()->isSeparator()) {
                menu.addSeparator();
            }
            continue;
        }
        if (const auto* submenu = std::get_if<ActionMenuEntry::Submenu>(&entry.value)) {
            // A QMenu's title is also the text of the row that opens it: the row's text wins.
            auto* child = new QMenu(submenu->title, &menu);
            addEntries(*child, submenu->entries, choose);
            child->menuAction()->setIcon(themeIcon(submenu->iconName));
            menu.addMenu(child);
            continue;
        }
        QAction* action = nullptr;
        if (const auto* row = std::get_if<ActionMenuEntry::ActionRow>(&entry.value)) {
            action = menu.addAction(themeIcon(row->iconName), row->title);
            action->setEnabled(row->enabled);
            if (row->checked) {
                action->setCheckable(true);
                action->setChecked(*row->checked);
            }
        } else if (const auto* operation = std::get_if<ActionMenuEntry::OperationRow>(&entry.value)) {
            action = menu.addAction(themeIcon(operation->item.iconName), operation->item.title);
        }
        if (action) {
            QObject::connect(action, &QAction::triggered, &menu, [choose, entry] {
                if (choose) {
                    choose(entry);
                }
            });
        }
    }
    const auto actions = menu.actions();
    if (!actions.isEmpty() && actions.last()->isSeparator()) {
        menu.removeAction(actions.last());
    }
}

} // namespace Vantrope
