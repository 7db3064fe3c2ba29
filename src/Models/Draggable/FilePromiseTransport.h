// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Draggable.h"

#include <expected>
#include <functional>
#include <QString>
#include <QStringList>
#include <QUrl>

namespace Vantrope {

// Fetches the files a drag source has promised: the source is asked to write them into a folder and
// reports, file by file, where it put each one or why it could not.
class FilePromiseTransport {
public:
    using FileResult = std::expected<QUrl, DraggableError>;
    // Once per promised file, on any thread.
    using FileHandler = std::function<void(const FileResult&)>;
    // When the source will report no more files, on any thread. A transport that cannot know how many
    // files come, or whose source gave up, says so here instead of leaving the receiver waiting.
    using FinishedHandler = std::function<void()>;

    virtual ~FilePromiseTransport() = default;

    // What the source announced, as far as it did; either may be empty.
    virtual QStringList fileNames() const = 0;
    virtual QStringList fileTypes() const = 0;

    // Starts the transfer into the existing folder `destination`. Called at most once. The handlers
    // are not called after the transport is destroyed.
    virtual void receive(const QString& destination, FileHandler onFile, FinishedHandler onFinished) = 0;
};

} // namespace Vantrope
