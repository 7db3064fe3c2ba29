// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ApplicationScript.h"
#include "FileInformation.h"
#include "FileOperationTable.h"
#include "FileOperationType.h"
#include "OperationSetting.h"
#include "UserOperation.h"

#include <atomic>
#include <chrono>
#include <expected>
#include <functional>
#include <memory>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QUrl>

namespace Vantrope {

class ApplicationScriptsStore;
template<typename T> class ThreadPoolJob;
class OperationChoiceStore;
class OperationsControllerDelegate;
class OperationsDisplayController;
class UserOperationStore;

// The file operations of one shelf's items: which are on offer, the asking for their values, one run at
// a time in the background with progress and cancel, and the results handed back to the shelf through
// the delegate. Results are written into a fresh folder under the output directory; only rename,
// batch rename, move and Trash change the originals. Lives on the main thread.
class OperationsController final : public QObject {
    Q_OBJECT
public:
    // What the program lends every shelf's controller; all of it may be absent (nothing is asked, no
    // user operations or scripts are offered, nothing is remembered).
    struct Environment {
        OperationsDisplayController* display = nullptr;
        OperationChoiceStore* choices = nullptr;
        UserOperationStore* userOperations = nullptr;
        ApplicationScriptsStore* scripts = nullptr;
        std::chrono::milliseconds scriptTimeLimit = ApplicationScript::defaultTimeLimit;
        FileInformation::MetadataReader metadata;
    };
    using RunResult = std::expected<void, QString>;

    explicit OperationsController(Environment environment, QObject* parent = nullptr);
    ~OperationsController() override;

    void setDelegate(OperationsControllerDelegate* delegate) { m_delegate = delegate; }
    // Only local files take part; anything else leaves the operations off.
    void setItems(const QList<QUrl>& items);
    const QStringList& files() const { return m_files; }

    QList<FileOperationType> performableOperationTypes() const;
    QList<UserOperation> performableUserOperations() const;
    QList<ApplicationScript> performableApplicationScripts() const;
    bool canPerformOperationType(FileOperationType type, const QStringList& files) const;
    // What the type asks for; empty for a type that is not offered here.
    static OperationSettings settings(FileOperationType type);

    // Asks for the values where the type has some (and a display is there), then runs. Answers whether
    // it started: a dialog that opens counts.
    bool performOperationType(FileOperationType type);
    // Runs at once with `values` (checked, defaults filled in), asking nothing: the command line.
    RunResult performOperationType(FileOperationType type, const QVariantMap& values);
    // Copy to or move to a folder chosen before (a recent destination): asks only on a name clash.
    bool performTransfer(FileOperationType type, const QString& destination);
    // The recent destinations of copy to or move to, most recent first.
    QStringList recentDestinations(FileOperationType type) const;
    bool performUserOperation(const UserOperation& operation);
    bool performApplicationScript(const ApplicationScript& script);

    bool isRunning() const { return m_job != nullptr; }
    void cancel();

    // $XDG_CACHE_HOME/vantrope/Operations: every run writes into a new folder inside it.
    static QString outputDirectory();
    // A new, empty folder for one run; empty when none can be made.
    static QString makeRunDirectory();

private:
    using Work = std::function<FileOperationOutcome(const FileOperationContext& context)>;
    struct RunSpec {
        QString title;
        FileOperationEntry::ResultUse resultUse = FileOperationEntry::ResultUse::replaceContent;
        FileOperationEntry::TextUse textUse = FileOperationEntry::TextUse::none;
        QString runDirectory;
    };

    QVariantMap initialValues(FileOperationType type) const;
    void didChooseValues(FileOperationType type, const QVariantMap& values);
    RunResult startOperation(FileOperationType type, const QVariantMap& resolved);
    void start(const RunSpec& spec, Work work);
    void finish(const RunSpec& spec, const QStringList& inputs, const FileOperationOutcome& outcome);
    QString describeFailures(const FileOperationOutcome& outcome) const;

    Environment m_environment;
    OperationsControllerDelegate* m_delegate = nullptr;
    QStringList m_files;
    QStringList m_mimeTypes;
    std::unique_ptr<ThreadPoolJob<FileOperationOutcome>> m_job;
    std::shared_ptr<std::atomic<bool>> m_cancelRequested;
    bool m_isAsking = false;
};

} // namespace Vantrope
