// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DraggableValues.h"

#include <QStringDecoder>
#include <QStringList>

namespace Vantrope::DraggableValues {

QString firstUriListEntry(const QString& list)
{
    const QStringList lines = list.split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        const QString entry = line.trimmed();
        if (!entry.isEmpty() && !entry.startsWith(QLatin1Char('#'))) {
            return entry;
        }
    }
    return {};
}

std::optional<QString> decodeText(const QByteArray& data)
{
    QStringConverter::Encoding encoding = QStringConverter::Utf8;
    if (data.startsWith("\xFF\xFE")) {
        encoding = QStringConverter::Utf16LE;
    } else if (data.startsWith("\xFE\xFF")) {
        encoding = QStringConverter::Utf16BE;
    } else if (data.contains('\0')) {
        if (data.size() % 2 != 0) {
            return std::nullopt;
        }
        encoding = QStringConverter::Utf16LE;
    }
    QStringDecoder decoder(encoding, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(data);
    if (decoder.hasError()) {
        return std::nullopt;
    }
    // Browsers end these values with a NUL now and then.
    while (text.endsWith(QChar(0))) {
        text.chop(1);
    }
    return text;
}

} // namespace Vantrope::DraggableValues
