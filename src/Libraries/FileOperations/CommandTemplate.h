// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <QList>
#include <QString>
#include <QStringList>

namespace Vantrope {

// A command line the user wrote for their own operation, such as `convert %f -resize 50% "%f.small.png"`.
// It is split into words here, as a shell would split them (quotes, backslashes), but no shell ever runs
// it: each file is one argument whatever characters its name holds. %f runs the command once per file,
// %F once with every file, each its own argument; with neither, the files are appended. %% is a percent.
class CommandTemplate final {
public:
    struct Error {
        enum class Kind { empty, unclosedQuote, trailingBackslash };
        Kind kind = Kind::empty;
        QString description() const;
    };

    static std::expected<CommandTemplate, Error> parse(const QString& command);

    // The program and its arguments of every run, in order.
    QList<QStringList> invocations(const QStringList& files) const;
    const QStringList& words() const { return m_words; }

private:
    QStringList m_words;
};

} // namespace Vantrope
