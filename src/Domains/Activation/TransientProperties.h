// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QObject>

namespace Vantrope {

// Process-wide flags of the moment that several parts read: whether a drag is under way, whether it
// carries pasteboard content, and whether the user is recording a shortcut. Main thread only.
class TransientProperties final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isEditingShortcuts READ isEditingShortcuts WRITE setEditingShortcuts NOTIFY
                   isEditingShortcutsChanged)
    Q_PROPERTY(bool isDraggingPasteboardContent READ isDraggingPasteboardContent WRITE
                   setDraggingPasteboardContent NOTIFY isDraggingPasteboardContentChanged)
    Q_PROPERTY(bool isDragging READ isDragging WRITE setDragging NOTIFY isDraggingChanged)

public:
    // Separate instances are for tests; the program shares this one.
    explicit TransientProperties(QObject* parent = nullptr);
    static TransientProperties& shared();

    bool isEditingShortcuts() const { return m_isEditingShortcuts; }
    bool isDraggingPasteboardContent() const { return m_isDraggingPasteboardContent; }
    bool isDragging() const { return m_isDragging; }

    void setEditingShortcuts(bool value);
    void setDraggingPasteboardContent(bool value);
    void setDragging(bool value);

Q_SIGNALS:
    void isEditingShortcutsChanged(bool value);
    void isDraggingPasteboardContentChanged(bool value);
    void isDraggingChanged(bool value);

private:
    bool m_isEditingShortcuts = false;
    bool m_isDraggingPasteboardContent = false;
    bool m_isDragging = false;
};

} // namespace Vantrope
