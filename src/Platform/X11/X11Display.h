// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QByteArray>
#include <QString>

namespace Vantrope {

class X11Display final {
public:
    // Opens and closes a connection to `display`; returns why it failed, or an empty string.
    static QString probe(const QByteArray& display);
};

} // namespace Vantrope
