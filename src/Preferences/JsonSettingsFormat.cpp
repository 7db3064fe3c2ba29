// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "JsonSettingsFormat.h"

#include "Preferences.h"

#include <algorithm>
#include <limits>
#include <QDateTime>
#include <QIODevice>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QStringList>

namespace Vantrope {

namespace {

const QString s_dateTag = QStringLiteral("$date");
const QString s_dataTag = QStringLiteral("$data");

// "$date", "$$date", "$data", ...: names that make a one-key object read as a tag.
bool isTagLike(QStringView key)
{
    qsizetype dollars = 0;
    while (dollars < key.size() && key.at(dollars) == u'$') {
        ++dollars;
    }
    const QStringView name = key.mid(dollars);
    return dollars > 0 && (name == u"date" || name == u"data");
}

QVariant integral(qint64 number)
{
    if (number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max()) {
        return int(number);
    }
    return number;
}

// Qt's parser already gives whole numbers, 5.0 and 1e3 included, as integers; narrow them to the int
// that settings are written with.
QVariant numberFromJson(const QJsonValue& value)
{
    const QVariant parsed = value.toVariant();
    if (parsed.typeId() == QMetaType::LongLong) {
        return integral(parsed.toLongLong());
    }
    return parsed;
}

std::optional<QVariant> taggedValue(const QJsonObject& object)
{
    if (object.size() != 1) {
        return std::nullopt;
    }
    const QString tag = object.constBegin().key();
    const QJsonValue payload = object.constBegin().value();
    if (tag == s_dateTag && payload.isString()) {
        const QDateTime date = QDateTime::fromString(payload.toString(), Qt::ISODateWithMs);
        if (date.isValid()) {
            return date;
        }
        qCWarning(lcPreferences).noquote() << "Unreadable date" << payload.toString()
                                           << "in the preferences file; keeping it as a dictionary";
        return std::nullopt;
    }
    if (tag == s_dataTag && payload.isString()) {
        const auto decoded = QByteArray::fromBase64Encoding(payload.toString().toLatin1(),
                                                            QByteArray::AbortOnBase64DecodingErrors);
        if (decoded) {
            return *decoded;
        }
        qCWarning(lcPreferences)
            << "Unreadable base64 data in the preferences file; keeping it as a dictionary";
        return std::nullopt;
    }
    return std::nullopt;
}

bool readJson(QIODevice& device, QSettings::SettingsMap& map)
{
    auto parsed = JsonSettingsFormat::parse(device.readAll());
    if (!parsed) {
        return false;
    }
    map = std::move(*parsed);
    return true;
}

bool writeJson(QIODevice& device, const QSettings::SettingsMap& map)
{
    const QByteArray json = JsonSettingsFormat::serialize(map);
    return device.write(json) == json.size();
}

} // namespace

QSettings::Format JsonSettingsFormat::format()
{
    static const QSettings::Format registered =
        QSettings::registerFormat(QStringLiteral("json"), readJson, writeJson, Qt::CaseSensitive);
    return registered;
}

std::expected<QSettings::SettingsMap, JsonSettingsFormat::Error>
JsonSettingsFormat::parse(const QByteArray& json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError) {
        return std::unexpected(
            Error{QStringLiteral("%1 at offset %2").arg(error.errorString()).arg(error.offset)});
    }
    if (!document.isObject()) {
        return std::unexpected(Error{QStringLiteral("the document is not a JSON object")});
    }
    QSettings::SettingsMap map;
    const QJsonObject object = document.object();
    for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
        QVariant value = fromJson(it.value());
        if (!value.isNull()) {
            map.insert(it.key(), std::move(value));
        }
    }
    return map;
}

QByteArray JsonSettingsFormat::serialize(const QSettings::SettingsMap& map)
{
    QJsonObject object;
    for (auto it = map.constBegin(); it != map.constEnd(); ++it) {
        if (!canStore(it.value())) {
            qCWarning(lcPreferences).noquote()
                << "Leaving out" << it.key() << "from the preferences file: a value of type"
                << it.value().metaType().name() << "cannot be stored";
            continue;
        }
        object.insert(it.key(), toJson(it.value()));
    }
    return QJsonDocument(object).toJson(QJsonDocument::Indented);
}

bool JsonSettingsFormat::canStore(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType: // a null inside a list or dictionary
    case QMetaType::Nullptr:
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::QString:
    case QMetaType::QStringList:
    case QMetaType::QByteArray:
        return true;
    case QMetaType::QDateTime:
        return value.toDateTime().isValid();
    case QMetaType::QVariantList: {
        const QVariantList list = value.toList();
        return std::all_of(list.cbegin(), list.cend(), canStore);
    }
    case QMetaType::QVariantMap: {
        const QVariantMap map = value.toMap();
        return std::all_of(map.cbegin(), map.cend(), canStore);
    }
    default:
        return false;
    }
}

QJsonValue JsonSettingsFormat::toJson(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
        return value.toLongLong();
    case QMetaType::ULongLong: {
        const qulonglong number = value.toULongLong();
        if (number <= qulonglong(std::numeric_limits<qint64>::max())) {
            return qint64(number);
        }
        return double(number);
    }
    case QMetaType::Double:
        return value.toDouble();
    case QMetaType::QString:
        return value.toString();
    case QMetaType::QByteArray:
        return QJsonObject{{s_dataTag, QString::fromLatin1(value.toByteArray().toBase64())}};
    case QMetaType::QDateTime: {
        const QDateTime date = value.toDateTime();
        if (!date.isValid()) {
            return QJsonValue::Null;
        }
        return QJsonObject{{s_dateTag, date.toUTC().toString(Qt::ISODateWithMs)}};
    }
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        QJsonArray array;
        const QVariantList list = value.toList();
        for (const QVariant& element : list) {
            array.append(toJson(element));
        }
        return array;
    }
    case QMetaType::QVariantMap: {
        QJsonObject object;
        const QVariantMap map = value.toMap();
        for (auto it = map.constBegin(); it != map.constEnd(); ++it) {
            const bool escape = map.size() == 1 && isTagLike(it.key());
            object.insert(escape ? QLatin1Char('$') + it.key() : it.key(), toJson(it.value()));
        }
        return object;
    }
    default:
        return QJsonValue::Null;
    }
}

QVariant JsonSettingsFormat::fromJson(const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::Bool:
        return value.toBool();
    case QJsonValue::Double:
        return numberFromJson(value);
    case QJsonValue::String:
        return value.toString();
    case QJsonValue::Array: {
        const QJsonArray array = value.toArray();
        // Lists of strings are by far the most common; they come back as the QStringList they were.
        if (std::all_of(array.begin(), array.end(),
                        [](const QJsonValue& element) { return element.isString(); })) {
            QStringList strings;
            strings.reserve(array.size());
            for (const QJsonValue& element : array) {
                strings.append(element.toString());
            }
            return strings;
        }
        QVariantList list;
        list.reserve(array.size());
        for (const QJsonValue& element : array) {
            list.append(fromJson(element));
        }
        return list;
    }
    case QJsonValue::Object: {
        const QJsonObject object = value.toObject();
        if (std::optional<QVariant> tagged = taggedValue(object)) {
            return *tagged;
        }
        QVariantMap map;
        for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
            const bool escaped =
                object.size() == 1 && isTagLike(it.key()) && it.key().startsWith(QLatin1String("$$"));
            map.insert(escaped ? it.key().mid(1) : it.key(), fromJson(it.value()));
        }
        return map;
    }
    case QJsonValue::Null:
    case QJsonValue::Undefined:
        return {};
    }
    return {};
}

} // namespace Vantrope
