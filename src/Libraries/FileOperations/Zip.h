// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <functional>
#include <QString>
#include <QStringList>
#include <stop_token>

class QThreadPool;

namespace Vantrope {

// Zip archives of files and folders, for compressing items and for uploads that take one file.
// Archives are ZIP64 where sizes need it, with UTF-8 names; folders keep their layout and their
// empty subfolders. Files are deflated in parallel, a block at a time, so memory stays bounded
// however large they are. An archive that fails or is cancelled leaves nothing behind.
class Zip final {
public:
    struct Error {
        enum class Kind {
            invalidInput, // nothing to archive, or no archive name
            unreadable,   // a file or folder could not be listed, opened or read
            vanished,     // a file went away, or got shorter, before it was read
            writeFailed,  // the archive could not be written: a full disk, no permission...
            cancelled,
        };
        Kind kind = Kind::writeFailed;
        QString path;   // the file concerned
        QString reason; // the system's words for it
        QString description() const;
    };

    enum class Compression { store, fastest, standard, best };

    struct Progress {
        qint64 bytesRead = 0;
        qint64 totalBytes = 0;
        double fraction() const;
    };

    struct Options {
        Compression compression = Compression::standard;
        // Called on the calling thread: once with nothing read when the items are listed and before
        // any file is opened, then as blocks are read, at most once per thousandth of the total.
        std::function<void(const Progress&)> progress;
        // Checked between blocks; a stop request ends the archive with Kind::cancelled.
        std::stop_token stopToken;
        // Where blocks are deflated. Null uses a pool of this library's own with a thread per core.
        QThreadPool* threadPool = nullptr;
    };

    // Writes `paths` into an archive at `zipFilePath`, or, when that name is taken, at the same name
    // with " 2", " 3"... before the extension; an existing file is never replaced. Blocks until done
    // and answers the path written.
    static std::expected<QString, Error> zipFiles(const QStringList& paths, const QString& zipFilePath,
                                                  const Options& options);

    // The archive "<fileName>.zip" in `destinationDirectory` (created when missing), as zipFiles().
    static std::expected<QString, Error> quickZipFiles(const QStringList& paths,
                                                       const QString& destinationDirectory,
                                                       const QString& fileName, const Options& options);
};

} // namespace Vantrope
