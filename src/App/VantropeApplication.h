// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QApplication>

namespace Vantrope {

// The application object: the program's identity towards the desktop (name, version, desktop entry,
// icon), and a tray agent that keeps running with no window open.
class VantropeApplication final : public QApplication {
    Q_OBJECT
public:
    VantropeApplication(int& argc, char** argv);
};

} // namespace Vantrope
