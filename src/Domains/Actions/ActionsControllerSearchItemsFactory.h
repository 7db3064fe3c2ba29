// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Action.h"
#include "ActionsControllerSupplementarySearchAction.h"
#include "ActionSearchItem.h"
#include "OperationsProvider.h"

#include <functional>
#include <QList>
#include <QStringList>
#include <variant>

namespace Vantrope {

// Builds the search list of a shelf: the searchable actions, the file operations and the supplementary
// entries, each paired with what it runs.
class ActionsControllerSearchItemsFactory final {
public:
    struct ActionBacking {
        ActionPtr action;
    };
    struct OperationBacking {
        OperationsProvider::SearchElement element;
    };
    struct SupplementaryBacking {
        std::function<bool()> perform;
    };
    using SearchItemBackingType = std::variant<ActionBacking, OperationBacking, SupplementaryBacking>;

    struct Element {
        ActionSearchItem item;
        SearchItemBackingType backing;
    };

    // What search shows before anything is typed.
    struct Suggestion {
        QString title;
        QList<ActionSearchItem> items;
    };

    ActionsControllerSearchItemsFactory(
        ActionList actions, QList<OperationsProvider::SearchElement> operations,
        QList<ActionsControllerSupplementarySearchAction> supplementaryActions);

    QList<Element> makeElements() const;

    // Titles read as commands in the list, without the dots of a menu row that opens a dialog.
    static QString searchTitle(QString title);
    static QStringList keywords(const Action& action);
    // The recent actions, most recent first; without any, the suggested ones that are on offer.
    static Suggestion suggestion(const QList<ActionSearchItem>& items, const QStringList& history);
    static const QStringList& suggestedIdentifiers();

private:
    ActionList m_actions;
    QList<OperationsProvider::SearchElement> m_operations;
    QList<ActionsControllerSupplementarySearchAction> m_supplementaryActions;
};

} // namespace Vantrope
