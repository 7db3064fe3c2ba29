// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "PersistentDragSessionStore.h"

#include "DragSessionLogging.h"
#include "Libraries/Core/AtomicFileWriter.h"
#include "Libraries/Core/URL.h"

#include <algorithm>
#include <optional>
#ifdef __GLIBC__
#include <malloc.h>
#endif
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStandardPaths>

namespace Vantrope {

namespace {

constexpr qsizetype largeFile = 1024 * 1024;
constexpr qsizetype mostRecordsRead = 1000;

const QString fileName = QStringLiteral(".drag_sessions");

void sortSessions(QList<PersistentDragSessionPtr>& sessions)
{
    std::stable_sort(
        sessions.begin(), sessions.end(),
        [](const PersistentDragSessionPtr& a, const PersistentDragSessionPtr& b) { return *a < *b; });
}

} // namespace

PersistentDragSessionStore::PersistentDragSessionStore(
    const QString& filePath, std::unique_ptr<FilesSnapshotController> snapshotController, Clock& clock,
    QObject* parent)
    : QObject(parent)
    , m_filePath(filePath.isEmpty() ? defaultFilePath() : filePath)
    , m_snapshotController(snapshotController ? std::move(snapshotController)
                                              : std::make_unique<FilesSnapshotController>())
    , m_sessionsQueue(QStringLiteral("com.vantropeapp.mac.persistent-drag-session-store"))
    , m_utilityQueue(QStringLiteral("com.vantropeapp.mac.persistent-drag-session-store.utility"))
    , m_saveThrottler(saveDelay, m_utilityQueue, clock)
{
    // Off the main thread; the first read waits for it.
    m_sessionsQueue.async([this] { load(); });
}

PersistentDragSessionStore::~PersistentDragSessionStore()
{
    // Queued changes still run, and the last of them must reach the disk.
    m_utilityQueue.sync([this] {
        if (m_saveThrottler.hasPendingWork()) {
            m_saveThrottler.cancel();
            save();
        }
    });
}

QString PersistentDragSessionStore::defaultFilePath()
{
    if (const std::optional<QString> container = URL::groupContainer()) {
        return *container + QLatin1Char('/') + fileName;
    }
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + QLatin1Char('/') + fileName;
}

QList<PersistentDragSessionPtr> PersistentDragSessionStore::sessions() const
{
    return m_sessionsQueue.syncResult([this] { return m_sessions; });
}

PersistentDragSessionPtr PersistentDragSessionStore::session(const QString& identifier) const
{
    const QList<PersistentDragSessionPtr> all = sessions();
    const auto found = std::find_if(all.cbegin(), all.cend(), [&](const PersistentDragSessionPtr& session) {
        return session->identifier() == identifier;
    });
    return found == all.cend() ? nullptr : *found;
}

void PersistentDragSessionStore::addSession(PersistentDragSessionPtr session, Completion completion)
{
    qCDebug(lcDragSession).noquote() << "Adding session" << session->identifier() << "with"
                                     << session->bookmarkUrls().size() << "bookmarks";
    runChange([this, session = std::move(session)] { addSessionNow(session); }, std::move(completion));
}

void PersistentDragSessionStore::deleteSession(const QString& identifier, Completion completion)
{
    runChange([this, identifier] { deleteSessionNow(identifier); }, std::move(completion));
}

void PersistentDragSessionStore::clearSessions(Completion completion)
{
    runChange([this] { clearSessionsNow(); }, std::move(completion));
}

void PersistentDragSessionStore::runChange(std::function<void()> change, Completion completion)
{
    // One serial queue for every change, so that two changes never read the same list and lose one.
    m_utilityQueue.async([change = std::move(change), completion = std::move(completion)] {
        change();
        if (completion) {
            DispatchQueue::main().async(completion);
        }
    });
}

void PersistentDragSessionStore::addSessionNow(const PersistentDragSessionPtr& session)
{
    QList<PersistentDragSessionPtr> list = sessions();

    if (!session->isPinned()) {
        // A shelf saved again takes no new place, so it does not count against the limit.
        const auto unpinned =
            std::count_if(list.cbegin(), list.cend(), [&](const PersistentDragSessionPtr& other) {
                return !other->isPinned() && other->identifier() != session->identifier();
            });
        if (unpinned >= maxNumberOfItems && !list.isEmpty()) {
            const PersistentDragSessionPtr oldest = list.takeLast();
            qCInfo(lcDragSession) << "Purging thumbnails...";
            m_snapshotController->purgeSnapshots(
                FilesSnapshotController::PurgeStrategy::identifier(oldest->identifier()));
        }
    }

    const auto same = std::find_if(list.begin(), list.end(), [&](const PersistentDragSessionPtr& other) {
        return other->identifier() == session->identifier();
    });
    if (same != list.end()) {
        *same = session;
    } else {
        list.append(session);
    }

    // Reopening a shelf and closing it again must not leave two entries for the same files.
    const QList<QUrl> urls = session->bookmarkUrls();
    for (qsizetype i = 0; i < list.size(); ++i) {
        const PersistentDragSessionPtr& other = list.at(i);
        if (other->date() < session->date() && other->bookmarkUrls() == urls) {
            qCDebug(lcDragSession).noquote()
                << "Removing older session" << other->identifier() << "with the same items";
            m_snapshotController->purgeSnapshots(
                FilesSnapshotController::PurgeStrategy::identifier(other->identifier()));
            list.removeAt(i);
            break;
        }
    }

    sortSessions(list);
    replaceSessions(std::move(list));
    scheduleSave();
    qCInfo(lcDragSession) << "Succesfully persisted sessions";

    const auto snapshot = m_snapshotController->generateSnapshot(session->identifier(), urls);
    if (!snapshot) {
        qCDebug(lcDragSession).noquote()
            << "No snapshot for session" << session->identifier() << ":" << snapshot.error().description();
    }
    postChange();
}

void PersistentDragSessionStore::deleteSessionNow(const QString& identifier)
{
    QList<PersistentDragSessionPtr> list = sessions();
    const auto found = std::find_if(list.cbegin(), list.cend(), [&](const PersistentDragSessionPtr& session) {
        return session->identifier() == identifier;
    });
    if (found == list.cend()) {
        qCWarning(lcDragSession) << "Attempted to delete a session which is not present in the store";
        return;
    }
    list.erase(found);
    sortSessions(list);
    replaceSessions(std::move(list));
    scheduleSave();
    m_snapshotController->purgeSnapshots(FilesSnapshotController::PurgeStrategy::identifier(identifier));
    postChange();
}

void PersistentDragSessionStore::clearSessionsNow()
{
    replaceSessions({});
    scheduleSave();
    m_snapshotController->purgeSnapshots(FilesSnapshotController::PurgeStrategy::all());
    postChange();
}

void PersistentDragSessionStore::flush()
{
    m_utilityQueue.sync([this] {
        m_saveThrottler.cancel();
        save();
    });
}

void PersistentDragSessionStore::replaceSessions(QList<PersistentDragSessionPtr> sessions)
{
    m_sessionsQueue.async(
        [this, sessions = std::move(sessions)]() mutable { m_sessions = std::move(sessions); });
}

void PersistentDragSessionStore::scheduleSave()
{
    // The throttler dies with the store and drops its closure then, so `this` cannot dangle.
    m_saveThrottler.throttle([this] { save(); });
}

void PersistentDragSessionStore::postChange()
{
    QMetaObject::invokeMethod(
        this, [this] { Q_EMIT sessionsChanged(); }, Qt::QueuedConnection);
}

void PersistentDragSessionStore::load()
{
    QFile file(m_filePath);
    if (!file.exists()) {
        qCInfo(lcDragSession).noquote()
            << QStringLiteral("No drag sessions on disk (") + m_filePath + QStringLiteral(")");
        return;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcDragSession).noquote()
            << "Cannot read the recent shelves in" << m_filePath << ":" << file.errorString();
        m_setAsideBeforeSave = true;
        return;
    }
    const QByteArray data = file.readAll();
    if (data.isEmpty()) {
        qCInfo(lcDragSession).noquote()
            << QStringLiteral("No drag sessions on disk (") + m_filePath + QStringLiteral(")");
        return;
    }
    Decoded decoded = decode(data);
    if (decoded.isDamaged) {
        qCWarning(lcDragSession).noquote()
            << "Kept" << decoded.sessions.size() << "readable recent shelves of" << m_filePath
            << "; the file will be set aside before it is written again";
        m_setAsideBeforeSave = true;
    }
    m_sessions = std::move(decoded.sessions);
#ifdef __GLIBC__
    // The parse of a large file leaves its memory with the allocator; give it back to the system.
    if (data.size() > largeFile) {
        malloc_trim(0);
    }
#endif
}

void PersistentDragSessionStore::save()
{
    const QByteArray data = encode(sessions());
    if (m_setAsideBeforeSave) {
        if (QFileInfo::exists(m_filePath) && AtomicFileWriter::setAside(m_filePath).isEmpty()) {
            qCWarning(lcDragSession).noquote()
                << "Not replacing the unreadable" << m_filePath << "as it cannot be set aside";
            return;
        }
        m_setAsideBeforeSave = false;
    }
    if (const auto written = AtomicFileWriter::write(m_filePath, data); !written) {
        qCWarning(lcDragSession).noquote()
            << QStringLiteral("Failed to save sessions with error ") + written.error().description();
    }
}

QByteArray PersistentDragSessionStore::encode(const QList<PersistentDragSessionPtr>& sessions)
{
    QByteArray out = "[";
    for (qsizetype i = 0; i < sessions.size(); ++i) {
        if (i > 0) {
            out += ',';
        }
        out += sessions.at(i)->toJson();
    }
    out += ']';
    return out;
}

namespace {

struct ArrayScan {
    qsizetype count = 0;
    // Where the element after the first `limit` ones begins (at its comma); -1 when there are no more.
    qsizetype limitEnd = -1;
};

// Counts the elements of a JSON array without building them, and finds where its first `limit` ones end;
// nothing when the text is no well-formed array. Parsing all of a huge file only to read its start would
// take seconds.
std::optional<ArrayScan> scanArray(const QByteArray& data, qsizetype limit)
{
    const auto isSpace = [](char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; };
    qsizetype i = 0;
    while (i < data.size() && isSpace(data.at(i))) {
        ++i;
    }
    if (i == data.size() || data.at(i) != '[') {
        return std::nullopt;
    }
    ArrayScan scan;
    int depth = 1;
    bool inString = false;
    bool hasElement = false;
    for (++i; i < data.size(); ++i) {
        const char c = data.at(i);
        if (inString) {
            if (c == '\\') {
                ++i;
            } else if (c == '"') {
                inString = false;
            }
            continue;
        }
        if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            ++depth;
        } else if (c == ']' || c == '}') {
            if (--depth == 0) {
                scan.count += hasElement ? 1 : 0;
                return scan;
            }
        } else if (c == ',' && depth == 1) {
            if (++scan.count == limit) {
                scan.limitEnd = i;
            }
            continue;
        }
        hasElement = hasElement || !isSpace(c);
    }
    return std::nullopt;
}

} // namespace

PersistentDragSessionStore::Decoded PersistentDragSessionStore::decode(const QByteArray& data)
{
    QByteArray text = data;
    qsizetype total = -1;
    if (const auto scan = scanArray(data, mostRecordsRead); scan && scan->limitEnd >= 0) {
        total = scan->count;
        text = data.left(scan->limitEnd) + ']';
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError || !document.isArray()) {
        qCWarning(lcDragSession).noquote()
            << "The recent shelves are not a JSON array:"
            << (error.error != QJsonParseError::NoError ? error.errorString()
                                                        : QStringLiteral("wrong shape"));
        return {{}, true};
    }
    Decoded decoded;
    const QJsonArray records = document.array();
    // One line for all the bad records: a file of many would otherwise flood the log.
    qsizetype skipped = 0;
    QString firstReason;
    // The program never writes more than its pinned shelves and a few recent ones; a file of many more
    // records is not one of its own, and reading all of them would only delay the start.
    const qsizetype examined = std::min<qsizetype>(records.size(), mostRecordsRead);
    if (total < 0) {
        total = records.size();
    }
    if (examined < total) {
        qCWarning(lcDragSession).noquote()
            << "Reading only the first" << examined << "of" << total << "recent shelves";
        decoded.isDamaged = true;
    }
    for (qsizetype i = 0; i < examined; ++i) {
        auto session = PersistentDragSession::fromJson(records.at(i));
        if (!session) {
            if (skipped++ == 0) {
                firstReason = QStringLiteral("record %1: %2").arg(i).arg(session.error().reason);
            }
            decoded.isDamaged = true;
            continue;
        }
        decoded.sessions.append(std::move(*session));
    }
    if (skipped > 0) {
        qCWarning(lcDragSession).noquote() << "Skipping" << skipped << "unreadable recent shelves of"
                                           << examined << "; the first," << firstReason;
    }
    sortSessions(decoded.sessions);
    return decoded;
}

} // namespace Vantrope
