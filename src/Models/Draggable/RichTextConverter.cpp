// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "RichTextConverter.h"

#include "DraggableValues.h"

#include <algorithm>
#include <array>
#include <QList>
#include <QSet>
#include <QTextDocumentFragment>

namespace Vantrope {

namespace {

// Windows-1252 where it differs from Latin-1; RTF's "\'hh" escapes are in that code page almost always.
constexpr std::array<char16_t, 32> windows1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

QChar windows1252(uchar byte)
{
    return byte >= 0x80 && byte < 0xA0 ? QChar(windows1252High[byte - 0x80]) : QChar(char16_t(byte));
}

bool isSkippedDestination(const QByteArray& word)
{
    static const QSet<QByteArray> destinations = {
        "fonttbl",      "colortbl",  "stylesheet", "info",     "pict",      "object",
        "header",       "headerl",   "headerr",    "headerf",  "footer",    "footerl",
        "footerr",      "footerf",   "fldinst",    "filetbl",  "listtable", "listoverridetable",
        "revtbl",       "rsidtbl",   "generator",  "xmlnstbl", "themedata", "colorschememapping",
        "latentstyles", "datastore", "nonshppict"};
    return destinations.contains(word);
}

QChar symbolFor(const QByteArray& word)
{
    static const QHash<QByteArray, char16_t> symbols = {
        {"par", u'\n'},           {"line", u'\n'},          {"sect", u'\n'},       {"page", u'\n'},
        {"row", u'\n'},           {"tab", u'\t'},           {"cell", u'\t'},       {"emdash", u'\u2014'},
        {"endash", u'\u2013'},    {"bullet", u'\u2022'},    {"lquote", u'\u2018'}, {"rquote", u'\u2019'},
        {"ldblquote", u'\u201C'}, {"rdblquote", u'\u201D'}, {"emspace", u' '},     {"enspace", u' '}};
    return QChar(symbols.value(word, 0));
}

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

class RTFReader final {
public:
    explicit RTFReader(const QByteArray& rtf)
        : m_rtf(rtf)
    {}

    QString read()
    {
        while (m_position < m_rtf.size()) {
            const char c = m_rtf.at(m_position++);
            switch (c) {
            case '{':
                openGroup();
                break;
            case '}':
                closeGroup();
                break;
            case '\\':
                readControl();
                break;
            case '\r':
            case '\n':
                break;
            default:
                put(windows1252(uchar(c)));
            }
        }
        return m_text;
    }

private:
    struct Group {
        bool skip = false;
        int unicodeFallback = 1;
    };

    // Deeper nesting than any real document is counted but not kept, so that a file of braces
    // cannot grow the stack without bound.
    static constexpr qsizetype maximumDepth = 512;

    void openGroup()
    {
        m_pendingFallback = 0;
        if (m_groups.size() >= maximumDepth) {
            ++m_excessDepth;
            return;
        }
        m_groups.append(m_current);
    }

    void closeGroup()
    {
        m_pendingFallback = 0;
        if (m_excessDepth > 0) {
            --m_excessDepth;
        } else if (!m_groups.isEmpty()) {
            m_current = m_groups.takeLast();
        }
    }

    void put(QChar c)
    {
        if (m_pendingFallback > 0) {
            --m_pendingFallback;
            return;
        }
        if (!m_current.skip) {
            m_text.append(c);
        }
    }

    void readControl()
    {
        if (m_position >= m_rtf.size()) {
            return;
        }
        const char c = m_rtf.at(m_position);
        if (!isLetter(c)) {
            ++m_position;
            readSymbol(c);
            return;
        }
        const qsizetype start = m_position;
        while (m_position < m_rtf.size() && isLetter(m_rtf.at(m_position)) && m_position - start < 32) {
            ++m_position;
        }
        const QByteArray word = m_rtf.mid(start, m_position - start);
        std::optional<int> parameter;
        const bool negative = m_position < m_rtf.size() && m_rtf.at(m_position) == '-';
        if (negative) {
            ++m_position;
        }
        qint64 value = 0;
        int digits = 0;
        while (m_position < m_rtf.size() && isDigit(m_rtf.at(m_position))) {
            if (digits++ < 10) {
                value = value * 10 + (m_rtf.at(m_position) - '0');
            }
            ++m_position;
        }
        if (digits > 0) {
            parameter = int(std::clamp<qint64>(negative ? -value : value, -0x7fffffff, 0x7fffffff));
        }
        if (m_position < m_rtf.size() && m_rtf.at(m_position) == ' ') {
            ++m_position;
        }
        readWord(word, parameter);
    }

    void readWord(const QByteArray& word, std::optional<int> parameter)
    {
        if (isSkippedDestination(word)) {
            m_current.skip = true;
        } else if (word == "u" && parameter) {
            const int unit = *parameter < 0 ? *parameter + 0x10000 : *parameter;
            if (!m_current.skip && m_pendingFallback == 0) {
                m_text.append(QChar(char16_t(unit & 0xFFFF)));
            }
            m_pendingFallback = m_current.unicodeFallback;
        } else if (word == "uc" && parameter) {
            m_current.unicodeFallback = qBound(0, *parameter, 16);
        } else if (word == "bin" && parameter) {
            m_position += std::clamp<qsizetype>(*parameter, 0, m_rtf.size() - m_position);
        } else if (const QChar symbol = symbolFor(word); !symbol.isNull()) {
            put(symbol);
        }
    }

    void readSymbol(char c)
    {
        switch (c) {
        case '\\':
        case '{':
        case '}':
            put(QLatin1Char(c));
            break;
        case '~':
            put(QChar(0x00A0));
            break;
        case '_':
            put(QChar(0x2011));
            break;
        case '*':
            m_current.skip = true;
            break;
        case '\'': {
            // A cut-off escape at the end of the data shows nothing.
            const QByteArray hex = m_rtf.mid(m_position, 2);
            m_position += hex.size();
            bool ok = false;
            const uint byte = hex.toUInt(&ok, 16);
            if (ok && hex.size() == 2) {
                put(windows1252(uchar(byte)));
            }
            break;
        }
        case '\r':
        case '\n':
            put(QLatin1Char('\n'));
            break;
        default:
            // "\-" (optional hyphen) and the rest show nothing.
            break;
        }
    }

    const QByteArray& m_rtf;
    qsizetype m_position = 0;
    QList<Group> m_groups;
    Group m_current;
    qsizetype m_excessDepth = 0;
    int m_pendingFallback = 0;
    QString m_text;
};

} // namespace

std::optional<QString> RichTextConverter::plainTextFromRTF(const QByteArray& rtf)
{
    if (!rtf.trimmed().startsWith("{\\rtf")) {
        return std::nullopt;
    }
    return RTFReader(rtf).read();
}

std::optional<QString> RichTextConverter::plainTextFromHTML(const QByteArray& html)
{
    const std::optional<QString> text = DraggableValues::decodeText(html);
    if (!text) {
        return std::nullopt;
    }
    // Images leave an object replacement character behind, which means nothing as plain text.
    return QTextDocumentFragment::fromHtml(*text).toPlainText().remove(QChar::ObjectReplacementCharacter);
}

} // namespace Vantrope
