// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "PrivateFolders.h"

#include "Logging.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <sys/stat.h>
#include <unistd.h>

namespace Vantrope {

void PrivateFolders::tightenAll()
{
    for (const auto location : {QStandardPaths::GenericDataLocation, QStandardPaths::GenericCacheLocation,
                                QStandardPaths::GenericConfigLocation}) {
        const QString base = QStandardPaths::writableLocation(location);
        if (!base.isEmpty()) {
            tighten(base + QStringLiteral("/vantrope"), 2);
        }
    }
}

void PrivateFolders::tighten(const QString& folder, int depth)
{
    const int fd =
        ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        return;
    }
    struct stat info {};
    const bool ours = ::fstat(fd, &info) == 0 && info.st_uid == ::geteuid();
    if (ours && (info.st_mode & 07777) != 0700) {
        if (::fchmod(fd, 0700) == 0) {
            qCInfo(lcCore).noquote() << "Closed" << folder << "to other users; it was"
                                     << QString::number(info.st_mode & 07777, 8);
        } else {
            qCWarning(lcCore).noquote()
                << "Cannot close" << folder << "to other users:" << std::strerror(errno);
        }
    }
    ::close(fd);
    if (!ours || depth <= 0) {
        return;
    }
    const QStringList children =
        QDir(folder).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot | QDir::NoSymLinks);
    for (const QString& child : children) {
        tighten(folder + QLatin1Char('/') + child, depth - 1);
    }
}

} // namespace Vantrope
