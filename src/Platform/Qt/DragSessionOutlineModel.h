// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Models/Draggable/Draggable.h"

#include <memory>
#include <QAbstractListModel>
#include <QHash>
#include <QIcon>
#include <QPixmap>
#include <QPointer>
#include <QSet>

namespace Vantrope {

class DragSessionContentOutlineCoordinator;

// The items of an open item list for a Qt view. What a row shows (name, kind, size, picture) is worked
// out when the view first asks for it, so only visible rows cost anything; pictures of image files are
// decoded on worker threads and stand in with the file type's icon until then, or for good when the
// file cannot be decoded.
class DragSessionOutlineModel final : public QAbstractListModel {
    Q_OBJECT
public:
    enum Role {
        KindRole = Qt::UserRole + 1,
        SizeRole,
        MissingRole,
        // True once the row shows a decoded picture of the file rather than an icon.
        ThumbnailRole,
    };

    // `pictureSize` in device-independent pixels; pictures are made for `devicePixelRatio`.
    DragSessionOutlineModel(DragSessionContentOutlineCoordinator& outline, int pictureSize,
                            double devicePixelRatio, QObject* parent = nullptr);
    ~DragSessionOutlineModel() override;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    DraggablePtr item(const QModelIndex& index) const;
    QModelIndex indexOf(const DraggablePtr& item) const;
    // Decodes still running on worker threads.
    int pendingThumbnails() const { return int(m_pending.size()); }

Q_SIGNALS:
    void thumbnailsSettled();

private:
    struct Row {
        bool described = false;
        QString name;
        QString kind;
        QString size;
        QString imagePath;
    };

    void forget(const Draggable* item);
    const Row& describe(const DraggablePtr& item) const;
    QVariant picture(const DraggablePtr& item) const;
    QIcon typeIcon(const DraggablePtr& item) const;
    void startThumbnail(const DraggablePtr& item, const QString& path) const;
    void finishThumbnail(const std::weak_ptr<Draggable>& weak, const Draggable* key, quint64 ticket,
                         const QImage& image);

    DragSessionContentOutlineCoordinator& m_outline;
    const int m_pictureSize;
    const double m_devicePixelRatio;
    mutable QHash<const Draggable*, Row> m_rows;
    mutable QHash<const Draggable*, QPixmap> m_thumbnails;
    mutable QHash<const Draggable*, QPixmap> m_rendered;
    // Decodes under way, each with the ticket its answer must bring.
    mutable QHash<const Draggable*, quint64> m_pending;
    mutable quint64 m_lastTicket = 0;
    mutable QSet<const Draggable*> m_failed;
    mutable QHash<QString, QIcon> m_icons;
    // Lets worker threads know the model is gone.
    std::shared_ptr<bool> m_alive;
};

} // namespace Vantrope
