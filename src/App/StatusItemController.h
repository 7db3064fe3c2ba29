#pragma once

#include <memory>
#include <QObject>

class QMenu;
class QSystemTrayIcon;

namespace Vantrope {

// The tray item and its menu: the program's one permanent presence on the desktop.
class StatusItemController final : public QObject {
    Q_OBJECT
public:
    explicit StatusItemController(QObject* parent = nullptr);
    ~StatusItemController() override;

    void show();
    bool isVisible() const;

Q_SIGNALS:
    void quitRequested();

private:
    std::unique_ptr<QMenu> m_menu;
    std::unique_ptr<QSystemTrayIcon> m_trayIcon;
};

} // namespace Vantrope
