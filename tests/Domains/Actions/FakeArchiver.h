// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/ActionArchiver.h"

#include <atomic>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QThread>
#include <QThreadPool>

namespace Vantrope::Test {

// Writes a small file listing its paths where the archive belongs, on a pool thread. A path whose name
// contains "broken" fails. With `holds` set the jobs wait until released or cancelled.
class FakeArchiver final : public ActionArchiver {
public:
    ~FakeArchiver() override
    {
        held = false;
        m_pool.waitForDone();
    }

    class FakeJob final : public Job {
    public:
        void cancel() override { cancelled = true; }
        std::atomic<bool> cancelled = false;
    };

    std::shared_ptr<Job> makeArchive(const QStringList& paths, const QString& destination,
                                     Completion completion) override
    {
        auto job = std::make_shared<FakeJob>();
        {
            QMutexLocker lock(&m_mutex);
            m_requests.append(paths);
        }
        m_pool.start([this, job, paths, destination, completion] {
            while (held && (ignoresCancel || !job->cancelled)) {
                QThread::msleep(5);
            }
            if (job->cancelled && !ignoresCancel) {
                completion(std::unexpected(Error{QStringLiteral("cancelled")}));
                return;
            }
            for (const QString& path : paths) {
                if (QFileInfo(path).fileName().contains(QStringLiteral("broken"))) {
                    completion(std::unexpected(Error{QStringLiteral("cannot read ") + path}));
                    return;
                }
            }
            QFile file(destination);
            if (!file.open(QIODevice::WriteOnly)) {
                completion(std::unexpected(Error{file.errorString()}));
                return;
            }
            file.write(paths.join(QLatin1Char('\n')).toUtf8());
            file.close();
            completion(QUrl::fromLocalFile(destination));
        });
        return job;
    }

    QList<QStringList> requests() const
    {
        QMutexLocker lock(&m_mutex);
        return m_requests;
    }

    void waitForDone() { m_pool.waitForDone(); }

    std::atomic<bool> held = false;
    // Like an archiver that only looks at the flag between files and finishes the file it is on.
    std::atomic<bool> ignoresCancel = false;

private:
    mutable QMutex m_mutex;
    QList<QStringList> m_requests;
    QThreadPool m_pool;
};

} // namespace Vantrope::Test
