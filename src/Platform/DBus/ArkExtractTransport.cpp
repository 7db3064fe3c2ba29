// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ArkExtractTransport.h"

#include "Libraries/Core/Localized.h"
#include "Models/Draggable/DraggableLogging.h"

#include <atomic>
#include <QDateTime>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTimer>

namespace Vantrope {

namespace {

constexpr std::chrono::milliseconds pollInterval{100};

DraggableError failure(const QString& detail)
{
    qCWarning(lcDraggable).noquote() << "Archive extraction failed:" << detail;
    return {DraggableError::Kind::underlying,
            Localized("receive-error.archive", "The archive manager could not extract the files.")};
}

bool isPlausibleObjectPath(const QString& path)
{
    static const QRegularExpression pattern(QStringLiteral("^/([A-Za-z0-9_]+(/[A-Za-z0-9_]+)*)?$"));
    return pattern.match(path).hasMatch();
}

} // namespace

// Lives on the main thread; the transport may go on any thread, so it only ever cancels this.
class ArkExtractTransport::Extraction final : public QObject {
public:
    Extraction(QString destination, FileHandler onFile, FinishedHandler onFinished)
        : m_destination(std::move(destination))
        , m_onFile(std::move(onFile))
        , m_onFinished(std::move(onFinished))
    {
        m_poll.setInterval(pollInterval);
        connect(&m_poll, &QTimer::timeout, this, &Extraction::poll);
    }

    void start(const QString& service, const QString& objectPath)
    {
        QDBusMessage call =
            QDBusMessage::createMethodCall(service, objectPath, QStringLiteral("org.kde.ark.DndExtract"),
                                           QStringLiteral("extractSelectedFilesTo"));
        call << m_destination;
        auto* watcher = new QDBusPendingCallWatcher(
            QDBusConnection::sessionBus().asyncCall(call, int(timeout.count())), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* finished) {
            finished->deleteLater();
            const QDBusPendingReply<> reply = *finished;
            if (reply.isError()) {
                fail(reply.error().message());
                return;
            }
            m_elapsed.start();
            m_stillSince.start();
            m_poll.start();
        });
    }

    void fail(const QString& detail) { deliver({std::unexpected(failure(detail))}); }

    void cancel() { m_cancelled.store(true); }

private:
    // Path, size and time of every entry, inside extracted folders too: a folder's own size and time
    // stop changing while files deep in it are still being written. The folder holds still when two
    // looks agree.
    QStringList snapshot() const
    {
        QStringList entries;
        QDirIterator it(m_destination, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QFileInfo info = it.nextFileInfo();
            entries.append(info.filePath() + QLatin1Char('\n') + QString::number(info.size()) +
                           QLatin1Char('\n') + QString::number(info.lastModified().toMSecsSinceEpoch()));
        }
        entries.sort();
        return entries;
    }

    void poll()
    {
        const QStringList now = snapshot();
        if (now != m_lastSnapshot) {
            m_lastSnapshot = now;
            m_stillSince.start();
        }
        const bool settled =
            !now.isEmpty() && std::chrono::milliseconds(m_stillSince.elapsed()) >= settleTime;
        if (!settled && std::chrono::milliseconds(m_elapsed.elapsed()) < timeout) {
            return;
        }
        m_poll.stop();
        QList<FileResult> results;
        const QFileInfoList infos =
            QDir(m_destination)
                .entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name);
        for (const QFileInfo& info : infos) {
            results.append(QUrl::fromLocalFile(info.absoluteFilePath()));
        }
        if (results.isEmpty()) {
            results.append(std::unexpected(failure(QStringLiteral("nothing arrived"))));
        }
        deliver(results);
    }

    void deliver(const QList<FileResult>& results)
    {
        for (const FileResult& result : results) {
            if (m_cancelled.load()) {
                return;
            }
            if (m_onFile) {
                m_onFile(result);
            }
        }
        if (!m_cancelled.load() && m_onFinished) {
            m_onFinished();
        }
    }

    const QString m_destination;
    const FileHandler m_onFile;
    const FinishedHandler m_onFinished;
    std::atomic<bool> m_cancelled = false;
    QTimer m_poll;
    QElapsedTimer m_elapsed;
    QElapsedTimer m_stillSince;
    QStringList m_lastSnapshot;
};

ArkExtractTransport::ArkExtractTransport(QString service, QString objectPath)
    : m_service(std::move(service))
    , m_objectPath(std::move(objectPath))
{}

ArkExtractTransport::~ArkExtractTransport()
{
    if (m_extraction) {
        m_extraction->cancel();
    }
}

void ArkExtractTransport::receive(const QString& destination, FileHandler onFile, FinishedHandler onFinished)
{
    if (m_extraction) {
        return;
    }
    // The extraction object belongs to the main thread and to nobody else: the transport may die
    // elsewhere, so it is handed to the event loop to delete once cancelled or done.
    Extraction* extraction = new Extraction(destination, std::move(onFile), std::move(onFinished));
    m_extraction = std::shared_ptr<Extraction>(extraction, [](Extraction* object) { object->deleteLater(); });
    if (m_service.isEmpty() || m_service.size() > 255 || !isPlausibleObjectPath(m_objectPath)) {
        const QString detail =
            QStringLiteral("malformed service %1 or object %2").arg(m_service, m_objectPath);
        QTimer::singleShot(0, extraction, [extraction, detail] { extraction->fail(detail); });
        return;
    }
    extraction->start(m_service, m_objectPath);
}

} // namespace Vantrope
