// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <functional>
#include <memory>
#include <QString>

namespace Vantrope {

class FilePromiseTransport;
class PasteboardItem;

// What building an item from a pasteboard needs to know beyond the item itself.
struct DraggableContext {
    // DraggableTextForcesPlainText: rich text is kept as plain text.
    bool forcePlainText = false;
    // Makes the transport that fetches a promised file from the drag source, for a pasteboard item
    // that offers a promise; empty (or returning null) where no transport exists, and then promises
    // cannot be taken.
    std::function<std::unique_ptr<FilePromiseTransport>(const PasteboardItem&)> promiseTransportFactory;
};

} // namespace Vantrope
