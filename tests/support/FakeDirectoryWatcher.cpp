// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "FakeDirectoryWatcher.h"

#include <QDir>
#include <QFileInfo>

namespace Vantrope::Test {

struct FakeDirectoryWatcher::State {
    struct Entry {
        QString path;
        Signal signal;
    };
    std::map<quint64, Entry> watches;
    quint64 nextId = 1;
};

namespace {

class FakeWatch final : public DirectoryWatcher::Watch {
public:
    FakeWatch(std::weak_ptr<FakeDirectoryWatcher::State> state, quint64 id)
        : m_state(std::move(state))
        , m_id(id)
    {}
    ~FakeWatch() override
    {
        if (auto state = m_state.lock()) {
            state->watches.erase(m_id);
        }
    }

private:
    std::weak_ptr<FakeDirectoryWatcher::State> m_state;
    quint64 m_id;
};

} // namespace

FakeDirectoryWatcher::FakeDirectoryWatcher()
    : m_state(std::make_shared<State>())
{}

FakeDirectoryWatcher::~FakeDirectoryWatcher() = default;

std::expected<std::unique_ptr<DirectoryWatcher::Watch>, DirectoryWatcher::Error>
FakeDirectoryWatcher::watch(const QString& directoryPath, Signal onChange)
{
    if (!QFileInfo(directoryPath).isDir()) {
        return std::unexpected(Error{directoryPath, QStringLiteral("Not a directory")});
    }
    const quint64 id = m_state->nextId++;
    m_state->watches.emplace(id, State::Entry{QDir::cleanPath(directoryPath), std::move(onChange)});
    return std::make_unique<FakeWatch>(m_state, id);
}

bool FakeDirectoryWatcher::fire(const QString& directoryPath)
{
    const QString path = QDir::cleanPath(directoryPath);
    std::vector<quint64> ids;
    for (const auto& [id, entry] : m_state->watches) {
        if (entry.path == path) {
            ids.push_back(id);
        }
    }
    signal(ids);
    return !ids.empty();
}

void FakeDirectoryWatcher::fireAll()
{
    std::vector<quint64> ids;
    for (const auto& entry : m_state->watches) {
        ids.push_back(entry.first);
    }
    signal(ids);
}

void FakeDirectoryWatcher::signal(const std::vector<quint64>& ids)
{
    // A signal may end watches, its own included, and start new ones: each is looked up again.
    for (quint64 id : ids) {
        const auto found = m_state->watches.find(id);
        if (found != m_state->watches.end()) {
            const Signal signal = found->second.signal;
            signal();
        }
    }
}

QStringList FakeDirectoryWatcher::watchedPaths() const
{
    QStringList paths;
    for (const auto& entry : m_state->watches) {
        if (!paths.contains(entry.second.path)) {
            paths.append(entry.second.path);
        }
    }
    paths.sort();
    return paths;
}

} // namespace Vantrope::Test
