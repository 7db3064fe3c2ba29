// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QString>

namespace Vantrope {

// The program's own folders under the data, cache and config homes hold paths of the user's files,
// copies of dropped content and thumbnails: nobody else may look into them. New ones are made 0700;
// these close ones that an older version or another tool left open.
class PrivateFolders final {
public:
    // $XDG_DATA_HOME/vantrope, $XDG_CACHE_HOME/vantrope and $XDG_CONFIG_HOME/vantrope, where they exist.
    static void tightenAll();
    // `folder` and the folders inside it down to `depth` levels become 0700. Only real folders that
    // this user owns: a link is never followed, so nothing outside can be touched.
    static void tighten(const QString& folder, int depth);
};

} // namespace Vantrope
