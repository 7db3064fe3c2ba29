#include "OutboundDragData.h"

#include "Models/Pasteboard/PasteboardTypes.h"
#include "Platform/DBus/FileTransferPortal.h"

#include <QMimeData>
#include <QUrl>

namespace Vantrope {

std::unique_ptr<QMimeData> OutboundDragData::make(const DraggableList& draggables, bool offerPortal)
{
    QList<PasteboardItem> items;
    QByteArray uriList;
    QStringList localFiles;
    for (const DraggablePtr& draggable : draggables) {
        PasteboardItem item = draggable->pasteboardItem();
        const std::optional<QByteArray> uri = item.data(PasteboardTypes::uriList);
        if (!uri || uri->isEmpty()) {
            continue;
        }
        uriList += *uri + "\r\n";
        if (const QUrl url = QUrl::fromEncoded(*uri); url.isLocalFile()) {
            localFiles.append(url.toLocalFile());
        }
        items.append(std::move(item));
    }
    if (items.isEmpty()) {
        return nullptr;
    }
    auto data = std::make_unique<QMimeData>();
    data->setData(PasteboardTypes::uriList, uriList);
    if (items.size() == 1) {
        // A single text or link also goes where only its text is understood.
        for (const QString& type : items.first().types()) {
            if (type != PasteboardTypes::uriList) {
                data->setData(type, items.first().data(type).value_or(QByteArray()));
            }
        }
    }
    if (offerPortal && !localFiles.isEmpty()) {
        if (const std::optional<QString> key = FileTransferPortal::registerFiles(localFiles)) {
            data->setData(FileTransferPortal::mimeType, key->toUtf8());
        }
    }
    return data;
}

} // namespace Vantrope
