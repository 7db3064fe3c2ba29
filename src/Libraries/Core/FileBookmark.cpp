// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "FileBookmark.h"

#include "Logging.h"
#include "URL.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>
#include <unordered_set>

namespace Vantrope {

namespace {

constexpr quint32 magic = 0x56424d4b; // "VBMK"
constexpr quint16 formatVersion = 1;
constexpr quint8 hasBirthTime = 0x01;
constexpr qsizetype checksumSize = 2;

// Ordinary trees stay far below these; they matter for odd ones, such as a home folder holding a
// folder of millions of files, where giving up beats stalling the shelf.
constexpr qsizetype entryBudget = 250'000;
constexpr int folderBudget = 4'000;

using Contents = FileBookmark::Contents;
using Timestamp = FileBookmark::Timestamp;

QString systemMessage(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

// Fails with errno. Never follows a final symbolic link: a bookmark names the entry the user picked.
std::expected<Contents, int> identify(int directory, const char* path)
{
    Contents contents;
    struct statx info {};
    if (::statx(directory, path, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_BASIC_STATS | STATX_BTIME,
                &info) == 0) {
        contents.device = makedev(info.stx_dev_major, info.stx_dev_minor);
        contents.inode = info.stx_ino;
        if (info.stx_mask & STATX_BTIME) {
            contents.birthTime = Timestamp{info.stx_btime.tv_sec, info.stx_btime.tv_nsec};
        }
        contents.size = qint64(info.stx_size);
        contents.modificationTime = {info.stx_mtime.tv_sec, info.stx_mtime.tv_nsec};
        return contents;
    }
    // Some sandboxes filter statx out; plain stat still gives everything but the birth time.
    if (errno != ENOSYS) {
        return std::unexpected(errno);
    }
    struct stat fallback {};
    if (::fstatat(directory, path, &fallback, AT_SYMLINK_NOFOLLOW) != 0) {
        return std::unexpected(errno);
    }
    contents.device = fallback.st_dev;
    contents.inode = fallback.st_ino;
    contents.size = fallback.st_size;
    contents.modificationTime = {fallback.st_mtim.tv_sec, quint32(fallback.st_mtim.tv_nsec)};
    return contents;
}

QByteArray encode(const Contents& contents)
{
    QByteArray data;
    {
        QDataStream out(&data, QIODevice::WriteOnly);
        out.setVersion(QDataStream::Qt_6_0);
        const Timestamp birth = contents.birthTime.value_or(Timestamp{});
        out << magic << formatVersion << QFile::encodeName(contents.path) << contents.device << contents.inode
            << quint8(contents.birthTime ? hasBirthTime : 0) << birth.seconds << birth.nanoseconds
            << contents.size << contents.modificationTime.seconds << contents.modificationTime.nanoseconds;
    }
    const quint16 sum = qChecksum(data);
    data.append(char(sum >> 8)).append(char(sum & 0xff));
    return data;
}

FileBookmark::Error invalid(const QString& reason)
{
    return {FileBookmark::Error::Kind::invalidData, {}, reason};
}

QByteArray join(const QByteArray& folder, const char* name)
{
    QByteArray path = folder;
    if (!path.endsWith('/')) {
        path += '/';
    }
    return path += name;
}

QByteArray parentOf(const QByteArray& path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash <= 0 ? QByteArray("/") : path.left(slash);
}

// Looks for the bookmarked inode in the places a file usually goes when it leaves its folder.
class Search final {
public:
    explicit Search(const Contents& wanted)
        : m_wanted(wanted)
    {}

    std::optional<QByteArray> run()
    {
        QList<QByteArray> children;
        for (const QByteArray& folder : places()) {
            if (std::optional<QByteArray> found = scan(folder, /*followLink=*/true, &children)) {
                return found;
            }
        }
        for (const QByteArray& folder : std::as_const(children)) {
            if (std::optional<QByteArray> found = scan(folder, /*followLink=*/false, nullptr)) {
                return found;
            }
        }
        return std::nullopt;
    }

    int foldersScanned() const { return folderBudget - m_foldersLeft; }

private:
    // In the order a file most likely went: renamed in place, trashed, moved up, moved to a user folder.
    QList<QByteArray> places() const
    {
        const QByteArray path = QFile::encodeName(m_wanted.path);
        const QByteArray oldFolder = parentOf(path);
        QList<QByteArray> result{oldFolder};
        for (const QString& trash : URL::trashFilesDirectories(QUrl::fromLocalFile(m_wanted.path))) {
            result.append(QFile::encodeName(trash));
        }
        const QByteArray home = QFile::encodeName(QDir::cleanPath(QDir::homePath()));
        for (QByteArray folder = oldFolder; folder != "/" && folder != home;) {
            folder = parentOf(folder);
            struct stat info {};
            const bool exists = ::stat(folder.constData(), &info) == 0;
            if (exists && info.st_dev != m_wanted.device) {
                break; // crossed the mount point
            }
            if (exists) {
                result.append(folder);
            }
        }
        for (const auto location : {QStandardPaths::DesktopLocation, QStandardPaths::DocumentsLocation,
                                    QStandardPaths::DownloadLocation, QStandardPaths::MusicLocation,
                                    QStandardPaths::PicturesLocation, QStandardPaths::MoviesLocation,
                                    QStandardPaths::HomeLocation}) {
            const QString folder = QStandardPaths::writableLocation(location);
            if (!folder.isEmpty()) {
                result.append(QFile::encodeName(QDir::cleanPath(folder)));
            }
        }
        return result;
    }

    // Unreadable and vanished folders are skipped without a word: most places are only guesses.
    std::optional<QByteArray> scan(const QByteArray& folder, bool followLink, QList<QByteArray>* children)
    {
        if (m_foldersLeft <= 0 || m_entriesLeft <= 0) {
            return std::nullopt;
        }
        const int fd =
            ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | (followLink ? 0 : O_NOFOLLOW));
        if (fd < 0) {
            return std::nullopt;
        }
        struct stat info {};
        if (::fstat(fd, &info) != 0 || info.st_dev != m_wanted.device ||
            !m_visited.insert(info.st_ino).second) {
            ::close(fd);
            return std::nullopt;
        }
        --m_foldersLeft;
        DIR* dir = ::fdopendir(fd);
        if (!dir) {
            ::close(fd);
            return std::nullopt;
        }
        std::optional<QByteArray> found;
        while (const dirent* entry = ::readdir(dir)) {
            if (--m_entriesLeft < 0) {
                qCDebug(lcCore) << "Stopped looking for" << m_wanted.path << "after reading too many entries";
                break;
            }
            const char* name = entry->d_name;
            if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0) {
                continue;
            }
            if (entry->d_ino == m_wanted.inode) {
                const std::expected<Contents, int> candidate = identify(::dirfd(dir), name);
                if (candidate && candidate->device == m_wanted.device && m_wanted.isSameFile(*candidate)) {
                    found = join(folder, name);
                    break;
                }
            }
            if (children && !m_visited.contains(entry->d_ino) && isFolder(::dirfd(dir), *entry)) {
                children->append(join(folder, name));
            }
        }
        ::closedir(dir);
        return found;
    }

    static bool isFolder(int directory, const dirent& entry)
    {
        if (entry.d_type != DT_UNKNOWN) {
            return entry.d_type == DT_DIR;
        }
        struct stat info {};
        return ::fstatat(directory, entry.d_name, &info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(info.st_mode);
    }

    const Contents& m_wanted;
    std::unordered_set<ino_t> m_visited;
    qsizetype m_entriesLeft = entryBudget;
    int m_foldersLeft = folderBudget;
};

} // namespace

QString FileBookmark::Error::description() const
{
    switch (kind) {
    case Kind::invalidData:
        return QStringLiteral("The bookmark cannot be used: %1").arg(reason);
    case Kind::notFound:
        return QStringLiteral("%1 can no longer be found").arg(path);
    case Kind::unreadable:
        return QStringLiteral("%1 cannot be read: %2").arg(path, reason);
    }
    return reason;
}

bool FileBookmark::Contents::isSameFile(const Contents& other) const
{
    if (inode != other.inode) {
        return false;
    }
    const bool birthKnown = birthTime && other.birthTime;
    if (birthKnown && *birthTime != *other.birthTime) {
        return false;
    }
    return device == other.device || birthKnown;
}

std::expected<QByteArray, FileBookmark::Error> FileBookmark::create(const QUrl& fileUrl)
{
    if (!fileUrl.isLocalFile()) {
        qCWarning(lcCore).noquote() << "Cannot bookmark" << fileUrl.toDisplayString() << ": not a local file";
        return std::unexpected(
            Error{Error::Kind::invalidData, fileUrl.toDisplayString(), QStringLiteral("not a local file")});
    }
    const QString path = QDir::cleanPath(QFileInfo(fileUrl.toLocalFile()).absoluteFilePath());
    std::expected<Contents, int> contents = identify(AT_FDCWD, QFile::encodeName(path).constData());
    if (!contents) {
        const int error = contents.error();
        const Error::Kind kind =
            (error == ENOENT || error == ENOTDIR) ? Error::Kind::notFound : Error::Kind::unreadable;
        qCWarning(lcCore).noquote() << "Cannot bookmark" << path << ":" << systemMessage(error);
        return std::unexpected(Error{kind, path, systemMessage(error)});
    }
    contents->path = path;
    return encode(*contents);
}

std::expected<FileBookmark::Contents, FileBookmark::Error> FileBookmark::decode(const QByteArray& data)
{
    QDataStream in(data);
    in.setVersion(QDataStream::Qt_6_0);
    quint32 foundMagic = 0;
    quint16 version = 0;
    in >> foundMagic >> version;
    if (in.status() != QDataStream::Ok || foundMagic != magic) {
        return std::unexpected(invalid(QStringLiteral("these are not bookmark bytes")));
    }
    if (version != formatVersion) {
        return std::unexpected(invalid(QStringLiteral("format version %1 is not known").arg(version)));
    }
    const QByteArrayView body(data.constData(), data.size() - checksumSize);
    const quint16 stored =
        quint16((quint8(data.at(data.size() - 2)) << 8) | quint8(data.at(data.size() - 1)));
    if (qChecksum(body) != stored) {
        return std::unexpected(invalid(QStringLiteral("the bytes are damaged or cut short")));
    }

    Contents contents;
    QByteArray path;
    quint8 flags = 0;
    Timestamp birth;
    in >> path >> contents.device >> contents.inode >> flags >> birth.seconds >> birth.nanoseconds >>
        contents.size >> contents.modificationTime.seconds >> contents.modificationTime.nanoseconds;
    if (in.status() != QDataStream::Ok || in.device()->pos() != body.size()) {
        return std::unexpected(invalid(QStringLiteral("the record has the wrong length")));
    }
    if (!path.startsWith('/') || path.contains('\0') || (flags & ~hasBirthTime) != 0 ||
        birth.nanoseconds >= 1'000'000'000 || contents.modificationTime.nanoseconds >= 1'000'000'000) {
        return std::unexpected(invalid(QStringLiteral("the record holds impossible values")));
    }
    contents.path = QFile::decodeName(path);
    if (flags & hasBirthTime) {
        contents.birthTime = birth;
    }
    return contents;
}

std::expected<FileBookmark::Resolution, FileBookmark::Error> FileBookmark::resolve(const QByteArray& data)
{
    const std::expected<Contents, Error> wanted = decode(data);
    if (!wanted) {
        qCWarning(lcCore).noquote() << wanted.error().description();
        return std::unexpected(wanted.error());
    }

    const std::expected<Contents, int> here = identify(AT_FDCWD, QFile::encodeName(wanted->path).constData());
    if (here && wanted->isSameFile(*here)) {
        return Resolution{QUrl::fromLocalFile(wanted->path), false};
    }

    Search search(*wanted);
    if (const std::optional<QByteArray> found = search.run()) {
        const QString path = QFile::decodeName(*found);
        qCDebug(lcCore).noquote() << wanted->path << "moved to" << path;
        return Resolution{QUrl::fromLocalFile(path), true};
    }
    if (!here && (here.error() == EACCES || here.error() == EPERM)) {
        qCInfo(lcCore).noquote() << "Cannot look at" << wanted->path << ":" << systemMessage(here.error());
        return std::unexpected(Error{Error::Kind::unreadable, wanted->path, systemMessage(here.error())});
    }
    qCDebug(lcCore).noquote() << wanted->path << "not found in" << search.foldersScanned() << "folders";
    return std::unexpected(Error{Error::Kind::notFound, wanted->path, {}});
}

} // namespace Vantrope
