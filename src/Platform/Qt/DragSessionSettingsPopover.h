// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DragSession/DragSessionLabel.h"

#include <QAbstractButton>
#include <QPainterPath>
#include <QWidget>

class QCheckBox;
class QLineEdit;

namespace Vantrope {

// One colour of the picker: a round swatch, ringed while it is the shelf's colour.
class DragSessionColorSwatch final : public QAbstractButton {
    Q_OBJECT
public:
    static constexpr int diameter = 22;

    DragSessionColorSwatch(DragSessionLabelColor::Identifier color, QWidget* parent = nullptr);
    DragSessionLabelColor::Identifier color() const { return m_color; }
    QSize sizeHint() const override { return {diameter + 4, diameter + 4}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    DragSessionLabelColor::Identifier m_color;
};

// The shelf's settings: a frameless popup under the colour grabber with the name, the colour, pinned,
// keep in this desktop and when the colour shows. Every change goes out at once as the whole new label.
class DragSessionSettingsPopover final : public QWidget {
    Q_OBJECT
public:
    // Room above the card for the arrow that points at the grabber.
    static constexpr int arrowHeight = 8;

    explicit DragSessionSettingsPopover(const DragSessionLabel& label, QWidget* parent = nullptr);

    const DragSessionLabel& label() const { return m_label; }
    // Places the popup so that its arrow points at `anchor` (global), inside that screen.
    void anchorAt(const QPoint& anchor);

    QLineEdit& nameField() const { return *m_name; }
    DragSessionColorSwatch* swatch(DragSessionLabelColor::Identifier color) const;
    QCheckBox& pinnedBox() const { return *m_pinned; }
    QCheckBox& keepInDesktopBox() const { return *m_keepInDesktop; }
    QCheckBox& alwaysShowColorBox() const { return *m_alwaysShowColor; }

Q_SIGNALS:
    void labelChanged(const DragSessionLabel& label);
    // Once, when the popup has gone.
    void closed();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    // The card and its arrow.
    QPainterPath outline() const;
    void applyShape();
    void change(const DragSessionLabel& label);
    void nameEdited(const QString& text);
    bool isDark() const;

    DragSessionLabel m_label;
    QLineEdit* m_name = nullptr;
    QList<DragSessionColorSwatch*> m_swatches;
    QCheckBox* m_pinned = nullptr;
    QCheckBox* m_keepInDesktop = nullptr;
    QCheckBox* m_alwaysShowColor = nullptr;
    // Where the arrow meets the card, in this widget's coordinates.
    int m_arrowX = 0;
    bool m_closed = false;
};

} // namespace Vantrope
