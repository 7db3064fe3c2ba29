// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "URL.h"

#include "Logging.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace Vantrope::URL {

namespace {

QString localPath(const QUrl& url)
{
    if (!url.isLocalFile()) {
        return {};
    }
    return QDir::cleanPath(QFileInfo(url.toLocalFile()).absoluteFilePath());
}

QString parentPath(const QString& path)
{
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    if (slash < 0) {
        return QStringLiteral(".");
    }
    return slash == 0 ? QStringLiteral("/") : path.left(slash);
}

// The path with symbolic links resolved as far as it exists; the missing tail is kept as written, so
// paths of files that are gone still compare with the folders that held them.
QString canonicalPrefix(const QString& path)
{
    QString existing = path;
    QString tail;
    while (true) {
        char resolved[PATH_MAX];
        if (::realpath(QFile::encodeName(existing).constData(), resolved)) {
            const QString head = QFile::decodeName(resolved);
            return tail.isEmpty() ? head : QDir::cleanPath(head + QLatin1Char('/') + tail);
        }
        if (existing == QLatin1String("/") || existing == QLatin1String(".")) {
            return path;
        }
        const QString name = existing.mid(existing.lastIndexOf(QLatin1Char('/')) + 1);
        tail = tail.isEmpty() ? name : name + QLatin1Char('/') + tail;
        existing = parentPath(existing);
    }
}

struct Place {
    QString path;
    dev_t device = 0;
};

// The nearest folder at or above `path` that exists, canonical, with its device.
std::optional<Place> existingFolder(const QString& path)
{
    QString folder = canonicalPrefix(path);
    while (true) {
        struct stat info {};
        if (::stat(QFile::encodeName(folder).constData(), &info) == 0 && S_ISDIR(info.st_mode)) {
            return Place{folder, info.st_dev};
        }
        if (folder == QLatin1String("/")) {
            return std::nullopt;
        }
        folder = parentPath(folder);
    }
}

// The mount point of the device holding `place`: the highest folder above it on the same device.
QString topDirectory(const Place& place)
{
    QString top = place.path;
    while (top != QLatin1String("/")) {
        const QString parent = parentPath(top);
        struct stat info {};
        if (::stat(QFile::encodeName(parent).constData(), &info) != 0 || info.st_dev != place.device) {
            break;
        }
        top = parent;
    }
    return top;
}

QString homeTrashFiles()
{
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return data.isEmpty() ? QString() : QDir::cleanPath(data + QStringLiteral("/Trash/files"));
}

} // namespace

std::optional<QString> groupContainer()
{
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (base.isEmpty() || !QDir().mkpath(base)) {
        qCWarning(lcCore) << "No writable data location for the application folder";
        return std::nullopt;
    }
    const QString path = base + QStringLiteral("/vantrope");
    // Created 0700 in one step so that the folder is never readable by others, not even briefly.
    if (::mkdir(QFile::encodeName(path).constData(), 0700) != 0 && errno != EEXIST) {
        qCWarning(lcCore).noquote() << "Cannot create" << path << ":"
                                    << QString::fromLocal8Bit(strerror(errno));
        return std::nullopt;
    }
    if (!QFileInfo(path).isDir()) {
        qCWarning(lcCore).noquote() << path << "exists but is not a folder";
        return std::nullopt;
    }
    return path;
}

QList<QUrl> subdirectories(const QUrl& directory)
{
    const QString path = localPath(directory);
    const QFileInfo info(path);
    if (path.isEmpty() || !info.isDir() || !info.isReadable()) {
        qCDebug(lcCore).noquote() << "Cannot list the folders in" << directory.toDisplayString();
        return {};
    }
    const QFileInfoList entries = QDir(path).entryInfoList(
        QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden | QDir::NoSymLinks, QDir::Name);
    QList<QUrl> result;
    result.reserve(entries.size());
    for (const QFileInfo& entry : entries) {
        result.append(QUrl::fromLocalFile(entry.filePath()));
    }
    return result;
}

std::optional<quint64> systemFileNumber(const QUrl& url)
{
    const QString path = localPath(url);
    struct stat info {};
    if (path.isEmpty() || ::lstat(QFile::encodeName(path).constData(), &info) != 0) {
        return std::nullopt;
    }
    return quint64(info.st_ino);
}

std::optional<QStringList> extendedAttributes(const QUrl& url)
{
    const QString path = localPath(url);
    if (path.isEmpty()) {
        return std::nullopt;
    }
    const QByteArray native = QFile::encodeName(path);
    // The list can grow between asking for its size and reading it; a few retries settle that.
    for (int attempt = 0; attempt < 4; ++attempt) {
        const ssize_t size = ::listxattr(native.constData(), nullptr, 0);
        if (size == 0 || (size < 0 && errno == ENOTSUP)) {
            return QStringList();
        }
        if (size < 0) {
            qCDebug(lcCore).noquote()
                << "Cannot list the attributes of" << path << ":" << QString::fromLocal8Bit(strerror(errno));
            return std::nullopt;
        }
        QByteArray buffer(size, Qt::Uninitialized);
        const ssize_t read = ::listxattr(native.constData(), buffer.data(), size_t(buffer.size()));
        if (read < 0 && errno == ERANGE) {
            continue;
        }
        if (read < 0) {
            qCDebug(lcCore).noquote()
                << "Cannot list the attributes of" << path << ":" << QString::fromLocal8Bit(strerror(errno));
            return std::nullopt;
        }
        buffer.truncate(read);
        QStringList names;
        for (const QByteArray& name : buffer.split('\0')) {
            if (!name.isEmpty()) {
                names.append(QString::fromUtf8(name));
            }
        }
        return names;
    }
    return std::nullopt;
}

bool isWithin(const QUrl& url, const QUrl& other)
{
    if (url.scheme() != other.scheme() || url.authority() != other.authority()) {
        return false;
    }
    const QString path = QDir::cleanPath(url.path(QUrl::FullyDecoded));
    const QString base = QDir::cleanPath(other.path(QUrl::FullyDecoded));
    if (base.isEmpty() || path == base) {
        return path == base;
    }
    if (base.endsWith(QLatin1Char('/'))) {
        return path.startsWith(base);
    }
    return path.startsWith(base) && path.at(base.size()) == QLatin1Char('/');
}

QUrl directory(const QUrl& url)
{
    QUrl result = url.adjusted(QUrl::RemoveQuery | QUrl::RemoveFragment);
    result.setPath(parentPath(QDir::cleanPath(url.path(QUrl::FullyDecoded))), QUrl::DecodedMode);
    return result;
}

QStringList trashFilesDirectories(const QUrl& url)
{
    const QString path = localPath(url);
    if (path.isEmpty()) {
        return {};
    }
    const std::optional<Place> place = existingFolder(parentPath(path));
    if (!place) {
        return {};
    }
    QStringList result;
    // A file reaches the home trash only from the device that trash lives on.
    const QString home = homeTrashFiles();
    if (!home.isEmpty()) {
        const std::optional<Place> homePlace = existingFolder(home);
        if (homePlace && homePlace->device == place->device) {
            result.append(canonicalPrefix(home));
        }
    }
    QString top = topDirectory(*place);
    if (top == QLatin1String("/")) {
        top.clear();
    }
    const QString uid = QString::number(::getuid());
    result.append(top + QStringLiteral("/.Trash/") + uid + QStringLiteral("/files"));
    result.append(top + QStringLiteral("/.Trash-") + uid + QStringLiteral("/files"));
    return result;
}

bool isInTrash(const QUrl& url)
{
    const QString path = localPath(url);
    if (path.isEmpty() || path == QLatin1String("/")) {
        return false;
    }
    // The name itself is not resolved: a trashed symbolic link is still in the trash.
    const QString name = path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
    const QUrl file =
        QUrl::fromLocalFile(QDir::cleanPath(canonicalPrefix(parentPath(path)) + QLatin1Char('/') + name));
    const QStringList trashes = trashFilesDirectories(url);
    for (const QString& trash : trashes) {
        const QUrl folder = QUrl::fromLocalFile(trash);
        if (file != folder && isWithin(file, folder)) {
            return true;
        }
    }
    return false;
}

bool isQuarantined(const QStringList& extendedAttributeNames)
{
    return extendedAttributeNames.contains(QLatin1String("user.xdg.origin.url")) ||
           extendedAttributeNames.contains(QLatin1String("user.xdg.referrer.url"));
}

bool isQuarantined(const QUrl& url)
{
    const std::optional<QStringList> names = extendedAttributes(url);
    return names && isQuarantined(*names);
}

} // namespace Vantrope::URL
