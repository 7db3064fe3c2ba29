// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

namespace Vantrope {

// The health of a watched folder as the settings show it.
enum class DirectoryObserverStatus { unknown, unauthorized, inaccessiblePath, active, stopped };

} // namespace Vantrope
