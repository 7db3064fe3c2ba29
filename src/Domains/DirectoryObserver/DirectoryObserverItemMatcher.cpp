// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DirectoryObserverItemMatcher.h"

#include <array>
#include <cmath>
#include <limits>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QMimeDatabase>
#include <sys/stat.h>

namespace Vantrope {

namespace {

using StringMatching = DirectoryObserverItemMatcher::StringMatching;
using SizeMatching = DirectoryObserverItemMatcher::SizeMatching;
using KindMatching = DirectoryObserverItemMatcher::KindMatching;
using Property = DirectoryObserverItemMatcher::Property;

template<typename Enum> struct KeyedCase {
    Enum value;
    QLatin1StringView key;
};

constexpr std::array<KeyedCase<Property>, 5> propertyKeys{{
    {Property::fileName, QLatin1StringView("fileName")},
    {Property::fileType, QLatin1StringView("fileType")},
    {Property::fileExtension, QLatin1StringView("fileExtension")},
    {Property::fileSize, QLatin1StringView("fileSize")},
    {Property::kind, QLatin1StringView("kind")},
}};

// In decode order, which is deliberately not the order of the cases.
constexpr std::array<KeyedCase<StringMatching::Comparison>, 6> stringKeys{{
    {StringMatching::Comparison::contains, QLatin1StringView("contains")},
    {StringMatching::Comparison::startsWith, QLatin1StringView("startsWith")},
    {StringMatching::Comparison::endsWith, QLatin1StringView("endsWith")},
    {StringMatching::Comparison::equals, QLatin1StringView("equals")},
    {StringMatching::Comparison::doesNotEqual, QLatin1StringView("doesNotEqual")},
    {StringMatching::Comparison::doesNotContain, QLatin1StringView("doesNotContain")},
}};

constexpr std::array<KeyedCase<SizeMatching::Comparison>, 3> sizeKeys{{
    {SizeMatching::Comparison::greaterThan, QLatin1StringView("greaterThan")},
    {SizeMatching::Comparison::lessThan, QLatin1StringView("lessThan")},
    {SizeMatching::Comparison::equalTo, QLatin1StringView("equalTo")},
}};

constexpr std::array<KeyedCase<KindMatching::Comparison>, 2> kindComparisonKeys{{
    {KindMatching::Comparison::equals, QLatin1StringView("equals")},
    {KindMatching::Comparison::doesNotEqual, QLatin1StringView("doesNotEqual")},
}};

constexpr std::array<KeyedCase<KindMatching::Kind>, 10> kindRawValues{{
    {KindMatching::Kind::application, QLatin1StringView("application")},
    {KindMatching::Kind::archive, QLatin1StringView("archive")},
    {KindMatching::Kind::document, QLatin1StringView("document")},
    {KindMatching::Kind::folder, QLatin1StringView("folder")},
    {KindMatching::Kind::image, QLatin1StringView("image")},
    {KindMatching::Kind::video, QLatin1StringView("video")},
    {KindMatching::Kind::audio, QLatin1StringView("audio")},
    {KindMatching::Kind::pdf, QLatin1StringView("pdf")},
    {KindMatching::Kind::presentation, QLatin1StringView("presentation")},
    {KindMatching::Kind::text, QLatin1StringView("text")},
}};

template<typename Enum, size_t N> QString keyOf(const std::array<KeyedCase<Enum>, N>& keys, Enum value)
{
    for (const auto& entry : keys) {
        if (entry.value == value) {
            return entry.key;
        }
    }
    return {};
}

std::optional<StringMatching> decodeString(const QJsonValue& value)
{
    const QJsonObject object = value.toObject();
    for (const auto& [comparison, key] : stringKeys) {
        const QJsonValue payload = object.value(key);
        if (payload.isString()) {
            return StringMatching{comparison, payload.toString()};
        }
    }
    return std::nullopt;
}

// A byte count: a whole, non-negative JSON number below 2^64.
std::optional<quint64> decodeBytes(const QJsonValue& value)
{
    if (!value.isDouble()) {
        return std::nullopt;
    }
    const qint64 exact = value.toInteger(-1);
    if (exact >= 0) {
        return quint64(exact);
    }
    const double number = value.toDouble();
    if (number >= 9223372036854775808.0 && number < 18446744073709551616.0 && std::trunc(number) == number) {
        return quint64(number);
    }
    return std::nullopt;
}

std::optional<SizeMatching> decodeSize(const QJsonValue& value)
{
    const QJsonObject object = value.toObject();
    for (const auto& [comparison, key] : sizeKeys) {
        if (const std::optional<quint64> bytes = decodeBytes(object.value(key))) {
            return SizeMatching{comparison, *bytes};
        }
    }
    return std::nullopt;
}

std::optional<KindMatching> decodeKind(const QJsonValue& value)
{
    const QJsonObject object = value.toObject();
    for (const auto& [comparison, key] : kindComparisonKeys) {
        const QJsonValue payload = object.value(key);
        if (!payload.isString()) {
            continue;
        }
        if (const auto kind = KindMatching::kindFromRawValue(payload.toString())) {
            return KindMatching{comparison, *kind};
        }
    }
    return std::nullopt;
}

bool isDirectory(const QUrl& url)
{
    struct stat info {};
    return url.isLocalFile() && ::lstat(QFile::encodeName(url.toLocalFile()).constData(), &info) == 0 &&
           S_ISDIR(info.st_mode);
}

} // namespace

QString DirectoryObserverItemMatcher::Error::description() const
{
    return QStringLiteral("Cannot decode a folder rule: %1").arg(reason);
}

bool DirectoryObserverItemMatcher::StringMatching::matches(const QString& value, bool caseSensitive) const
{
    const QString subject = caseSensitive ? value : value.toLower();
    const QString wanted = caseSensitive ? pattern : pattern.toLower();
    switch (comparison) {
    case Comparison::contains:
        return subject.contains(wanted);
    case Comparison::doesNotContain:
        return !subject.contains(wanted);
    case Comparison::startsWith:
        return subject.startsWith(wanted);
    case Comparison::endsWith:
        return subject.endsWith(wanted);
    case Comparison::equals:
        return subject == wanted;
    case Comparison::doesNotEqual:
        return subject != wanted;
    }
    return false;
}

bool DirectoryObserverItemMatcher::SizeMatching::matches(quint64 size) const
{
    switch (comparison) {
    case Comparison::greaterThan:
        return size > bytes;
    case Comparison::lessThan:
        return size < bytes;
    case Comparison::equalTo:
        return size == bytes;
    }
    return false;
}

bool DirectoryObserverItemMatcher::KindMatching::matches(const QUrl& url) const
{
    // Both comparisons select the folders: that is how the rule has always behaved.
    if (kind == Kind::folder) {
        return isDirectory(url);
    }
    const QString extension = DirectoryObserverItem::pathExtension(url).toLower();
    const bool listed = extensions(kind).contains(extension);
    if (comparison == Comparison::equals) {
        return !extension.isEmpty() && listed;
    }
    return extension.isEmpty() || !listed;
}

QString DirectoryObserverItemMatcher::KindMatching::rawValue(Kind kind)
{
    return keyOf(kindRawValues, kind);
}

std::optional<DirectoryObserverItemMatcher::KindMatching::Kind>
DirectoryObserverItemMatcher::KindMatching::kindFromRawValue(const QString& rawValue)
{
    for (const auto& [kind, key] : kindRawValues) {
        if (rawValue == key) {
            return kind;
        }
    }
    return std::nullopt;
}

const QStringList& DirectoryObserverItemMatcher::KindMatching::extensions(Kind kind)
{
    // Fixed data: rtf and csv belong to two kinds each, and gzip is listed where gz is not.
    static const QStringList none;
    static const QStringList application = {
        QStringLiteral("app"), QStringLiteral("exe"), QStringLiteral("dmg"),
        QStringLiteral("apk"), QStringLiteral("msi"), QStringLiteral("deb"),
        QStringLiteral("rpm"), QStringLiteral("bat"), QStringLiteral("sh")};
    static const QStringList archive = {QStringLiteral("zip"), QStringLiteral("rar"), QStringLiteral("gzip"),
                                        QStringLiteral("7z"),  QStringLiteral("tar"), QStringLiteral("tgz"),
                                        QStringLiteral("bz2"), QStringLiteral("xz")};
    static const QStringList document = {
        QStringLiteral("xls"),  QStringLiteral("xlsx"),    QStringLiteral("ods"),  QStringLiteral("csv"),
        QStringLiteral("tsv"),  QStringLiteral("numbers"), QStringLiteral("doc"),  QStringLiteral("docx"),
        QStringLiteral("docm"), QStringLiteral("dotx"),    QStringLiteral("dotm"), QStringLiteral("pages"),
        QStringLiteral("odt"),  QStringLiteral("rtf"),     QStringLiteral("wpd"),  QStringLiteral("wps")};
    static const QStringList image = {QStringLiteral("jpg"), QStringLiteral("jpeg"), QStringLiteral("png"),
                                      QStringLiteral("gif"), QStringLiteral("tiff"), QStringLiteral("eps"),
                                      QStringLiteral("bmp"), QStringLiteral("heic"), QStringLiteral("raw"),
                                      QStringLiteral("svg"), QStringLiteral("webp"), QStringLiteral("ico")};
    static const QStringList video = {QStringLiteral("mp4"),   QStringLiteral("mov"),  QStringLiteral("wmv"),
                                      QStringLiteral("avi"),   QStringLiteral("flv"),  QStringLiteral("mkv"),
                                      QStringLiteral("avchd"), QStringLiteral("mpeg"), QStringLiteral("webm"),
                                      QStringLiteral("3gp"),   QStringLiteral("m4v")};
    static const QStringList audio = {QStringLiteral("wav"),  QStringLiteral("aiff"), QStringLiteral("mp3"),
                                      QStringLiteral("aac"),  QStringLiteral("ogg"),  QStringLiteral("wma"),
                                      QStringLiteral("flac"), QStringLiteral("alac"), QStringLiteral("m4a"),
                                      QStringLiteral("opus"), QStringLiteral("mid"),  QStringLiteral("midi")};
    static const QStringList pdf = {QStringLiteral("pdf")};
    static const QStringList presentation = {
        QStringLiteral("keynote"), QStringLiteral("ppt"), QStringLiteral("pptx"), QStringLiteral("pptm"),
        QStringLiteral("odp"),     QStringLiteral("pps"), QStringLiteral("ppsx")};
    static const QStringList text = {
        QStringLiteral("txt"),  QStringLiteral("text"), QStringLiteral("html"), QStringLiteral("htm"),
        QStringLiteral("rtf"),  QStringLiteral("tex"),  QStringLiteral("md"),   QStringLiteral("markdown"),
        QStringLiteral("json"), QStringLiteral("xml"),  QStringLiteral("csv"),  QStringLiteral("yaml"),
        QStringLiteral("yml"),  QStringLiteral("ini")};
    switch (kind) {
    case Kind::application:
        return application;
    case Kind::archive:
        return archive;
    case Kind::document:
        return document;
    case Kind::folder:
        return none;
    case Kind::image:
        return image;
    case Kind::video:
        return video;
    case Kind::audio:
        return audio;
    case Kind::pdf:
        return pdf;
    case Kind::presentation:
        return presentation;
    case Kind::text:
        return text;
    }
    return none;
}

DirectoryObserverItemMatcher::DirectoryObserverItemMatcher()
    : m_payload(StringMatching{})
{}

DirectoryObserverItemMatcher DirectoryObserverItemMatcher::fileName(StringMatching matching)
{
    return {Property::fileName, std::move(matching)};
}

DirectoryObserverItemMatcher DirectoryObserverItemMatcher::fileType(StringMatching matching)
{
    return {Property::fileType, std::move(matching)};
}

DirectoryObserverItemMatcher DirectoryObserverItemMatcher::fileExtension(StringMatching matching)
{
    return {Property::fileExtension, std::move(matching)};
}

DirectoryObserverItemMatcher DirectoryObserverItemMatcher::fileSize(SizeMatching matching)
{
    return {Property::fileSize, matching};
}

DirectoryObserverItemMatcher DirectoryObserverItemMatcher::kind(KindMatching matching)
{
    return {Property::kind, matching};
}

bool DirectoryObserverItemMatcher::matches(const DirectoryObserverItem& item, bool caseSensitive) const
{
    switch (m_property) {
    case Property::fileName:
        return stringMatching()->matches(item.name, caseSensitive);
    case Property::fileType:
        return stringMatching()->matches(typeIdentifier(item.url), caseSensitive);
    case Property::fileExtension:
        return stringMatching()->matches(DirectoryObserverItem::pathExtension(item.url), caseSensitive);
    case Property::fileSize:
        return sizeMatching()->matches(item.size);
    case Property::kind:
        return kindMatching()->matches(item.url);
    }
    return false;
}

QString DirectoryObserverItemMatcher::typeIdentifier(const QUrl& url)
{
    if (!url.isLocalFile()) {
        return {};
    }
    const QFileInfo info(url.toLocalFile());
    if (!info.exists()) {
        return {};
    }
    return QMimeDatabase().mimeTypeForFile(info).name();
}

QJsonObject DirectoryObserverItemMatcher::toJson() const
{
    QJsonObject payload;
    if (const StringMatching* matching = stringMatching()) {
        for (const auto& [comparison, key] : stringKeys) {
            if (comparison == matching->comparison) {
                payload.insert(key, matching->pattern);
            }
        }
    } else if (const SizeMatching* matching = sizeMatching()) {
        const QString key = keyOf(sizeKeys, matching->comparison);
        // JSON integers stop at 2^63; larger counts can only travel as doubles.
        payload.insert(key, matching->bytes <= quint64(std::numeric_limits<qint64>::max())
                                ? QJsonValue(qint64(matching->bytes))
                                : QJsonValue(double(matching->bytes)));
    } else if (const KindMatching* matching = kindMatching()) {
        payload.insert(keyOf(kindComparisonKeys, matching->comparison),
                       KindMatching::rawValue(matching->kind));
    }
    return QJsonObject{{keyOf(propertyKeys, m_property), payload}};
}

std::expected<DirectoryObserverItemMatcher, DirectoryObserverItemMatcher::Error>
DirectoryObserverItemMatcher::fromJson(const QJsonValue& value)
{
    const QJsonObject object = value.toObject();
    for (const auto& [property, key] : propertyKeys) {
        const QJsonValue payload = object.value(key);
        if (payload.isUndefined()) {
            continue;
        }
        switch (property) {
        case Property::fileName:
        case Property::fileType:
        case Property::fileExtension:
            if (auto matching = decodeString(payload)) {
                return DirectoryObserverItemMatcher(property, std::move(*matching));
            }
            break;
        case Property::fileSize:
            if (auto matching = decodeSize(payload)) {
                return DirectoryObserverItemMatcher(property, *matching);
            }
            break;
        case Property::kind:
            if (auto matching = decodeKind(payload)) {
                return DirectoryObserverItemMatcher(property, *matching);
            }
            break;
        }
    }
    const QByteArray json =
        value.isObject() ? QJsonDocument(object).toJson(QJsonDocument::Compact) : QByteArray("not an object");
    return std::unexpected(Error{Error::Kind::decodeError, QString::fromUtf8(json.left(200))});
}

} // namespace Vantrope
