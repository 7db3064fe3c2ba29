// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "CommandTemplate.h"

#include "Libraries/Core/Localized.h"

namespace Vantrope {

namespace {

// Placeholders survive the split as these markers, so that a quoted "%f" is still a file, and a file name
// can never be mistaken for a placeholder (substitution happens after splitting).
const QChar singleMarker(0xE000);
const QChar allMarker(0xE001);

QString expand(const QString& word, const QString& file)
{
    QString result = word;
    result.replace(singleMarker, file);
    return result;
}

} // namespace

QString CommandTemplate::Error::description() const
{
    switch (kind) {
    case Kind::empty:
        return Localized("command-template.error.empty", "The command is empty.");
    case Kind::unclosedQuote:
        return Localized("command-template.error.quote", "A quote in the command is not closed.");
    case Kind::trailingBackslash:
        return Localized("command-template.error.backslash", "The command ends with a backslash.");
    }
    return {};
}

std::expected<CommandTemplate, CommandTemplate::Error> CommandTemplate::parse(const QString& command)
{
    CommandTemplate result;
    QString word;
    bool inWord = false;
    QChar quote;
    for (qsizetype index = 0; index < command.size(); ++index) {
        const QChar c = command[index];
        if (c == QLatin1Char('%') && index + 1 < command.size() && quote != QLatin1Char('\'')) {
            const QChar next = command[index + 1];
            if (next == QLatin1Char('f') || next == QLatin1Char('F') || next == QLatin1Char('%')) {
                word += next == QLatin1Char('f')   ? singleMarker
                        : next == QLatin1Char('F') ? allMarker
                                                   : QLatin1Char('%');
                inWord = true;
                ++index;
                continue;
            }
        }
        if (!quote.isNull()) {
            if (c == quote) {
                quote = QChar();
            } else if (c == QLatin1Char('\\') && quote == QLatin1Char('"') && index + 1 < command.size() &&
                       QStringLiteral("\"\\$`").contains(command[index + 1])) {
                word += command[++index];
            } else {
                word += c;
            }
            continue;
        }
        if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
            quote = c;
            inWord = true;
        } else if (c == QLatin1Char('\\')) {
            if (index + 1 >= command.size()) {
                return std::unexpected(Error{Error::Kind::trailingBackslash});
            }
            word += command[++index];
            inWord = true;
        } else if (c.isSpace()) {
            if (inWord) {
                result.m_words.append(word);
                word.clear();
                inWord = false;
            }
        } else {
            word += c;
            inWord = true;
        }
    }
    if (!quote.isNull()) {
        return std::unexpected(Error{Error::Kind::unclosedQuote});
    }
    if (inWord) {
        result.m_words.append(word);
    }
    if (result.m_words.isEmpty()) {
        return std::unexpected(Error{Error::Kind::empty});
    }
    return result;
}

QList<QStringList> CommandTemplate::invocations(const QStringList& files) const
{
    const bool perFile = std::any_of(m_words.cbegin(), m_words.cend(),
                                     [](const QString& word) { return word.contains(singleMarker); });
    const bool allFiles = std::any_of(m_words.cbegin(), m_words.cend(),
                                      [](const QString& word) { return word.contains(allMarker); });
    const auto build = [&](const QString& file) {
        QStringList arguments;
        for (const QString& word : m_words) {
            if (word.contains(allMarker)) {
                // %F stands for the files as separate words; text around it goes with each.
                for (const QString& each : files) {
                    QString expanded = expand(word, file);
                    arguments.append(expanded.replace(allMarker, each));
                }
            } else {
                arguments.append(expand(word, file));
            }
        }
        if (!perFile && !allFiles) {
            arguments.append(files);
        }
        return arguments;
    };
    QList<QStringList> runs;
    if (perFile) {
        for (const QString& file : files) {
            runs.append(build(file));
        }
    } else {
        runs.append(build(QString()));
    }
    return runs;
}

} // namespace Vantrope
