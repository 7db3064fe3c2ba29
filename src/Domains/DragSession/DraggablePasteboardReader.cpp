// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DraggablePasteboardReader.h"

#include "DragSessionLogging.h"
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggablePromise.h"
#include "Models/Draggable/DraggableText.h"
#include "Models/Draggable/DraggableWebImage.h"
#include "Models/Draggable/DraggableWeblocation.h"
#include "Models/Pasteboard/PasteboardTypes.h"

namespace Vantrope {

namespace {

template<typename Kind> DraggablePtr tryKind(const PasteboardItem& item, const DraggableContext& context)
{
    for (const QString& type : Kind::readableTypes()) {
        if (item.hasType(type)) {
            if (auto made = Kind::fromPasteboard(item, type, context)) {
                return made;
            }
        }
    }
    return nullptr;
}

DraggablePtr tryKind(DraggablePasteboardReader::Kind kind, const PasteboardItem& item,
                     const DraggableContext& context)
{
    switch (kind) {
    case DraggablePasteboardReader::Kind::promise:
        return tryKind<DraggablePromise>(item, context);
    case DraggablePasteboardReader::Kind::weblocation:
        return tryKind<DraggableWeblocation>(item, context);
    case DraggablePasteboardReader::Kind::file:
        return tryKind<DraggableFile>(item, context);
    case DraggablePasteboardReader::Kind::text:
        return tryKind<DraggableText>(item, context);
    case DraggablePasteboardReader::Kind::webImage:
        return tryKind<DraggableWebImage>(item, context);
    }
    return nullptr;
}

} // namespace

const QList<DraggablePasteboardReader::Kind>& DraggablePasteboardReader::baseKinds()
{
    static const QList<Kind> kinds{Kind::promise, Kind::weblocation, Kind::file, Kind::text};
    return kinds;
}

QList<DraggablePasteboardReader::Kind> DraggablePasteboardReader::kinds(const Pasteboard& pasteboard)
{
    // Firefox marks an image dragged out of a page with its native image type, or with a promise URL beside
    // the image data; the page's link it also offers must not win over the picture.
    const bool browserImage = pasteboard.hasType(PasteboardTypes::mozillaNativeImage) ||
                              (pasteboard.hasType(PasteboardTypes::mozillaFilePromiseURL) &&
                               pasteboard.hasTypeWithPrefix(QStringLiteral("image/")));
    if (browserImage) {
        return {Kind::webImage};
    }
    return baseKinds();
}

DraggablePtr DraggablePasteboardReader::readItem(const PasteboardItem& item, const QList<Kind>& kinds,
                                                 const DraggableContext& context)
{
    for (Kind kind : kinds) {
        if (auto made = tryKind(kind, item, context)) {
            return made;
        }
    }
    return nullptr;
}

DraggableList DraggablePasteboardReader::read(const Pasteboard& pasteboard, const DraggableContext& context)
{
    const QList<Kind> chosen = kinds(pasteboard);
    DraggableList result;
    result.reserve(pasteboard.items().size());
    for (const PasteboardItem& item : pasteboard.items()) {
        if (auto made = readItem(item, chosen, context)) {
            result.append(std::move(made));
        } else {
            qCDebug(lcDragSession) << "Skipped a pasteboard item no kind could read; types:" << item.types();
        }
    }
    return result;
}

DraggableList DraggablePasteboardReader::readFiles(const Pasteboard& pasteboard)
{
    const DraggableContext context;
    DraggableList result;
    result.reserve(pasteboard.items().size());
    for (const PasteboardItem& item : pasteboard.items()) {
        if (!item.hasType(PasteboardTypes::uriList)) {
            continue;
        }
        if (auto file = DraggableFile::fromPasteboard(item, PasteboardTypes::uriList, context)) {
            result.append(std::move(file));
        }
    }
    return result;
}

} // namespace Vantrope
