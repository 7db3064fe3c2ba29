// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QByteArray>
#include <QString>

namespace Vantrope {

// File names on Linux are bytes; Qt reads them as UTF-8 and loses any byte that is no valid UTF-8.
// Here such a byte becomes a lone surrogate (U+DC80 + byte), so a name the user typed survives the trip
// through a QString and comes back as the very same bytes.
class LocalFileName final {
public:
    static QString decode(const QByteArray& bytes);
    static QByteArray encode(const QString& name);
    // True when Qt's own file functions reach the file under QFile::decodeName(bytes).
    static bool isPlain(const QByteArray& bytes);
    // The name with each stray byte shown as U+FFFD, for people and for Qt's file functions.
    static QString displayName(const QString& name);
    // A name under which Qt reaches the file `name` names: `name` itself when it is plain, otherwise a
    // new link of ours in the cache folder, named with displayName(). Absent when no link can be made.
    static std::optional<QString> reachableName(const QString& name);
};

} // namespace Vantrope
