// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <QByteArray>
#include <QJsonValue>
#include <QSettings>
#include <QString>
#include <QVariant>

namespace Vantrope {

// A QSettings file format that keeps value types, which INI files lose: a bool stays a bool, an int
// an int, a list a list. The document is one JSON object of stored name to value. What JSON cannot
// hold is tagged as a one-key object: {"$date": "<ISO 8601 in UTC with Z>"} and
// {"$data": "<base64>"}. A one-key dictionary whose key looks like a tag ("$date", "$$data", ...) is
// written with one more "$", so no dictionary can pass for a tag; all other keys, and anything in the
// file that is not ours, are kept as they are.
class JsonSettingsFormat final {
public:
    struct Error {
        QString reason;
    };

    JsonSettingsFormat() = delete;

    // Registered once per process.
    static QSettings::Format format();

    static std::expected<QSettings::SettingsMap, Error> parse(const QByteArray& json);
    static QByteArray serialize(const QSettings::SettingsMap& map);

    // Whether `value` can be written and read back with its type.
    static bool canStore(const QVariant& value);

    static QJsonValue toJson(const QVariant& value);
    static QVariant fromJson(const QJsonValue& value);
};

} // namespace Vantrope
