// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "UserScreenshotLogging.h"

Q_LOGGING_CATEGORY(lcUserScreenshot, "vantrope.screenshots")
