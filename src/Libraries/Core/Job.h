// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QObject>
#include <QString>
#include <QVariant>

namespace Vantrope {

// A piece of background work as the rest of the program sees it: uploads, file operations. Started once,
// it reports progress and then ends exactly once, with `finished` or `failed`. Cancelling a job that has
// not ended makes it fail at once with a `cancelled` error; nothing follows, whatever the work still does.
// Signals come on the job's thread, and its functions are called there too.
class Job : public QObject {
    Q_OBJECT
public:
    struct Error {
        enum class Kind { cancelled, failed };

        Kind kind = Kind::failed;
        QString message;

        static Error cancelled() { return {Kind::cancelled, QStringLiteral("Cancelled")}; }
        static Error failure(QString message) { return {Kind::failed, std::move(message)}; }
        bool isCancelled() const { return kind == Kind::cancelled; }
        friend bool operator==(const Error&, const Error&) = default;
    };

    enum class State { ready, running, finished, failed };

    explicit Job(QObject* parent = nullptr);

    State state() const { return m_state; }
    bool hasEnded() const { return m_state == State::finished || m_state == State::failed; }
    // Set once the job has failed.
    std::optional<Error> error() const { return m_error; }

    // Does nothing unless the job is ready: a job runs once.
    void start();
    // Does nothing once the job has ended.
    void cancel();

Q_SIGNALS:
    // `fraction` lies in 0..1 (reports outside are clamped, NaN is dropped); `title` is empty when the
    // work gave none.
    void progressed(double fraction, const QString& title);
    // The result's type is the concrete job's; a job without a value finishes with an invalid variant.
    void finished(const QVariant& result);
    void failed(const Vantrope::Job::Error& error);

protected:
    virtual void doStart() = 0;
    // The job has already failed when this is called; tell the work to stop.
    virtual void doCancel() {}

    // For the concrete job, on the job's thread. Ignored unless the job is running.
    void reportProgress(double fraction, const QString& title = {});
    void finish(const QVariant& result = {});
    void fail(const Error& error);

private:
    friend class JobContext;

    State m_state = State::ready;
    std::optional<Error> m_error;
};

} // namespace Vantrope
