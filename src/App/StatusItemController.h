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

    // Shows the item unless the user chose to hide it.
    void show();
    bool isVisible() const;

    // The stored icon style ("traditional", "document", "documentTilted"); anything else is the classic one.
    void setIconStyle(const QString& style);
    // A hidden item stays away until shown again; the program keeps running.
    void setHidden(bool hidden);

    static QString iconPath(const QString& style);

private:
    QMenu& m_menu;
    bool m_hidden = false;
    bool m_shown = false;
    std::unique_ptr<QSystemTrayIcon> m_trayIcon;
};

} // namespace Vantrope
