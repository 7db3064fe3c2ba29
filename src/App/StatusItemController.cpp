// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "StatusItemController.h"

#include "AppLogging.h"
#include "Libraries/Core/Localized.h"
#include "Preferences/SettingsItem.h"

#include <QCursor>
#include <QIcon>
#include <QMenu>
#include <QSystemTrayIcon>

// The icons are compiled into this static library; its resources must be registered by hand.
static void initResources()
{
    Q_INIT_RESOURCE(resources);
}

namespace Vantrope {

StatusItemController::StatusItemController(QMenu& menu, QObject* parent)
    : QObject(parent)
    , m_menu(menu)
    , m_trayIcon(std::make_unique<QSystemTrayIcon>())
{
    initResources();
    m_trayIcon->setIcon(QIcon(QStringLiteral(":/icons/vantrope-tray.svg")));
    m_trayIcon->setToolTip(Localized("status-menu.tooltip", "Vantrope"));
    m_trayIcon->setContextMenu(&m_menu);
    // A tray item is clicked to see its menu; the context menu alone would want the right button.
    connect(m_trayIcon.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger && !m_menu.isVisible()) {
                    m_menu.popup(QCursor::pos());
                }
            });
}

StatusItemController::~StatusItemController() = default;

void StatusItemController::show()
{
    m_shown = true;
    if (m_hidden) {
        qCInfo(lcApp) << "Tray item hidden, as the settings ask";
        return;
    }
    if (!QSystemTrayIcon::isSystemTrayAvailable()) {
        qCWarning(lcApp) << "No system tray is running yet; the tray item appears as soon as one starts";
    }
    m_trayIcon->show();
    qCInfo(lcApp) << "Tray item shown";
}

bool StatusItemController::isVisible() const
{
    return m_trayIcon->isVisible();
}

QString StatusItemController::iconPath(const QString& style)
{
    switch (SettingsItem::menuBarIcon(style).value_or(SettingsItem::MenuBarIcon::traditional)) {
    case SettingsItem::MenuBarIcon::document:
        return QStringLiteral(":/icons/vantrope-tray-document.svg");
    case SettingsItem::MenuBarIcon::documentTilted:
        return QStringLiteral(":/icons/vantrope-tray-document-tilted.svg");
    case SettingsItem::MenuBarIcon::traditional:
        break;
    }
    return QStringLiteral(":/icons/vantrope-tray.svg");
}

void StatusItemController::setIconStyle(const QString& style)
{
    m_trayIcon->setIcon(QIcon(iconPath(style)));
}

void StatusItemController::setHidden(bool hidden)
{
    if (hidden == m_hidden) {
        return;
    }
    m_hidden = hidden;
    if (hidden) {
        m_trayIcon->hide();
        qCInfo(lcApp) << "Tray item hidden";
    } else if (m_shown) {
        m_trayIcon->show();
        qCInfo(lcApp) << "Tray item shown";
    }
}

} // namespace Vantrope
