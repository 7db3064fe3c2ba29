// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ActionItemsAssembler.h"

#include "ActionsLogging.h"
#include "Libraries/Core/DispatchQueue.h"
#include "Libraries/Core/Localized.h"
#include "Libraries/Core/ReservedTemporaryDirectory.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

namespace Vantrope {

namespace {

// Folder URLs often end in a slash; an archiver would take the empty last component for the name.
QStringList localPaths(const QList<QUrl>& urls)
{
    QStringList paths;
    paths.reserve(urls.size());
    for (const QUrl& url : urls) {
        paths.append(QDir::cleanPath(url.toLocalFile()));
    }
    return paths;
}

// An archive that arrives when nobody wants it any more goes at once, with the folders made for it.
void removeOrphanedArchive(const ActionArchiver::Result& archive)
{
    if (!archive) {
        return;
    }
    const QString path = archive->toLocalFile();
    QFile::remove(path);
    const QDir parent = QFileInfo(path).dir();
    QDir().rmdir(parent.absolutePath());
    QDir().rmdir(QFileInfo(parent.absolutePath()).absolutePath());
}

QString describe(const QList<QUrl>& urls)
{
    QStringList paths = localPaths(urls);
    return QLatin1Char('[') + paths.join(QStringLiteral(", ")) + QLatin1Char(']');
}

} // namespace

ActionItemsAssembler::ActionItemsAssembler(QList<QUrl> items, Strategy strategy,
                                           std::shared_ptr<ActionArchiver> archiver, QString workFolder)
    : m_items(std::move(items))
    , m_strategy(strategy)
    , m_archiver(std::move(archiver))
    , m_workFolder(std::move(workFolder))
{}

ActionItemsAssembler::~ActionItemsAssembler()
{
    for (const auto& job : m_jobs) {
        job->cancel();
    }
    clear();
}

ActionItemsAssembler::Strategy ActionItemsAssembler::strategyFor(ActionItemPreparationStrategy strategy)
{
    return strategy == ActionItemPreparationStrategy::zip ? Strategy::zipAllFiles : Strategy::zipDirectories;
}

void ActionItemsAssembler::assemble(Completion completion)
{
    qCInfo(lcActions).noquote() << QStringLiteral("Starting to assemble items ") + describe(m_items);
    m_completion = std::move(completion);
    if (m_strategy == Strategy::zipAllFiles && m_items.size() >= 2) {
        zipItems();
        return;
    }
    QList<int> directories;
    for (int index = 0; index < m_items.size(); ++index) {
        if (QFileInfo(m_items[index].toLocalFile()).isDir()) {
            directories.append(index);
        }
    }
    if (directories.isEmpty()) {
        finishAsync(m_items);
        return;
    }
    qCInfo(lcActions).noquote() << QStringLiteral("About to zip ") + QString::number(directories.size()) +
                                       QStringLiteral(" directories...");
    zipDirectories(directories);
}

void ActionItemsAssembler::zipItems()
{
    const QString name = Localized("zip.archive", "Archive") + QStringLiteral(".zip");
    startArchive(localPaths(m_items), name, [this](const ActionArchiver::Result& archive) {
        if (!archive) {
            qCWarning(lcActions).noquote()
                << QStringLiteral("Failed to zip items with error ") + archive.error().description;
            finish(std::unexpected(Error::failedPreparation));
            return;
        }
        m_assembledItems.append(*archive);
        finish(QList<QUrl>{*archive});
    });
}

void ActionItemsAssembler::zipDirectories(const QList<int>& directoryIndexes)
{
    struct Batch {
        int pending = 0;
        bool failed = false;
        QList<QUrl> urls;
    };
    auto batch = std::make_shared<Batch>();
    batch->pending = int(directoryIndexes.size());
    batch->urls = m_items;
    for (const int index : directoryIndexes) {
        const QUrl directory = m_items[index];
        const QString path = QDir::cleanPath(directory.toLocalFile());
        const QString name = QFileInfo(path).fileName() + QStringLiteral(".zip");
        startArchive(
            {path}, name, [this, batch, index, directory](const ActionArchiver::Result& archive) {
                if (archive) {
                    qCInfo(lcActions).noquote()
                        << QStringLiteral("Finished to zip directory at ") + directory.toLocalFile() +
                               QStringLiteral(". New url is ") + archive->toLocalFile();
                    batch->urls[index] = *archive;
                    m_assembledItems.append(*archive);
                } else {
                    qCWarning(lcActions).noquote()
                        << QStringLiteral("Failed to zip directory at ") + directory.toLocalFile() +
                               QStringLiteral(" with error ") + archive.error().description;
                    batch->failed = true;
                }
                if (--batch->pending > 0) {
                    return;
                }
                if (batch->failed) {
                    qCWarning(lcActions)
                        << "Failed assemble as one or more directories could not be zipped. Notifying now...";
                    finish(std::unexpected(Error::failedPreparation));
                } else {
                    qCInfo(lcActions) << "Successfully assembled items. Notifying now...";
                    finish(batch->urls);
                }
            });
    }
}

void ActionItemsAssembler::startArchive(const QStringList& paths, const QString& archiveName,
                                        std::function<void(const ActionArchiver::Result&)> done)
{
    const std::optional<QString> folder = makeArchiveFolder();
    if (!folder || !m_archiver) {
        const ActionArchiver::Error error{folder ? QStringLiteral("No archiver")
                                                 : QStringLiteral("The archives folder cannot be made")};
        std::weak_ptr<char> alive = m_lifetime;
        DispatchQueue::main().async([alive, done = std::move(done), error] {
            if (alive.lock()) {
                done(std::unexpected(error));
            }
        });
        return;
    }
    std::weak_ptr<char> alive = m_lifetime;
    auto job =
        m_archiver->makeArchive(paths, *folder + QLatin1Char('/') + archiveName,
                                [this, alive, done = std::move(done)](const ActionArchiver::Result& archive) {
                                    // The archiver may answer on any thread, or before makeArchive() has even
                                    // returned.
                                    DispatchQueue::main().async([this, alive, done, archive] {
                                        if (!alive.lock() || m_isCancelled) {
                                            removeOrphanedArchive(archive);
                                            return;
                                        }
                                        done(archive);
                                    });
                                });
    if (job) {
        m_jobs.push_back(std::move(job));
    }
}

std::optional<QString> ActionItemsAssembler::makeArchiveFolder()
{
    if (m_ownFolder.isEmpty()) {
        QString base = m_workFolder;
        if (base.isEmpty()) {
            base = TemporaryDirectories::path(ReservedTemporaryDirectory::archives).value_or(QString());
        }
        if (base.isEmpty()) {
            return std::nullopt;
        }
        m_ownFolder = base + QLatin1Char('/') + QUuid::createUuid().toString(QUuid::WithoutBraces);
    }
    // One folder per archive, so that two folders of the same name give two zips of the same name.
    const QString folder = m_ownFolder + QLatin1Char('/') + QString::number(m_archiveCount++);
    if (!QDir().mkpath(folder)) {
        return std::nullopt;
    }
    return folder;
}

void ActionItemsAssembler::finishAsync(const std::expected<QList<QUrl>, Error>& urls)
{
    std::weak_ptr<char> alive = m_lifetime;
    DispatchQueue::main().async([this, alive, urls] {
        if (alive.lock()) {
            finish(urls);
        }
    });
}

void ActionItemsAssembler::finish(const std::expected<QList<QUrl>, Error>& urls)
{
    if (m_didFinish) {
        return;
    }
    m_didFinish = true;
    m_jobs.clear();
    Result result = std::unexpected(Error::failedPreparation);
    if (urls && !m_isCancelled) {
        ActionItemList items;
        items.reserve(urls->size());
        bool readable = true;
        for (const QUrl& url : *urls) {
            auto item = ActionItem::fromFile(url);
            if (!item) {
                qCWarning(lcActions).noquote()
                    << QStringLiteral("Failed to read assembled item ") + url.toLocalFile();
                readable = false;
                break;
            }
            items.append(*item);
        }
        if (readable) {
            result = std::move(items);
        }
    }
    if (!result) {
        // Half of a failed assembly is of no use to anybody.
        clear();
    }
    // The owner may drop this assembler from inside its completion.
    Completion completion = std::exchange(m_completion, nullptr);
    if (completion) {
        completion(result);
    }
}

void ActionItemsAssembler::clear()
{
    for (const QUrl& archive : std::as_const(m_assembledItems)) {
        QFile::remove(archive.toLocalFile());
    }
    m_assembledItems.clear();
    if (!m_ownFolder.isEmpty()) {
        QDir(m_ownFolder).removeRecursively();
    }
}

void ActionItemsAssembler::cancel()
{
    m_isCancelled = true;
    for (const auto& job : m_jobs) {
        job->cancel();
    }
    clear();
    // An archiver that stops without answering must not leave the run waiting.
    if (m_completion && !m_didFinish) {
        finishAsync(std::unexpected(Error::failedPreparation));
    }
}

} // namespace Vantrope
