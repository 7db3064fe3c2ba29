// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <functional>
#include <optional>
#include <QLineEdit>

namespace Vantrope {

// The one-line editor laid over a shelf to name it or one of its files. It answers exactly once: the
// text on Enter, none on Escape or when it loses the focus; then it goes.
class DragSessionInlineEditor final : public QLineEdit {
    Q_OBJECT
public:
    using Done = std::function<void(const std::optional<QString>& text)>;

    DragSessionInlineEditor(const QString& text, Done done, QWidget* parent);
    ~DragSessionInlineEditor() override;

    // Answers none at once, as when the shelf that holds it goes.
    void giveUp() { finish(std::nullopt); }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void finish(const std::optional<QString>& text);

    Done m_done;
};

} // namespace Vantrope
