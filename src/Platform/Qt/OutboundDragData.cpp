// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "OutboundDragData.h"

#include "Models/Draggable/DraggableText.h"
#include "Models/Pasteboard/PasteboardTypes.h"
#include "OutboundMimeData.h"
#include "Platform/DBus/FileTransferPortal.h"

#include <QFileInfo>
#include <QUrl>

namespace Vantrope {

namespace {

// Texts alone go to text targets as text; a URI list beside them would win in browsers and editors.
std::unique_ptr<OutboundMimeData> textDrag(const QList<std::shared_ptr<DraggableText>>& texts)
{
    auto data = std::make_unique<OutboundMimeData>();
    QStringList plain;
    for (const auto& text : texts) {
        plain.append(DraggableText::plainText(text->data(), text->type()).value_or(QString()));
    }
    data->setText(plain.join(QLatin1Char('\n')));
    if (texts.size() == 1) {
        const DraggableText& text = *texts.first();
        // Rich text keeps its own form for the targets that take it.
        if (text.type() != PasteboardTypes::utf8PlainText && text.type() != PasteboardTypes::plainText &&
            text.type() != PasteboardTypes::utf8String) {
            data->setData(text.type(), text.data());
        }
        data->setDirectSave(QFileInfo(text.url()->toLocalFile()).fileName(), text.data());
    }
    return data;
}

} // namespace

std::unique_ptr<OutboundMimeData> OutboundDragData::make(const DraggableList& draggables, bool offerPortal)
{
    QList<std::shared_ptr<DraggableText>> texts;
    for (const DraggablePtr& draggable : draggables) {
        if (auto text = std::dynamic_pointer_cast<DraggableText>(draggable); text && text->url()) {
            texts.append(std::move(text));
        }
    }
    if (!texts.isEmpty() && texts.size() == draggables.size()) {
        return textDrag(texts);
    }

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
    auto data = std::make_unique<OutboundMimeData>();
    data->setData(PasteboardTypes::uriList, uriList);
    if (items.size() == 1) {
        // A single link also goes where only its text is understood.
        for (const QString& type : items.first().types()) {
            if (type != PasteboardTypes::uriList) {
                data->setData(type, items.first().data(type).value_or(QByteArray()));
            }
        }
        // Targets that ask for plain text would otherwise be given the URI list in its place.
        if (const auto text = items.first().data(PasteboardTypes::utf8PlainText);
            text && !items.first().data(PasteboardTypes::plainText)) {
            data->setData(PasteboardTypes::plainText, *text);
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
