// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Zip.h"

#include <expected>
#include <QByteArray>
#include <QStringList>
#include <stop_token>
#include <sys/types.h>
#include <vector>

namespace Vantrope {

// One thing to put into an archive, as it was when the items were listed.
struct ZipSourceEntry {
    enum class Type { file, directory, symlink };
    Type type = Type::file;
    QByteArray sourcePath;  // on disk, in the file system's own bytes
    QByteArray archiveName; // UTF-8, '/'-separated, a folder's ending in '/'
    qint64 size = 0;        // a file's length when listed
    qint64 modificationTime = 0;
    mode_t mode = 0;       // type and permission bits as lstat gives them
    QByteArray linkTarget; // a symlink's contents
    bool isItem = false;   // given by the caller rather than found in a folder; may be reached by a link
};

// Lists the items to archive: files as they are, folders with everything below them (empty folders too),
// in name order. Each item is named by its last path component, made unique among the items. Links
// inside folders are kept as links, so the archive never reaches outside the folders it was given;
// a link given as an item itself stands for its target. Sockets, pipes and devices are left out.
class ZipSourceScanner final {
public:
    static std::expected<std::vector<ZipSourceEntry>, Zip::Error> scan(const QStringList& paths,
                                                                       const std::stop_token& stopToken);
};

} // namespace Vantrope
