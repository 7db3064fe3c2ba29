// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ArchiveOutputFile.h"

#include "FileOperationsLogging.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <ioapi.h>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <sys/stat.h>
#include <unistd.h>

namespace Vantrope {

namespace {

// minizip writes headers a few bytes at a time; gathering them saves a system call per field.
constexpr size_t bufferCapacity = 256 * 1024;
constexpr int maximumNumber = 10000;

voidpf openFunction(voidpf opaque, const void*, int)
{
    return opaque;
}

uLong readFunction(voidpf, voidpf, void*, uLong)
{
    return 0;
}

uLong writeFunction(voidpf opaque, voidpf, const void* buffer, uLong size)
{
    auto* file = static_cast<ArchiveOutputFile*>(opaque);
    return file->write(static_cast<const char*>(buffer), qint64(size)) ? size : 0;
}

ZPOS64_T tellFunction(voidpf opaque, voidpf)
{
    return ZPOS64_T(static_cast<ArchiveOutputFile*>(opaque)->position());
}

long seekFunction(voidpf opaque, voidpf, ZPOS64_T offset, int origin)
{
    auto* file = static_cast<ArchiveOutputFile*>(opaque);
    qint64 target = qint64(offset);
    if (origin == ZLIB_FILEFUNC_SEEK_CUR) {
        target += file->position();
    } else if (origin != ZLIB_FILEFUNC_SEEK_SET) {
        return -1; // minizip never seeks from the end while writing
    }
    return file->seek(target) ? 0 : -1;
}

int closeFunction(voidpf, voidpf)
{
    return 0; // the descriptor belongs to the ArchiveOutputFile
}

int errorFunction(voidpf opaque, voidpf)
{
    return static_cast<ArchiveOutputFile*>(opaque)->writeError();
}

} // namespace

ArchiveOutputFile::ArchiveOutputFile(int fd, QByteArray temporaryPath)
    : m_fd(fd)
    , m_temporaryPath(std::move(temporaryPath))
{
    m_buffer.reserve(bufferCapacity);
}

std::expected<std::unique_ptr<ArchiveOutputFile>, ArchiveOutputFile::Failure>
ArchiveOutputFile::create(const QString& directory)
{
    const QByteArray folder = QFile::encodeName(directory);
    int fd = ::open(folder.constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (fd >= 0) {
        return std::unique_ptr<ArchiveOutputFile>(new ArchiveOutputFile(fd, {}));
    }
    const int unnamedError = errno;
    if (unnamedError != EOPNOTSUPP && unnamedError != EISDIR && unnamedError != EINVAL) {
        return std::unexpected(Failure{unnamedError, directory});
    }
    QByteArray pattern = folder + "/.vantrope-archive-XXXXXX";
    fd = ::mkostemp(pattern.data(), O_CLOEXEC);
    if (fd < 0) {
        return std::unexpected(Failure{errno, directory});
    }
    return std::unique_ptr<ArchiveOutputFile>(new ArchiveOutputFile(fd, pattern));
}

ArchiveOutputFile::~ArchiveOutputFile()
{
    if (m_fd >= 0) {
        ::close(m_fd);
    }
    if (!m_committed && !m_temporaryPath.isEmpty()) {
        ::unlink(m_temporaryPath.constData());
    }
}

void ArchiveOutputFile::fillFileFunctions(zlib_filefunc64_def* functions)
{
    functions->zopen64_file = openFunction;
    functions->zread_file = readFunction;
    functions->zwrite_file = writeFunction;
    functions->ztell64_file = tellFunction;
    functions->zseek64_file = seekFunction;
    functions->zclose_file = closeFunction;
    functions->zerror_file = errorFunction;
    functions->opaque = this;
}

bool ArchiveOutputFile::write(const char* data, qint64 size)
{
    if (m_writeError != 0) {
        return false;
    }
    if (m_buffer.size() + size_t(size) > bufferCapacity && !flush()) {
        return false;
    }
    if (size_t(size) >= bufferCapacity) {
        while (size > 0) {
            const ssize_t written = ::write(m_fd, data, size_t(size));
            if (written < 0) {
                if (errno == EINTR) {
                    continue;
                }
                m_writeError = errno;
                return false;
            }
            data += written;
            size -= written;
            m_filePosition += written;
        }
        return true;
    }
    m_buffer.insert(m_buffer.end(), data, data + size);
    return true;
}

bool ArchiveOutputFile::flush()
{
    if (m_writeError != 0) {
        return false;
    }
    const char* data = m_buffer.data();
    size_t left = m_buffer.size();
    while (left > 0) {
        const ssize_t written = ::write(m_fd, data, left);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            m_writeError = errno;
            return false;
        }
        data += written;
        left -= size_t(written);
        m_filePosition += written;
    }
    m_buffer.clear();
    return true;
}

bool ArchiveOutputFile::readAt(qint64 position, char* data, qint64 size)
{
    if (!flush()) {
        return false;
    }
    while (size > 0) {
        const ssize_t got = ::pread(m_fd, data, size_t(size), off_t(position));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            return false;
        }
        data += got;
        size -= got;
        position += got;
    }
    return true;
}

qint64 ArchiveOutputFile::size()
{
    struct stat info {};
    return flush() && ::fstat(m_fd, &info) == 0 ? qint64(info.st_size) : -1;
}

bool ArchiveOutputFile::seek(qint64 target)
{
    if (!flush()) {
        return false;
    }
    if (::lseek(m_fd, off_t(target), SEEK_SET) < 0) {
        m_writeError = errno;
        return false;
    }
    m_filePosition = target;
    return true;
}

std::expected<void, int> ArchiveOutputFile::linkAs(const QByteArray& path)
{
    if (m_temporaryPath.isEmpty()) {
        const QByteArray procPath = "/proc/self/fd/" + QByteArray::number(m_fd);
        if (::linkat(AT_FDCWD, procPath.constData(), AT_FDCWD, path.constData(), AT_SYMLINK_FOLLOW) == 0) {
            return {};
        }
        if (errno != ENOENT) {
            return std::unexpected(errno);
        }
        // Without /proc; this form needs CAP_DAC_READ_SEARCH.
        if (::linkat(m_fd, "", AT_FDCWD, path.constData(), AT_EMPTY_PATH) == 0) {
            return {};
        }
        return std::unexpected(errno);
    }
    // link() refuses an existing name where rename() would replace it.
    if (::link(m_temporaryPath.constData(), path.constData()) != 0) {
        return std::unexpected(errno);
    }
    ::unlink(m_temporaryPath.constData());
    return {};
}

std::expected<QString, ArchiveOutputFile::Failure> ArchiveOutputFile::commit(const QString& wantedPath)
{
    if (!flush()) {
        return std::unexpected(Failure{m_writeError, wantedPath});
    }
    const QFileInfo wanted(wantedPath);
    const QString folder = wanted.absolutePath();
    for (int number = 1; number <= maximumNumber; ++number) {
        const QString candidate = number == 1
                                      ? wanted.absoluteFilePath()
                                      : folder + QLatin1Char('/') + numberedName(wanted.fileName(), number);
        const auto linked = linkAs(QFile::encodeName(candidate));
        if (linked) {
            m_committed = true;
            return candidate;
        }
        if (linked.error() != EEXIST) {
            return std::unexpected(Failure{linked.error(), candidate});
        }
    }
    return std::unexpected(Failure{EEXIST, wantedPath});
}

QString ArchiveOutputFile::numberedName(const QString& fileName, int number)
{
    const QString suffix = QLatin1Char(' ') + QString::number(number);
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    // A leading dot marks a hidden file, not an extension.
    if (dot <= 0) {
        return fileName + suffix;
    }
    return fileName.left(dot) + suffix + fileName.mid(dot);
}

} // namespace Vantrope
