// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <functional>
#include <memory>
#include <QString>
#include <QStringList>
#include <QUrl>

namespace Vantrope {

// Makes zip archives for the actions. The zip library supplies the real one.
class ActionArchiver {
public:
    struct Error {
        QString description;
    };
    using Result = std::expected<QUrl, Error>;
    // Called once, on any thread.
    using Completion = std::function<void(const Result& archive)>;
    // The share of the bytes read so far, from 0 to 1; called on any thread.
    using Progress = std::function<void(double fraction)>;

    // A running archive; cancelling it makes it stop soon and leave no file behind.
    class Job {
    public:
        virtual ~Job() = default;
        virtual void cancel() = 0;
    };

    virtual ~ActionArchiver() = default;

    // Starts writing one archive at `destination` that holds `paths`, folders with everything in them
    // under their own names.
    virtual std::shared_ptr<Job> makeArchive(const QStringList& paths, const QString& destination,
                                             Completion completion) = 0;
    // As above, reporting how far it got. An archiver that cannot tell reports nothing.
    virtual std::shared_ptr<Job> makeArchiveReportingProgress(const QStringList& paths,
                                                              const QString& destination, Progress progress,
                                                              Completion completion)
    {
        Q_UNUSED(progress);
        return makeArchive(paths, destination, std::move(completion));
    }
};

} // namespace Vantrope
