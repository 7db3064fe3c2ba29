// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <functional>
#include <memory>
#include <QString>

namespace Vantrope {

// Says when one file stops being where it was: renamed or moved (into the trash too), or deleted. Changes
// of content or permissions are no news to a shelf, so they are not reported.
class FileWatcher {
public:
    enum class Change {
        moved,
        // Unlinked from where it was, even while a program still holds it open. Reported once per watch.
        deleted,
    };

    struct Error {
        QString path;
        QString reason;
        // The system's watch limit is used up: the file itself may be perfectly fine.
        bool limitReached = false;
        QString description() const;
    };

    // Ends its watch when destroyed. Destroying it on the watcher's own thread, inside a callback, is safe.
    class Watch {
    public:
        virtual ~Watch() = default;
    };

    using Callback = std::function<void(Change)>;

    virtual ~FileWatcher() = default;

    // The callback runs on the watcher's own thread; it must not block.
    virtual std::expected<std::unique_ptr<Watch>, Error> watch(const QString& path, Callback callback) = 0;
};

} // namespace Vantrope
