// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DirectoryObserver/DirectoryWatcher.h"

#include <map>
#include <memory>
#include <QStringList>
#include <vector>

namespace Vantrope::Test {

// Folder watches that signal only when the test says so, at once and on the test's thread. Like the
// kernel, it refuses a path that is no directory.
class FakeDirectoryWatcher final : public DirectoryWatcher {
public:
    FakeDirectoryWatcher();
    ~FakeDirectoryWatcher() override;

    std::expected<std::unique_ptr<Watch>, Error> watch(const QString& directoryPath,
                                                       Signal onChange) override;

    // Signals every watch on `directoryPath`; false when there is none.
    bool fire(const QString& directoryPath);
    // Signals every watch, as the kernel does after the changes of a test step touched their folders, or
    // after its queue overflowed.
    void fireAll();

    // The folders under watch, sorted, a folder once however many watch it.
    QStringList watchedPaths() const;

    struct State;

private:
    void signal(const std::vector<quint64>& ids);

    std::shared_ptr<State> m_state;
};

} // namespace Vantrope::Test
