// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionOutlineModel.h"

#include "Domains/DragSession/DragSessionContentOutlineCoordinator.h"
#include "DraggableItemImage.h"
#include "Libraries/Core/Localized.h"
#include "Models/Draggable/DraggableFile.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QImageReader>
#include <QLocale>
#include <QMimeDatabase>
#include <QThreadPool>

namespace Vantrope {

namespace {

std::optional<QString> localPath(const Draggable& item)
{
    if (!dynamic_cast<const DraggableFile*>(&item) || !item.url() || !item.url()->isLocalFile()) {
        return std::nullopt;
    }
    return item.url()->toLocalFile();
}

// Decodes a picture no larger than `edge` pixels on each side, reading only what that needs.
QImage decodeThumbnail(const QString& path, int edge)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QSize full = reader.size();
    if (full.isValid() && (full.width() > edge || full.height() > edge)) {
        reader.setScaledSize(full.scaled(edge, edge, Qt::KeepAspectRatio));
    }
    QImage image = reader.read();
    if (!image.isNull() && (image.width() > edge || image.height() > edge)) {
        image = image.scaled(edge, edge, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }
    return image;
}

} // namespace

DragSessionOutlineModel::DragSessionOutlineModel(DragSessionContentOutlineCoordinator& outline,
                                                 int pictureSize, double devicePixelRatio, QObject* parent)
    : QAbstractListModel(parent)
    , m_outline(outline)
    , m_pictureSize(pictureSize)
    , m_devicePixelRatio(devicePixelRatio)
    , m_alive(std::make_shared<bool>(true))
{
    connect(&outline, &DragSessionContentOutlineCoordinator::itemsInserted, this,
            [this](qsizetype first, qsizetype count) {
                beginInsertRows({}, int(first), int(first + count - 1));
                endInsertRows();
            });
    connect(&outline, &DragSessionContentOutlineCoordinator::itemRemoved, this,
            [this](qsizetype row, const DraggablePtr& item) {
                // The coordinator has let go of the item already; its row goes now.
                beginRemoveRows({}, int(row), int(row));
                forget(item.get());
                endRemoveRows();
            });
    connect(&outline, &DragSessionContentOutlineCoordinator::itemChanged, this,
            [this](qsizetype row, const DraggablePtr& previous) {
                forget(previous.get());
                const QModelIndex at = index(int(row));
                Q_EMIT dataChanged(at, at);
            });
}

void DragSessionOutlineModel::forget(const Draggable* item)
{
    // Addresses are reused once an item is freed: nothing may be left under this one.
    m_rows.remove(item);
    m_thumbnails.remove(item);
    m_rendered.remove(item);
    m_failed.remove(item);
    m_pending.remove(item);
}

DragSessionOutlineModel::~DragSessionOutlineModel()
{
    *m_alive = false;
}

int DragSessionOutlineModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_outline.items().size());
}

DraggablePtr DragSessionOutlineModel::item(const QModelIndex& index) const
{
    return index.isValid() ? m_outline.items().value(index.row()) : nullptr;
}

QModelIndex DragSessionOutlineModel::indexOf(const DraggablePtr& item) const
{
    const qsizetype row = m_outline.indexOf(item);
    return row < 0 ? QModelIndex() : index(int(row));
}

Qt::ItemFlags DragSessionOutlineModel::flags(const QModelIndex& index) const
{
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (!m_outline.isMissing(item(index))) {
        flags |= Qt::ItemIsDragEnabled;
    }
    return flags;
}

const DragSessionOutlineModel::Row& DragSessionOutlineModel::describe(const DraggablePtr& item) const
{
    Row& row = m_rows[item.get()];
    if (row.described) {
        return row;
    }
    row.described = true;
    row.name = DraggableItemImage::displayName(*item);
    row.kind = DraggableItemImage::kindName(*item);
    if (const std::optional<QString> path = localPath(*item)) {
        const QFileInfo info(*path);
        if (info.isFile()) {
            row.size = QLocale().formattedDataSize(info.size());
            const QMimeType type = QMimeDatabase().mimeTypeForFile(info, QMimeDatabase::MatchExtension);
            if (type.name().startsWith(QLatin1String("image/"))) {
                row.imagePath = *path;
            }
        }
    }
    return row;
}

QVariant DragSessionOutlineModel::data(const QModelIndex& index, int role) const
{
    const DraggablePtr item = this->item(index);
    if (!item) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return describe(item).name;
    case KindRole:
        return describe(item).kind;
    case SizeRole:
        return describe(item).size;
    case MissingRole:
        return m_outline.isMissing(item);
    case ThumbnailRole:
        return m_thumbnails.contains(item.get());
    case Qt::DecorationRole:
        return picture(item);
    default:
        return {};
    }
}

QVariant DragSessionOutlineModel::picture(const DraggablePtr& item) const
{
    if (const auto thumbnail = m_thumbnails.constFind(item.get()); thumbnail != m_thumbnails.cend()) {
        return *thumbnail;
    }
    const Row& row = describe(item);
    if (!localPath(*item)) {
        // Texts and links: the picture the pile draws for them.
        auto rendered = m_rendered.find(item.get());
        if (rendered == m_rendered.end()) {
            const int edge = qRound(m_pictureSize * m_devicePixelRatio);
            QPixmap pixmap = QPixmap::fromImage(DraggableItemImage::render(*item, QSize(edge, edge)).image);
            pixmap.setDevicePixelRatio(m_devicePixelRatio);
            rendered = m_rendered.insert(item.get(), pixmap);
        }
        return *rendered;
    }
    if (!row.imagePath.isEmpty() && !m_failed.contains(item.get()) && !m_outline.isMissing(item)) {
        startThumbnail(item, row.imagePath);
    }
    return typeIcon(item);
}

QIcon DragSessionOutlineModel::typeIcon(const DraggablePtr& item) const
{
    const std::optional<QString> path = localPath(*item);
    const QFileInfo info(path.value_or(QString()));
    const QMimeType type = info.isDir()
                               ? QMimeDatabase().mimeTypeForName(QStringLiteral("inode/directory"))
                               : QMimeDatabase().mimeTypeForFile(info, QMimeDatabase::MatchExtension);
    auto icon = m_icons.find(type.name());
    if (icon == m_icons.end()) {
        QIcon found = QIcon::fromTheme(type.iconName());
        if (found.isNull()) {
            found =
                QIcon::fromTheme(type.genericIconName(), QIcon::fromTheme(QStringLiteral("text-x-generic")));
        }
        icon = m_icons.insert(type.name(), found);
    }
    return *icon;
}

void DragSessionOutlineModel::startThumbnail(const DraggablePtr& item, const QString& path) const
{
    if (m_pending.contains(item.get())) {
        return;
    }
    const quint64 ticket = ++m_lastTicket;
    m_pending.insert(item.get(), ticket);
    const int edge = qRound(m_pictureSize * m_devicePixelRatio);
    // Weak: the worker never holds the last reference, so an item is never destroyed on its thread.
    const std::weak_ptr<Draggable> weak = item;
    const Draggable* key = item.get();
    auto* self = const_cast<DragSessionOutlineModel*>(this);
    QPointer<DragSessionOutlineModel> guard(self);
    const std::shared_ptr<bool> alive = m_alive;
    QThreadPool::globalInstance()->start([guard, alive, weak, key, ticket, path, edge] {
        if (!*alive) {
            return;
        }
        const QImage image = decodeThumbnail(path, edge);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [guard, weak, key, ticket, image] {
                if (guard) {
                    guard->finishThumbnail(weak, key, ticket, image);
                }
            },
            Qt::QueuedConnection);
    });
}

void DragSessionOutlineModel::finishThumbnail(const std::weak_ptr<Draggable>& weak, const Draggable* key,
                                              quint64 ticket, const QImage& image)
{
    // An answer for an item that has left the list (its address perhaps another item's now) is dropped.
    if (m_pending.value(key) != ticket) {
        return;
    }
    m_pending.remove(key);
    const DraggablePtr item = weak.lock();
    const qsizetype row = item ? m_outline.indexOf(item) : -1;
    if (row >= 0) {
        if (image.isNull()) {
            // Not a picture after all, or a broken one: the file type's icon stays.
            m_failed.insert(key);
        } else {
            QPixmap pixmap = QPixmap::fromImage(image);
            pixmap.setDevicePixelRatio(m_devicePixelRatio);
            m_thumbnails.insert(key, pixmap);
        }
        const QModelIndex at = index(int(row));
        Q_EMIT dataChanged(at, at, {Qt::DecorationRole, ThumbnailRole});
    }
    if (m_pending.isEmpty()) {
        Q_EMIT thumbnailsSettled();
    }
}

} // namespace Vantrope
