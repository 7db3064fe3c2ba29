// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DraggableCollection.h"

#include "DraggableLogging.h"
#include "Libraries/Core/DispatchGroup.h"
#include "Libraries/Core/ThreadSafe.h"

#include <QFile>
#include <QThreadPool>

namespace Vantrope::DraggableCollection {

namespace {

std::expected<void, DraggableError> trash(const QList<QUrl>& urls)
{
    QStringList failed;
    for (const QUrl& url : urls) {
        QFile file(url.toLocalFile());
        if (!url.isLocalFile() || !file.moveToTrash()) {
            failed.append(url.toLocalFile() + QStringLiteral(" (") + file.errorString() + QLatin1Char(')'));
        }
    }
    if (failed.isEmpty()) {
        return {};
    }
    return std::unexpected(
        DraggableError{DraggableError::Kind::underlying,
                       QStringLiteral("Could not move to the Trash: ") + failed.join(QStringLiteral(", "))});
}

} // namespace

void moveToTrash(const DraggableList& draggables, TrashCompletion completion)
{
    qCInfo(lcDraggable).noquote() << QStringLiteral("About to delete ") + QString::number(draggables.size());
    auto group = std::make_shared<DispatchGroup>();
    auto urls = std::make_shared<ThreadSafe<QList<QUrl>>>();
    for (const DraggablePtr& draggable : draggables) {
        // A promise not yet received may never answer, and would hold up the whole batch.
        if (!draggable->isReady()) {
            qCWarning(lcDraggable).noquote()
                << QStringLiteral("Failed to obtain URL for draggable to delete (failing silently): ") +
                       draggable->description() + QStringLiteral(" is not ready");
            continue;
        }
        group->enter();
        // A reply comes only while the item lives; holding it until then makes sure the group finishes.
        draggable->resolveUrl([group, urls, draggable](const Draggable::ResolveResult& result) {
            if (result) {
                urls->mutate([&result](QList<QUrl>& list) { list.append(*result); });
            } else {
                qCWarning(lcDraggable).noquote()
                    << QStringLiteral("Failed to obtain URL for draggable to delete (failing silently): ") +
                           result.error().description;
            }
            group->leave();
        });
    }
    group->notify(DispatchQueue::main(), [urls, completion = std::move(completion)] {
        QThreadPool::globalInstance()->start([urls = urls->value(), completion] {
            const auto result = trash(urls);
            if (!result) {
                qCWarning(lcDraggable).noquote()
                    << QStringLiteral("Failed to move items to trash with error ") +
                           result.error().description;
            }
            DispatchQueue::main().async([completion, result] {
                if (completion) {
                    completion(result);
                }
            });
        });
    });
}

} // namespace Vantrope::DraggableCollection
