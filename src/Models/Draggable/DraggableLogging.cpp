// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DraggableLogging.h"

Q_LOGGING_CATEGORY(lcDraggable, "vantrope.draggable")
