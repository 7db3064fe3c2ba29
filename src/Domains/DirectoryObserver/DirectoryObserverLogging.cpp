// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DirectoryObserverLogging.h"

Q_LOGGING_CATEGORY(lcDirectoryObserver, "vantrope.directoryobserver")
