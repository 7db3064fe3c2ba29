// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QUrl>
#include <QWidget>

namespace Vantrope {

// A panel over the lower part of a shelf: the transient messages, and the state of an action or upload
// (progress, error, the link it made).
class DragSessionOverlayView final : public QWidget {
    Q_OBJECT
public:
    enum class Icon { none, warning, error, info, screenshot, link };

    struct Content {
        Icon icon = Icon::none;
        QString title;
        QString text;
        // 0 to 1; a bar is shown when present.
        std::optional<double> progress;
        // Opened on a click.
        std::optional<QUrl> link;
    };

    explicit DragSessionOverlayView(QWidget* parent = nullptr);

    void setContent(const Content& content);
    const Content& content() const { return m_content; }
    void setAccentColor(const QColor& color);
    // The height the panel needs for its content at `width`.
    int heightForWidth(int width) const override;
    bool hasHeightForWidth() const override { return true; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QRectF textArea(const QRectF& panel) const;

    Content m_content;
    QColor m_accent;
};

} // namespace Vantrope
