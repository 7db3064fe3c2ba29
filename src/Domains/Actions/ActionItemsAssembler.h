// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ActionArchiver.h"
#include "ActionItem.h"
#include "ActionItemPreparationStrategy.h"

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <QList>
#include <QString>
#include <QUrl>
#include <vector>

namespace Vantrope {

// Turns the items of a run into what the action wants: folders zipped one by one, or everything in one
// zip. It owns the zip files it makes; they are removed by `clear()`, `cancel()` and when it goes.
// Main thread only.
class ActionItemsAssembler final {
public:
    enum class Strategy { zipDirectories, zipAllFiles };
    enum class Error { failedPreparation };
    using Result = std::expected<ActionItemList, Error>;
    using Completion = std::function<void(const Result& result)>;

    // `workFolder` is where the archives go; empty means the reserved archives folder.
    ActionItemsAssembler(QList<QUrl> items, Strategy strategy, std::shared_ptr<ActionArchiver> archiver,
                         QString workFolder = {});
    ~ActionItemsAssembler();
    ActionItemsAssembler(const ActionItemsAssembler&) = delete;
    ActionItemsAssembler& operator=(const ActionItemsAssembler&) = delete;

    static Strategy strategyFor(ActionItemPreparationStrategy strategy);

    // The completion runs once on the main thread, never synchronously and never after this object is
    // gone. A cancelled assembly fails.
    void assemble(Completion completion);
    void clear();
    void cancel();

    const QList<QUrl>& items() const { return m_items; }
    Strategy strategy() const { return m_strategy; }
    // The zip files made so far.
    const QList<QUrl>& assembledItems() const { return m_assembledItems; }
    bool isCancelled() const { return m_isCancelled; }

private:
    void zipItems();
    void zipDirectories(const QList<int>& directoryIndexes);
    // Starts one archive; `done` runs on the main thread while this object lives.
    void startArchive(const QStringList& paths, const QString& archiveName,
                      std::function<void(const ActionArchiver::Result&)> done);
    std::optional<QString> makeArchiveFolder();
    void finish(const std::expected<QList<QUrl>, Error>& urls);
    void finishAsync(const std::expected<QList<QUrl>, Error>& urls);

    QList<QUrl> m_items;
    Strategy m_strategy;
    std::shared_ptr<ActionArchiver> m_archiver;
    QString m_workFolder;
    QString m_ownFolder;
    QList<QUrl> m_assembledItems;
    bool m_isCancelled = false;
    bool m_didFinish = false;
    Completion m_completion;
    std::vector<std::shared_ptr<ActionArchiver::Job>> m_jobs;
    int m_archiveCount = 0;
    // Lets late answers of the archiver and queued work find out that this object is gone.
    std::shared_ptr<char> m_lifetime = std::make_shared<char>();
};

} // namespace Vantrope
