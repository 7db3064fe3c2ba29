// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <functional>
#include <memory>
#include <QString>

namespace Vantrope {

// Says that something in one directory changed (an entry came, went, was renamed, written or had its
// attributes changed) or that the directory itself was deleted or moved. It never says what: its users
// list the directory again, which also copes with signals that were merged or lost.
class DirectoryWatcher {
public:
    struct Error {
        QString path;
        QString reason;
        QString description() const;
    };

    // Ends its watch when destroyed; its signal never runs after that.
    class Watch {
    public:
        virtual ~Watch() = default;
    };

    using Signal = std::function<void()>;

    virtual ~DirectoryWatcher() = default;

    // `onChange` runs on the watcher's thread; a burst of kernel events yields few signals, not one each.
    virtual std::expected<std::unique_ptr<Watch>, Error> watch(const QString& directoryPath,
                                                               Signal onChange) = 0;
};

} // namespace Vantrope
