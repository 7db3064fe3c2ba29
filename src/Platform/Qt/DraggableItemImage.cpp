// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DraggableItemImage.h"

#include "Libraries/Core/FileImages.h"
#include "Libraries/Core/Localized.h"
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggablePromise.h"
#include "Models/Draggable/DraggableText.h"
#include "Models/Draggable/DraggableWebImage.h"
#include "Models/Draggable/DraggableWeblocation.h"

#include <QFileInfo>
#include <QFont>
#include <QMimeDatabase>
#include <QPainter>
#include <QPainterPath>
#include <QTextLayout>

namespace Vantrope {

namespace {

QImage blank(const QSize& size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

// A sheet of paper, a little taller than wide, with the start of the text on it.
QImage textSheet(const QString& text, const QSize& size)
{
    QImage image = blank(size);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const double unit = size.width() / 96.0;
    const QRectF sheet(size.width() * 0.14, size.height() * 0.04, size.width() * 0.72, size.height() * 0.92);
    painter.setPen(QPen(QColor(0, 0, 0, 40), unit));
    painter.setBrush(QColor(255, 255, 255));
    painter.drawRoundedRect(sheet, 4 * unit, 4 * unit);

    QFont font;
    font.setPixelSize(qMax(6, int(6.5 * unit)));
    painter.setFont(font);
    painter.setPen(QColor(60, 60, 67));
    const QRectF area = sheet.adjusted(6 * unit, 6 * unit, -6 * unit, -6 * unit);
    QString shown = text.left(400);
    shown.replace(QLatin1Char('\t'), QLatin1Char(' '));
    QTextLayout layout(shown, font);
    layout.beginLayout();
    double y = 0;
    for (;;) {
        QTextLine line = layout.createLine();
        if (!line.isValid()) {
            break;
        }
        line.setLineWidth(area.width());
        if (y + line.height() > area.height()) {
            break;
        }
        line.setPosition(QPointF(0, y));
        y += line.height();
    }
    layout.endLayout();
    painter.setClipRect(area);
    layout.draw(&painter, area.topLeft());
    return image;
}

// A rounded card with a globe and the site's name.
QImage linkCard(const QString& host, const QSize& size)
{
    QImage image = blank(size);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const double unit = size.width() / 96.0;
    const QRectF card(size.width() * 0.06, size.height() * 0.16, size.width() * 0.88, size.height() * 0.68);
    QLinearGradient fill(card.topLeft(), card.bottomLeft());
    fill.setColorAt(0, QColor(88, 156, 255));
    fill.setColorAt(1, QColor(48, 112, 230));
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(card, 10 * unit, 10 * unit);

    const double radius = 13 * unit;
    const QPointF centre(card.center().x(), card.top() + card.height() * 0.38);
    painter.setPen(QPen(QColor(255, 255, 255, 235), 2 * unit));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(centre, radius, radius);
    painter.drawEllipse(centre, radius * 0.45, radius);
    painter.drawLine(QPointF(centre.x() - radius, centre.y()), QPointF(centre.x() + radius, centre.y()));

    QFont font;
    font.setPixelSize(qMax(6, int(10 * unit)));
    font.setWeight(QFont::DemiBold);
    painter.setFont(font);
    painter.setPen(Qt::white);
    const QRectF textArea(card.left() + 6 * unit, centre.y() + radius + 3 * unit, card.width() - 12 * unit,
                          card.bottom() - centre.y() - radius - 6 * unit);
    painter.drawText(textArea, Qt::AlignHCenter | Qt::AlignTop,
                     QFontMetrics(font).elidedText(host, Qt::ElideMiddle, int(textArea.width())));
    return image;
}

std::optional<QString> localPath(const Draggable& draggable)
{
    const std::optional<QUrl> url = draggable.url();
    return url && url->isLocalFile() ? std::optional(url->toLocalFile()) : std::nullopt;
}

} // namespace

DraggableItemImage::Rendered DraggableItemImage::render(const Draggable& draggable, const QSize& size)
{
    if (size.isEmpty()) {
        return {};
    }
    if (const auto* text = dynamic_cast<const DraggableText*>(&draggable)) {
        // The sheet shows a few lines; a huge text is not decoded whole for them.
        const QByteArray start = text->data().left(16 * 1024);
        return {textSheet(DraggableText::plainText(start, text->type()).value_or(QString()), size),
                Style::card};
    }
    if (const auto* link = dynamic_cast<const DraggableWeblocation*>(&draggable)) {
        return {linkCard(link->locationTitle().value_or(link->address().toDisplayString()), size),
                Style::card};
    }
    if (dynamic_cast<const DraggablePromise*>(&draggable) && !draggable.isReady()) {
        return {FileImages::genericIconImage(size), Style::icon};
    }
    if (const std::optional<QString> path = localPath(draggable)) {
        const QImage thumbnail = FileImages::thumbnailImage(*path, size);
        if (!thumbnail.isNull()) {
            return {thumbnail, Style::photo};
        }
        return {FileImages::iconImage(*path, size), Style::icon};
    }
    return {draggable.image(true, size), Style::icon};
}

QString DraggableItemImage::kindName(const Draggable& draggable)
{
    if (dynamic_cast<const DraggableText*>(&draggable)) {
        return Localized("shelf.kind.text", "Text");
    }
    if (draggable.isWebLocation()) {
        return Localized("shelf.kind.link", "Link");
    }
    if (dynamic_cast<const DraggableWebImage*>(&draggable)) {
        return Localized("shelf.kind.image", "Image");
    }
    if (dynamic_cast<const DraggablePromise*>(&draggable) && !draggable.isReady()) {
        return Localized("shelf.kind.promise", "Receiving…");
    }
    const std::optional<QString> path = localPath(draggable);
    if (path && QFileInfo(*path).isDir()) {
        return Localized("shelf.kind.folder", "Folder");
    }
    if (path) {
        const QMimeType type = QMimeDatabase().mimeTypeForFile(*path);
        if (type.name().startsWith(QLatin1String("image/"))) {
            return Localized("shelf.kind.image", "Image");
        }
        if (QString comment = type.comment(); !comment.isEmpty()) {
            // The MIME database's English names are lower case ("plain text document"); beside "Image"
            // and "Folder" they start with a capital.
            comment[0] = comment[0].toUpper();
            return comment;
        }
    }
    return Localized("shelf.kind.file", "File");
}

QString DraggableItemImage::displayName(const Draggable& draggable)
{
    if (const std::optional<QString> title = draggable.locationTitle()) {
        return *title;
    }
    if (const std::optional<QString> path = localPath(draggable)) {
        return QFileInfo(*path).fileName();
    }
    return kindName(draggable);
}

} // namespace Vantrope
