// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ActionsLogging.h"

Q_LOGGING_CATEGORY(lcActions, "vantrope.actions")
