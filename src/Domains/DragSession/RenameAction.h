// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/Action.h"

#include <expected>
#include <functional>

namespace Vantrope {

// Renames the one file of a shelf on disk; the shelf asks for the new name in place.
class RenameAction final : public Action {
public:
    struct Error {
        enum class Kind { emptyName, invalidName, exists, missing, failed };
        Kind kind = Kind::failed;
        QString description;
    };

    // Asks for the new name and renames; `completion` gets the outcome, or `canceled` when the user
    // gave up.
    using Handler = std::function<void(const ActionItem& item, Completion completion)>;

    explicit RenameAction(Handler handler);

    ActionCategory category() const override { return ActionCategory::shelf; }
    QString identifier() const override;
    QString iconName() const override { return QStringLiteral("edit-rename"); }
    QString title() const override;
    bool canPerform(const ActionItemList& items) const override;
    void perform(const ActionItemList& items, ProgressHandler progress, Completion completion) override;

    // Renames `path` to `newName` in the same folder and answers the new path. Never replaces a file:
    // a name that is taken is refused even when another program takes it at the last moment.
    static std::expected<QString, Error> renameFile(const QString& path, const QString& newName);

private:
    Handler m_handler;
};

} // namespace Vantrope
