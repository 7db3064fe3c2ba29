// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <memory>
#include <optional>
#include <QObject>

class QMenu;

namespace Vantrope {

class DragSessionHistoryMenuItemFactory;
class PersistentDragSessionFetchController;
class PersistentDragSessionStore;
class Preferences;
class SessionController;
class StatusItemController;

// The tray item and its menu: a new shelf, the recent shelves, the settings and quitting.
class MenuItemController final : public QObject {
    Q_OBJECT
public:
    // The termination rule asks which item was chosen last; `quit` keeps its number.
    enum class Item { newShelf = 0, recentShelf = 1, settings = 2, quit = 3 };

    MenuItemController(SessionController& sessionController, PersistentDragSessionStore& sessionStore,
                       QObject* parent = nullptr);
    ~MenuItemController() override;

    void showStatusItem();
    // Follows the tray preferences (icon style, hidden) from now on.
    void followPreferences(Preferences& preferences);
    // Rebuilds the menu on the next turn of the event loop, or once it closes if it is open.
    void reload();

    QMenu& menu() const { return *m_menu; }
    bool isOpen() const { return m_isOpen; }
    std::optional<Item> lastSelectedItem() const { return m_lastSelectedItem; }

Q_SIGNALS:
    void settingsRequested();
    void quitRequested();

private:
    void rebuild();
    void select(Item item);

    SessionController& m_sessionController;
    std::unique_ptr<QMenu> m_menu;
    std::unique_ptr<PersistentDragSessionFetchController> m_fetchController;
    std::unique_ptr<DragSessionHistoryMenuItemFactory> m_historyFactory;
    std::unique_ptr<StatusItemController> m_statusItem;
    bool m_isOpen = false;
    bool m_reloadPending = false;
    std::optional<Item> m_lastSelectedItem;
};

} // namespace Vantrope
