// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DropPromiseTransports.h"

#include "Models/Draggable/DraggableLogging.h"
#include "Models/Draggable/DraggablePromise.h"
#include "Models/Pasteboard/PasteboardTypes.h"
#include "Platform/DBus/ArkExtractTransport.h"

#ifdef WITH_X11
#include "Platform/X11/X11DirectSaveTransport.h"
#include "Platform/X11/X11DragSourceTracker.h"
#endif

#include <QMimeData>

namespace Vantrope {

namespace {

quint32 directSaveSourceWindow()
{
#ifdef WITH_X11
    const X11DragSourceTracker* tracker = X11DragSourceTracker::instance();
    return tracker ? tracker->sourceWindow() : 0;
#else
    return 0;
#endif
}

} // namespace

std::optional<QByteArray> DropPromiseTransports::directSaveName()
{
#ifdef WITH_X11
    if (const quint32 window = directSaveSourceWindow()) {
        return X11DirectSaveTransport::proposedName(window);
    }
#endif
    return std::nullopt;
}

DropPromiseTransports::Factory DropPromiseTransports::forDrop(const QMimeData& dropData,
                                                              std::optional<quint64> sequenceNumber)
{
    return [&dropData, sequenceNumber](const PasteboardItem& item) -> std::unique_ptr<FilePromiseTransport> {
        if (item.hasType(PasteboardTypes::arkExtractService)) {
            const auto service = item.string(PasteboardTypes::arkExtractService);
            const auto path = item.string(PasteboardTypes::arkExtractPath);
            if (!service || !path) {
                qCWarning(lcDraggable) << "Archive drag without its service or object";
                return nullptr;
            }
            return std::make_unique<ArkExtractTransport>(service->trimmed(), path->trimmed());
        }
        if (item.hasType(PasteboardTypes::directSave)) {
#ifdef WITH_X11
            const std::optional<QString> folder = DraggablePromise::destinationDirectory(sequenceNumber);
            if (!folder) {
                return nullptr;
            }
            return X11DirectSaveTransport::fetch(
                dropData, directSaveSourceWindow(),
                item.data(PasteboardTypes::directSave).value_or(QByteArray()), *folder);
#else
            Q_UNUSED(dropData);
            Q_UNUSED(sequenceNumber);
            return nullptr;
#endif
        }
        return nullptr;
    };
}

} // namespace Vantrope
