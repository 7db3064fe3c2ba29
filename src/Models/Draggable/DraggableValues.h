// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QByteArray>
#include <QString>

namespace Vantrope::DraggableValues {

// The first URL of a text/uri-list; comments and line ends are not part of it.
QString firstUriListEntry(const QString& list);

// Text that browsers offer either as UTF-8 or as UTF-16 (with a byte-order mark, or little-endian
// without one, which shows in NUL bytes that UTF-8 text never holds). Absent when undecodable.
std::optional<QString> decodeText(const QByteArray& data);

} // namespace Vantrope::DraggableValues
