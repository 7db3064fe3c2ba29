// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DirectoryObserverItem.h"

#include <expected>
#include <optional>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <variant>

namespace Vantrope {

// A test on one property of a new item in a watched folder; the user's rules are made of these.
class DirectoryObserverItemMatcher final {
public:
    struct Error {
        enum class Kind { decodeError };
        Kind kind = Kind::decodeError;
        QString reason;
        QString description() const;
    };

    struct StringMatching {
        enum class Comparison { contains, doesNotContain, startsWith, endsWith, equals, doesNotEqual };
        Comparison comparison = Comparison::contains;
        QString pattern;

        bool matches(const QString& value, bool caseSensitive) const;
        bool operator==(const StringMatching&) const = default;
    };

    struct SizeMatching {
        enum class Comparison { greaterThan, lessThan, equalTo };
        Comparison comparison = Comparison::greaterThan;
        quint64 bytes = 0;

        bool matches(quint64 size) const;
        bool operator==(const SizeMatching&) const = default;
    };

    struct KindMatching {
        enum class Comparison { equals, doesNotEqual };
        enum class Kind {
            application,
            archive,
            document,
            folder,
            image,
            video,
            audio,
            pdf,
            presentation,
            text
        };
        Comparison comparison = Comparison::equals;
        Kind kind = Kind::application;

        bool matches(const QUrl& url) const;
        bool operator==(const KindMatching&) const = default;

        static QString rawValue(Kind kind);
        static std::optional<Kind> kindFromRawValue(const QString& rawValue);
        // Lowercase; empty for `folder`, which the file system decides.
        static const QStringList& extensions(Kind kind);
    };

    enum class Property { fileName, fileType, fileExtension, fileSize, kind };

    // Matches every name (`fileName` contains "").
    DirectoryObserverItemMatcher();

    static DirectoryObserverItemMatcher fileName(StringMatching matching);
    static DirectoryObserverItemMatcher fileType(StringMatching matching);
    static DirectoryObserverItemMatcher fileExtension(StringMatching matching);
    static DirectoryObserverItemMatcher fileSize(SizeMatching matching);
    static DirectoryObserverItemMatcher kind(KindMatching matching);

    Property property() const { return m_property; }
    // The payload of the property's kind; null for the others.
    const StringMatching* stringMatching() const { return std::get_if<StringMatching>(&m_payload); }
    const SizeMatching* sizeMatching() const { return std::get_if<SizeMatching>(&m_payload); }
    const KindMatching* kindMatching() const { return std::get_if<KindMatching>(&m_payload); }

    bool matches(const DirectoryObserverItem& item, bool caseSensitive) const;

    // One key per level, e.g. {"fileSize": {"lessThan": 1048576}}.
    QJsonObject toJson() const;
    // No discriminator: the keys are tried in a fixed order and the first that decodes wins.
    static std::expected<DirectoryObserverItemMatcher, Error> fromJson(const QJsonValue& value);

    // The MIME type name of the file; empty when it is not a local file or cannot be examined.
    static QString typeIdentifier(const QUrl& url);

    bool operator==(const DirectoryObserverItemMatcher&) const = default;

private:
    DirectoryObserverItemMatcher(Property property,
                                 std::variant<StringMatching, SizeMatching, KindMatching> payload)
        : m_property(property)
        , m_payload(std::move(payload))
    {}

    Property m_property = Property::fileName;
    std::variant<StringMatching, SizeMatching, KindMatching> m_payload;
};

} // namespace Vantrope
