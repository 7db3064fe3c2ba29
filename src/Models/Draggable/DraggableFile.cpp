// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DraggableFile.h"

#include "DraggableContext.h"
#include "DraggableFileAccessTable.h"
#include "DraggableLogging.h"
#include "DraggableValues.h"
#include "Libraries/Core/FileImages.h"
#include "Models/Pasteboard/PasteboardTypes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <QSysInfo>
#include <sys/stat.h>

namespace Vantrope {

namespace {

int hexValue(char c)
{
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

// Strict: a "%" without two hex digits after it, or escapes that make no UTF-8, is a failure rather
// than something to pass through, because the result names a file.
std::optional<QString> removingPercentEncoding(const QString& text)
{
    const QByteArray encoded = text.toUtf8();
    QByteArray decoded;
    decoded.reserve(encoded.size());
    for (qsizetype i = 0; i < encoded.size(); ++i) {
        const char c = encoded.at(i);
        if (c != '%') {
            decoded.append(c);
            continue;
        }
        if (i + 2 >= encoded.size()) {
            return std::nullopt;
        }
        const int high = hexValue(encoded.at(i + 1));
        const int low = hexValue(encoded.at(i + 2));
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        decoded.append(char(high * 16 + low));
        i += 2;
    }
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString result = decoder.decode(decoded);
    if (decoder.hasError()) {
        return std::nullopt;
    }
    return result;
}

bool hasScheme(const QString& text)
{
    const qsizetype colon = text.indexOf(QLatin1Char(':'));
    if (colon < 1 || !text.at(0).isLetter()) {
        return false;
    }
    for (qsizetype i = 1; i < colon; ++i) {
        const QChar c = text.at(i);
        if (!(c.isLetterOrNumber() || c == QLatin1Char('+') || c == QLatin1Char('-') ||
              c == QLatin1Char('.'))) {
            return false;
        }
    }
    return true;
}

} // namespace

QStringList DraggableFile::readableTypes()
{
    return {PasteboardTypes::uriList};
}

std::shared_ptr<DraggableFile> DraggableFile::fromPasteboard(const PasteboardItem& item, const QString& type,
                                                             const DraggableContext&)
{
    const std::optional<QString> value = item.string(type);
    if (!value) {
        qCWarning(lcDraggable) << "File URL of type" << type << "is not a string";
        return nullptr;
    }
    const std::optional<QUrl> url = urlFromPropertyList(DraggableValues::firstUriListEntry(*value));
    if (!url) {
        return nullptr;
    }
    return std::make_shared<DraggableFile>(Tag{}, *url);
}

std::shared_ptr<DraggableFile> DraggableFile::make(const QUrl& url, std::optional<Bookmark> bookmark)
{
    if (!url.isLocalFile()) {
        qCWarning(lcDraggable) << "Not a local file:" << url;
        return nullptr;
    }
    const std::optional<QUrl> fileUrl = urlFromPropertyList(url.toString(QUrl::FullyEncoded));
    if (!fileUrl) {
        return nullptr;
    }
    auto file = std::make_shared<DraggableFile>(Tag{}, *fileUrl);
    file->setBookmark(std::move(bookmark));
    return file;
}

std::optional<QUrl> DraggableFile::urlFromPropertyList(const QString& propertyList)
{
    const std::optional<QString> decoded = removingPercentEncoding(propertyList);
    if (!decoded) {
        qCWarning(lcDraggable) << "Failed to remove percent encoding of" << propertyList;
        return std::nullopt;
    }
    QString path;
    if (decoded->startsWith(QLatin1String("file:"), Qt::CaseInsensitive)) {
        path = decoded->mid(5);
        if (path.startsWith(QLatin1String("//"))) {
            const qsizetype slash = path.indexOf(QLatin1Char('/'), 2);
            const QString host = path.mid(2, slash < 0 ? -1 : slash - 2);
            if (!host.isEmpty() && host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) != 0 &&
                host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) != 0) {
                qCWarning(lcDraggable) << "File URL of another host refused:" << *decoded;
                return std::nullopt;
            }
            path = slash < 0 ? QString() : path.mid(slash);
        }
    } else if (hasScheme(*decoded)) {
        // On this system a web address never stands for a file; it becomes a web location instead.
        qCDebug(lcDraggable) << "Not a file URL:" << *decoded;
        return std::nullopt;
    } else {
        path = *decoded;
    }
    if (!path.startsWith(QLatin1Char('/')) || path.contains(QChar(0))) {
        qCWarning(lcDraggable) << "Not an absolute file path:" << *decoded;
        return std::nullopt;
    }
    return QUrl::fromLocalFile(QDir::cleanPath(path));
}

QString DraggableFile::standardizedKey(const QUrl& fileUrl)
{
    return QUrl::fromLocalFile(QDir::cleanPath(fileUrl.toLocalFile())).toString(QUrl::FullyEncoded);
}

DraggableFile::DraggableFile(Tag, const QUrl& url)
    : m_url(url)
    , m_cacheKey(standardizedKey(url))
{
    // A snapshot: the shelf follows later changes through its file observers, not through the item.
    struct stat info {};
    if (::lstat(QFile::encodeName(url.toLocalFile()).constData(), &info) == 0) {
        m_size = qint64(info.st_size);
        m_systemFileNumber = quint64(info.st_ino);
    }
}

DraggableFile::~DraggableFile()
{
    releaseAccess();
}

QImage DraggableFile::image(bool iconOnly, const QSize& size) const
{
    const QString path = m_url.toLocalFile();
    return iconOnly ? FileImages::iconImage(path, size) : FileImages::previewImage(path, size);
}

void DraggableFile::resolveUrl(ResolveCompletion completion)
{
    resolveOnMain(std::move(completion), m_url);
}

PasteboardItem DraggableFile::pasteboardItem() const
{
    PasteboardItem item;
    item.setData(PasteboardTypes::uriList, m_url.toEncoded());
    return item;
}

QString DraggableFile::description() const
{
    return QStringLiteral("<DraggableFile: 0x%1, file: %2>")
        .arg(quintptr(this), 0, 16)
        .arg(QFileInfo(m_url.toLocalFile()).fileName());
}

void DraggableFile::startAccessingBookmark()
{
    const std::optional<Bookmark> current = bookmark();
    if (!current) {
        return;
    }
    std::lock_guard lock(m_accessMutex);
    if (m_accessedBookmarkUrl) {
        return;
    }
    m_accessedBookmarkUrl = current->url;
    DraggableFileAccessTable::shared().retain(m_url, current->url);
}

void DraggableFile::releaseAccess()
{
    std::lock_guard lock(m_accessMutex);
    if (!m_accessedBookmarkUrl) {
        return;
    }
    DraggableFileAccessTable::shared().release(m_url, *m_accessedBookmarkUrl);
    m_accessedBookmarkUrl.reset();
}

bool DraggableFile::hasAccessedBookmark() const
{
    std::lock_guard lock(m_accessMutex);
    return m_accessedBookmarkUrl.has_value();
}

int DraggableFile::accessCount() const
{
    return DraggableFileAccessTable::shared().count(m_url);
}

} // namespace Vantrope
