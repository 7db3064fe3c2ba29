// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

namespace Vantrope {

enum class ActionItemType { image, other };

} // namespace Vantrope
