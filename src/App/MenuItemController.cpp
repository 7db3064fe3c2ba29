// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "MenuItemController.h"

#include "Domains/DragSession/PersistentDragSessionFetchController.h"
#include "Domains/SessionController/SessionController.h"
#include "DragSessionHistoryMenuItemFactory.h"
#include "Libraries/Core/Localized.h"
#include "Preferences/Preferences.h"
#include "StatusItemController.h"

#include <QMenu>

namespace Vantrope {

MenuItemController::MenuItemController(SessionController& sessionController,
                                       PersistentDragSessionStore& sessionStore, QObject* parent)
    : QObject(parent)
    , m_sessionController(sessionController)
    , m_menu(std::make_unique<QMenu>())
    , m_fetchController(std::make_unique<PersistentDragSessionFetchController>(
          sessionStore,
          [&sessionController] {
              QSet<QString> open;
              for (const auto& coordinator : sessionController.coordinators()) {
                  open.insert(coordinator->id());
              }
              return open;
          }))
    , m_historyFactory(
          std::make_unique<DragSessionHistoryMenuItemFactory>(*m_fetchController, sessionController))
    , m_statusItem(std::make_unique<StatusItemController>(*m_menu))
{
    m_menu->setToolTipsVisible(true);
    connect(m_menu.get(), &QMenu::aboutToShow, this, [this] {
        m_isOpen = true;
        m_historyFactory->menuWillOpen(*m_menu);
    });
    connect(m_historyFactory.get(), &DragSessionHistoryMenuItemFactory::itemSelected, this,
            [this] { m_lastSelectedItem = Item::recentShelf; });
    connect(m_menu.get(), &QMenu::aboutToHide, this, [this] {
        m_isOpen = false;
        if (m_reloadPending) {
            // After the chosen item has run: it may be an item of the menu being replaced.
            QMetaObject::invokeMethod(this, &MenuItemController::rebuild, Qt::QueuedConnection);
        }
    });
    rebuild();
}

MenuItemController::~MenuItemController() = default;

void MenuItemController::showStatusItem()
{
    m_statusItem->show();
}

void MenuItemController::followPreferences(Preferences& preferences)
{
    const auto apply = [this, &preferences] {
        m_statusItem->setIconStyle(preferences.value(PreferenceKeys::preferredMenuBarIconIdentifier));
        m_statusItem->setHidden(preferences.value(PreferenceKeys::prefersHiddenStatusItem));
    };
    apply();
    connect(&preferences, &Preferences::changed, this, [apply](PreferenceKey key) {
        if (key == PreferenceKey::preferredMenuBarIconIdentifier ||
            key == PreferenceKey::prefersHiddenStatusItem) {
            apply();
        }
    });
}

void MenuItemController::reload()
{
    if (m_reloadPending) {
        return;
    }
    m_reloadPending = true;
    if (!m_isOpen) {
        QMetaObject::invokeMethod(this, &MenuItemController::rebuild, Qt::QueuedConnection);
    }
}

void MenuItemController::rebuild()
{
    if (m_isOpen) {
        return;
    }
    m_reloadPending = false;
    for (QMenu* submenu : m_menu->findChildren<QMenu*>(Qt::FindDirectChildrenOnly)) {
        submenu->deleteLater();
    }
    m_menu->clear();

    connect(m_menu->addAction(Localized("menu.item.new-shelf", "New Shelf")), &QAction::triggered, this,
            [this] { select(Item::newShelf); });
    m_menu->addSeparator();
    m_historyFactory->addItems(*m_menu);
    m_menu->addSeparator();
    connect(m_menu->addAction(Localized("menu.item.settings", "Settings…")), &QAction::triggered, this,
            [this] { select(Item::settings); });
    connect(m_menu->addAction(Localized("status-menu.quit", "Quit Vantrope")), &QAction::triggered, this,
            [this] { select(Item::quit); });
}

void MenuItemController::select(Item item)
{
    m_lastSelectedItem = item;
    switch (item) {
    case Item::newShelf:
        m_sessionController.startSession(DragSessionSource::MenuBar{});
        break;
    case Item::settings:
        Q_EMIT settingsRequested();
        break;
    case Item::quit:
        Q_EMIT quitRequested();
        break;
    case Item::recentShelf:
        break;
    }
}

} // namespace Vantrope
