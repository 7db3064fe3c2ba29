// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionInlineEditor.h"

#include <QFileInfo>
#include <QKeyEvent>

namespace Vantrope {

DragSessionInlineEditor::DragSessionInlineEditor(const QString& text, Done done, QWidget* parent)
    : QLineEdit(text, parent)
    , m_done(std::move(done))
{
    setFrame(true);
    // A file's name is selected without its extension, as file managers do.
    const QString suffix = QFileInfo(text).completeSuffix();
    const qsizetype stem = suffix.isEmpty() || suffix == text ? text.size() : text.size() - suffix.size() - 1;
    setSelection(0, int(stem));
}

DragSessionInlineEditor::~DragSessionInlineEditor()
{
    if (auto done = std::exchange(m_done, nullptr)) {
        done(std::nullopt);
    }
}

void DragSessionInlineEditor::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        finish(text());
        return;
    }
    if (event->key() == Qt::Key_Escape) {
        finish(std::nullopt);
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void DragSessionInlineEditor::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    // A menu or completer popping up is no reason to give up.
    if (event->reason() != Qt::PopupFocusReason) {
        finish(std::nullopt);
    }
}

void DragSessionInlineEditor::finish(const std::optional<QString>& text)
{
    if (auto done = std::exchange(m_done, nullptr)) {
        hide();
        deleteLater();
        done(text);
    }
}

} // namespace Vantrope
