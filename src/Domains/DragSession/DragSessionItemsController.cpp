// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionItemsController.h"

#include "DraggableFileObserver.h"
#include "DragSessionLogging.h"
#include "Libraries/Core/DispatchQueue.h"
#include "Libraries/Core/FileBookmark.h"
#include "Libraries/Core/ThreadSafe.h"
#include "Libraries/Core/Throttler.h"
#include "Libraries/Core/URL.h"
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggablePromise.h"

#include <QFileInfo>
#include <QPointer>
#include <QSet>

namespace Vantrope {

namespace {

// Shared by every shelf: the work is small and serial, and a closed shelf must never have to wait for
// its own queues to wind down.
DispatchQueue& bookmarksQueue()
{
    static auto* queue = new DispatchQueue(QStringLiteral("com.vantropeapp.mac.items-controller-bookmarks"));
    return *queue;
}
DispatchQueue& pendingDeleteQueue()
{
    static auto* queue = new DispatchQueue(QStringLiteral("com.vantropeapp.mac.items-controller-delete"));
    return *queue;
}
DispatchQueue& deletingQueue()
{
    static auto* queue = new DispatchQueue(QStringLiteral("com.vantropeapp.mac.items-controller-deleting"));
    return *queue;
}
DispatchQueue& processItemsQueue()
{
    static auto* queue = new DispatchQueue(QStringLiteral("com.vantropeapp.mac.items-controller-processing"));
    return *queue;
}
DispatchQueue& observerQueue()
{
    static auto* queue = new DispatchQueue(QStringLiteral("DraggableFileObserver"));
    return *queue;
}

const QString reloadWithoutBookmark =
    QStringLiteral("Attempted to reload bookmark, but we dont have an existing one");

} // namespace

struct DragSessionItemsController::Shared {
    explicit Shared(Clock& clock)
        : pendingDeletesThrottler(DragSessionItemsController::pendingDeletesDelay, deletingQueue(), clock)
    {}

    struct Processed {
        DraggablePtr draggable;
        std::optional<QUrl> observedUrl;
    };

    QHash<quint64, QByteArray> bookmarks; // on bookmarksQueue only
    ThreadSafe<QList<DeleteContext>> pendingDeletes;
    ThreadSafe<QList<Processed>> processed;
    Throttler pendingDeletesThrottler;
    QPointer<DragSessionItemsController> owner; // on the main thread only

    static void processItem(const std::shared_ptr<Shared>& shared, const DraggablePtr& draggable,
                            const Draggable::ResolveResult& result);
    static void reloadBookmark(const std::weak_ptr<Shared>& weakShared, const QUrl& url,
                               const DraggablePtr& draggable);
    static void enqueueDelete(const std::weak_ptr<Shared>& weakShared, DeleteContext context);
    static void storeBookmark(const std::weak_ptr<Shared>& weakShared, quint64 number, const QByteArray& data)
    {
        bookmarksQueue().async([weakShared, number, data] {
            if (auto shared = weakShared.lock()) {
                shared->bookmarks.insert(number, data);
            }
        });
    }
};

DragSessionItemsController::DragSessionItemsController(Clock& clock, FileWatcher& fileWatcher,
                                                       QObject* parent)
    : QObject(parent)
    , m_fileWatcher(fileWatcher)
    , m_shared(std::make_shared<Shared>(clock))
{
    m_shared->owner = this;
}

DragSessionItemsController::~DragSessionItemsController()
{
    m_shared->owner = nullptr;
    m_shared->pendingDeletesThrottler.cancel();
    for (const auto& observer : std::as_const(m_observers)) {
        observer->cancel();
    }
}

void DragSessionItemsController::addToChangeCount(qsizetype delta)
{
    if (delta == 0) {
        return;
    }
    m_changeCount += static_cast<quint64>(delta);
    Q_EMIT changeCountChanged(m_changeCount);
}

void DragSessionItemsController::addItems(const DraggableList& draggables)
{
    if (draggables.isEmpty()) {
        return;
    }
    m_items.append(draggables);
    addToChangeCount(draggables.size());
    Q_EMIT itemsChanged();

    const qsizetype processingBefore = m_processingItems.size();
    for (const DraggablePtr& draggable : draggables) {
        if (draggable->isReady()) {
            m_processingItems.append(draggable);
            startProcessing(draggable);
        } else if (auto promise = std::dynamic_pointer_cast<DraggablePromise>(draggable)) {
            m_processingItems.append(draggable);
            std::weak_ptr<Shared> weakShared = m_shared;
            std::weak_ptr<DraggablePromise> weakPromise = promise;
            promise->onReceives([weakShared, weakPromise](const Draggable::ResolveResult&) {
                auto shared = weakShared.lock();
                auto received = weakPromise.lock();
                if (!shared || !shared->owner || !received) {
                    return;
                }
                if (received->isReady()) {
                    shared->owner->startProcessing(received);
                } else {
                    qCCritical(lcDragSession) << "Promise failed to receive, will not process item";
                    shared->owner->removeFromProcessing(received->cacheKey());
                }
            });
        }
    }
    if (m_processingItems.size() != processingBefore) {
        Q_EMIT processingItemsChanged();
    }
}

void DragSessionItemsController::startProcessing(const DraggablePtr& draggable)
{
    std::weak_ptr<Shared> weakShared = m_shared;
    // A file item already knows its URL; skipping the hop through the main queue keeps large drops off it.
    if (auto file = std::dynamic_pointer_cast<DraggableFile>(draggable)) {
        processItemsQueue().async([weakShared, file] {
            if (auto shared = weakShared.lock()) {
                Shared::processItem(shared, file, *file->url());
            }
        });
        return;
    }
    draggable->resolveUrl([weakShared, weakDraggable = std::weak_ptr<Draggable>(draggable)](
                              const Draggable::ResolveResult& result) {
        auto draggable = weakDraggable.lock();
        if (!draggable) {
            return;
        }
        processItemsQueue().async([weakShared, draggable, result] {
            if (auto shared = weakShared.lock()) {
                Shared::processItem(shared, draggable, result);
            }
        });
    });
}

void DragSessionItemsController::Shared::processItem(const std::shared_ptr<Shared>& shared,
                                                     const DraggablePtr& draggable,
                                                     const Draggable::ResolveResult& result)
{
    std::optional<QUrl> observedUrl;
    if (!result) {
        qCWarning(lcDragSession).noquote() << "Failed to generate URL for" << draggable->description();
    } else {
        const QUrl url = *result;
        std::optional<QByteArray> data;
        const auto number = URL::systemFileNumber(url);
        if (number) {
            if (auto created = FileBookmark::create(url)) {
                data = std::move(*created);
            }
        }
        if (number && data) {
            storeBookmark(shared, *number, *data);
        } else {
            qCWarning(lcDragSession).noquote() << "Failed to obtain bookmark data for" << url.toString();
        }
        observedUrl = url;
    }

    // Finished items reach the main thread in batches, so a drop of thousands costs a few passes there.
    const bool first = shared->processed.mutate([&](QList<Processed>& list) {
        list.append({draggable, observedUrl});
        return list.size() == 1;
    });
    if (first) {
        DispatchQueue::main().async([weakShared = std::weak_ptr<Shared>(shared)] {
            auto shared = weakShared.lock();
            if (!shared || !shared->owner) {
                return;
            }
            const QList<Processed> batch = shared->processed.take();
            DragSessionItemsController* owner = shared->owner;
            // Only items still on the shelf are followed: one may have been removed while it was processed.
            QSet<QString> held;
            held.reserve(owner->m_items.size());
            for (const DraggablePtr& item : std::as_const(owner->m_items)) {
                held.insert(item->cacheKey());
            }
            QSet<QString> done;
            done.reserve(batch.size());
            for (const Processed& entry : batch) {
                const QString key = entry.draggable->cacheKey();
                if (entry.observedUrl && held.contains(key)) {
                    owner->observe(*entry.observedUrl, entry.draggable);
                }
                done.insert(key);
            }
            const auto removed = owner->m_processingItems.removeIf(
                [&done](const DraggablePtr& item) { return done.contains(item->cacheKey()); });
            if (removed > 0) {
                Q_EMIT owner->processingItemsChanged();
            }
        });
    }
}

void DragSessionItemsController::observe(const QUrl& url, const DraggablePtr& draggable)
{
    const QString key = draggable->cacheKey();
    auto observer = std::make_shared<DraggableFileObserver>(url, key, m_fileWatcher);
    std::weak_ptr<Shared> weakShared = m_shared;
    std::weak_ptr<Draggable> weakDraggable = draggable;
    observer->onChange = [weakShared, weakDraggable, url] {
        observerQueue().async([weakShared, weakDraggable, url] {
            if (auto draggable = weakDraggable.lock()) {
                Shared::reloadBookmark(weakShared, url, draggable);
            }
        });
    };
    if (auto old = m_observers.value(key)) {
        old->cancel();
    }
    m_observers.insert(key, observer);
    observer->configure();
}

void DragSessionItemsController::removeFromProcessing(const QString& cacheKey)
{
    if (m_processingItems.removeIf(
            [&cacheKey](const DraggablePtr& item) { return item->cacheKey() == cacheKey; }) > 0) {
        Q_EMIT processingItemsChanged();
    }
}

void DragSessionItemsController::Shared::reloadBookmark(const std::weak_ptr<Shared>& weakShared,
                                                        const QUrl& url, const DraggablePtr& draggable)
{
    auto shared = weakShared.lock();
    if (!shared) {
        return;
    }
    const auto number = draggable->systemFileNumber();
    if (!number) {
        qCInfo(lcDragSession).noquote() << reloadWithoutBookmark;
        return;
    }
    const auto data = bookmarksQueue().syncResult([&shared, &number]() -> std::optional<QByteArray> {
        const auto it = shared->bookmarks.constFind(*number);
        return it == shared->bookmarks.constEnd() ? std::nullopt : std::optional<QByteArray>(*it);
    });
    if (!data) {
        qCInfo(lcDragSession).noquote() << reloadWithoutBookmark;
        return;
    }

    const auto assumeDeleted = [&](const QString& error) {
        qCInfo(lcDragSession).noquote()
            << QStringLiteral("Failed to reload bookmark with error %1. We assume its deleted. Flagging it "
                              "as pending delete.")
                   .arg(error);
        enqueueDelete(weakShared, {draggable, url});
    };

    const auto resolved = FileBookmark::resolve(*data);
    if (!resolved) {
        // Editors save by writing a new file and renaming it over the old one: the watched file is gone,
        // but the user's file is still where it was. Follow the new one instead of dropping the item.
        const QString path = url.toLocalFile();
        const auto current = URL::systemFileNumber(url);
        if (resolved.error().kind == FileBookmark::Error::Kind::notFound && current && *current != *number &&
            QFileInfo(path).isFile()) {
            qCInfo(lcDragSession).noquote() << "File was replaced at" << path << "- following the new file";
            ItemChangeContext context{draggable, url, url};
            DispatchQueue::main().async([weakShared, context] {
                if (auto shared = weakShared.lock(); shared && shared->owner) {
                    Q_EMIT shared->owner->itemChanged(context);
                }
            });
            return;
        }
        assumeDeleted(resolved.error().description());
        return;
    }
    if (URL::isInTrash(resolved->url)) {
        qCInfo(lcDragSession) << "Determined that file has been moved to trash, will notify about deletion";
        enqueueDelete(weakShared, {draggable, url});
        return;
    }
    if (!resolved->isStale) {
        qCInfo(lcDragSession)
            << "Attempted to reload bookmark, but it's stale. Flagging it as pending delete.";
        enqueueDelete(weakShared, {draggable, url});
        return;
    }
    const auto fresh = FileBookmark::create(resolved->url);
    if (!fresh) {
        assumeDeleted(fresh.error().description());
        return;
    }
    const auto freshNumber = URL::systemFileNumber(resolved->url);
    if (!freshNumber) {
        qCInfo(lcDragSession) << "Missing system file number, silently failing";
        enqueueDelete(weakShared, {draggable, url});
        return;
    }
    storeBookmark(weakShared, *freshNumber, *fresh);

    const QUrl oldUrl = draggable->url().value_or(url);
    if (resolved->url != oldUrl) {
        ItemChangeContext context{draggable, resolved->url, oldUrl};
        DispatchQueue::main().async([weakShared, context] {
            if (auto shared = weakShared.lock(); shared && shared->owner) {
                Q_EMIT shared->owner->itemChanged(context);
            }
        });
    }
}

void DragSessionItemsController::Shared::enqueueDelete(const std::weak_ptr<Shared>& weakShared,
                                                       DeleteContext context)
{
    pendingDeleteQueue().async([weakShared, context = std::move(context)] {
        auto shared = weakShared.lock();
        if (!shared) {
            return;
        }
        shared->pendingDeletes.mutate([&context](QList<DeleteContext>& list) { list.append(context); });
        shared->pendingDeletesThrottler.throttle([weakShared] {
            auto shared = weakShared.lock();
            if (!shared) {
                return;
            }
            QList<DeleteContext> batch = shared->pendingDeletes.take();
            if (batch.isEmpty()) {
                return;
            }
            DispatchQueue::main().async([weakShared, batch = std::move(batch)] {
                if (auto shared = weakShared.lock(); shared && shared->owner) {
                    Q_EMIT shared->owner->itemsDeleted(batch);
                }
            });
        });
    });
}

void DragSessionItemsController::remove(const DraggablePtr& draggable)
{
    const QString key = draggable->cacheKey();
    const auto removed =
        m_items.removeIf([&key](const DraggablePtr& item) { return item->cacheKey() == key; });
    if (auto observer = m_observers.take(key)) {
        observer->cancel();
    }
    if (removed > 0) {
        addToChangeCount(removed);
        Q_EMIT itemsChanged();
    }
}

void DragSessionItemsController::removeAllItems()
{
    const qsizetype count = m_items.size();
    m_items.clear();
    for (const auto& observer : std::as_const(m_observers)) {
        observer->cancel();
    }
    m_observers.clear();
    if (count > 0) {
        addToChangeCount(count);
        Q_EMIT itemsChanged();
    }
}

std::optional<QByteArray> DragSessionItemsController::bookmark(quint64 systemFileNumber) const
{
    return bookmarksQueue().syncResult([shared = m_shared, systemFileNumber]() -> std::optional<QByteArray> {
        const auto it = shared->bookmarks.constFind(systemFileNumber);
        return it == shared->bookmarks.constEnd() ? std::nullopt : std::optional<QByteArray>(*it);
    });
}

bool DragSessionItemsController::isObserving(const QString& cacheKey) const
{
    const auto observer = m_observers.value(cacheKey);
    return observer && observer->hasSource();
}

} // namespace Vantrope
