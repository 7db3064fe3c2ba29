// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DesktopLogging.h"

Q_LOGGING_CATEGORY(lcDesktop, "vantrope.desktop")
