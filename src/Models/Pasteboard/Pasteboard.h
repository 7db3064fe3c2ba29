// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "PasteboardItem.h"

#include <QList>
#include <QStringList>

class QMimeData;

namespace Vantrope {

// A snapshot of a drag's or the clipboard's content as a list of items with typed values.
class Pasteboard final {
public:
    Pasteboard() = default;
    explicit Pasteboard(QList<PasteboardItem> items, int changeCount = 0);

    // Each URL of a "text/uri-list" becomes an item of its own; with a single URL that item also carries
    // every other type, and without URLs the whole content is one item.
    static Pasteboard fromMimeData(const QMimeData& mimeData, int changeCount = 0);

    const QList<PasteboardItem>& items() const { return m_items; }
    // Every type of every item, each once, in first-seen order.
    QStringList types() const;
    bool hasType(const QString& type) const;
    bool hasTypeWithPrefix(const QString& prefix) const;
    int changeCount() const { return m_changeCount; }

private:
    QList<PasteboardItem> m_items;
    int m_changeCount = 0;
};

} // namespace Vantrope
