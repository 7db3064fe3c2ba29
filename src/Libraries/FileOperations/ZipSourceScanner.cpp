// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ZipSourceScanner.h"

#include "ArchiveOutputFile.h"
#include "FileOperationsLogging.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <QDir>
#include <QFile>
#include <QSet>
#include <QStringDecoder>
#include <sys/stat.h>
#include <unistd.h>

namespace Vantrope {

namespace {

QString reasonFor(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

Zip::Error failure(Zip::Error::Kind kind, const QByteArray& path, int error)
{
    return Zip::Error{kind, QFile::decodeName(path), reasonFor(error)};
}

// Names that are not UTF-8 on disk still go into the archive as UTF-8, with replacement characters.
QByteArray archiveComponent(const QByteArray& fileName)
{
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(fileName);
    return decoder.hasError() ? text.toUtf8() : fileName;
}

class Walk {
public:
    explicit Walk(const std::stop_token& stopToken)
        : m_stopToken(stopToken)
    {}

    std::vector<ZipSourceEntry> entries;

    std::expected<void, Zip::Error> addItem(const QByteArray& path, const QByteArray& name)
    {
        struct stat info {};
        // The item itself is followed: it is what the user picked.
        if (::stat(path.constData(), &info) != 0) {
            const int error = errno;
            const bool gone = error == ENOENT || error == ENOTDIR;
            return std::unexpected(
                failure(gone ? Zip::Error::Kind::vanished : Zip::Error::Kind::unreadable, path, error));
        }
        if (S_ISDIR(info.st_mode)) {
            return addDirectory(path, name, info);
        }
        if (S_ISREG(info.st_mode)) {
            entries.push_back(entry(ZipSourceEntry::Type::file, path, name, info));
            entries.back().isItem = true;
            return {};
        }
        return std::unexpected(Zip::Error{Zip::Error::Kind::unreadable, QFile::decodeName(path),
                                          QStringLiteral("not a file or a folder")});
    }

private:
    static ZipSourceEntry entry(ZipSourceEntry::Type type, const QByteArray& path, const QByteArray& name,
                                const struct stat& info)
    {
        ZipSourceEntry result;
        result.type = type;
        result.sourcePath = path;
        result.archiveName = name;
        result.size = type == ZipSourceEntry::Type::file ? qint64(info.st_size) : 0;
        result.modificationTime = qint64(info.st_mtim.tv_sec);
        result.mode = info.st_mode;
        return result;
    }

    std::expected<void, Zip::Error> addDirectory(const QByteArray& path, const QByteArray& name,
                                                 const struct stat& info)
    {
        if (m_stopToken.stop_requested()) {
            return std::unexpected(Zip::Error{Zip::Error::Kind::cancelled, {}, {}});
        }
        entries.push_back(entry(ZipSourceEntry::Type::directory, path, name + '/', info));

        DIR* directory = ::opendir(path.constData());
        if (!directory) {
            const int error = errno;
            const bool gone = error == ENOENT || error == ENOTDIR;
            return std::unexpected(
                failure(gone ? Zip::Error::Kind::vanished : Zip::Error::Kind::unreadable, path, error));
        }
        std::vector<QByteArray> children;
        errno = 0;
        while (const dirent* child = ::readdir(directory)) {
            if (std::strcmp(child->d_name, ".") != 0 && std::strcmp(child->d_name, "..") != 0) {
                children.emplace_back(child->d_name);
            }
            errno = 0;
        }
        const int readError = errno;
        ::closedir(directory);
        if (readError != 0) {
            return std::unexpected(failure(Zip::Error::Kind::unreadable, path, readError));
        }
        std::sort(children.begin(), children.end());

        for (const QByteArray& child : children) {
            const QByteArray childPath = path + '/' + child;
            const QByteArray childName = name + '/' + archiveComponent(child);
            struct stat childInfo {};
            if (::lstat(childPath.constData(), &childInfo) != 0) {
                const int error = errno;
                if (error == ENOENT) {
                    continue; // gone between the listing and the look; it was never ours to keep
                }
                return std::unexpected(failure(Zip::Error::Kind::unreadable, childPath, error));
            }
            if (S_ISDIR(childInfo.st_mode)) {
                if (auto added = addDirectory(childPath, childName, childInfo); !added) {
                    return added;
                }
            } else if (S_ISREG(childInfo.st_mode)) {
                entries.push_back(entry(ZipSourceEntry::Type::file, childPath, childName, childInfo));
            } else if (S_ISLNK(childInfo.st_mode)) {
                auto link = symlink(childPath, childName, childInfo);
                if (!link) {
                    return std::unexpected(link.error());
                }
                entries.push_back(*link);
            } else {
                qCInfo(lcFileOperations).noquote()
                    << "Leaving out" << QFile::decodeName(childPath) << "as it is no file, folder or link";
            }
        }
        return {};
    }

    static std::expected<ZipSourceEntry, Zip::Error> symlink(const QByteArray& path, const QByteArray& name,
                                                             const struct stat& info)
    {
        QByteArray target(qsizetype(std::max<off_t>(info.st_size, 0)) + 1, Qt::Uninitialized);
        for (;;) {
            const ssize_t length = ::readlink(path.constData(), target.data(), size_t(target.size()));
            if (length < 0) {
                return std::unexpected(failure(Zip::Error::Kind::unreadable, path, errno));
            }
            if (length < target.size()) {
                target.truncate(length);
                break;
            }
            target.resize(target.size() * 2); // the link changed since lstat
        }
        ZipSourceEntry result = entry(ZipSourceEntry::Type::symlink, path, name, info);
        result.linkTarget = target;
        result.size = target.size();
        return result;
    }

    const std::stop_token& m_stopToken;
};

} // namespace

std::expected<std::vector<ZipSourceEntry>, Zip::Error>
ZipSourceScanner::scan(const QStringList& paths, const std::stop_token& stopToken)
{
    if (paths.isEmpty()) {
        return std::unexpected(
            Zip::Error{Zip::Error::Kind::invalidInput, {}, QStringLiteral("nothing to archive")});
    }
    Walk walk(stopToken);
    QSet<QString> usedNames;
    for (const QString& given : paths) {
        const QString path = QDir::cleanPath(QDir(given).absolutePath());
        QString name = QFileInfo(path).fileName();
        if (name.isEmpty()) {
            name = QStringLiteral("Root");
        }
        // Two items of one name from different folders must not overwrite each other when unpacked.
        const QString baseName = name;
        for (int number = 2; usedNames.contains(name.toCaseFolded()); ++number) {
            name = ArchiveOutputFile::numberedName(baseName, number);
        }
        usedNames.insert(name.toCaseFolded());
        if (auto added = walk.addItem(QFile::encodeName(path), archiveComponent(QFile::encodeName(name)));
            !added) {
            return std::unexpected(added.error());
        }
    }
    return std::move(walk.entries);
}

} // namespace Vantrope
