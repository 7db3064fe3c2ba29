// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ImageOutputFile.h"

#include "Libraries/Core/Localized.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>
#include <unistd.h>

namespace Vantrope {

namespace {

// Moves `from` to `to` only when `to` does not exist, in one step where the file system allows it.
int renameNoReplace(const QByteArray& from, const QByteArray& to)
{
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    // File systems without RENAME_NOREPLACE: a hard link fails on an existing name just the same.
    if (::link(from.constData(), to.constData()) != 0)
        return errno;
    ::unlink(from.constData());
    return 0;
}

} // namespace

ImageOutputFile::ImageOutputFile(QString directory, QString suffix, QString temporaryPath)
    : m_directory(std::move(directory))
    , m_suffix(std::move(suffix))
    , m_temporaryPath(std::move(temporaryPath))
{}

ImageOutputFile::ImageOutputFile(ImageOutputFile&& other) noexcept
    : m_directory(std::move(other.m_directory))
    , m_suffix(std::move(other.m_suffix))
    , m_temporaryPath(std::exchange(other.m_temporaryPath, QString()))
{}

ImageOutputFile& ImageOutputFile::operator=(ImageOutputFile&& other) noexcept
{
    if (this != &other) {
        if (!m_temporaryPath.isEmpty())
            QFile::remove(m_temporaryPath);
        m_directory = std::move(other.m_directory);
        m_suffix = std::move(other.m_suffix);
        m_temporaryPath = std::exchange(other.m_temporaryPath, QString());
    }
    return *this;
}

ImageOutputFile::~ImageOutputFile()
{
    if (!m_temporaryPath.isEmpty())
        QFile::remove(m_temporaryPath);
}

std::expected<ImageOutputFile, QString> ImageOutputFile::create(const QString& directory,
                                                                const QString& suffix)
{
    if (!QDir().mkpath(directory))
        return std::unexpected(
            Localized("image-output.folder-failed", "The folder “%1” could not be created.").arg(directory));
    QTemporaryFile file(QDir(directory).filePath(QStringLiteral(".vantrope-XXXXXX") + suffix));
    file.setAutoRemove(false);
    if (!file.open())
        return std::unexpected(Localized("image-output.write-failed", "Nothing can be written in “%1”: %2")
                                   .arg(directory, file.errorString()));
    const QString path = file.fileName();
    file.close();
    return ImageOutputFile(directory, suffix, path);
}

std::expected<QString, QString> ImageOutputFile::commit(const QString& baseName)
{
    if (m_temporaryPath.isEmpty())
        return std::unexpected(Localized("image-output.no-file", "The file was already saved."));
    const QDir directory(m_directory);
    const QByteArray from = QFile::encodeName(m_temporaryPath);
    for (int number = 1; number < 10000; ++number) {
        const QString name = number == 1 ? baseName + m_suffix
                                         : QStringLiteral("%1 %2%3").arg(baseName).arg(number).arg(m_suffix);
        const QString target = directory.filePath(name);
        const int error = renameNoReplace(from, QFile::encodeName(target));
        if (error == 0) {
            m_temporaryPath.clear();
            return target;
        }
        if (error != EEXIST)
            return std::unexpected(Localized("image-output.rename-failed", "“%1” could not be saved: %2")
                                       .arg(name, QString::fromLocal8Bit(std::strerror(error))));
    }
    return std::unexpected(
        Localized("image-output.no-free-name", "No free name was found for “%1”.").arg(baseName));
}

QString ImageOutputFile::baseNameOf(const QString& path)
{
    const QString name = QFileInfo(path).fileName();
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return dot > 0 ? name.left(dot) : name;
}

} // namespace Vantrope
