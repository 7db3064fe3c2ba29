// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <QString>
#include <type_traits>

class QObject;

namespace Vantrope {

// A serial queue: work runs one item at a time, in order. `main()` is the GUI thread's event loop. Every
// other queue borrows a thread from a shared pool while it has work, and holds none while idle.
//
// The pool grows with the number of live queues, so a queue that has work always finds a thread even when
// every other queue is blocked in a `sync`: only a cycle of syncs between queues can deadlock, as it would
// with a thread per queue.
//
// Destroying a queue waits for the work queued before it to finish; delayed work not yet due is dropped,
// and anything queued from then on is dropped. A queue destroyed by its own work cannot wait for itself:
// it drops what is still queued.
class DispatchQueue final {
public:
    using Work = std::function<void()>;

    explicit DispatchQueue(const QString& label);
    ~DispatchQueue();
    DispatchQueue(const DispatchQueue&) = delete;
    DispatchQueue& operator=(const DispatchQueue&) = delete;

    // The queue of the thread that runs QCoreApplication's event loop.
    static DispatchQueue& main();

    QString label() const { return m_label; }
    bool isCurrent() const;

    void async(Work work);
    // Timers have millisecond resolution; `delay` is rounded to the nearest millisecond.
    void asyncAfter(std::chrono::nanoseconds delay, Work work);

    // Runs `work` on the queue and waits for it. Called on the queue itself it runs inline, so that a
    // nested sync cannot deadlock.
    void sync(const Work& work);

    template<typename F> auto syncResult(F&& function) -> std::invoke_result_t<F>
    {
        using R = std::invoke_result_t<F>;
        if constexpr (std::is_void_v<R>) {
            sync(std::forward<F>(function));
        } else {
            std::optional<R> result;
            sync([&] { result.emplace(function()); });
            return std::move(*result);
        }
    }

    // Waits until everything queued before this call has run.
    void drain()
    {
        sync([] {});
    }

private:
    struct MainTag {};
    explicit DispatchQueue(MainTag);

    class Serial;

    QString m_label;
    std::shared_ptr<Serial> m_serial; // every queue but main
    QObject* m_mainContext = nullptr; // main only
};

} // namespace Vantrope
