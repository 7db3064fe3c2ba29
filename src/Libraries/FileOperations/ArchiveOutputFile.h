// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <memory>
#include <QByteArray>
#include <QString>
#include <vector>

typedef struct zlib_filefunc64_def_s zlib_filefunc64_def;

namespace Vantrope {

// The file an archive is written into. It has no name until commit(), so an archive that fails, is
// cancelled or whose process dies never shows up half written; where the file system cannot make
// unnamed files it is a hidden file beside the target that the destructor removes.
class ArchiveOutputFile final {
public:
    struct Failure {
        int error = 0; // errno
        QString path;
    };

    static std::expected<std::unique_ptr<ArchiveOutputFile>, Failure> create(const QString& directory);
    ~ArchiveOutputFile();
    ArchiveOutputFile(const ArchiveOutputFile&) = delete;
    ArchiveOutputFile& operator=(const ArchiveOutputFile&) = delete;

    // Gives the file the name `wantedPath`, or "name 2.ext", "name 3.ext"... when that is taken; an
    // existing file is never replaced. Answers the name it took.
    std::expected<QString, Failure> commit(const QString& wantedPath);

    // The functions minizip writes through; the file must outlive the zip handle.
    void fillFileFunctions(zlib_filefunc64_def* functions);

    // The first error a write, a seek or the final flush met, or 0.
    int writeError() const { return m_writeError; }
    bool flush();

    bool write(const char* data, qint64 size);
    // Reads back what was written; answers false on a short read or an error.
    bool readAt(qint64 position, char* data, qint64 size);
    qint64 size();
    bool seek(qint64 position);
    qint64 position() const { return m_filePosition + qint64(m_buffer.size()); }

    // "name.zip" → "name 2.zip" for `number` 2; names without an extension get the number at the end.
    static QString numberedName(const QString& fileName, int number);

private:
    ArchiveOutputFile(int fd, QByteArray temporaryPath);

    std::expected<void, int> linkAs(const QByteArray& path);

    int m_fd = -1;
    QByteArray m_temporaryPath; // empty for an unnamed file
    qint64 m_filePosition = 0;  // where the descriptor stands, before the buffer
    std::vector<char> m_buffer;
    int m_writeError = 0;
    bool m_committed = false;
};

} // namespace Vantrope
