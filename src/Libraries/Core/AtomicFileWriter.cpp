// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "AtomicFileWriter.h"

#include "Logging.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace Vantrope {

QString AtomicFileWriter::Error::description() const
{
    return QStringLiteral("Could not write %1: %2").arg(path, reason);
}

std::expected<void, AtomicFileWriter::Error> AtomicFileWriter::write(const QString& path,
                                                                     const QByteArray& data)
{
    const QFileInfo info(path);
    QDir parent = info.absoluteDir();
    if (!parent.exists()) {
        if (!parent.mkpath(QStringLiteral("."))) {
            return std::unexpected(
                Error{path, QStringLiteral("the folder %1 cannot be created").arg(parent.path())});
        }
        QFile::setPermissions(parent.path(),
                              QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    }

    QSaveFile file(path);
    file.setDirectWriteFallback(false);
    if (!file.open(QIODevice::WriteOnly)) {
        return std::unexpected(Error{path, file.errorString()});
    }
    // What the program writes is the user's: paths of their files, their text, their thumbnails. The
    // new file takes the place of the old one with these permissions, whatever the old one had.
    if (!file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner)) {
        const QString reason = file.errorString();
        file.cancelWriting();
        return std::unexpected(Error{path, reason});
    }
    if (file.write(data) != data.size()) {
        const QString reason = file.errorString();
        file.cancelWriting();
        return std::unexpected(Error{path, reason});
    }
    if (!file.commit()) {
        return std::unexpected(Error{path, file.errorString()});
    }
    return {};
}

QString AtomicFileWriter::setAside(const QString& path)
{
    if (!QFileInfo::exists(path)) {
        return {};
    }
    const QString stamp = QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString target = path + QStringLiteral(".corrupt-") + stamp;
    for (int n = 1; QFileInfo::exists(target); ++n) {
        target = path + QStringLiteral(".corrupt-") + stamp + QLatin1Char('-') + QString::number(n);
    }
    if (!QFile::rename(path, target)) {
        qCWarning(lcCore) << "Could not set aside the unreadable file" << path;
        return {};
    }
    qCWarning(lcCore).noquote() << "Kept the unreadable file as" << target;
    return target;
}

} // namespace Vantrope
