// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ActionsControllerSearchItemsFactory.h"

#include "ActionIdentifiers.h"
#include "Libraries/Core/Localized.h"

#include <algorithm>

namespace Vantrope {

ActionsControllerSearchItemsFactory::ActionsControllerSearchItemsFactory(
    ActionList actions, QList<OperationsProvider::SearchElement> operations,
    QList<ActionsControllerSupplementarySearchAction> supplementaryActions)
    : m_actions(std::move(actions))
    , m_operations(std::move(operations))
    , m_supplementaryActions(std::move(supplementaryActions))
{}

QList<ActionsControllerSearchItemsFactory::Element> ActionsControllerSearchItemsFactory::makeElements() const
{
    QList<Element> elements;
    for (const ActionPtr& action : m_actions) {
        if (!action || !action->isSearchable()) {
            continue;
        }
        elements.append(Element{ActionSearchItem{action->identifier(), searchTitle(action->title()),
                                                 action->iconName(), keywords(*action)},
                                ActionBacking{action}});
    }
    for (const OperationsProvider::SearchElement& operation : m_operations) {
        elements.append(Element{ActionSearchItem{operation.identifier, searchTitle(operation.title),
                                                 operation.iconName, operation.keywords},
                                OperationBacking{operation}});
    }
    for (const ActionsControllerSupplementarySearchAction& supplementary : m_supplementaryActions) {
        if (!supplementary.canPerformHandler || !supplementary.canPerformHandler()) {
            continue;
        }
        elements.append(Element{supplementary.item, SupplementaryBacking{supplementary.performHandler}});
    }
    return elements;
}

QString ActionsControllerSearchItemsFactory::searchTitle(QString title)
{
    return title.remove(QStringLiteral("...")).remove(QChar(0x2026));
}

QStringList ActionsControllerSearchItemsFactory::keywords(const Action& action)
{
    if (action.category() == ActionCategory::upload) {
        return {QStringLiteral("cloud"), QStringLiteral("upload"),
                Localized("shelf-search.keywords.compress", "compress")};
    }
    const QString identifier = action.identifier();
    if (identifier == ActionIdentifiers::copyToPasteboard) {
        return {Localized("shelf-search.keywords.pasteboard", "pasteboard"),
                Localized("shelf-search.keywords.copy", "copy"),
                Localized("shelf-search.keywords.clipboard", "clipboard")};
    }
    if (identifier == ActionIdentifiers::addFromClipboard) {
        return {Localized("shelf-search.keywords.pasteboard", "pasteboard"),
                Localized("shelf-search.keywords.paste", "paste")};
    }
    if (identifier == ActionIdentifiers::clearShelf) {
        return {Localized("shelf-search.keywords.remove", "remove"),
                Localized("shelf-search.keywords.empty", "empty")};
    }
    if (identifier == ActionIdentifiers::compress) {
        return {Localized("shelf-search.keywords.archive", "archive"),
                Localized("shelf-search.keywords.compress", "compress")};
    }
    if (identifier == ActionIdentifiers::sharingServiceEmail) {
        return {QStringLiteral("email"), Localized("shelf-search.keywords.send", "send")};
    }
    if (identifier == ActionIdentifiers::sharingServiceBluetooth) {
        return {QStringLiteral("bluetooth")};
    }
    return {};
}

const QStringList& ActionsControllerSearchItemsFactory::suggestedIdentifiers()
{
    static const QStringList identifiers = {ActionIdentifiers::sharingServiceEmail,
                                            ActionIdentifiers::openFile, ActionIdentifiers::copyToPasteboard};
    return identifiers;
}

ActionsControllerSearchItemsFactory::Suggestion
ActionsControllerSearchItemsFactory::suggestion(const QList<ActionSearchItem>& items,
                                                const QStringList& history)
{
    QList<ActionSearchItem> recent;
    for (const ActionSearchItem& item : items) {
        if (history.contains(item.identifier)) {
            recent.append(item);
        }
    }
    if (!recent.isEmpty()) {
        std::stable_sort(recent.begin(), recent.end(), [&history](const auto& left, const auto& right) {
            return history.indexOf(left.identifier) < history.indexOf(right.identifier);
        });
        return {Localized("search.recent-items", "Recent"), recent};
    }
    QList<ActionSearchItem> suggested;
    for (const ActionSearchItem& item : items) {
        if (suggestedIdentifiers().contains(item.identifier)) {
            suggested.append(item);
        }
    }
    return {Localized("search.suggested-items", "Suggested"), suggested};
}

} // namespace Vantrope
