// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcUserScreenshot)
