// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DragSession/PersistentDragSession.h"

#include <QObject>

class QAction;
class QMenu;

namespace Vantrope {

class PersistentDragSessionFetchController;
class SessionController;

// The recent shelves in the tray menu: a section of pinned shelves, then a submenu of the others ended
// by an item that clears the list. Each shelf is a submenu of its own with an item that opens it and
// one that removes it from the list; its picture is read when the menu opens.
class DragSessionHistoryMenuItemFactory final : public QObject {
    Q_OBJECT
public:
    DragSessionHistoryMenuItemFactory(PersistentDragSessionFetchController& fetchController,
                                      SessionController& sessionController, QObject* parent = nullptr);

    // Appends to `menu`; the submenus belong to it.
    void addItems(QMenu& menu);
    // Loads the pictures of the shelves listed directly in `menu`.
    void menuWillOpen(QMenu& menu);

    // What a saved shelf is called in the menu: its name, or its first file and how many follow.
    static QString title(const PersistentDragSession& session);

    void didSelectItem(const QAction& action);
    void didSelectDeleteMenuItem(const QAction& action);
    void didSelectClearHistoryItem();

Q_SIGNALS:
    // Any of its items was chosen.
    void itemSelected();

private:
    QMenu* addSessionMenu(QMenu& menu, const PersistentDragSessionPtr& session);

    PersistentDragSessionFetchController& m_fetchController;
    SessionController& m_sessionController;
};

} // namespace Vantrope
