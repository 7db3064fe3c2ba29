// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "OperationsController.h"

#include "ApplicationScriptsStore.h"
#include "BatchRenamePattern.h"
#include "CommandTemplate.h"
#include "ExternalProcess.h"
#include "FileOperationsLogging.h"
#include "FileTransfer.h"
#include "Libraries/Core/Localized.h"
#include "Libraries/Core/ReservedTemporaryDirectory.h"
#include "Libraries/Core/ThreadPoolJob.h"
#include "OperationChoiceStore.h"
#include "OperationsControllerDelegate.h"
#include "OperationsDisplayController.h"
#include "UserOperationStore.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QStandardPaths>
#include <QUuid>

namespace Vantrope {

namespace {

FileOperationContext makeContext(JobContext& job, const std::shared_ptr<std::atomic<bool>>& requested)
{
    FileOperationContext context;
    context.isCancelled = [&job, requested] { return job.isCancelled() || requested->load(); };
    context.reportProgress = [&job](double fraction, const QString& title) {
        job.reportProgress(fraction, title);
    };
    return context;
}

// A step of a longer run reports its progress as its share of the whole.
FileOperationContext scaled(const FileOperationContext& context, int step, int steps)
{
    FileOperationContext part = context;
    part.reportProgress = [context, step, steps](double fraction, const QString& title) {
        context.reportProgress((double(step) + fraction) / double(steps), title);
    };
    return part;
}

FileOperationOutcome runCommand(const UserOperation& operation, const QStringList& files,
                                const QString& runDirectory, std::chrono::milliseconds timeLimit,
                                const FileOperationContext& context)
{
    FileOperationOutcome outcome;
    const auto parsed = CommandTemplate::parse(operation.command);
    if (!parsed) {
        for (const QString& file : files) {
            outcome.failures.append({file, parsed.error().description()});
        }
        return outcome;
    }
    const QList<QStringList> runs = parsed->invocations(files);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("VANTROPE_OUTPUT_DIRECTORY"), runDirectory);
    for (qsizetype index = 0; index < runs.size(); ++index) {
        if (context.isCancelled()) {
            outcome.cancelled = true;
            return outcome;
        }
        const QStringList& words = runs[index];
        context.reportProgress(double(index) / double(runs.size()), operation.name);
        QString program = words.first();
        if (!program.contains(QLatin1Char('/'))) {
            program = QStandardPaths::findExecutable(program);
        }
        // Per file, a failure names that file; a single run names the first.
        const QString subject = runs.size() == files.size() ? files.value(index) : files.value(0);
        if (program.isEmpty()) {
            outcome.failures.append(
                {subject,
                 Localized("user-operation.error.no-program", "\"%1\" is not installed").arg(words.first())});
            continue;
        }
        const auto result =
            ExternalProcess::run(program, words.mid(1), runDirectory, environment, timeLimit, context);
        using End = ExternalProcess::Result::End;
        if (result.end == End::cancelled) {
            outcome.cancelled = true;
            return outcome;
        }
        if (result.end != End::exited || result.exitCode != 0) {
            QString message = result.lastErrorLine();
            if (result.end == End::timedOut) {
                message = Localized("user-operation.error.timeout", "It took too long and was stopped");
            } else if (message.isEmpty()) {
                message = Localized("user-operation.error.exit", "It failed with exit code %1")
                              .arg(result.exitCode);
            }
            outcome.failures.append({subject, message});
            continue;
        }
        outcome.outputFiles.append(ApplicationScript::filesNamedIn(result.standardOutput, runDirectory,
                                                                   {QDir::homePath(), runDirectory}));
    }
    return outcome;
}

FileOperationOutcome runChain(const UserOperation& operation, const QStringList& files,
                              const QString& runDirectory, const FileOperationContext& context)
{
    FileOperationOutcome outcome;
    QStringList current = files;
    bool changed = false;
    QStringList texts;
    for (qsizetype index = 0; index < operation.steps.size(); ++index) {
        if (context.isCancelled()) {
            outcome.cancelled = true;
            break;
        }
        const UserOperation::Step& step = operation.steps[index];
        const FileOperationEntry* entry = FileOperationTable::entry(step.type);
        if (!entry || !entry->run) {
            for (const QString& file : current) {
                outcome.failures.append(
                    {file, Localized("user-operation.error.step-unavailable", "\"%1\" is not available here")
                               .arg(step.type.title())});
            }
            return outcome;
        }
        const auto values = resolveOperationSettings(entry->settings(), step.values);
        if (!values) {
            for (const QString& file : current) {
                outcome.failures.append(
                    {file, step.type.title() + QStringLiteral(": ") + values.error().description()});
            }
            return outcome;
        }
        const QString stepDirectory = QDir(runDirectory).filePath(QString::number(index + 1));
        QDir().mkpath(stepDirectory);
        FileOperationOutcome part = entry->run(current, *values, stepDirectory,
                                               scaled(context, int(index), int(operation.steps.size())));
        outcome.failures.append(part.failures);
        if (!part.text.isEmpty()) {
            texts.append(part.text);
        }
        if (part.cancelled) {
            outcome.cancelled = true;
            break;
        }
        if (entry->resultUse == FileOperationEntry::ResultUse::replaceContent) {
            if (part.outputFiles.isEmpty()) {
                break; // nothing left to work on: the failures say why
            }
            current = part.outputFiles;
            changed = true;
        }
    }
    if (changed) {
        outcome.outputFiles = current;
    }
    outcome.text = texts.join(QLatin1Char('\n'));
    return outcome;
}

} // namespace

OperationsController::OperationsController(Environment environment, QObject* parent)
    : QObject(parent)
    , m_environment(std::move(environment))
{}

OperationsController::~OperationsController()
{
    if (m_cancelRequested) {
        m_cancelRequested->store(true);
    }
}

void OperationsController::setItems(const QList<QUrl>& items)
{
    m_files.clear();
    m_mimeTypes.clear();
    static const QMimeDatabase database;
    for (const QUrl& url : items) {
        if (!url.isLocalFile()) {
            m_files.clear();
            m_mimeTypes.clear();
            return;
        }
        const QString path = url.toLocalFile();
        m_files.append(path);
        m_mimeTypes.append(database.mimeTypeForFile(path).name());
    }
}

bool OperationsController::canPerformOperationType(FileOperationType type, const QStringList& files) const
{
    const FileOperationEntry* entry = FileOperationTable::entry(type);
    if (!entry || files.isEmpty()) {
        return false;
    }
    static const QMimeDatabase database;
    QStringList mimeTypes;
    if (files == m_files) {
        mimeTypes = m_mimeTypes;
    } else {
        for (const QString& file : files) {
            mimeTypes.append(database.mimeTypeForFile(file).name());
        }
    }
    if (!type.canPerform(mimeTypes)) {
        return false;
    }
    if (entry->canRead) {
        return std::all_of(mimeTypes.cbegin(), mimeTypes.cend(), entry->canRead);
    }
    return true;
}

QList<FileOperationType> OperationsController::performableOperationTypes() const
{
    QList<FileOperationType> types;
    for (const FileOperationEntry& entry : FileOperationTable::entries()) {
        if (canPerformOperationType(entry.type, m_files)) {
            types.append(entry.type);
        }
    }
    if (!m_environment.display) {
        types.removeAll(FileOperationType::getInfo);
    }
    return types;
}

QList<UserOperation> OperationsController::performableUserOperations() const
{
    if (!m_environment.userOperations || m_files.isEmpty()) {
        return {};
    }
    QList<UserOperation> operations;
    for (const UserOperation& operation : m_environment.userOperations->operations()) {
        if (operation.kind == UserOperation::Kind::command ||
            std::all_of(
                operation.steps.cbegin(), operation.steps.cend(), [this](const UserOperation::Step& step) {
                    return canPerformOperationType(step.type, m_files) || !step.type.isImageOperation();
                })) {
            operations.append(operation);
        }
    }
    return operations;
}

QList<ApplicationScript> OperationsController::performableApplicationScripts() const
{
    if (!m_environment.scripts || m_files.isEmpty()) {
        return {};
    }
    return m_environment.scripts->scripts();
}

OperationSettings OperationsController::settings(FileOperationType type)
{
    const FileOperationEntry* entry = FileOperationTable::entry(type);
    return entry && entry->settings ? entry->settings() : OperationSettings();
}

QVariantMap OperationsController::initialValues(FileOperationType type) const
{
    QVariantMap values;
    for (const OperationSetting& setting : settings(type)) {
        values.insert(setting.key, setting.defaultValue);
    }
    if (m_environment.choices) {
        const QVariantMap remembered = m_environment.choices->lastChoice(type.identifier());
        for (auto it = remembered.cbegin(); it != remembered.cend(); ++it) {
            if (values.contains(it.key())) {
                values.insert(it.key(), it.value());
            }
        }
    }
    // A new name starts from the old one, never from the last item's.
    if (type == FileOperationType::rename && m_files.size() == 1) {
        values.insert(QStringLiteral("name"), QFileInfo(m_files.first()).fileName());
    }
    return values;
}

bool OperationsController::performOperationType(FileOperationType type)
{
    if (isRunning() || m_isAsking || !canPerformOperationType(type, m_files)) {
        return false;
    }
    if (type == FileOperationType::getInfo) {
        if (!m_environment.display) {
            return false;
        }
        m_environment.display->showInformation(
            FileInformation::describe(m_files.first(), m_environment.metadata));
        return true;
    }
    const OperationSettings typeSettings = settings(type);
    const QVariantMap initial = initialValues(type);
    if (typeSettings.isEmpty() || !m_environment.display) {
        didChooseValues(type, initial);
        return true;
    }
    OperationsDisplayController::SettingsRequest request;
    request.title = type.title();
    request.settings = typeSettings;
    request.values = initial;
    if (type == FileOperationType::batchRename) {
        request.preview = [files = m_files](const QVariantMap& values) {
            const BatchRenamePattern pattern(values.value(QStringLiteral("pattern")).toString(),
                                             values.value(QStringLiteral("start"), 1).toInt(),
                                             values.value(QStringLiteral("digits"), 1).toInt());
            const auto names = pattern.newNames(files);
            return names ? *names : QStringList{names.error().description()};
        };
    }
    m_isAsking = true;
    m_environment.display->askForSettings(
        request, [self = QPointer(this), type](const std::optional<QVariantMap>& values) {
            if (!self) {
                return;
            }
            self->m_isAsking = false;
            if (values) {
                self->didChooseValues(type, *values);
            }
        });
    return true;
}

void OperationsController::didChooseValues(FileOperationType type, const QVariantMap& values)
{
    const auto resolved = resolveOperationSettings(settings(type), values);
    if (!resolved) {
        if (m_delegate) {
            m_delegate->operationDidFail(*this, resolved.error().description());
        }
        return;
    }
    if (m_environment.choices && !settings(type).isEmpty()) {
        QVariantMap remembered = *resolved;
        remembered.remove(QStringLiteral("name")); // names belong to one item
        m_environment.choices->remember(type.identifier(), remembered);
    }
    const bool transfer = type == FileOperationType::copyTo || type == FileOperationType::moveTo;
    const QString destination = resolved->value(QStringLiteral("destination")).toString();
    if (transfer && resolved->value(QStringLiteral("clash")) == QLatin1String("ask") &&
        m_environment.display) {
        const QStringList clashes = FileTransfer::clashes(m_files, destination);
        if (!clashes.isEmpty()) {
            m_isAsking = true;
            m_environment.display->askForClashResolution(
                clashes, destination,
                [self = QPointer(this), type,
                 values = *resolved](const std::optional<FileTransfer::ClashResolution>& resolution) mutable {
                    if (!self) {
                        return;
                    }
                    self->m_isAsking = false;
                    if (!resolution) {
                        return;
                    }
                    values.insert(
                        QStringLiteral("clash"),
                        *resolution == FileTransfer::ClashResolution::replace    ? QStringLiteral("replace")
                        : *resolution == FileTransfer::ClashResolution::keepBoth ? QStringLiteral("keepBoth")
                                                                                 : QStringLiteral("skip"));
                    if (const auto started = self->startOperation(type, values);
                        !started && self->m_delegate) {
                        self->m_delegate->operationDidFail(*self, started.error());
                    }
                });
            return;
        }
    }
    if (const auto started = startOperation(type, *resolved); !started && m_delegate) {
        m_delegate->operationDidFail(*this, started.error());
    }
}

OperationsController::RunResult OperationsController::performOperationType(FileOperationType type,
                                                                           const QVariantMap& values)
{
    if (isRunning() || m_isAsking) {
        return std::unexpected(
            Localized("operations.error.busy", "Another operation is running on this shelf."));
    }
    if (!canPerformOperationType(type, m_files)) {
        return std::unexpected(
            Localized("operations.error.not-offered", "\"%1\" is not on offer for these items.")
                .arg(type.identifier()));
    }
    if (type == FileOperationType::getInfo) {
        if (!m_environment.display) {
            return std::unexpected(
                Localized("operations.error.no-display", "Get Info needs the shelf's window."));
        }
        m_environment.display->showInformation(
            FileInformation::describe(m_files.first(), m_environment.metadata));
        return {};
    }
    const auto resolved = resolveOperationSettings(settings(type), values);
    if (!resolved) {
        return std::unexpected(resolved.error().description());
    }
    return startOperation(type, *resolved);
}

OperationsController::RunResult OperationsController::startOperation(FileOperationType type,
                                                                     const QVariantMap& resolved)
{
    const FileOperationEntry* entry = FileOperationTable::entry(type);
    if (!entry || !entry->run) {
        return std::unexpected(
            Localized("operations.error.not-offered", "\"%1\" is not on offer for these items.")
                .arg(type.identifier()));
    }
    if (isRunning()) {
        return std::unexpected(
            Localized("operations.error.busy", "Another operation is running on this shelf."));
    }
    RunSpec spec{type.title(), entry->resultUse, entry->textUse, {}};
    if (entry->needsOutputDirectory) {
        spec.runDirectory = makeRunDirectory();
        if (spec.runDirectory.isEmpty()) {
            return std::unexpected(Localized("operations.error.output-directory",
                                             "The folder for the results could not be made in \"%1\".")
                                       .arg(outputDirectory()));
        }
    }
    const bool transfer = type == FileOperationType::copyTo || type == FileOperationType::moveTo;
    if (transfer) {
        const QFileInfo destination(resolved.value(QStringLiteral("destination")).toString());
        if (!destination.isDir()) {
            return std::unexpected(
                Localized("operations.error.no-destination", "The folder \"%1\" does not exist.")
                    .arg(destination.filePath()));
        }
        if (!destination.isWritable()) {
            return std::unexpected(
                Localized("operations.error.read-only", "The folder \"%1\" cannot be written to.")
                    .arg(destination.filePath()));
        }
        if (m_environment.choices) {
            m_environment.choices->addRecentDestination(type.identifier(), destination.absoluteFilePath());
        }
    }
    qCInfo(lcFileOperations).noquote()
        << "Performing file operation" << type.identifier() << "on" << m_files.size() << "items";
    start(spec,
          [run = entry->run, files = m_files, resolved, directory = spec.runDirectory](
              const FileOperationContext& context) { return run(files, resolved, directory, context); });
    return {};
}

bool OperationsController::performTransfer(FileOperationType type, const QString& destination)
{
    if ((type != FileOperationType::copyTo && type != FileOperationType::moveTo) || isRunning() ||
        m_isAsking || !canPerformOperationType(type, m_files)) {
        return false;
    }
    QVariantMap values = initialValues(type);
    values.insert(QStringLiteral("destination"), destination);
    didChooseValues(type, values);
    return true;
}

QStringList OperationsController::recentDestinations(FileOperationType type) const
{
    return m_environment.choices ? m_environment.choices->recentDestinations(type.identifier())
                                 : QStringList();
}

bool OperationsController::performUserOperation(const UserOperation& operation)
{
    if (isRunning() || m_isAsking || m_files.isEmpty()) {
        return false;
    }
    RunSpec spec{operation.name, FileOperationEntry::ResultUse::replaceContent,
                 FileOperationEntry::TextUse::clipboardAndItem, makeRunDirectory()};
    if (spec.runDirectory.isEmpty()) {
        return false;
    }
    qCInfo(lcFileOperations).noquote() << "Performing user operation on" << m_files.size() << "items";
    start(spec, [operation, files = m_files, directory = spec.runDirectory,
                 limit = m_environment.scriptTimeLimit](const FileOperationContext& context) {
        return operation.kind == UserOperation::Kind::command
                   ? runCommand(operation, files, directory, limit, context)
                   : runChain(operation, files, directory, context);
    });
    return true;
}

bool OperationsController::performApplicationScript(const ApplicationScript& script)
{
    if (isRunning() || m_isAsking || m_files.isEmpty()) {
        return false;
    }
    RunSpec spec{script.name, FileOperationEntry::ResultUse::replaceContent,
                 FileOperationEntry::TextUse::none, makeRunDirectory()};
    if (spec.runDirectory.isEmpty()) {
        return false;
    }
    qCInfo(lcFileOperations).noquote() << "Performing application script on" << m_files.size() << "items";
    start(spec, [script, files = m_files, directory = spec.runDirectory,
                 limit = m_environment.scriptTimeLimit](const FileOperationContext& context) {
        return script.run(files, directory, {QDir::homePath(), directory}, limit, context);
    });
    return true;
}

void OperationsController::start(const RunSpec& spec, Work work)
{
    m_cancelRequested = std::make_shared<std::atomic<bool>>(false);
    m_job = std::make_unique<ThreadPoolJob<FileOperationOutcome>>(
        [work = std::move(work),
         requested = m_cancelRequested](JobContext& job) -> ThreadPoolJob<FileOperationOutcome>::Outcome {
            return work(makeContext(job, requested));
        });
    ThreadPoolJob<FileOperationOutcome>* job = m_job.get();
    const QStringList inputs = m_files;
    connect(job, &Job::progressed, this, [this](double fraction, const QString& title) {
        if (m_delegate) {
            m_delegate->operationDidProgress(*this, fraction, title);
        }
    });
    connect(job, &Job::finished, this, [this, spec, inputs, job] {
        const FileOperationOutcome outcome = job->result().value_or(FileOperationOutcome());
        // The job goes once its signal has returned.
        if (auto ended = std::move(m_job)) {
            ended.release()->deleteLater();
        }
        finish(spec, inputs, outcome);
    });
    connect(job, &Job::failed, this, [this, job](const Job::Error& error) {
        if (auto ended = std::move(m_job)) {
            ended.release()->deleteLater();
        }
        (void)job;
        if (!m_delegate) {
            return;
        }
        if (error.isCancelled()) {
            m_delegate->operationDidCancel(*this);
        } else {
            m_delegate->operationDidFail(*this, error.message);
        }
    });
    if (m_delegate) {
        m_delegate->operationDidStart(*this, spec.title);
    }
    job->start();
}

void OperationsController::cancel()
{
    if (m_cancelRequested) {
        // The work stops at its next check and still reports what it did, so that moved or renamed
        // items are followed on the shelf.
        m_cancelRequested->store(true);
    }
}

QString OperationsController::describeFailures(const FileOperationOutcome& outcome) const
{
    QStringList lines;
    for (const FileOperationFailure& failure : outcome.failures) {
        lines.append(QStringLiteral("%1: %2").arg(QFileInfo(failure.path).fileName(), failure.message));
    }
    return lines.join(QLatin1Char('\n'));
}

void OperationsController::finish(const RunSpec& spec, const QStringList& inputs,
                                  const FileOperationOutcome& outcome)
{
    if (!spec.runDirectory.isEmpty()) {
        // A run that wrote nothing leaves no folder behind.
        QDir().rmdir(spec.runDirectory);
    }
    if (!m_delegate) {
        return;
    }
    const QPointer self(this);
    QStringList failed;
    for (const FileOperationFailure& failure : outcome.failures) {
        failed.append(failure.path);
    }
    if (!outcome.text.isEmpty() && spec.textUse != FileOperationEntry::TextUse::none) {
        m_delegate->operationProduceText(*this, outcome.text,
                                         spec.textUse == FileOperationEntry::TextUse::clipboardAndItem);
        if (!self) {
            return;
        }
    }
    switch (spec.resultUse) {
    case FileOperationEntry::ResultUse::replaceContent:
        if (!outcome.outputFiles.isEmpty()) {
            // What failed stays on the shelf beside the results, to be tried again.
            QStringList content = outcome.outputFiles;
            for (const QString& input : inputs) {
                if (failed.contains(input) && QFileInfo::exists(input) && !content.contains(input)) {
                    content.append(input);
                }
            }
            m_delegate->operationReplaceContent(*this, content);
        }
        break;
    case FileOperationEntry::ResultUse::removeInputs: {
        QStringList gone;
        for (const QString& input : inputs) {
            if (!failed.contains(input) && !QFileInfo::exists(input)) {
                gone.append(input);
            }
        }
        if (!gone.isEmpty()) {
            m_delegate->operationRemoveContent(*this, gone);
        }
        break;
    }
    case FileOperationEntry::ResultUse::keepContent:
    case FileOperationEntry::ResultUse::showInfo:
        break;
    }
    if (!self) {
        return;
    }
    if (outcome.cancelled) {
        m_delegate->operationDidCancel(*this);
        return;
    }
    const QString message = describeFailures(outcome);
    const bool nothingWorked = !outcome.failures.isEmpty() && outcome.outputFiles.isEmpty() &&
                               outcome.text.isEmpty() && failed.size() >= inputs.size();
    if (nothingWorked) {
        m_delegate->operationDidFail(*this, message);
    } else {
        m_delegate->operationDidFinish(*this, message);
    }
}

QString OperationsController::outputDirectory()
{
    return TemporaryDirectories::path(ReservedTemporaryDirectory::operations).value_or(QString());
}

QString OperationsController::makeRunDirectory()
{
    const QString base = outputDirectory();
    if (base.isEmpty()) {
        return {};
    }
    const QString name = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss-")) +
                         QUuid::createUuid().toString(QUuid::Id128).left(8);
    const QString path = QDir(base).filePath(name);
    if (!QDir().mkpath(path)) {
        return {};
    }
    return path;
}

} // namespace Vantrope
