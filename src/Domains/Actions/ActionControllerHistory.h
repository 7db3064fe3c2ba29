// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QStringList>

namespace Vantrope {

class Preferences;

// The actions run most recently, newest first, without repeats; search shows them on top.
class ActionControllerHistory final {
public:
    static constexpr int limit = 5;

    explicit ActionControllerHistory(Preferences& preferences);

    QStringList identifiers() const;
    void record(const QString& identifier);

private:
    Preferences& m_preferences;
};

} // namespace Vantrope
