#include "StatusItemController.h"

#include "AppLogging.h"
#include "Libraries/Core/Localized.h"

#include <QIcon>
#include <QMenu>
#include <QSystemTrayIcon>

// The icons are compiled into this static library; its resources must be registered by hand.
static void initResources()
{
    Q_INIT_RESOURCE(resources);
}

namespace Vantrope {

StatusItemController::StatusItemController(QObject* parent)
    : QObject(parent)
    , m_menu(std::make_unique<QMenu>())
    , m_trayIcon(std::make_unique<QSystemTrayIcon>())
{
    initResources();
    QAction* quit = m_menu->addAction(Localized("status-menu.quit", "Quit Vantrope"));
    connect(quit, &QAction::triggered, this, &StatusItemController::quitRequested);

    m_trayIcon->setIcon(QIcon(QStringLiteral(":/icons/vantrope-tray.svg")));
    m_trayIcon->setToolTip(Localized("status-menu.tooltip", "Vantrope"));
    m_trayIcon->setContextMenu(m_menu.get());
}

StatusItemController::~StatusItemController() = default;

void StatusItemController::show()
{
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

} // namespace Vantrope
