// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "PersistentDragSession.h"

#include "DragSessionLogging.h"
#include "Libraries/Core/FileBookmark.h"
#include "Libraries/Core/ReservedTemporaryDirectory.h"
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggableWeblocation.h"

#include <algorithm>
#include <limits>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

namespace Vantrope {

namespace {

const QString identifierKey = QStringLiteral("identifier");
const QString dateKey = QStringLiteral("date");
const QString bookmarksKey = QStringLiteral("bookmarks");
const QString labelKey = QStringLiteral("label");
const QString orderKey = QStringLiteral("order");

void appendJsonString(QByteArray& out, const QString& string)
{
    static constexpr char hex[] = "0123456789abcdef";
    const QByteArray utf8 = string.toUtf8();
    const char* run = utf8.constData();
    const char* const end = run + utf8.size();
    out += '"';
    // Copies the plain stretches whole; most strings have nothing to escape at all.
    for (const char* p = run; p != end; ++p) {
        const auto byte = static_cast<unsigned char>(*p);
        if (byte >= 0x20 && byte != '"' && byte != '\\') {
            continue;
        }
        out.append(run, p - run);
        if (byte < 0x20) {
            out += "\\u00";
            out += hex[byte >> 4];
            out += hex[byte & 0xf];
        } else {
            out += '\\';
            out += char(byte);
        }
        run = p + 1;
    }
    out.append(run, end - run);
    out += '"';
}

// Absent keys and null both mean "no value", as for any optional field of a coded record.
bool isPresent(const QJsonObject& object, const QString& key)
{
    const QJsonValue value = object.value(key);
    return !value.isUndefined() && !value.isNull();
}

std::optional<QStringList> stringArray(const QJsonValue& value)
{
    if (!value.isArray()) {
        return std::nullopt;
    }
    const QJsonArray array = value.toArray();
    QStringList strings;
    strings.reserve(array.size());
    for (const QJsonValue& element : array) {
        if (!element.isString()) {
            return std::nullopt;
        }
        strings.append(element.toString());
    }
    return strings;
}

std::unexpected<PersistentDragSession::DecodeError> failure(const QString& reason)
{
    return std::unexpected(PersistentDragSession::DecodeError{reason});
}

} // namespace

PersistentDragSession::PersistentDragSession(QString identifier, QDateTime date,
                                             std::optional<DragSessionLabel> label, Bookmarks bookmarks,
                                             std::optional<QStringList> order)
    : m_identifier(std::move(identifier))
    , m_date(std::move(date))
    , m_label(std::move(label))
    , m_order(std::move(order))
    , m_bookmarks(std::move(bookmarks))
{}

PersistentDragSession::Bookmarks PersistentDragSession::bookmarks() const
{
    std::lock_guard lock(m_bookmarksLock);
    return m_bookmarks;
}

QList<QUrl> PersistentDragSession::bookmarkUrls() const
{
    std::lock_guard lock(m_bookmarksLock);
    return m_bookmarks.keys();
}

std::optional<DraggableList> PersistentDragSession::draggables() const
{
    std::lock_guard lock(m_draggablesLock);
    return m_draggables;
}

DraggablePtr PersistentDragSession::restoreItem(const QUrl& key, const QByteArray& data)
{
    const std::expected<FileBookmark::Resolution, FileBookmark::Error> resolution =
        FileBookmark::resolve(data);
    if (!resolution) {
        return nullptr;
    }
    // Linux has no per-file scope to open here; the access table counts the holders once a shelf
    // starts with the item.
    QByteArray bytes = data;
    if (resolution->isStale) {
        const std::expected<QByteArray, FileBookmark::Error> fresh = FileBookmark::create(resolution->url);
        if (!fresh) {
            return nullptr;
        }
        bytes = *fresh;
    }
    std::shared_ptr<DraggableFile> file =
        DraggableFile::make(resolution->url, DraggableFile::Bookmark{key, resolution->url, bytes});
    if (!file) {
        return nullptr;
    }
    // Read where the file is now: a link file that moved still holds its address.
    if (QFileInfo(key.path()).suffix() == QLatin1String("webloc")) {
        if (auto weblocation = DraggableWeblocation::fromWeblocFile(resolution->url)) {
            return weblocation;
        }
    }
    return file;
}

bool PersistentDragSession::validate()
{
    const Bookmarks entries = bookmarks();
    DraggableList items;
    items.reserve(entries.size());
    QList<QUrl> removable;
    for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry) {
        if (DraggablePtr item = restoreItem(entry.key(), entry.value())) {
            items.append(std::move(item));
            continue;
        }
        qCInfo(lcDragSession).noquote() << QStringLiteral("Could not longer read ") + entry.key().toString() +
                                               QStringLiteral(", removing from list...");
        removable.append(entry.key());
    }
    if (!removable.isEmpty()) {
        {
            std::lock_guard lock(m_bookmarksLock);
            for (const QUrl& key : std::as_const(removable)) {
                m_bookmarks.remove(key);
            }
            m_json.clear();
        }
        qCInfo(lcDragSession).noquote() << QStringLiteral("Found %1 removeable bookmarks (original: %2)")
                                               .arg(removable.size())
                                               .arg(entries.size());
    }

    if (m_order) {
        QHash<QString, qsizetype> position;
        position.reserve(m_order->size());
        for (qsizetype i = 0; i < m_order->size(); ++i) {
            if (!position.contains(m_order->at(i))) {
                position.insert(m_order->at(i), i);
            }
        }
        constexpr qsizetype unordered = std::numeric_limits<qsizetype>::max();
        std::stable_sort(items.begin(), items.end(), [&](const DraggablePtr& a, const DraggablePtr& b) {
            return position.value(a->cacheKey(), unordered) < position.value(b->cacheKey(), unordered);
        });
    }

    const bool hasItems = !items.isEmpty();
    std::lock_guard lock(m_draggablesLock);
    m_draggables = std::move(items);
    return hasItems;
}

QUrl PersistentDragSession::bookmarkKey(const DraggableLocation& location)
{
    if (location.url) {
        return *location.url;
    }
    const QString folder = TemporaryDirectories::temporaryDirectory().value_or(QDir::tempPath());
    return QUrl::fromLocalFile(folder + QLatin1Char('/') +
                               QUuid::createUuid().toString(QUuid::WithoutBraces) + QStringLiteral(".dat"));
}

PersistentDragSession::Bookmarks PersistentDragSession::collectBookmarks(const DraggableList& items,
                                                                         const BookmarkLookup& storedBookmark)
{
    Bookmarks bookmarks;
    for (const DraggablePtr& item : items) {
        const DraggableLocation location = item->location();
        const QUrl key = bookmarkKey(location);
        if (const std::optional<quint64> number = item->systemFileNumber(); number && storedBookmark) {
            if (std::optional<QByteArray> stored = storedBookmark(*number)) {
                bookmarks.insert(key, std::move(*stored));
                continue;
            }
        }
        if (location.isUnknown()) {
            qCDebug(lcDragSession).noquote()
                << "Not keeping" << item->description() << "as it has no file yet";
            continue;
        }
        if (std::expected<QByteArray, FileBookmark::Error> fresh = FileBookmark::create(key)) {
            bookmarks.insert(key, std::move(*fresh));
        }
    }
    return bookmarks;
}

QByteArray PersistentDragSession::toJson() const
{
    std::lock_guard lock(m_bookmarksLock);
    if (m_json.isNull()) {
        m_json = encode(m_bookmarks);
    }
    return m_json;
}

QByteArray PersistentDragSession::encode(const Bookmarks& entries) const
{
    QByteArray out;
    out.reserve(128 + entries.size() * 256);
    out += "{\"identifier\":";
    appendJsonString(out, m_identifier);
    out += ",\"date\":";
    appendJsonString(out, m_date.toUTC().toString(Qt::ISODate));
    out += ",\"bookmarks\":[";
    for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry) {
        if (entry != entries.cbegin()) {
            out += ',';
        }
        appendJsonString(out, entry.key().toString(QUrl::FullyEncoded));
        out += ",\"";
        out += entry.value().toBase64();
        out += '"';
    }
    out += ']';
    if (m_label) {
        out += ",\"label\":";
        out += QJsonDocument(m_label->toJson()).toJson(QJsonDocument::Compact);
    }
    if (m_order) {
        out += ",\"order\":[";
        for (qsizetype i = 0; i < m_order->size(); ++i) {
            if (i > 0) {
                out += ',';
            }
            appendJsonString(out, m_order->at(i));
        }
        out += ']';
    }
    out += '}';
    return out;
}

std::expected<PersistentDragSessionPtr, PersistentDragSession::DecodeError>
PersistentDragSession::fromJson(const QJsonValue& json)
{
    if (!json.isObject()) {
        return failure(QStringLiteral("the record is not an object"));
    }
    const QJsonObject object = json.toObject();

    const QJsonValue identifier = object.value(identifierKey);
    if (!identifier.isString()) {
        return failure(QStringLiteral("\"identifier\" is missing or not a string"));
    }

    const QDateTime date = QDateTime::fromString(object.value(dateKey).toString(), Qt::ISODateWithMs);
    if (!date.isValid()) {
        return failure(QStringLiteral("\"date\" is missing or not an ISO 8601 date"));
    }

    const QJsonValue bookmarksValue = object.value(bookmarksKey);
    const QJsonArray flat = bookmarksValue.toArray();
    if (!bookmarksValue.isArray() || flat.size() % 2 != 0) {
        return failure(QStringLiteral("\"bookmarks\" is not an array of URL and data pairs"));
    }
    Bookmarks bookmarks;
    for (qsizetype i = 0; i < flat.size(); i += 2) {
        const QJsonValue keyValue = flat.at(i);
        const QJsonValue dataValue = flat.at(i + 1);
        const QUrl url(keyValue.toString(), QUrl::StrictMode);
        if (!keyValue.isString() || !url.isValid() || url.isRelative()) {
            return failure(QStringLiteral("bookmark %1 has no valid URL").arg(i / 2));
        }
        const QByteArray::FromBase64Result data = QByteArray::fromBase64Encoding(
            dataValue.toString().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
        if (!dataValue.isString() || !data) {
            return failure(QStringLiteral("bookmark %1 has no valid base64 data").arg(i / 2));
        }
        // The writer leaves the pairs sorted, so the end is nearly always the right place.
        bookmarks.insert(bookmarks.cend(), url, data.decoded);
    }

    std::optional<DragSessionLabel> label;
    if (isPresent(object, labelKey)) {
        std::expected<DragSessionLabel, DragSessionLabel::Error> decoded =
            DragSessionLabel::fromJson(object.value(labelKey));
        if (!decoded) {
            return failure(QStringLiteral("\"label\": ") + decoded.error().description());
        }
        label = std::move(*decoded);
    }

    std::optional<QStringList> order;
    if (isPresent(object, orderKey)) {
        order = stringArray(object.value(orderKey));
        if (!order) {
            return failure(QStringLiteral("\"order\" is not an array of strings"));
        }
    }

    return std::make_shared<PersistentDragSession>(identifier.toString(), date.toUTC(), std::move(label),
                                                   std::move(bookmarks), std::move(order));
}

std::weak_ordering operator<=>(const PersistentDragSession& a, const PersistentDragSession& b)
{
    if (a.isPinned() != b.isPinned()) {
        return a.isPinned() ? std::weak_ordering::less : std::weak_ordering::greater;
    }
    if (a.date() == b.date()) {
        return std::weak_ordering::equivalent;
    }
    return a.date() > b.date() ? std::weak_ordering::less : std::weak_ordering::greater;
}

} // namespace Vantrope
