// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "StringTruncation.h"

namespace Vantrope {

namespace {

// Moves a cut that would fall inside a surrogate pair to the pair's start.
qsizetype safeCut(const QString& text, qsizetype index)
{
    if (index > 0 && index < text.size() && text.at(index).isLowSurrogate() &&
        text.at(index - 1).isHighSurrogate()) {
        return index - 1;
    }
    return index;
}

} // namespace

QString truncated(const QString& text, qsizetype limit, TruncationPosition position, const QString& leader)
{
    if (text.size() <= limit) {
        return text;
    }
    const qsizetype room = limit - leader.size();
    if (room <= 0) {
        return leader.left(std::max<qsizetype>(limit, 0));
    }
    switch (position) {
    case TruncationPosition::head: {
        qsizetype start = text.size() - room;
        if (start < text.size() && text.at(start).isLowSurrogate()) {
            ++start;
        }
        return leader + text.mid(start);
    }
    case TruncationPosition::middle: {
        const qsizetype headLength = safeCut(text, (room + 1) / 2);
        qsizetype tailStart = text.size() - (room - headLength);
        if (tailStart < text.size() && text.at(tailStart).isLowSurrogate()) {
            ++tailStart;
        }
        return text.left(headLength) + leader + text.mid(tailStart);
    }
    case TruncationPosition::tail:
        break;
    }
    return text.left(safeCut(text, room)) + leader;
}

QString menuItemEllipsis()
{
    return QStringLiteral("…");
}

} // namespace Vantrope
