// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "CompressAction.h"

#include "ActionIdentifiers.h"
#include "ActionsLogging.h"
#include "Libraries/Core/Localized.h"
#include "Libraries/Core/ReservedTemporaryDirectory.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <QCoreApplication>
#include <QDir>
#include <QMutex>
#include <QTemporaryDir>

namespace Vantrope {

// One perform: what its callbacks need after the action has moved on or gone.
struct CompressAction::Run {
    std::atomic<bool> cancelled = false;
    QMutex mutex;
    std::shared_ptr<ActionArchiver::Job> job;
    QString folder;
};

namespace {

// Runs `work` on the main thread, after what is queued there.
void onMainThread(std::function<void()> work)
{
    QCoreApplication* application = QCoreApplication::instance();
    if (!application) {
        work();
        return;
    }
    QMetaObject::invokeMethod(application, std::move(work), Qt::QueuedConnection);
}

// The folder is this run's own, made empty for it: nothing of the user's is in it.
void removeRunFolder(const QString& folder)
{
    if (!folder.isEmpty()) {
        QDir(folder).removeRecursively();
    }
}

} // namespace

QString CompressAction::Error::description()
{
    return Localized("action.compress.error", "Failed to compress items");
}

CompressAction::CompressAction(std::shared_ptr<ActionArchiver> archiver, Reveal reveal)
    : m_archiver(std::move(archiver))
    , m_reveal(std::move(reveal))
{}

CompressAction::~CompressAction()
{
    // An archive still being written when the shelf goes is not wanted by anyone.
    cancel();
}

QString CompressAction::identifier() const
{
    return ActionIdentifiers::compress;
}

QString CompressAction::iconName() const
{
    return QStringLiteral("package-x-generic");
}

QString CompressAction::title() const
{
    return Localized("action.compress.title", "Compress");
}

QString CompressAction::progressTitle()
{
    return Localized("action.compress.loading", "Compressing…");
}

bool CompressAction::canPerform(const ActionItemList& items) const
{
    return !items.isEmpty();
}

void CompressAction::perform(const ActionItemList& items, ProgressHandler progress, Completion completion)
{
    cancel();
    auto run = std::make_shared<Run>();
    m_run = run;
    if (progress) {
        progress(0.0, progressTitle());
    }

    const auto fail = [completion](const QString& reason) {
        qCWarning(lcActions).noquote() << QStringLiteral("Failed to compress items: ") + reason;
        if (completion) {
            completion(std::unexpected(ActionError::underlying(Error::description())));
        }
    };
    if (!m_archiver) {
        fail(QStringLiteral("no archiver"));
        return;
    }
    QStringList paths;
    for (const ActionItem& item : items) {
        if (!item.url().isLocalFile()) {
            fail(QStringLiteral("not a local file: ") + item.url().toString());
            return;
        }
        paths.append(item.url().toLocalFile());
    }
    const auto archives = TemporaryDirectories::path(ReservedTemporaryDirectory::archives);
    if (!archives) {
        fail(QStringLiteral("the archives folder cannot be made"));
        return;
    }
    QTemporaryDir folder(*archives + QStringLiteral("/compress-XXXXXX"));
    if (!folder.isValid()) {
        fail(folder.errorString());
        return;
    }
    folder.setAutoRemove(false);
    run->folder = folder.path();
    const QString destination =
        run->folder + QLatin1Char('/') + Localized("zip.archive", "Archive") + QStringLiteral(".zip");

    Reveal reveal = m_reveal;
    auto job = m_archiver->makeArchiveReportingProgress(
        paths, destination,
        [run, progress](double fraction) {
            if (!progress || run->cancelled) {
                return;
            }
            // Whole percents, as the shelf's bar shows them.
            const double percent = std::ceil(std::clamp(fraction, 0.0, 1.0) * 100.0) / 100.0;
            onMainThread([run, progress, percent] {
                if (!run->cancelled) {
                    progress(percent, progressTitle());
                }
            });
        },
        [run, completion, reveal](const ActionArchiver::Result& archive) {
            onMainThread([run, completion, reveal, archive] {
                if (run->cancelled) {
                    // Whatever got written is nobody's now.
                    removeRunFolder(run->folder);
                    return;
                }
                if (!archive) {
                    qCWarning(lcActions).noquote()
                        << QStringLiteral("Failed to compress items: ") + archive.error().description;
                    removeRunFolder(run->folder);
                    if (completion) {
                        completion(std::unexpected(ActionError::underlying(Error::description())));
                    }
                    return;
                }
                if (completion) {
                    completion(ActionResultContext{});
                }
                if (reveal) {
                    reveal({*archive});
                }
            });
        });
    QMutexLocker lock(&run->mutex);
    run->job = std::move(job);
    if (run->cancelled && run->job) {
        run->job->cancel();
    }
}

void CompressAction::cancel()
{
    if (!m_run) {
        return;
    }
    const auto run = std::move(m_run);
    run->cancelled = true;
    QMutexLocker lock(&run->mutex);
    if (run->job) {
        run->job->cancel();
    }
}

} // namespace Vantrope
