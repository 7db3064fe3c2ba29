#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <QObject>
#include <QString>
#include <type_traits>

class QThread;

namespace Vantrope {

// A serial queue: work runs one item at a time, in order, on one thread. `main()` is the GUI thread's
// event loop; every other queue owns a thread of its own named after the label.
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
    void asyncAfter(double seconds, Work work);

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

    QString m_label;
    std::unique_ptr<QThread> m_thread;
    QObject* m_context = nullptr;
};

} // namespace Vantrope
