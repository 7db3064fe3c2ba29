// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DragSession/FileWatcher.h"

#include <map>
#include <memory>
#include <optional>
#include <QMutex>

namespace Vantrope::Test {

// File watches that report a move or a deletion only when the test says so, on the test's thread.
// Watches may be made and ended on any thread, as the real ones are.
class FakeFileWatcher final : public FileWatcher {
public:
    FakeFileWatcher();
    ~FakeFileWatcher() override;

    std::expected<std::unique_ptr<Watch>, Error> watch(const QString& path, Callback callback) override;

    // Every later watch fails with `error` (its path filled in); nullopt watches again.
    void refuseWatches(std::optional<Error> error);

    // Tells every watch on `path`; false when there is none.
    bool report(const QString& path, Change change);
    bool isWatched(const QString& path) const;

    struct State;

private:
    std::shared_ptr<State> m_state;
};

} // namespace Vantrope::Test
