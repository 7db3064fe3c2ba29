// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <mutex>
#include <utility>

namespace Vantrope {

// A value whose reads and writes take a lock. Reads hand out copies; `mutate` changes it in place.
template<typename T> class ThreadSafe final {
public:
    ThreadSafe() = default;
    explicit ThreadSafe(T value)
        : m_value(std::move(value))
    {}

    T value() const
    {
        std::lock_guard lock(m_mutex);
        return m_value;
    }

    void setValue(T value)
    {
        std::lock_guard lock(m_mutex);
        m_value = std::move(value);
    }

    template<typename F> decltype(auto) mutate(F&& function)
    {
        std::lock_guard lock(m_mutex);
        return std::forward<F>(function)(m_value);
    }

    // Hands the value out and leaves a default one behind.
    T take()
    {
        std::lock_guard lock(m_mutex);
        return std::exchange(m_value, T{});
    }

private:
    mutable std::mutex m_mutex;
    T m_value{};
};

} // namespace Vantrope
