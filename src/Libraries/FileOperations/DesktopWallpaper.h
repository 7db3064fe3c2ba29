// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <QProcessEnvironment>
#include <QString>

namespace Vantrope {

// Sets the desktop background through whichever desktop runs: Plasma's shell script call over D-Bus,
// xfconf for Xfce, and GIO settings (org.gnome.desktop.background, both the light and the dark picture)
// for GNOME, Cinnamon, Budgie and everything else that reads them.
class DesktopWallpaper final {
public:
    enum class Desktop { gnome, plasma, xfce };

    static Desktop detect(const QProcessEnvironment& environment);
    // Blocks until the desktop's tool has answered; an error is a sentence for the user.
    static std::expected<void, QString> set(const QString& imagePath, Desktop desktop,
                                            const QProcessEnvironment& environment);
};

} // namespace Vantrope
