// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DirectoryObserverItem.h"

#include "Libraries/Core/URL.h"

#include <QDir>
#include <QFile>
#include <sys/stat.h>

namespace Vantrope {

namespace {

QString lastPathComponent(const QUrl& url)
{
    const QString path = QDir::cleanPath(url.path(QUrl::FullyDecoded));
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

} // namespace

DirectoryObserverItem DirectoryObserverItem::fromUrl(const QUrl& url)
{
    DirectoryObserverItem item;
    item.url = url;
    item.name = lastPathComponent(url);
    struct stat info {};
    if (!url.isLocalFile() || ::lstat(QFile::encodeName(url.toLocalFile()).constData(), &info) != 0) {
        item.modificationDate = QDateTime::currentDateTimeUtc();
        item.systemNumber = fallbackSystemNumber(item.name);
        return item;
    }
    item.modificationDate = QDateTime::fromMSecsSinceEpoch(
        qint64(info.st_mtim.tv_sec) * 1000 + info.st_mtim.tv_nsec / 1000000, Qt::UTC);
    item.size = quint64(info.st_size);
    item.systemNumber = qint64(info.st_ino);
    item.isQuarantined = URL::isQuarantined(url);
    return item;
}

qint64 DirectoryObserverItem::fallbackSystemNumber(const QString& name)
{
    return qint64(qHash(name));
}

QString DirectoryObserverItem::pathExtension(const QUrl& url)
{
    const QString name = lastPathComponent(url);
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    if (dot <= 0) {
        return {};
    }
    return name.mid(dot + 1);
}

QDebug operator<<(QDebug debug, const DirectoryObserverItem& item)
{
    const QDebugStateSaver saver(debug);
    debug.nospace().noquote() << "Item(" << item.url.toDisplayString(QUrl::PreferLocalFile) << ", "
                              << item.size << " bytes, #" << item.systemNumber
                              << (item.isQuarantined ? ", quarantined" : "") << ')';
    return debug;
}

} // namespace Vantrope
