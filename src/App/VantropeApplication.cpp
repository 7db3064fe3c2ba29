// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "VantropeApplication.h"

#include "Version.h"

#include <QIcon>

namespace Vantrope {

VantropeApplication::VantropeApplication(int& argc, char** argv)
    : QApplication(argc, argv)
{
    setApplicationName(QStringLiteral("vantrope"));
    setApplicationDisplayName(QStringLiteral("Vantrope"));
    setApplicationVersion(QStringLiteral(VANTROPE_VERSION));
    // Ties the windows to the installed desktop entry and its icon.
    setDesktopFileName(QStringLiteral(VANTROPE_APPLICATION_ID));
    setQuitOnLastWindowClosed(false);
    setWindowIcon(QIcon(QStringLiteral(":/icons/vantrope.svg")));
}

} // namespace Vantrope
