// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "FakeFileWatcher.h"

#include <vector>

namespace Vantrope::Test {

struct FakeFileWatcher::State {
    struct Entry {
        QString path;
        Callback callback;
    };
    mutable QMutex mutex;
    std::map<quint64, Entry> watches;
    quint64 nextId = 1;
    std::optional<Error> refusal;
};

namespace {

class FakeWatch final : public FileWatcher::Watch {
public:
    FakeWatch(std::weak_ptr<FakeFileWatcher::State> state, quint64 id)
        : m_state(std::move(state))
        , m_id(id)
    {}
    ~FakeWatch() override
    {
        if (auto state = m_state.lock()) {
            QMutexLocker lock(&state->mutex);
            state->watches.erase(m_id);
        }
    }

private:
    std::weak_ptr<FakeFileWatcher::State> m_state;
    quint64 m_id;
};

} // namespace

FakeFileWatcher::FakeFileWatcher()
    : m_state(std::make_shared<State>())
{}

FakeFileWatcher::~FakeFileWatcher() = default;

std::expected<std::unique_ptr<FileWatcher::Watch>, FileWatcher::Error>
FakeFileWatcher::watch(const QString& path, Callback callback)
{
    QMutexLocker lock(&m_state->mutex);
    if (m_state->refusal) {
        Error error = *m_state->refusal;
        error.path = path;
        return std::unexpected(error);
    }
    const quint64 id = m_state->nextId++;
    m_state->watches.emplace(id, State::Entry{path, std::move(callback)});
    return std::make_unique<FakeWatch>(m_state, id);
}

void FakeFileWatcher::refuseWatches(std::optional<Error> error)
{
    QMutexLocker lock(&m_state->mutex);
    m_state->refusal = std::move(error);
}

bool FakeFileWatcher::report(const QString& path, Change change)
{
    std::vector<Callback> callbacks;
    {
        QMutexLocker lock(&m_state->mutex);
        for (const auto& entry : m_state->watches) {
            if (entry.second.path == path) {
                callbacks.push_back(entry.second.callback);
            }
        }
    }
    // Outside the lock: a callback may end its own watch.
    for (const Callback& callback : callbacks) {
        callback(change);
    }
    return !callbacks.empty();
}

bool FakeFileWatcher::isWatched(const QString& path) const
{
    QMutexLocker lock(&m_state->mutex);
    for (const auto& entry : m_state->watches) {
        if (entry.second.path == path) {
            return true;
        }
    }
    return false;
}

} // namespace Vantrope::Test
