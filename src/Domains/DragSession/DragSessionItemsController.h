// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/Core/Clock.h"
#include "Models/Draggable/Draggable.h"

#include <memory>
#include <optional>
#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QUrl>

namespace Vantrope {

class DraggableFileObserver;
class FileWatcher;

// The content of one shelf: its items in order, a bookmark for every item with a file on disk, and a
// watch on each such file so the shelf follows a rename or move and lets go of a file that is gone.
class DragSessionItemsController final : public QObject {
    Q_OBJECT
public:
    struct ItemChangeContext {
        DraggablePtr draggable;
        QUrl newUrl;
        QUrl oldUrl;
    };
    struct DeleteContext {
        DraggablePtr draggable;
        QUrl url;
    };

    // Deletions are gathered for this long into one batch.
    static constexpr std::chrono::milliseconds pendingDeletesDelay{1000};

    DragSessionItemsController(Clock& clock, FileWatcher& fileWatcher, QObject* parent = nullptr);
    ~DragSessionItemsController() override;

    quint64 changeCount() const { return m_changeCount; }
    const DraggableList& items() const { return m_items; }
    const DraggableList& processingItems() const { return m_processingItems; }

    void addItems(const DraggableList& draggables);
    // Removes every entry with the item's cache key.
    void remove(const DraggablePtr& draggable);
    void removeAllItems();

    // The bookmark kept for a file number; waits for bookmark work queued before the call.
    std::optional<QByteArray> bookmark(quint64 systemFileNumber) const;
    bool isObserving(const QString& cacheKey) const;

Q_SIGNALS:
    void itemsChanged();
    void processingItemsChanged();
    void changeCountChanged(quint64 changeCount);
    // A batch of items whose files vanished.
    void itemsDeleted(const QList<Vantrope::DragSessionItemsController::DeleteContext>& contexts);
    // An item whose file moved.
    void itemChanged(const Vantrope::DragSessionItemsController::ItemChangeContext& context);

private:
    struct Shared;

    void addToChangeCount(qsizetype delta);
    void startProcessing(const DraggablePtr& draggable);
    void finishProcessing(const DraggablePtr& draggable, const std::optional<QUrl>& observedUrl);
    void observe(const QUrl& url, const DraggablePtr& draggable);
    void removeFromProcessing(const QString& cacheKey);

    FileWatcher& m_fileWatcher;
    std::shared_ptr<Shared> m_shared;
    quint64 m_changeCount = 0;
    DraggableList m_items;
    DraggableList m_processingItems;
    QHash<QString, std::shared_ptr<DraggableFileObserver>> m_observers;
};

} // namespace Vantrope

Q_DECLARE_METATYPE(Vantrope::DragSessionItemsController::DeleteContext)
Q_DECLARE_METATYPE(Vantrope::DragSessionItemsController::ItemChangeContext)
