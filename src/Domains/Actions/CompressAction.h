// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Action.h"
#include "ActionArchiver.h"

#include <functional>
#include <memory>

namespace Vantrope {

// Puts the items into one new zip archive in a folder of its own under the archives folder, reporting
// how far it got, then shows the archive in the file manager. A cancelled run reports nothing and
// leaves no archive; a failed one leaves none either.
class CompressAction final : public Action {
public:
    // Shows files in the file manager; the desktop layer supplies it.
    using Reveal = std::function<void(const QList<QUrl>& urls)>;

    struct Error {
        static QString description();
    };

    CompressAction(std::shared_ptr<ActionArchiver> archiver, Reveal reveal);
    ~CompressAction() override;

    ActionCategory category() const override { return ActionCategory::shelf; }
    QString identifier() const override;
    QString iconName() const override;
    QString title() const override;

    bool canPerform(const ActionItemList& items) const override;
    void perform(const ActionItemList& items, ProgressHandler progress, Completion completion) override;
    void cancel() override;

    // The title the shelf shows while the archive is written.
    static QString progressTitle();

private:
    struct Run;

    std::shared_ptr<ActionArchiver> m_archiver;
    Reveal m_reveal;
    std::shared_ptr<Run> m_run;
};

} // namespace Vantrope
