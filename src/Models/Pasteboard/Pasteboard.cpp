// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Pasteboard.h"

#include "PasteboardTypes.h"

#include <QMimeData>
#include <QSet>

namespace Vantrope {

namespace {

// RFC 2483: one URI per line, CRLF (or LF) separated, lines starting with '#' are comments.
QList<QByteArray> uriListEntries(const QByteArray& data)
{
    QList<QByteArray> entries;
    qsizetype start = 0;
    while (start < data.size()) {
        qsizetype end = data.indexOf('\n', start);
        if (end < 0) {
            end = data.size();
        }
        QByteArray line = data.mid(start, end - start).trimmed();
        if (!line.isEmpty() && !line.startsWith('#')) {
            entries.append(std::move(line));
        }
        start = end + 1;
    }
    return entries;
}

} // namespace

Pasteboard::Pasteboard(QList<PasteboardItem> items, int changeCount)
    : m_items(std::move(items))
    , m_changeCount(changeCount)
{}

Pasteboard Pasteboard::fromMimeData(const QMimeData& mimeData, int changeCount)
{
    const QStringList formats = mimeData.formats();
    const QList<QByteArray> urls = formats.contains(PasteboardTypes::uriList)
                                       ? uriListEntries(mimeData.data(PasteboardTypes::uriList))
                                       : QList<QByteArray>{};
    QList<PasteboardItem> items;
    if (urls.size() > 1) {
        items.reserve(urls.size());
        for (const QByteArray& url : urls) {
            PasteboardItem item;
            item.setData(PasteboardTypes::uriList, url);
            items.append(std::move(item));
        }
        return Pasteboard(std::move(items), changeCount);
    }

    PasteboardItem item;
    if (urls.size() == 1) {
        item.setData(PasteboardTypes::uriList, urls.first());
    }
    for (const QString& format : formats) {
        if (format != PasteboardTypes::uriList) {
            item.setData(format, mimeData.data(format));
        }
    }
    if (!item.isEmpty()) {
        items.append(std::move(item));
    }
    return Pasteboard(std::move(items), changeCount);
}

QStringList Pasteboard::types() const
{
    QStringList result;
    QSet<QString> seen;
    for (const PasteboardItem& item : m_items) {
        for (const QString& type : item.types()) {
            if (!seen.contains(type)) {
                seen.insert(type);
                result.append(type);
            }
        }
    }
    return result;
}

bool Pasteboard::hasType(const QString& type) const
{
    return std::any_of(m_items.cbegin(), m_items.cend(),
                       [&type](const PasteboardItem& item) { return item.hasType(type); });
}

bool Pasteboard::hasTypeWithPrefix(const QString& prefix) const
{
    return std::any_of(m_items.cbegin(), m_items.cend(), [&prefix](const PasteboardItem& item) {
        const QStringList types = item.types();
        return std::any_of(types.cbegin(), types.cend(),
                           [&prefix](const QString& type) { return type.startsWith(prefix); });
    });
}

} // namespace Vantrope
