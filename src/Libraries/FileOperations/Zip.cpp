// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Zip.h"

#include "ArchiveOutputFile.h"
#include "BlockDeflater.h"
#include "FileOperationsLogging.h"
#include "Libraries/Core/Localized.h"
#include "ZipSourceScanner.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <map>
#include <memory>
#include <mutex>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThreadPool>
#include <sys/stat.h>
#include <unistd.h>
#include <zip.h>
#include <zlib.h>

namespace Vantrope {

namespace {

// Memory stays near (window + one per thread) blocks whatever the size of the files.
constexpr qint64 blockSize = 1024 * 1024;
// Entries this large get ZIP64 sizes; the margin leaves room for deflate's growth on random data.
constexpr qint64 zip64Threshold = 0xF0000000LL;
// Tiny files are cheap jobs, so many may be in flight; the byte window is what bounds memory.
constexpr int maximumJobsInFlight = 256;
constexpr uLong madeByUnix = (3 << 8) | 30;
constexpr uLong utf8NamesFlag = 1 << 11;

// Callers run archives from the global pool; deflating there too could leave an archive waiting on
// blocks queued behind itself.
Q_GLOBAL_STATIC(QThreadPool, deflatePool)

int zlibLevel(Zip::Compression compression)
{
    switch (compression) {
    case Zip::Compression::store:
        return 0;
    case Zip::Compression::fastest:
        return 1;
    case Zip::Compression::standard:
        return 6;
    case Zip::Compression::best:
        return 9;
    }
    return 6;
}

QString reasonFor(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

struct SourceFile {
    explicit SourceFile(int descriptor)
        : fd(descriptor)
    {}
    ~SourceFile() { ::close(fd); }
    SourceFile(const SourceFile&) = delete;
    SourceFile& operator=(const SourceFile&) = delete;
    int fd;
};

struct BlockResult {
    QByteArray data; // deflated, or the block itself when stored
    quint32 crc = 0;
    qint64 length = 0;
    bool stored = false;
    bool failed = false;
    Zip::Error error;
};

struct Job {
    quint64 sequence = 0;
    std::shared_ptr<SourceFile> file;
    QByteArray path;
    qint64 offset = 0;
    qint64 length = 0;
    int level = 0;
    bool isFirst = false;
    bool isLast = false;
};

// What the deflating threads share with the thread that writes the archive.
struct Pipeline {
    std::mutex mutex;
    std::condition_variable changed;
    std::map<quint64, BlockResult> finished;
    int running = 0;
    std::atomic<bool> abandoned = false;
};

qint64 readFully(int fd, char* buffer, qint64 length, qint64 offset)
{
    qint64 done = 0;
    while (done < length) {
        const ssize_t got = ::pread(fd, buffer + done, size_t(length - done), off_t(offset + done));
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
            return -1;
        }
        if (got == 0) {
            break;
        }
        done += got;
    }
    return done;
}

BlockResult runJob(const Job& job)
{
    BlockResult result;
    result.length = job.length;
    const qsizetype dictionaryLength =
        job.level == 0 ? 0 : qsizetype(std::min<qint64>(job.offset, BlockDeflater::dictionarySize));
    QByteArray input(dictionaryLength + qsizetype(job.length), Qt::Uninitialized);
    const qint64 got = readFully(job.file->fd, input.data(), input.size(), job.offset - dictionaryLength);
    if (got < 0) {
        result.failed = true;
        result.error =
            Zip::Error{Zip::Error::Kind::unreadable, QFile::decodeName(job.path), reasonFor(errno)};
        return result;
    }
    if (got < input.size()) {
        result.failed = true;
        result.error = Zip::Error{Zip::Error::Kind::vanished, QFile::decodeName(job.path),
                                  QStringLiteral("it got shorter while it was read")};
        return result;
    }
    const char* block = input.constData() + dictionaryLength;
    result.crc = quint32(crc32_z(0, reinterpret_cast<const Bytef*>(block), size_t(job.length)));
    if (job.level > 0) {
        result.data = BlockDeflater::deflate(input.constData(), dictionaryLength, qsizetype(job.length),
                                             job.level, job.isLast);
        if (result.data.isEmpty()) {
            result.failed = true;
            result.error = Zip::Error{Zip::Error::Kind::writeFailed, QFile::decodeName(job.path),
                                      QStringLiteral("the compressor failed")};
            return result;
        }
        // A file of one block that does not shrink is stored as it is; it reads back faster.
        const bool wholeFile = job.isFirst && job.isLast;
        if (!wholeFile || result.data.size() < job.length) {
            return result;
        }
    }
    result.stored = true;
    result.data = dictionaryLength == 0 ? std::move(input) : input.mid(dictionaryLength);
    return result;
}

quint64 littleEndian(const char* data, int bytes)
{
    quint64 value = 0;
    for (int index = bytes - 1; index >= 0; --index) {
        value = (value << 8) | quint8(data[index]);
    }
    return value;
}

void appendLittleEndian(QByteArray& data, quint64 value, int bytes)
{
    for (int index = 0; index < bytes; ++index) {
        data.append(char((value >> (8 * index)) & 0xFF));
    }
}

// minizip 1.1 writes the ZIP64 end records only when the central directory starts past 4 GiB, yet
// more than 65535 entries need them as well: without them unzip finds the count wrong and gives up.
// This puts them in front of the plain end record that minizip wrote last.
bool completeZip64EndRecords(ArchiveOutputFile& output, quint64 entryCount)
{
    constexpr qint64 endRecordSize = 22;
    constexpr qint64 locatorSize = 20;
    if (entryCount < 0xFFFF) {
        return true;
    }
    const qint64 endRecordPosition = output.size() - endRecordSize;
    char tail[locatorSize + endRecordSize];
    if (endRecordPosition < locatorSize ||
        !output.readAt(endRecordPosition - locatorSize, tail, sizeof tail)) {
        return false;
    }
    const char* endRecord = tail + locatorSize;
    if (littleEndian(endRecord, 4) != 0x06054b50) {
        return false;
    }
    if (littleEndian(tail, 4) == 0x07064b50) {
        return true; // minizip wrote them itself
    }
    const quint64 directorySize = littleEndian(endRecord + 12, 4);
    const quint64 directoryOffset = littleEndian(endRecord + 16, 4);

    QByteArray records;
    appendLittleEndian(records, 0x06064b50, 4);
    appendLittleEndian(records, 44, 8); // the size of the rest of this record
    appendLittleEndian(records, madeByUnix, 2);
    appendLittleEndian(records, 45, 2); // the version that knows ZIP64
    appendLittleEndian(records, 0, 4);
    appendLittleEndian(records, 0, 4);
    appendLittleEndian(records, entryCount, 8);
    appendLittleEndian(records, entryCount, 8);
    appendLittleEndian(records, directorySize, 8);
    appendLittleEndian(records, directoryOffset, 8);
    appendLittleEndian(records, 0x07064b50, 4);
    appendLittleEndian(records, 0, 4);
    appendLittleEndian(records, quint64(endRecordPosition), 8);
    appendLittleEndian(records, 1, 4);
    records.append(endRecord, endRecordSize);
    return output.seek(endRecordPosition) && output.write(records.constData(), records.size()) &&
           output.flush();
}

tm_zip dosTime(qint64 seconds)
{
    const time_t time = time_t(seconds);
    struct tm local {};
    tm_zip result{0, 0, 0, 1, 0, 1980};
    if (!::localtime_r(&time, &local) || local.tm_year + 1900 < 1980) {
        return result;
    }
    if (local.tm_year + 1900 > 2107) {
        return tm_zip{58, 59, 23, 31, 11, 2107};
    }
    result.tm_sec = uInt(local.tm_sec);
    result.tm_min = uInt(local.tm_min);
    result.tm_hour = uInt(local.tm_hour);
    result.tm_mday = uInt(local.tm_mday);
    result.tm_mon = uInt(local.tm_mon);
    result.tm_year = uInt(local.tm_year + 1900);
    return result;
}

class ArchiveWriter {
public:
    ArchiveWriter(const std::vector<ZipSourceEntry>& entries, ArchiveOutputFile& output, QString archivePath,
                  const Zip::Options& options)
        : m_entries(entries)
        , m_runtime(entries.size())
        , m_output(output)
        , m_archivePath(std::move(archivePath))
        , m_options(options)
        , m_pool(options.threadPool ? options.threadPool : deflatePool())
        , m_level(zlibLevel(options.compression))
        , m_windowBytes(std::max(4, 2 * m_pool->maxThreadCount() + 2) * blockSize)
    {
        for (const ZipSourceEntry& entry : entries) {
            m_progress.totalBytes += entry.size;
        }
    }

    ~ArchiveWriter()
    {
        // The jobs use the pipeline; none may outlive it.
        m_pipeline.abandoned = true;
        std::unique_lock lock(m_pipeline.mutex);
        m_pipeline.changed.wait(lock, [this] { return m_pipeline.running == 0; });
    }

    std::expected<void, Zip::Error> run()
    {
        zlib_filefunc64_def functions{};
        m_output.fillFileFunctions(&functions);
        m_zip = zipOpen2_64("archive", APPEND_STATUS_CREATE, nullptr, &functions);
        if (!m_zip) {
            return std::unexpected(writeFailure(ZIP_ERRNO));
        }
        auto written = writeEntries();
        if (!written) {
            m_pipeline.abandoned = true;
            zipClose(m_zip, nullptr); // frees the handle; the unnamed file is thrown away
            return written;
        }
        const int closed = zipClose(m_zip, nullptr);
        if (closed != ZIP_OK || !m_output.flush()) {
            return std::unexpected(writeFailure(closed));
        }
        if (!completeZip64EndRecords(m_output, m_entries.size())) {
            return std::unexpected(writeFailure(ZIP_ERRNO));
        }
        return {};
    }

private:
    struct EntryRuntime {
        std::shared_ptr<SourceFile> file;
        qint64 size = 0;
        qint64 blockCount = 0;
        bool opened = false;
    };

    Zip::Error writeFailure(int zipResult) const
    {
        const int error = m_output.writeError();
        return Zip::Error{Zip::Error::Kind::writeFailed, m_archivePath,
                          error != 0 ? reasonFor(error) : QStringLiteral("zip error %1").arg(zipResult)};
    }

    Zip::Error cancelled() const { return Zip::Error{Zip::Error::Kind::cancelled, m_archivePath, {}}; }

    void reportProgress(bool force)
    {
        if (!m_options.progress) {
            return;
        }
        const qint64 total = std::max<qint64>(m_progress.totalBytes, 1);
        const qint64 permille = std::min<qint64>(m_progress.bytesRead, total) * 1000 / total;
        if (force || permille > m_reportedPermille) {
            m_reportedPermille = permille;
            m_options.progress(m_progress);
        }
    }

    std::expected<void, Zip::Error> openSource(size_t index)
    {
        const ZipSourceEntry& entry = m_entries[index];
        // Files found inside folders must still be files, not links put there since the listing.
        const int flags = O_RDONLY | O_CLOEXEC | (entry.isItem ? 0 : O_NOFOLLOW);
        const int fd = ::open(entry.sourcePath.constData(), flags);
        if (fd < 0) {
            const int error = errno;
            const bool gone = error == ENOENT || error == ENOTDIR || error == ELOOP;
            return std::unexpected(
                Zip::Error{gone ? Zip::Error::Kind::vanished : Zip::Error::Kind::unreadable,
                           QFile::decodeName(entry.sourcePath), reasonFor(error)});
        }
        auto file = std::make_shared<SourceFile>(fd);
        struct stat info {};
        if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
            return std::unexpected(Zip::Error{Zip::Error::Kind::vanished, QFile::decodeName(entry.sourcePath),
                                              QStringLiteral("it is no longer a file")});
        }
        EntryRuntime& runtime = m_runtime[index];
        runtime.opened = true;
        runtime.size = qint64(info.st_size);
        runtime.blockCount = (runtime.size + blockSize - 1) / blockSize;
        // Only files with blocks in flight hold a descriptor, so runs of empty files cannot exhaust them.
        if (runtime.blockCount > 0) {
            runtime.file = std::move(file);
        }
        return {};
    }

    // Hands blocks to the pool, in archive order, until the window is full.
    std::expected<void, Zip::Error> fillWindow()
    {
        while (m_jobsInFlight < maximumJobsInFlight && m_bytesInFlight < m_windowBytes) {
            while (m_submitEntry < m_entries.size() &&
                   m_entries[m_submitEntry].type != ZipSourceEntry::Type::file) {
                ++m_submitEntry;
            }
            if (m_submitEntry == m_entries.size()) {
                return {};
            }
            if (!m_runtime[m_submitEntry].opened) {
                if (auto opened = openSource(m_submitEntry); !opened) {
                    return opened;
                }
            }
            EntryRuntime& runtime = m_runtime[m_submitEntry];
            if (m_submitBlock >= runtime.blockCount) {
                ++m_submitEntry;
                m_submitBlock = 0;
                continue;
            }
            Job job;
            job.sequence = m_submittedJobs++;
            job.file = runtime.file;
            job.path = m_entries[m_submitEntry].sourcePath;
            job.offset = m_submitBlock * blockSize;
            job.length = std::min(blockSize, runtime.size - job.offset);
            job.level = m_level;
            job.isFirst = m_submitBlock == 0;
            job.isLast = m_submitBlock == runtime.blockCount - 1;
            ++m_submitBlock;
            ++m_jobsInFlight;
            m_bytesInFlight += job.length;
            {
                std::lock_guard lock(m_pipeline.mutex);
                ++m_pipeline.running;
            }
            m_pool->start([pipeline = &m_pipeline, job = std::move(job)] {
                BlockResult result;
                if (pipeline->abandoned) {
                    result.failed = true;
                    result.error = Zip::Error{Zip::Error::Kind::cancelled, {}, {}};
                } else {
                    result = runJob(job);
                }
                std::lock_guard lock(pipeline->mutex);
                pipeline->finished.emplace(job.sequence, std::move(result));
                --pipeline->running;
                pipeline->changed.notify_all();
            });
        }
        return {};
    }

    // False when a stop request came first.
    bool waitForBlock(quint64 sequence, BlockResult& result)
    {
        std::unique_lock lock(m_pipeline.mutex);
        m_pipeline.changed.wait(lock, [&] {
            return m_pipeline.finished.contains(sequence) || m_options.stopToken.stop_requested();
        });
        const auto found = m_pipeline.finished.find(sequence);
        if (found == m_pipeline.finished.end()) {
            return false;
        }
        result = std::move(found->second);
        m_pipeline.finished.erase(found);
        return true;
    }

    std::expected<void, Zip::Error> openEntry(const ZipSourceEntry& entry, bool stored, bool zip64)
    {
        zip_fileinfo info{};
        info.tmz_date = dosTime(entry.modificationTime);
        info.external_fa =
            (uLong(entry.mode) << 16) | (entry.type == ZipSourceEntry::Type::directory ? 0x10 : 0);
        // Extended timestamp: the exact modification time in UTC, which DOS times cannot hold.
        const quint32 seconds = quint32(std::clamp<qint64>(entry.modificationTime, 0, 0xFFFFFFFFLL));
        const char extra[9] = {0x55,
                               0x54,
                               5,
                               0,
                               1,
                               char(seconds & 0xFF),
                               char((seconds >> 8) & 0xFF),
                               char((seconds >> 16) & 0xFF),
                               char(seconds >> 24)};
        const int method = stored ? 0 : Z_DEFLATED;
        const int result =
            zipOpenNewFileInZip4_64(m_zip, entry.archiveName.constData(), &info, extra, sizeof extra, extra,
                                    sizeof extra, nullptr, method, stored ? 0 : m_level, 1, -MAX_WBITS, 8,
                                    Z_DEFAULT_STRATEGY, nullptr, 0, madeByUnix, utf8NamesFlag, zip64 ? 1 : 0);
        if (result != ZIP_OK) {
            return std::unexpected(writeFailure(result));
        }
        return {};
    }

    std::expected<void, Zip::Error> writeData(const QByteArray& data)
    {
        const int result = zipWriteInFileInZip(m_zip, data.constData(), unsigned(data.size()));
        if (result != ZIP_OK) {
            return std::unexpected(writeFailure(result));
        }
        return {};
    }

    std::expected<void, Zip::Error> closeEntry(qint64 size, quint32 crc)
    {
        const int result = zipCloseFileInZipRaw64(m_zip, ZPOS64_T(size), uLong(crc));
        if (result != ZIP_OK) {
            return std::unexpected(writeFailure(result));
        }
        return {};
    }

    std::expected<void, Zip::Error> writeFileEntry(size_t index)
    {
        const ZipSourceEntry& entry = m_entries[index];
        EntryRuntime& runtime = m_runtime[index];
        if (runtime.blockCount == 0) {
            if (auto opened = openEntry(entry, true, false); !opened) {
                return opened;
            }
            return closeEntry(0, 0);
        }
        quint32 crc = 0;
        for (qint64 block = 0; block < runtime.blockCount; ++block) {
            if (auto filled = fillWindow(); !filled) {
                return filled;
            }
            BlockResult result;
            if (!waitForBlock(m_writtenJobs, result)) {
                return std::unexpected(cancelled());
            }
            ++m_writtenJobs;
            --m_jobsInFlight;
            m_bytesInFlight -= result.length;
            if (result.failed) {
                return std::unexpected(result.error);
            }
            if (block == 0) {
                const bool stored = m_level == 0 || (runtime.blockCount == 1 && result.stored);
                if (auto opened = openEntry(entry, stored, runtime.size >= zip64Threshold); !opened) {
                    return opened;
                }
            }
            if (auto written = writeData(result.data); !written) {
                return written;
            }
            crc = quint32(crc32_combine(crc, result.crc, z_off_t(result.length)));
            m_progress.bytesRead += result.length;
            reportProgress(false);
            if (m_options.stopToken.stop_requested()) {
                return std::unexpected(cancelled());
            }
        }
        runtime.file.reset();
        return closeEntry(runtime.size, crc);
    }

    std::expected<void, Zip::Error> writeEntries()
    {
        // A stop request wakes the wait for a block.
        std::stop_callback wake(m_options.stopToken, [this] {
            std::lock_guard lock(m_pipeline.mutex);
            m_pipeline.changed.notify_all();
        });
        reportProgress(true);
        for (size_t index = 0; index < m_entries.size(); ++index) {
            if (m_options.stopToken.stop_requested()) {
                return std::unexpected(cancelled());
            }
            if (auto filled = fillWindow(); !filled) {
                return filled;
            }
            const ZipSourceEntry& entry = m_entries[index];
            switch (entry.type) {
            case ZipSourceEntry::Type::file:
                if (auto written = writeFileEntry(index); !written) {
                    return written;
                }
                break;
            case ZipSourceEntry::Type::directory:
                if (auto opened = openEntry(entry, true, false); !opened) {
                    return opened;
                }
                if (auto closed = closeEntry(0, 0); !closed) {
                    return closed;
                }
                break;
            case ZipSourceEntry::Type::symlink: {
                if (auto opened = openEntry(entry, true, false); !opened) {
                    return opened;
                }
                if (auto written = writeData(entry.linkTarget); !written) {
                    return written;
                }
                const auto crc =
                    quint32(crc32_z(0, reinterpret_cast<const Bytef*>(entry.linkTarget.constData()),
                                    size_t(entry.linkTarget.size())));
                if (auto closed = closeEntry(entry.linkTarget.size(), crc); !closed) {
                    return closed;
                }
                break;
            }
            }
        }
        reportProgress(true);
        return {};
    }

    const std::vector<ZipSourceEntry>& m_entries;
    std::vector<EntryRuntime> m_runtime;
    ArchiveOutputFile& m_output;
    const QString m_archivePath;
    const Zip::Options& m_options;
    QThreadPool* m_pool;
    const int m_level;
    const qint64 m_windowBytes;
    Pipeline m_pipeline;
    zipFile m_zip = nullptr;

    size_t m_submitEntry = 0;
    qint64 m_submitBlock = 0;
    quint64 m_submittedJobs = 0;
    quint64 m_writtenJobs = 0;
    int m_jobsInFlight = 0;
    qint64 m_bytesInFlight = 0;

    Zip::Progress m_progress;
    qint64 m_reportedPermille = -1;
};

std::expected<QString, Zip::Error> fail(Zip::Error error)
{
    if (error.kind == Zip::Error::Kind::cancelled) {
        qCInfo(lcFileOperations).noquote() << "Archive cancelled";
    } else {
        qCWarning(lcFileOperations).noquote() << "Failed to write archive:" << error.description();
    }
    return std::unexpected(std::move(error));
}

} // namespace

QString Zip::Error::description() const
{
    switch (kind) {
    case Kind::invalidInput:
        return Localized("zip.error.invalid-input", "Nothing can be compressed: %1").arg(reason);
    case Kind::unreadable:
        return Localized("zip.error.unreadable", "“%1” could not be read: %2").arg(path, reason);
    case Kind::vanished:
        return Localized("zip.error.vanished", "“%1” went away while it was compressed: %2")
            .arg(path, reason);
    case Kind::writeFailed:
        return Localized("zip.error.write-failed", "The archive “%1” could not be written: %2")
            .arg(path, reason);
    case Kind::cancelled:
        return Localized("zip.error.cancelled", "Compressing was cancelled.");
    }
    return reason;
}

double Zip::Progress::fraction() const
{
    if (totalBytes <= 0) {
        return bytesRead > 0 ? 1.0 : 0.0;
    }
    return std::clamp(double(bytesRead) / double(totalBytes), 0.0, 1.0);
}

std::expected<QString, Zip::Error> Zip::zipFiles(const QStringList& paths, const QString& zipFilePath,
                                                 const Options& options)
{
    const QFileInfo target(zipFilePath);
    if (zipFilePath.isEmpty() || target.fileName().isEmpty()) {
        return fail(Error{Error::Kind::invalidInput, zipFilePath, QStringLiteral("the archive has no name")});
    }
    if (options.stopToken.stop_requested()) {
        return fail(Error{Error::Kind::cancelled, zipFilePath, {}});
    }
    auto entries = ZipSourceScanner::scan(paths, options.stopToken);
    if (!entries) {
        return fail(entries.error());
    }
    auto output = ArchiveOutputFile::create(target.absolutePath());
    if (!output) {
        return fail(Error{Error::Kind::writeFailed, zipFilePath, reasonFor(output.error().error)});
    }
    {
        ArchiveWriter writer(*entries, **output, target.absoluteFilePath(), options);
        if (auto written = writer.run(); !written) {
            return fail(written.error());
        }
    }
    auto committed = (*output)->commit(target.absoluteFilePath());
    if (!committed) {
        return fail(
            Error{Error::Kind::writeFailed, committed.error().path, reasonFor(committed.error().error)});
    }
    qCDebug(lcFileOperations).noquote() << "Wrote" << entries->size() << "entries to" << *committed;
    return *committed;
}

std::expected<QString, Zip::Error> Zip::quickZipFiles(const QStringList& paths,
                                                      const QString& destinationDirectory,
                                                      const QString& fileName, const Options& options)
{
    QString name = fileName.trimmed();
    // A translated or user-given name must not point anywhere else.
    name.replace(QLatin1Char('/'), QLatin1Char('_'));
    if (name.isEmpty() || name == QStringLiteral(".") || name == QStringLiteral("..")) {
        return fail(Error{Error::Kind::invalidInput, fileName, QStringLiteral("the archive has no name")});
    }
    if (!QDir().mkpath(destinationDirectory)) {
        return fail(Error{Error::Kind::writeFailed, destinationDirectory,
                          QStringLiteral("the folder cannot be created")});
    }
    return zipFiles(paths, QDir(destinationDirectory).filePath(name + QStringLiteral(".zip")), options);
}

} // namespace Vantrope
