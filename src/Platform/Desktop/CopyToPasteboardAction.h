// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/Action.h"

class QMimeData;

namespace Vantrope {

// Puts the items on the clipboard as files, so that file managers paste them and text fields paste
// their paths.
class CopyToPasteboardAction final : public Action {
public:
    ActionCategory category() const override { return ActionCategory::shelf; }
    QString identifier() const override;
    QString iconName() const override;
    QString title() const override;

    bool canPerform(const ActionItemList& items) const override { return !items.isEmpty(); }
    void perform(const ActionItemList& items, ProgressHandler progress, Completion completion) override;

    // The clipboard contents for `urls`: text/uri-list, x-special/gnome-copied-files and the paths as
    // plain text, one a line.
    static QMimeData* makeMimeData(const QList<QUrl>& urls);
};

} // namespace Vantrope
