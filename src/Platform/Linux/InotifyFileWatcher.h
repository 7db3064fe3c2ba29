// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DragSession/FileWatcher.h"

#include <memory>

namespace Vantrope {

// File watches on one inotify instance read on a thread of its own. Several watches may follow the same
// file: the kernel gives one watch per inode, which this class shares out.
class InotifyFileWatcher final : public FileWatcher {
public:
    InotifyFileWatcher();
    ~InotifyFileWatcher() override;
    InotifyFileWatcher(const InotifyFileWatcher&) = delete;
    InotifyFileWatcher& operator=(const InotifyFileWatcher&) = delete;

    // The program's one instance.
    static InotifyFileWatcher& shared();

    std::expected<std::unique_ptr<Watch>, Error> watch(const QString& path, Callback callback) override;

    struct Private;

private:
    std::unique_ptr<Private> d;
};

} // namespace Vantrope
