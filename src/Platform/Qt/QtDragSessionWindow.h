// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DragSession/DragSessionWindow.h"

#include <memory>
#include <QPointer>
#include <QPropertyAnimation>
#include <QWidget>

namespace Vantrope {

class QtDragSessionView;

// A shelf's window: frameless, above other windows, out of the task bar, on every desktop unless its
// label keeps it on its own. Translucent where a compositing manager draws it; cut to the card's rounded
// shape where none does.
class QtDragSessionWindow final : public DragSessionWindow {
public:
    // Of a retracted shelf this share of the width stays on screen.
    static constexpr double retractedVisibleShare = 0.16;

    QtDragSessionWindow(quint64 windowNumber, const QSizeF& size);
    ~QtDragSessionWindow() override;

    // Maps the window off every screen without focusing it, so that it exists for drag sources that
    // only consider the windows mapped when their drag began; it is brought into view by
    // setFrameOrigin.
    void park();
    void setSize(const QSizeF& size);

    // The view fills the window; the window does not own it.
    void setContentView(QtDragSessionView* view);
    QWidget& widget() const { return *m_widget; }

    bool isVisible() const override;
    double alphaValue() const override;
    void setAlphaValue(double alpha, bool animated) override;
    QRectF frame() const override;
    void setFrameOrigin(const QPointF& origin) override;
    void showAndActivate() override;
    void showWithoutActivating() override;
    quint64 windowNumber() const override { return m_windowNumber; }
    void close() override;
    void setTitle(const QString& title) override;
    void applyLabel(const DragSessionLabel& label) override;
    bool isRetracted() const override { return m_retracted; }
    void retract() override;
    std::optional<Screen> screen() const override;
    bool containsMouse() const override;

private:
    void applyShape();
    void unpark();

    const quint64 m_windowNumber;
    std::unique_ptr<QWidget> m_widget;
    QPointer<QtDragSessionView> m_view;
    QPropertyAnimation m_alphaAnimation;
    QPropertyAnimation m_moveAnimation;
    bool m_allDesktops = true;
    bool m_retracted = false;
    bool m_parked = false;
};

} // namespace Vantrope
