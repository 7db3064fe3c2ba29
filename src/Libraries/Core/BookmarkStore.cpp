// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "BookmarkStore.h"

#include "AtomicFileWriter.h"
#include "FileBookmark.h"
#include "Logging.h"
#include "URL.h"

#include <algorithm>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace Vantrope {

namespace {

constexpr int fileVersion = 1;

const QString versionKey = QStringLiteral("version");
const QString entriesKey = QStringLiteral("bookmarks");
const QString urlKey = QStringLiteral("url");
const QString dataKey = QStringLiteral("data");

std::optional<BookmarkURL> entryFromJson(const QJsonValue& value)
{
    const QJsonObject object = value.toObject();
    const QUrl url(object.value(urlKey).toString(), QUrl::StrictMode);
    const auto data = QByteArray::fromBase64Encoding(object.value(dataKey).toString().toLatin1(),
                                                     QByteArray::AbortOnBase64DecodingErrors);
    if (!url.isValid() || !url.isLocalFile() || !data || data.decoded.isEmpty()) {
        return std::nullopt;
    }
    return BookmarkURL{data.decoded, url};
}

bool isSameFile(const QByteArray& bookmark, const FileBookmark::Contents& contents)
{
    const std::expected<FileBookmark::Contents, FileBookmark::Error> stored = FileBookmark::decode(bookmark);
    return stored && stored->isSameFile(contents);
}

} // namespace

QString BookmarkStore::Error::description() const
{
    switch (kind) {
    case Kind::bookmarkFailed:
        return QStringLiteral("Cannot bookmark the location: %1").arg(reason);
    case Kind::noStorage:
        return QStringLiteral("There is no folder to keep bookmarks in");
    case Kind::writeFailed:
        return QStringLiteral("Cannot save the bookmarks: %1").arg(reason);
    }
    return reason;
}

BookmarkStore::BookmarkStore(const QString& nameSpace, int limit)
    : m_limit(std::max(1, limit))
{
    if (const std::optional<QString> container = URL::groupContainer()) {
        // Percent-encoded so that a namespace can never name a path outside the folder.
        m_filePath = *container + QStringLiteral("/bookmarks/") +
                     QString::fromLatin1(QUrl::toPercentEncoding(nameSpace)) + QStringLiteral(".json");
    }
}

BookmarkStore::Stored BookmarkStore::read() const
{
    if (m_filePath.isEmpty() || !QFile::exists(m_filePath)) {
        return {};
    }
    QFile file(m_filePath);
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcCore).noquote() << "Cannot read the bookmarks in" << m_filePath << ":"
                                    << file.errorString();
        return {{}, true};
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
    const QJsonObject root = document.object();
    const QJsonValue entries = root.value(entriesKey);
    if (parseError.error != QJsonParseError::NoError || !document.isObject() ||
        root.value(versionKey).toInt() != fileVersion || !entries.isArray()) {
        qCWarning(lcCore).noquote() << "The bookmarks in" << m_filePath << "are unreadable and are ignored";
        return {{}, true};
    }

    Stored stored;
    for (const QJsonValue& value : entries.toArray()) {
        const std::optional<BookmarkURL> entry = entryFromJson(value);
        // One damaged entry makes the whole file suspect; keeping the rest would quietly drop it on
        // the next write.
        if (!entry) {
            qCWarning(lcCore).noquote()
                << "The bookmarks in" << m_filePath << "hold a damaged entry and are ignored";
            return {{}, true};
        }
        stored.entries.append(*entry);
    }
    return stored;
}

std::expected<void, BookmarkStore::Error> BookmarkStore::write(const QList<BookmarkURL>& entries,
                                                               bool setAsideFirst)
{
    if (m_filePath.isEmpty()) {
        return std::unexpected(Error{Error::Kind::noStorage, {}});
    }
    if (setAsideFirst) {
        AtomicFileWriter::setAside(m_filePath);
    }
    QJsonArray array;
    for (const BookmarkURL& entry : entries) {
        array.append(QJsonObject{{urlKey, entry.url.toString(QUrl::FullyEncoded)},
                                 {dataKey, QString::fromLatin1(entry.bookmark.toBase64())}});
    }
    const QJsonObject root{{versionKey, fileVersion}, {entriesKey, array}};
    const auto written =
        AtomicFileWriter::write(m_filePath, QJsonDocument(root).toJson(QJsonDocument::Compact));
    if (!written) {
        qCWarning(lcCore).noquote() << written.error().description();
        return std::unexpected(Error{Error::Kind::writeFailed, written.error().description()});
    }
    return {};
}

std::expected<BookmarkURL, BookmarkStore::Error> BookmarkStore::addLocation(const QUrl& url)
{
    const std::expected<QByteArray, FileBookmark::Error> bookmark = FileBookmark::create(url);
    if (!bookmark) {
        return std::unexpected(Error{Error::Kind::bookmarkFailed, bookmark.error().description()});
    }
    const FileBookmark::Contents contents = FileBookmark::decode(*bookmark).value();
    const BookmarkURL added{*bookmark, QUrl::fromLocalFile(contents.path)};

    Stored stored = read();
    stored.entries.removeIf([&](const BookmarkURL& entry) {
        return entry.url == added.url || isSameFile(entry.bookmark, contents);
    });
    stored.entries.append(added);
    if (stored.entries.size() > m_limit) {
        stored.entries.remove(0, stored.entries.size() - m_limit);
    }
    if (const auto written = write(stored.entries, stored.isCorrupt); !written) {
        return std::unexpected(written.error());
    }
    return added;
}

std::expected<void, BookmarkStore::Error> BookmarkStore::clear()
{
    return write({}, read().isCorrupt);
}

QList<BookmarkURL> BookmarkStore::locations()
{
    Stored stored = read();
    QList<BookmarkURL> found;
    bool refreshed = false;
    for (BookmarkURL& entry : stored.entries) {
        const auto resolution = FileBookmark::resolve(entry.bookmark);
        if (!resolution) {
            qCInfo(lcCore).noquote() << "Leaving out the bookmark of" << entry.url.toDisplayString() << ":"
                                     << resolution.error().description();
            continue;
        }
        if (resolution->isStale) {
            if (const auto renewed = FileBookmark::create(resolution->url)) {
                entry = BookmarkURL{*renewed, resolution->url};
                refreshed = true;
            } else {
                found.append(BookmarkURL{entry.bookmark, resolution->url});
                continue;
            }
        }
        found.append(entry);
    }
    if (refreshed) {
        // Failure is already logged; the moved files were found all the same.
        (void)write(stored.entries, false);
    }
    return found;
}

QList<BookmarkURL> BookmarkStore::bookmarks() const
{
    return read().entries;
}

} // namespace Vantrope
