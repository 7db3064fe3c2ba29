// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "TransientProperties.h"

namespace Vantrope {

TransientProperties::TransientProperties(QObject* parent)
    : QObject(parent)
{}

TransientProperties& TransientProperties::shared()
{
    // Never destroyed: observers may still disconnect from it during static destruction.
    static auto* properties = new TransientProperties;
    return *properties;
}

void TransientProperties::setEditingShortcuts(bool value)
{
    if (m_isEditingShortcuts != value) {
        m_isEditingShortcuts = value;
        Q_EMIT isEditingShortcutsChanged(value);
    }
}

void TransientProperties::setDraggingPasteboardContent(bool value)
{
    if (m_isDraggingPasteboardContent != value) {
        m_isDraggingPasteboardContent = value;
        Q_EMIT isDraggingPasteboardContentChanged(value);
    }
}

void TransientProperties::setDragging(bool value)
{
    // The recognizer sets this on every drag event; only changes are worth a signal.
    if (m_isDragging != value) {
        m_isDragging = value;
        Q_EMIT isDraggingChanged(value);
    }
}

} // namespace Vantrope
