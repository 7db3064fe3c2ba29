// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QAbstractButton>

namespace Vantrope {

// The small round buttons in a shelf's corners.
class DragSessionButton final : public QAbstractButton {
    Q_OBJECT
public:
    enum class Glyph { close, restore, menu, disclosure };

    static constexpr int diameter = 20;

    DragSessionButton(Glyph glyph, QWidget* parent = nullptr);

    void setDark(bool dark);
    QSize sizeHint() const override { return {diameter, diameter}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    const Glyph m_glyph;
    bool m_dark = false;
    bool m_hovered = false;
};

} // namespace Vantrope
