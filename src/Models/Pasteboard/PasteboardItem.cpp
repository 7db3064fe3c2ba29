// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "PasteboardItem.h"

#include <QStringDecoder>

namespace Vantrope {

void PasteboardItem::setData(const QString& type, const QByteArray& data)
{
    for (auto& entry : m_entries) {
        if (entry.first == type) {
            entry.second = data;
            return;
        }
    }
    m_entries.append({type, data});
}

bool PasteboardItem::hasType(const QString& type) const
{
    return std::any_of(m_entries.cbegin(), m_entries.cend(),
                       [&type](const auto& entry) { return entry.first == type; });
}

QStringList PasteboardItem::types() const
{
    QStringList result;
    result.reserve(m_entries.size());
    for (const auto& entry : m_entries) {
        result.append(entry.first);
    }
    return result;
}

std::optional<QByteArray> PasteboardItem::data(const QString& type) const
{
    for (const auto& entry : m_entries) {
        if (entry.first == type) {
            return entry.second;
        }
    }
    return std::nullopt;
}

std::optional<QString> PasteboardItem::string(const QString& type) const
{
    const auto bytes = data(type);
    if (!bytes) {
        return std::nullopt;
    }
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(*bytes);
    if (decoder.hasError()) {
        return std::nullopt;
    }
    return text;
}

} // namespace Vantrope
