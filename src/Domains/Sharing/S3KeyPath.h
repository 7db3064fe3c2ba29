// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <variant>

namespace Vantrope {

// One piece of the path an uploaded object is stored under: literal text, or the upload's date, a fresh
// UUID or the file's name.
struct PathToken {
    enum class Kind { element, date, uuid, filename };
    Kind kind = Kind::element;
    QString text; // for `element`

    static PathToken element(QString text) { return {Kind::element, std::move(text)}; }
    static PathToken date() { return {Kind::date, {}}; }
    static PathToken uuid() { return {Kind::uuid, {}}; }
    static PathToken filename() { return {Kind::filename, {}}; }
    bool operator==(const PathToken&) const = default;
};

using TokenizedPath = QList<PathToken>;

// What the tokens stand for in one upload.
struct PathTokenFactory {
    QString fileName;
    QString uuid;
    QDateTime date;

    // The tokens in order; a trailing "/" is dropped. The date reads "yyyyMMddHHmmss".
    QString resolve(const TokenizedPath& path) const;
};

namespace S3KeyPath {

// "Vantrope/", a UUID, "/", the file name: a folder of its own per upload.
TokenizedPath defaultPath();

// The stored form: a JSON array of one-key objects, {"element":{"_0":"text"}}, {"date":{}}, {"uuid":{}},
// {"filename":{}}.
QByteArray encode(const TokenizedPath& path);
std::expected<TokenizedPath, QString> decode(const QByteArray& json);
// The stored path, or the default one when none is stored or it cannot be read.
TokenizedPath fromStored(const QByteArray& stored);

} // namespace S3KeyPath

// How long a presigned link lives, as the share sheet offers it.
struct S3ExpirationOption {
    enum class Unit { minutes, hours, days };
    Unit unit = Unit::minutes;
    int count = 0;

    qint64 seconds() const;
    QString title() const;

    // 10 and 30 minutes; 1, 3, 6, 12 and 24 hours; 2 to 7 days.
    static const QList<S3ExpirationOption>& all();
    // The row nearest to `seconds`; the earlier one when two are as near.
    static qsizetype closestIndex(qint64 seconds);
    bool operator==(const S3ExpirationOption&) const = default;
};

} // namespace Vantrope
