// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QColor>

namespace Vantrope {

// A colour pair resolved by the appearance in force: the first for a light appearance, the second
// for a dark one.
class AdaptiveColor final {
public:
    AdaptiveColor() = default;
    AdaptiveColor(const QColor& light, const QColor& dark)
        : m_light(light)
        , m_dark(dark)
    {}

    const QColor& light() const { return m_light; }
    const QColor& dark() const { return m_dark; }
    const QColor& color(bool dark) const { return dark ? m_dark : m_light; }

    bool operator==(const AdaptiveColor&) const = default;

private:
    QColor m_light;
    QColor m_dark;
};

} // namespace Vantrope
