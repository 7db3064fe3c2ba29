// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

namespace Vantrope {

class ObservedDirectoryStore;

// Brings data stored by older versions up to the present form, at start-up before the shelves exist.
// A migration that fails is logged and leaves the data as it was; the start goes on.
class Migrator final {
public:
    Migrator() = delete;

    // Watched folders stored with plain rules get the same rules with the "and" operator. True when
    // nothing was left to migrate.
    static bool performWatchedFoldersFilterMigration(ObservedDirectoryStore& store);
};

} // namespace Vantrope
