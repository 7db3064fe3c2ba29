// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Models/Pasteboard/PasteboardItem.h"

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <QImage>
#include <QSize>
#include <QString>
#include <QUrl>
#include <variant>

namespace Vantrope {

// Why an item could not produce its file.
struct DraggableError {
    enum class Kind {
        missingReceivedFiles,      // a promise ended without delivering a file
        failedObtainingScreenshot, // a dragged screenshot thumbnail could not be copied
        failedWriting,             // a text or image could not be written to disk
        underlying,                // anything else; see `description`
    };
    Kind kind = Kind::underlying;
    QString description;
};

// Where an item is, for saving a shelf: a file, or nowhere yet (an unreceived promise).
struct DraggableLocation {
    std::optional<QUrl> url;
    bool isUnknown() const { return !url.has_value(); }
};

// Everything a shelf can hold. Items are shared and compared by `cacheKey` alone.
class Draggable : public std::enable_shared_from_this<Draggable> {
public:
    using ResolveResult = std::expected<QUrl, DraggableError>;
    using ResolveCompletion = std::function<void(const ResolveResult&)>;

    virtual ~Draggable() = default;
    Draggable(const Draggable&) = delete;
    Draggable& operator=(const Draggable&) = delete;

    // Where the item's bytes are now; absent only for a promise not yet received.
    virtual std::optional<QUrl> url() const = 0;
    // The inode of `url`, under which the shelf keeps the item's bookmark.
    virtual std::optional<quint64> systemFileNumber() const = 0;
    virtual bool isReady() const { return true; }
    virtual QString cacheKey() const = 0;
    virtual bool isWebLocation() const { return false; }
    // A title that replaces the file name (web addresses).
    virtual std::optional<QString> locationTitle() const { return std::nullopt; }
    virtual QImage image(bool iconOnly, const QSize& size) const = 0;
    // Resolves to a file on disk. The completion runs on the main queue, and not at all when the item
    // has been destroyed by then.
    virtual void resolveUrl(ResolveCompletion completion) = 0;
    // What the item offers when dragged out or copied.
    virtual PasteboardItem pasteboardItem() const = 0;
    virtual QString description() const = 0;

    DraggableLocation location() const { return {url()}; }
    bool isEqual(const Draggable& other) const { return cacheKey() == other.cacheKey(); }

protected:
    Draggable() = default;

    // Answers on the main queue, and not at all once the item is gone by then.
    void resolveOnMain(ResolveCompletion completion, ResolveResult result);
};

using DraggablePtr = std::shared_ptr<Draggable>;
using DraggableList = QList<DraggablePtr>;

} // namespace Vantrope
