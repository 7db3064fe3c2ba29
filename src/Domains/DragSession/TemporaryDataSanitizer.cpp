// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "TemporaryDataSanitizer.h"

#include "DragSessionLogging.h"
#include "Libraries/Core/ReservedTemporaryDirectory.h"
#include "Preferences/Preferences.h"

#include <algorithm>
#include <fcntl.h>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace Vantrope {

namespace {

// Paths under `roots` that some process has open for writing, as the kernel lists them. Processes of
// other users are not visible, and need not be: they cannot write into our private folders.
QSet<QString> pathsOpenForWriting(const QStringList& roots)
{
    QSet<QString> open;
    QDirIterator processes(QStringLiteral("/proc"), QDir::Dirs | QDir::NoDotAndDotDot);
    while (processes.hasNext()) {
        const QString process = processes.next();
        bool isNumber = false;
        QFileInfo(process).fileName().toInt(&isNumber);
        if (!isNumber) {
            continue;
        }
        QDirIterator descriptors(process + QStringLiteral("/fd"), QDir::Files | QDir::System);
        while (descriptors.hasNext()) {
            const QString descriptor = descriptors.next();
            const QString target = QFile::symLinkTarget(descriptor);
            const bool inside = std::any_of(roots.begin(), roots.end(), [&target](const QString& root) {
                return target.startsWith(root + QLatin1Char('/'));
            });
            if (!inside) {
                continue;
            }
            QFile info(process + QStringLiteral("/fdinfo/") + QFileInfo(descriptor).fileName());
            if (!info.open(QIODevice::ReadOnly)) {
                continue;
            }
            for (const QByteArray& line : info.readAll().split('\n')) {
                if (line.startsWith("flags:")) {
                    const int flags = line.mid(6).trimmed().toInt(nullptr, 8);
                    if ((flags & O_ACCMODE) != O_RDONLY) {
                        open.insert(target);
                    }
                }
            }
        }
    }
    return open;
}

bool isInside(const QString& path, const QString& folder)
{
    return path == folder || path.startsWith(folder + QLatin1Char('/'));
}

} // namespace

TemporaryDataSanitizer::TemporaryDataSanitizer(QStringList directories, Preferences& preferences,
                                               Clock& clock)
    : m_directories(std::move(directories))
    , m_preferences(preferences)
    , m_clock(clock)
{}

QStringList TemporaryDataSanitizer::reservedDirectories()
{
    QStringList directories;
    // Each operation's results lie in a run folder of their own, kept while a shelf holds one of them.
    for (const auto directory :
         {ReservedTemporaryDirectory::textFiles, ReservedTemporaryDirectory::promises,
          ReservedTemporaryDirectory::archives, ReservedTemporaryDirectory::operations}) {
        if (const auto path = TemporaryDirectories::path(directory)) {
            directories.append(*path);
        }
    }
    return directories;
}

bool TemporaryDataSanitizer::shouldSanitize() const
{
    const QDateTime last = m_preferences.value(PreferenceKeys::lastTemporaryDataSanitationDate);
    if (!last.isValid()) {
        return true;
    }
    const QDateTime now = m_clock.currentDateTime();
    const qint64 seconds = std::chrono::seconds(interval).count();
    // A date far ahead was stored under a wrong clock; honouring it would stop every run until then.
    return last < now.addSecs(-seconds) || last > now.addSecs(seconds);
}

void TemporaryDataSanitizer::startIfDue(Protected kept, Completion done)
{
    if (!shouldSanitize()) {
        qCDebug(lcDragSession) << "Temporary data was sanitized less than two hours ago";
        return;
    }
    purge(std::move(kept), std::move(done));
}

void TemporaryDataSanitizer::purge(Protected kept, Completion done)
{
    m_queue.async([this, kept = std::move(kept), done = std::move(done)] {
        Result result = sanitizeDirectories(kept.urls);
        const Result pictures = purgeSnapshots(kept.snapshotDirectory, kept.storedShelves);
        result.removed += pictures.removed;
        result.failed += pictures.failed;
        result.busy += pictures.busy;
        DispatchQueue::main().async([this, alive = std::weak_ptr<int>(m_lifetime), result, done] {
            if (alive.expired()) {
                return;
            }
            m_preferences.setValue(PreferenceKeys::lastTemporaryDataSanitationDate,
                                   m_clock.currentDateTime());
            if (done) {
                done(result);
            }
        });
    });
}

TemporaryDataSanitizer::Result
TemporaryDataSanitizer::sanitizeDirectories(const QList<QUrl>& protectedUrls) const
{
    qCInfo(lcDragSession).noquote() << QStringLiteral("Starting with directories: ") +
                                           m_directories.join(u", ");
    QStringList protectedPaths;
    for (const QUrl& url : protectedUrls) {
        if (url.isLocalFile()) {
            protectedPaths.append(QDir::cleanPath(url.toLocalFile()));
        }
    }
    QStringList doomed;
    for (const QString& directory : m_directories) {
        const QString root = QDir::cleanPath(directory);
        const QFileInfoList entries =
            QDir(root).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        for (const QFileInfo& entry : entries) {
            const QString path = QDir::cleanPath(entry.filePath());
            // A shelf's text file lies in a folder of its own: that whole folder is the shelf's.
            const bool isProtected =
                std::any_of(protectedPaths.begin(), protectedPaths.end(),
                            [&path](const QString& kept) { return isInside(kept, path); });
            if (!isProtected) {
                doomed.append(path);
            }
        }
    }
    return removeEntries(doomed, m_directories);
}

TemporaryDataSanitizer::Result
TemporaryDataSanitizer::purgeSnapshots(const QString& snapshotDirectory,
                                       const QSet<QString>& storedIdentifiers) const
{
    if (snapshotDirectory.isEmpty()) {
        return {};
    }
    QStringList doomed;
    const QFileInfoList pictures =
        QDir(snapshotDirectory).entryInfoList({QStringLiteral("*.png")}, QDir::Files);
    for (const QFileInfo& picture : pictures) {
        const QString identifier = QUrl::fromPercentEncoding(picture.completeBaseName().toLatin1());
        if (!storedIdentifiers.contains(identifier)) {
            doomed.append(picture.filePath());
        }
    }
    qCInfo(lcDragSession).noquote()
        << QStringLiteral("Purging %1 thumbnails of shelves no longer stored").arg(doomed.size());
    return removeEntries(doomed, {QDir::cleanPath(snapshotDirectory)});
}

TemporaryDataSanitizer::Result TemporaryDataSanitizer::removeEntries(const QStringList& paths,
                                                                     const QStringList& roots) const
{
    Result result;
    if (paths.isEmpty()) {
        qCInfo(lcDragSession) << "About to delete 0 files/directories";
        return result;
    }
    const QSet<QString> writing = pathsOpenForWriting(roots);
    const QDateTime settled = QDateTime::currentDateTimeUtc().addSecs(-settleTime.count());
    QStringList removable;
    for (const QString& path : paths) {
        // A folder counts as being written when anything inside it is.
        bool busy = std::any_of(writing.begin(), writing.end(),
                                [&path](const QString& open) { return isInside(open, path); }) ||
                    QFileInfo(path).lastModified().toUTC() > settled;
        QDirIterator inside(path, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                            QDirIterator::Subdirectories);
        while (!busy && inside.hasNext()) {
            busy = QFileInfo(inside.next()).lastModified().toUTC() > settled;
        }
        if (busy) {
            ++result.busy;
        } else {
            removable.append(path);
        }
    }
    qCInfo(lcDragSession).noquote() << QStringLiteral("About to delete ") +
                                           QString::number(removable.size()) +
                                           QStringLiteral(" files/directories");
    for (const QString& path : removable) {
        const QFileInfo info(path);
        bool removed = false;
        QString error;
        if (info.isDir() && !info.isSymLink()) {
            removed = QDir(path).removeRecursively();
            error = QStringLiteral("could not remove everything inside");
        } else {
            QFile file(path);
            removed = file.remove();
            error = file.errorString();
        }
        if (removed) {
            ++result.removed;
        } else {
            ++result.failed;
            qCWarning(lcDragSession).noquote() << QStringLiteral("Failed to delete item at ") + path +
                                                      QStringLiteral(" with error: ") + error;
        }
    }
    return result;
}

} // namespace Vantrope
