// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <functional>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

namespace Vantrope {

// One choice an operation asks for before it runs (a size, a format, a pattern). The option dialogs, the
// command line's key=value settings, the remembered last choice and the steps of a user's own operation
// are all made from these descriptions, so an operation describes its choices once.
struct OperationSetting {
    enum class Type { integer, choice, boolean, text, folder };

    struct Choice {
        QString value; // what is stored and typed on the command line
        QString title; // what the dialog shows
        bool operator==(const Choice&) const = default;
    };

    QString key; // a stable name: "width", "format", "quality"
    QString title;
    Type type = Type::integer;
    QVariant defaultValue;
    int minimum = 0; // for integers
    int maximum = 0;
    QList<Choice> choices; // for choices

    bool operator==(const OperationSetting&) const = default;
};

using OperationSettings = QList<OperationSetting>;

// The reasons a set of values is refused; `description()` is a sentence for the user.
struct OperationSettingError {
    enum class Kind { unknownKey, wrongType, outOfRange, unknownChoice, empty };
    Kind kind = Kind::wrongType;
    QString key;
    QString expected; // the expected type or the allowed values, in words
    QString description() const;
    bool operator==(const OperationSettingError&) const = default;
};

// Checks `values` against `settings` and answers every setting's value, converted to its type, with the
// defaults filled in for those `values` leaves out. Strings are accepted for every type, as typed on a
// command line ("1600", "true", "webp").
std::expected<QVariantMap, OperationSettingError> resolveOperationSettings(const OperationSettings& settings,
                                                                           const QVariantMap& values);

// What one run of an operation produced. Files that failed do not stop the others.
struct FileOperationFailure {
    QString path;    // the input that failed
    QString message; // in words a user understands, naming nothing secret
    bool operator==(const FileOperationFailure&) const = default;
};

struct FileOperationOutcome {
    QStringList outputFiles; // new files, in input order; they become the shelf's content
    QString text;            // a text result (recognised text, a file's text content), or empty
    QList<FileOperationFailure> failures;
    bool cancelled = false;
};

// What a running operation sees of the one that runs it; both may be called from any thread.
struct FileOperationContext {
    std::function<bool()> isCancelled = [] { return false; };
    // `fraction` in 0..1; `title` names the file at work, or is empty.
    std::function<void(double fraction, const QString& title)> reportProgress = [](double, const QString&) {};
};

} // namespace Vantrope
