// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ObservedDirectory.h"

#include <QJsonArray>
#include <QUuid>

namespace Vantrope {

namespace {

const QString identifierKey = QStringLiteral("identifier");
const QString urlKey = QStringLiteral("url");
const QString bookmarkDataKey = QStringLiteral("bookmarkData");
const QString matchersKey = QStringLiteral("matchers");
const QString filtersKey = QStringLiteral("filters");
const QString optionsKey = QStringLiteral("options");
const QString lifecycleKey = QStringLiteral("lifecycle");
const QString appendsToInitialShelfKey = QStringLiteral("appendsToInitialShelf");
const QString rulesCaseSensitiveKey = QStringLiteral("rulesCaseSensitive");
const QString observesNestedDirectoriesKey = QStringLiteral("observesNestedDirectories");
const QString isSecureScopedKey = QStringLiteral("isSecureScoped");
const QString isStoppedKey = QStringLiteral("isStopped");

std::unexpected<ObservedDirectory::Error> failure(const QString& reason)
{
    return std::unexpected(ObservedDirectory::Error{reason});
}

// Every listed key must hold a boolean.
bool readBooleans(const QJsonValue& value, std::initializer_list<std::pair<QString, bool*>> fields)
{
    if (!value.isObject()) {
        return false;
    }
    const QJsonObject object = value.toObject();
    for (const auto& [key, target] : fields) {
        const QJsonValue field = object.value(key);
        if (!field.isBool()) {
            return false;
        }
        *target = field.toBool();
    }
    return true;
}

} // namespace

QString ObservedDirectory::Error::description() const
{
    return QStringLiteral("Cannot decode a watched folder: %1").arg(reason);
}

ObservedDirectory ObservedDirectory::make(const QUrl& url, const QByteArray& bookmarkData)
{
    ObservedDirectory directory;
    directory.identifier = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    directory.url = url;
    directory.bookmarkData = bookmarkData;
    return directory;
}

QJsonObject ObservedDirectory::toJson() const
{
    QJsonArray matcherArray;
    for (const DirectoryObserverItemMatcher& matcher : matchers) {
        matcherArray.append(matcher.toJson());
    }
    QJsonArray filterArray;
    for (const DirectoryObserverFilter& filter : filters) {
        filterArray.append(filter.toJson());
    }
    return QJsonObject{
        {identifierKey, identifier},
        {urlKey, url.toString(QUrl::FullyEncoded)},
        {bookmarkDataKey, QString::fromLatin1(bookmarkData.toBase64())},
        {matchersKey, matcherArray},
        {filtersKey, filterArray},
        {optionsKey, QJsonObject{{appendsToInitialShelfKey, options.appendsToInitialShelf},
                                 {rulesCaseSensitiveKey, options.rulesCaseSensitive},
                                 {observesNestedDirectoriesKey, options.observesNestedDirectories}}},
        {lifecycleKey,
         QJsonObject{{isSecureScopedKey, lifecycle.isSecureScoped}, {isStoppedKey, lifecycle.isStopped}}},
    };
}

std::expected<ObservedDirectory, ObservedDirectory::Error>
ObservedDirectory::fromJson(const QJsonValue& value)
{
    if (!value.isObject()) {
        return failure(QStringLiteral("not an object"));
    }
    const QJsonObject object = value.toObject();
    ObservedDirectory directory;

    const QJsonValue identifier = object.value(identifierKey);
    if (!identifier.isString()) {
        return failure(QStringLiteral("no identifier"));
    }
    directory.identifier = identifier.toString();

    directory.url = QUrl(object.value(urlKey).toString(), QUrl::StrictMode);
    if (!object.value(urlKey).isString() || !directory.url.isValid()) {
        return failure(QStringLiteral("no valid url in %1").arg(directory.identifier));
    }

    const auto bookmark = QByteArray::fromBase64Encoding(object.value(bookmarkDataKey).toString().toLatin1(),
                                                         QByteArray::AbortOnBase64DecodingErrors);
    if (!object.value(bookmarkDataKey).isString() || !bookmark) {
        return failure(QStringLiteral("no valid bookmarkData in %1").arg(directory.identifier));
    }
    directory.bookmarkData = bookmark.decoded;

    const QJsonValue matchers = object.value(matchersKey);
    if (!matchers.isArray()) {
        return failure(QStringLiteral("no matchers in %1").arg(directory.identifier));
    }
    for (const QJsonValue& matcher : matchers.toArray()) {
        auto decoded = DirectoryObserverItemMatcher::fromJson(matcher);
        if (!decoded) {
            return failure(decoded.error().description());
        }
        directory.matchers.append(std::move(*decoded));
    }

    const QJsonValue filters = object.value(filtersKey);
    if (!filters.isUndefined() && !filters.isNull()) {
        if (!filters.isArray()) {
            return failure(QStringLiteral("filters of %1 are not a list").arg(directory.identifier));
        }
        for (const QJsonValue& filter : filters.toArray()) {
            auto decoded = DirectoryObserverFilter::fromJson(filter);
            if (!decoded) {
                return failure(decoded.error().description());
            }
            directory.filters.append(std::move(*decoded));
        }
    }

    Options& options = directory.options;
    if (!readBooleans(object.value(optionsKey),
                      {{appendsToInitialShelfKey, &options.appendsToInitialShelf},
                       {rulesCaseSensitiveKey, &options.rulesCaseSensitive},
                       {observesNestedDirectoriesKey, &options.observesNestedDirectories}})) {
        return failure(QStringLiteral("no valid options in %1").arg(directory.identifier));
    }
    Lifecycle& lifecycle = directory.lifecycle;
    if (!readBooleans(object.value(lifecycleKey), {{isSecureScopedKey, &lifecycle.isSecureScoped},
                                                   {isStoppedKey, &lifecycle.isStopped}})) {
        return failure(QStringLiteral("no valid lifecycle in %1").arg(directory.identifier));
    }
    return directory;
}

QDebug operator<<(QDebug debug, const ObservedDirectory& directory)
{
    const QDebugStateSaver saver(debug);
    debug.nospace().noquote() << "ObservedDirectory(" << directory.identifier << ", "
                              << directory.url.toDisplayString(QUrl::PreferLocalFile) << ", "
                              << directory.filters.size() << " rules"
                              << (directory.lifecycle.isStopped ? ", stopped" : "") << ')';
    return debug;
}

} // namespace Vantrope
