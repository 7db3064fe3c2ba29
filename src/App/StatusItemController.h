// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <memory>
#include <QObject>

class QMenu;
class QSystemTrayIcon;

namespace Vantrope {

// The tray item: the program's one permanent presence on the desktop. It shows the menu it is given on
// either mouse button.
class StatusItemController final : public QObject {
    Q_OBJECT
public:
    explicit StatusItemController(QMenu& menu, QObject* parent = nullptr);
    ~StatusItemController() override;

    void show();
    bool isVisible() const;

private:
    QMenu& m_menu;
    std::unique_ptr<QSystemTrayIcon> m_trayIcon;
};

} // namespace Vantrope
