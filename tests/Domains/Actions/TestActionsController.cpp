// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/Actions/ActionIdentifiers.h"
#include "Domains/Actions/ActionsController.h"
#include "Domains/Actions/ActionsControllerDelegate.h"
#include "Domains/Actions/ActionsControllerInvalidation.h"
#include "FakeArchiver.h"
#include "Libraries/Core/DispatchQueue.h"
#include "MenuDescription.h"
#include "Preferences/MemoryPreferenceStorage.h"
#include "Preferences/Preferences.h"
#include "support/TestSupport.h"
#include "TestActions.h"

#include <atomic>
#include <chrono>
#include <QDir>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QTest>
#include <thread>

using namespace Vantrope;
using namespace std::chrono_literals;
using std::chrono::milliseconds;
using Vantrope::Test::describeMenu;
using Vantrope::Test::filesUnder;

namespace {

// A shelf item whose resolution the test controls: how long it takes, whether it fails, whether the
// item is ready at all.
class FakeDraggable final : public Draggable {
public:
    explicit FakeDraggable(const QUrl& url, milliseconds delay = {}, bool fails = false, bool ready = true)
        : m_url(url)
        , m_delay(delay)
        , m_fails(fails)
        , m_ready(ready)
    {}

    std::optional<QUrl> url() const override { return m_url; }
    std::optional<quint64> systemFileNumber() const override { return std::nullopt; }
    bool isReady() const override { return m_ready; }
    QString cacheKey() const override { return m_url.toString(); }
    QImage image(bool, const QSize&) const override { return {}; }
    PasteboardItem pasteboardItem() const override { return {}; }
    QString description() const override { return m_url.fileName(); }

    void resolveUrl(ResolveCompletion completion) override
    {
        ++resolveCount;
        ResolveResult result = m_url;
        if (m_fails) {
            result = std::unexpected(
                DraggableError{DraggableError::Kind::failedWriting, QStringLiteral("disk full")});
        }
        DispatchQueue::main().asyncAfter(m_delay, [weak = weak_from_this(), completion, result] {
            if (auto self = std::static_pointer_cast<FakeDraggable>(weak.lock())) {
                self->resolveOnMain(completion, result);
            }
        });
    }

    int resolveCount = 0;

private:
    QUrl m_url;
    milliseconds m_delay;
    bool m_fails;
    bool m_ready;
};

class RecordingDelegate final : public ActionsControllerDelegate {
public:
    void didStartPreparingAction(const ActionPtr& action, ActionsController&) override
    {
        events.append(QStringLiteral("preparing:") + action->identifier());
    }
    void didStartPerformingAction(const ActionPtr& action, ActionsController&) override
    {
        events.append(QStringLiteral("performing:") + action->identifier());
    }
    void didUpdateProgressForAction(const ActionPtr& action, double progress,
                                    const std::optional<QString>& title, ActionsController&) override
    {
        events.append(
            QStringLiteral("progress:%1:%2:%3")
                .arg(action->identifier(), QString::number(progress), title.value_or(QStringLiteral("-"))));
    }
    void didFinishPerformingAction(const ActionPtr& action, ActionsController& controller,
                                   const Action::Result& result) override
    {
        events.append(QStringLiteral("finished:") + action->identifier());
        results.append(result);
        if (onFinish) {
            onFinish(controller);
        }
    }

    QStringList events;
    QList<Action::Result> results;
    std::function<void(ActionsController&)> onFinish;
};

class FakeOperationsController final : public OperationsProvider {
public:
    void setItems(const QList<QUrl>& urls) override { items = urls; }
    QList<MenuItem> menuItems() const override
    {
        return {{QStringLiteral("resize"), QStringLiteral("Resize..."), {}}};
    }
    QList<SearchElement> searchElements() const override
    {
        return {{SearchElement::Kind::userOperation,
                 QStringLiteral("my-script"),
                 QStringLiteral("My script"),
                 {},
                 {}}};
    }
    bool performMenuItem(const QString& identifier) override
    {
        performed.append(identifier);
        return true;
    }
    bool performSearchElement(const SearchElement& element) override
    {
        performed.append(element.identifier);
        return true;
    }
    void cancel() override { ++cancelCount; }

    QList<QUrl> items;
    QStringList performed;
    int cancelCount = 0;
};

QStringList identifiers(const ActionList& actions)
{
    QStringList result;
    for (const ActionPtr& action : actions) {
        result.append(action->identifier());
    }
    return result;
}

QStringList searchIdentifiers(const ActionsController& controller)
{
    QStringList result;
    for (const auto& element :
         controller.searchableElements().value_or(QList<ActionsController::SearchElement>())) {
        result.append(element.item.identifier);
    }
    return result;
}

} // namespace

// One shelf's actions from its items to the end of a run, with fake items and actions, real files and
// a fake archiver that writes real files.
class TestActionsController final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_work = std::make_unique<QTemporaryDir>();
        m_preferences = std::make_unique<Preferences>(std::make_unique<MemoryPreferenceStorage>());
        m_archiver = std::make_shared<Test::FakeArchiver>();
        m_delegate = std::make_unique<RecordingDelegate>();
        m_shareQueries = 0;
    }

    void cleanup()
    {
        m_controller.reset();
        m_archiver->held = false;
        m_archiver->waitForDone();
    }

    void preparedMenuHoldsWhatCanRunInMenuOrder()
    {
        auto preview = Test::makeAction(ActionIdentifiers::preview, ActionCategory::primary);
        auto configured = std::make_shared<Test::ConfigurableTestAction>(QStringLiteral("s3"),
                                                                         ActionCategory::upload, true);
        auto unconfigured = std::make_shared<Test::ConfigurableTestAction>(QStringLiteral("imgur"),
                                                                           ActionCategory::upload, false);
        auto copy = Test::makeAction(ActionIdentifiers::copyToPasteboard, ActionCategory::shelf);
        auto cannot = Test::makeAction(QStringLiteral("rename"), ActionCategory::shelf);
        cannot->performable = false;
        auto needsTwo = Test::makeAction(QStringLiteral("merge"), ActionCategory::shelf);
        needsTwo->minimumItems = 2;
        auto dock = Test::makeAction(ActionIdentifiers::dockShelf, ActionCategory::supplementary);
        auto open = Test::makeAction(ActionIdentifiers::openFile, ActionCategory::primary);

        makeController({file(QStringLiteral("a.txt"))},
                       {open, preview, configured, unconfigured, copy, cannot, needsTwo, dock},
                       {QStringLiteral("sharingservice_email"), QStringLiteral("sharingservice_bluetooth")});
        m_controller->prepare();
        QVERIFY(m_controller->isPreparingMenu());
        QTRY_VERIFY(m_controller->preparedMenu().has_value());
        QVERIFY(!m_controller->isPreparingMenu());

        // Share targets stand right behind the preview.
        QCOMPARE(
            identifiers(m_controller->actions()),
            (QStringList{QStringLiteral("openfile"), QStringLiteral("quick-look"),
                         QStringLiteral("sharingservice_email"), QStringLiteral("sharingservice_bluetooth"),
                         QStringLiteral("s3"), QStringLiteral("imgur"), QStringLiteral("copy_to_pasteboard"),
                         QStringLiteral("rename"), QStringLiteral("merge"), QStringLiteral("dock_shelf")}));
        QCOMPARE(describeMenu(m_controller->preparedMenu()->entries),
                 (QStringList{QStringLiteral("action:openfile"), QStringLiteral("action:quick-look"),
                              QStringLiteral("---"), QStringLiteral("action:sharingservice_email"),
                              QStringLiteral("action:sharingservice_bluetooth"), QStringLiteral("---"),
                              QStringLiteral("action:s3"), QStringLiteral("---"),
                              QStringLiteral("action:copy_to_pasteboard"), QStringLiteral("---"),
                              QStringLiteral("action:dock_shelf")}));
        QCOMPARE(searchIdentifiers(*m_controller),
                 (QStringList{QStringLiteral("openfile"), QStringLiteral("quick-look"),
                              QStringLiteral("sharingservice_email"),
                              QStringLiteral("sharingservice_bluetooth"), QStringLiteral("s3"),
                              QStringLiteral("copy_to_pasteboard"), QStringLiteral("dock_shelf")}));
        QCOMPARE(m_shareQueries.load(), 1);
    }

    void itemsKeepTheShelfsOrder_data()
    {
        QTest::addColumn<QList<milliseconds>>("delays");
        QTest::newRow("finishing in order") << QList<milliseconds>{0ms, 20ms, 40ms};
        QTest::newRow("finishing in reverse") << QList<milliseconds>{80ms, 40ms, 0ms};
        QTest::newRow("middle last") << QList<milliseconds>{0ms, 80ms, 0ms};
    }

    void itemsKeepTheShelfsOrder()
    {
        QFETCH(QList<milliseconds>, delays);
        DraggableList draggables;
        QList<QUrl> urls;
        for (int index = 0; index < delays.size(); ++index) {
            const QUrl url = fileUrl(QStringLiteral("item%1.txt").arg(index));
            urls.append(url);
            draggables.append(std::make_shared<FakeDraggable>(url, delays[index]));
        }
        // A promise still on its way is left out.
        draggables.insert(
            1, std::make_shared<FakeDraggable>(fileUrl(QStringLiteral("pending.txt")), 0ms, false, false));
        auto operations = std::make_unique<FakeOperationsController>();
        FakeOperationsController* operationsView = operations.get();
        makeController(draggables, {Test::makeAction(QStringLiteral("copy"), ActionCategory::shelf)}, {},
                       std::move(operations));
        m_controller->prepare();
        QTRY_VERIFY(m_controller->preparedMenu().has_value());
        QCOMPARE(actionItemUrls(*m_controller->actionItems()), urls);
        QCOMPARE(operationsView->items, urls);
        QCOMPARE(std::static_pointer_cast<FakeDraggable>(draggables[1])->resolveCount, 0);
        QCOMPARE(describeMenu(m_controller->preparedMenu()->entries),
                 (QStringList{QStringLiteral("operation:resize"), QStringLiteral("---"),
                              QStringLiteral("action:copy")}));
        QCOMPARE(m_controller->prepareItemsIdentifier().has_value(), true);
    }

    void twoQuickPreparesRunOnePass()
    {
        auto first = std::make_shared<FakeDraggable>(fileUrl(QStringLiteral("a.txt")), 50ms);
        auto second = std::make_shared<FakeDraggable>(fileUrl(QStringLiteral("b.txt")));
        makeController({first, second},
                       {Test::makeAction(ActionIdentifiers::preview, ActionCategory::primary)},
                       {QStringLiteral("sharingservice_email")});
        Test::LogCapture log;
        m_controller->prepare();
        m_controller->prepare();
        QTRY_VERIFY(m_controller->preparedMenu().has_value());
        QCOMPARE(first->resolveCount, 1);
        QCOMPARE(second->resolveCount, 1);
        QCOMPARE(m_shareQueries.load(), 1);
        QCOMPARE(log.count(QStringLiteral("Skipping action menu preparation as we are already preparing")),
                 1);
        QCOMPARE(log.count(QStringLiteral("Starting to prepare action menu...")), 1);

        m_controller->prepare();
        QVERIFY(!m_controller->isPreparingMenu());
        QVERIFY(log.contains(QStringLiteral("Skipping action menu preparation as we already have one")));
        QTest::qWait(20);
        QCOMPARE(first->resolveCount, 1);
        // The share targets went in once.
        QCOMPARE(identifiers(m_controller->actions()),
                 (QStringList{QStringLiteral("quick-look"), QStringLiteral("sharingservice_email")}));
    }

    void failedItemPreparationOnlyLogs_data()
    {
        QTest::addColumn<bool>("resolutionFails");
        QTest::addColumn<int>("errorKind");
        QTest::newRow("item cannot give its file") << true << int(ActionError::Kind::failedGeneratingUrl);
        QTest::newRow("file is gone") << false << int(ActionError::Kind::underlying);
    }

    void failedItemPreparationOnlyLogs()
    {
        QFETCH(bool, resolutionFails);
        QFETCH(int, errorKind);
        const QUrl missing = QUrl::fromLocalFile(m_dir->filePath(QStringLiteral("missing.txt")));
        auto broken = resolutionFails
                          ? std::make_shared<FakeDraggable>(fileUrl(QStringLiteral("x.txt")), 0ms, true)
                          : std::make_shared<FakeDraggable>(missing);
        makeController({file(QStringLiteral("fine.txt")), broken},
                       {Test::makeAction(QStringLiteral("copy"), ActionCategory::shelf)},
                       {QStringLiteral("sharingservice_email")});
        Test::LogCapture log;
        std::optional<ActionsController::MenuResult> menu;
        m_controller->requestMenu({},
                                  [&menu](const ActionsController::MenuResult& result) { menu = result; });
        QTRY_VERIFY(menu.has_value());
        QVERIFY(!menu->has_value());
        QCOMPARE(int(menu->error().kind()), errorKind);
        QVERIFY(log.contains(QStringLiteral("Failed to prepare actions menu, failing silently")));
        QVERIFY(!m_controller->preparedMenu());
        QVERIFY(!m_controller->actionItems());
        QVERIFY(!m_controller->isPreparingMenu());
        QVERIFY(!m_controller->isMenuShown());
        QCOMPARE(m_shareQueries.load(), 0);
    }

    void invalidationDuringASlowShareQueryLeavesActionsAlone()
    {
        QSemaphore release;
        std::atomic<int> queries = 0;
        std::atomic<bool> slowAnswered = false;
        Services services;
        services.shareActionsProvider = [&release, &queries, &slowAnswered](const QList<QUrl>&) {
            if (++queries == 1) {
                release.acquire();
                slowAnswered = true;
                return ActionList{
                    Test::makeAction(QStringLiteral("sharingservice_slow"), ActionCategory::systemShare)};
            }
            return ActionList{
                Test::makeAction(QStringLiteral("sharingservice_fast"), ActionCategory::systemShare)};
        };
        auto item = std::make_shared<FakeDraggable>(fileUrl(QStringLiteral("a.txt")));
        auto copy = Test::makeAction(QStringLiteral("copy"), ActionCategory::shelf);
        copy->finishesAtOnce = false;
        m_controller = std::make_unique<ActionsController>(
            DraggableList{item},
            ActionList{Test::makeAction(ActionIdentifiers::preview, ActionCategory::primary), copy},
            *m_preferences, std::move(services));
        m_controller->setDelegate(m_delegate.get());
        Test::LogCapture log;

        m_controller->prepare();
        QTRY_COMPARE(queries.load(), 1);
        // A run under way does not survive an invalidation.
        m_controller->performAction(copy, {});
        ActionsControllerInvalidation::instance().post();
        QVERIFY(log.contains(QStringLiteral("About to invalidate actions menu and create new one")));
        QVERIFY(log.contains(QStringLiteral("Invalidating actions menu...")));
        QCOMPARE(copy->cancelCount, 1);
        QTRY_VERIFY(m_controller->preparedMenu().has_value());
        QCOMPARE(queries.load(), 2);

        release.release();
        QTRY_VERIFY(slowAnswered);
        QTest::qWait(50);
        QCOMPARE(identifiers(m_controller->actions()),
                 (QStringList{QStringLiteral("quick-look"), QStringLiteral("sharingservice_fast"),
                              QStringLiteral("copy")}));
        QCOMPARE(describeMenu(m_controller->preparedMenu()->entries),
                 (QStringList{QStringLiteral("action:quick-look"), QStringLiteral("---"),
                              QStringLiteral("action:sharingservice_fast"), QStringLiteral("---"),
                              QStringLiteral("action:copy")}));
        QVERIFY(!m_controller->isPreparingMenu());
        QVERIFY(log.contains(QStringLiteral(
            "Finished preparing share actions but it took to long, the menu has already been modified")));
        QCOMPARE(m_delegate->events.last(), QStringLiteral("finished:copy"));
        QCOMPARE(m_delegate->results.last().error().kind(), ActionError::Kind::canceled);
    }

    void invalidationRebuildsTheMenuFromTheKnownItems()
    {
        auto item = std::make_shared<FakeDraggable>(fileUrl(QStringLiteral("a.txt")));
        auto configured = std::make_shared<bool>(false);
        auto cloudDrive =
            std::make_shared<MutableConfigurableAction>(QStringLiteral("cloud-drive"), configured);
        makeController({item},
                       {Test::makeAction(ActionIdentifiers::preview, ActionCategory::primary), cloudDrive},
                       {QStringLiteral("sharingservice_email")});
        m_controller->prepare();
        QTRY_VERIFY(m_controller->preparedMenu().has_value());
        QCOMPARE(searchIdentifiers(*m_controller),
                 (QStringList{QStringLiteral("quick-look"), QStringLiteral("sharingservice_email")}));

        // Credentials were entered in the settings.
        *configured = true;
        ActionsControllerInvalidation::instance().post();
        QVERIFY(!m_controller->preparedMenu().has_value());
        QTRY_VERIFY(m_controller->preparedMenu().has_value());
        QCOMPARE(searchIdentifiers(*m_controller),
                 (QStringList{QStringLiteral("quick-look"), QStringLiteral("sharingservice_email"),
                              QStringLiteral("cloud-drive")}));
        QCOMPARE(item->resolveCount, 1);
        QCOMPARE(m_shareQueries.load(), 1);
        QCOMPARE(identifiers(m_controller->actions()),
                 (QStringList{QStringLiteral("quick-look"), QStringLiteral("sharingservice_email"),
                              QStringLiteral("cloud-drive")}));
    }

    void forgettingTheMenuWhileItIsMadeStillAnswersTheMenuRequest()
    {
        auto item = std::make_shared<FakeDraggable>(fileUrl(QStringLiteral("a.txt")), 50ms);
        makeController({item}, {Test::makeAction(QStringLiteral("copy"), ActionCategory::shelf)}, {});
        std::optional<ActionsController::MenuResult> menu;
        m_controller->requestMenu({},
                                  [&menu](const ActionsController::MenuResult& result) { menu = result; });
        QVERIFY(m_controller->isPreparingMenu());
        m_controller->invalidateMenu();
        QTRY_VERIFY(menu.has_value());
        QVERIFY(menu->has_value());
        QCOMPARE(describeMenu((*menu)->entries), QStringList{QStringLiteral("action:copy")});
        QCOMPARE(item->resolveCount, 2);
    }

    void runReportsInOrder_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("fromWorkerThread");
        QTest::newRow("plain action") << 0 << false;
        QTest::newRow("plain action answering from a worker thread") << 0 << true;
        QTest::newRow("folders zipped first") << 1 << false;
        QTest::newRow("action with its own preparation") << 2 << false;
    }

    void runReportsInOrder()
    {
        QFETCH(int, kind);
        QFETCH(bool, fromWorkerThread);
        std::shared_ptr<Test::TestAction> action;
        if (kind == 2) {
            action =
                std::make_shared<Test::PreparingTestAction>(QStringLiteral("upload"), ActionCategory::upload);
            action->strategy = ActionItemPreparationStrategy::zip;
        } else {
            action = Test::makeAction(QStringLiteral("upload"), ActionCategory::upload);
            action->strategy = kind == 1 ? ActionItemPreparationStrategy::zipDirectories
                                         : ActionItemPreparationStrategy::none;
        }
        action->finishesAtOnce = false;
        makeController({folder(QStringLiteral("docs")), file(QStringLiteral("a.txt"))}, {action}, {});
        m_controller->prepare();
        QTRY_VERIFY(m_controller->preparedMenu().has_value());

        m_controller->didSelectItem(
            std::get<ActionMenuEntry::ActionRow>(m_controller->preparedMenu()->entries.front().value));
        QTRY_COMPARE(action->performedItems.size(), 1);
        const QStringList performedNames = [&] {
            QStringList names;
            for (const ActionItem& item : action->performedItems.first()) {
                names.append(item.url().fileName());
            }
            return names;
        }();
        QCOMPARE(performedNames, (QStringList{kind == 1 ? QStringLiteral("docs.zip") : QStringLiteral("docs"),
                                              QStringLiteral("a.txt")}));
        QCOMPARE(m_controller->performingAction(), ActionPtr(action));
        QCOMPARE(m_controller->history().identifiers(), QStringList{QStringLiteral("upload")});
        QCOMPARE(m_controller->actionItemsAssembler() != nullptr, kind == 1);
        if (kind == 2) {
            QCOMPARE(std::static_pointer_cast<Test::PreparingTestAction>(action)->preparationCount, 1);
        }

        const auto answer = [action] {
            action->reportProgress(0.25, QStringLiteral("Uploading"));
            action->reportProgress(0.75);
            action->finish(ActionResultContext{
                ActionResultContext::Link{QUrl(QStringLiteral("https://example.org/x"))}});
        };
        if (fromWorkerThread) {
            std::thread(answer).join();
        } else {
            answer();
        }
        QTRY_COMPARE(m_delegate->results.size(), 1);
        QStringList expected;
        if (kind != 0) {
            expected.append(QStringLiteral("preparing:upload"));
        }
        expected << QStringLiteral("performing:upload") << QStringLiteral("progress:upload:0.25:Uploading")
                 << QStringLiteral("progress:upload:0.75:-") << QStringLiteral("finished:upload");
        QCOMPARE(m_delegate->events, expected);
        QCOMPARE(m_delegate->results.first(), Action::Result(ActionResultContext{ActionResultContext::Link{
                                                  QUrl(QStringLiteral("https://example.org/x"))}}));
        QVERIFY(!m_controller->performingAction());
        QVERIFY(!m_controller->actionItemsAssembler());
        // The zip made for the run is gone with it.
        QCOMPARE(filesUnder(m_work->path()), QStringList());
    }

    void progressAfterTheEndIsOnlyLogged()
    {
        auto action = Test::makeAction(QStringLiteral("copy"), ActionCategory::shelf);
        action->finishesAtOnce = false;
        makeController({file(QStringLiteral("a.txt"))}, {action}, {});
        Test::LogCapture log;
        m_controller->performAction(action, {});
        action->finish(ActionResultContext{});
        QTRY_COMPARE(m_delegate->results.size(), 1);
        action->reportProgress(1.0);
        QTRY_VERIFY(log.contains(QStringLiteral(
            "Action has new progress but lost self reference or lost performingAction reference!")));
        QCOMPARE(m_delegate->events,
                 (QStringList{QStringLiteral("performing:copy"), QStringLiteral("finished:copy")}));
    }

    void cancelEndsTheRunAsCanceled_data()
    {
        QTest::addColumn<bool>("duringAssembly");
        QTest::newRow("while performing") << false;
        QTest::newRow("while zipping") << true;
    }

    void cancelEndsTheRunAsCanceled()
    {
        QFETCH(bool, duringAssembly);
        auto action = Test::makeAction(QStringLiteral("upload"), ActionCategory::upload);
        action->strategy = ActionItemPreparationStrategy::zip;
        action->finishesAtOnce = false;
        auto operations = std::make_unique<FakeOperationsController>();
        FakeOperationsController* operationsView = operations.get();
        makeController({folder(QStringLiteral("docs")), folder(QStringLiteral("pics"))}, {action}, {},
                       std::move(operations));
        m_controller->prepare();
        QTRY_VERIFY(m_controller->actionItems().has_value());
        m_archiver->held = duringAssembly;

        m_controller->prepareAction(action, *m_controller->actionItems());
        if (duringAssembly) {
            QTRY_COMPARE(m_archiver->requests().size(), 1);
        } else {
            QTRY_COMPARE(action->performedItems.size(), 1);
            QCOMPARE(filesUnder(m_work->path()).size(), 1);
        }
        m_controller->cancel();
        QCOMPARE(operationsView->cancelCount, 1);
        QTRY_COMPARE(m_delegate->results.size(), 1);
        QCOMPARE(m_delegate->results.first().error(), ActionError(ActionError::Kind::canceled));
        QCOMPARE(action->cancelCount, duringAssembly ? 0 : 1);
        QCOMPARE(action->performedItems.size(), duringAssembly ? 0 : 1);
        QCOMPARE(m_delegate->events.first(), QStringLiteral("preparing:upload"));
        QCOMPARE(m_delegate->events.last(), QStringLiteral("finished:upload"));
        QCOMPARE(m_delegate->events.contains(QStringLiteral("performing:upload")), !duringAssembly);
        m_archiver->held = false;
        m_archiver->waitForDone();
        QTRY_COMPARE(filesUnder(m_work->path()), QStringList());
    }

    void failedPreparationEndsTheRun_data()
    {
        QTest::addColumn<bool>("ownPreparation");
        QTest::addColumn<int>("errorKind");
        QTest::newRow("a folder cannot be zipped") << false << int(ActionError::Kind::failedPreparation);
        QTest::newRow("the action's own preparation fails")
            << true << int(ActionError::Kind::exceededAllowedFileSize);
    }

    void failedPreparationEndsTheRun()
    {
        QFETCH(bool, ownPreparation);
        QFETCH(int, errorKind);
        std::shared_ptr<Test::TestAction> action;
        if (ownPreparation) {
            auto preparing =
                std::make_shared<Test::PreparingTestAction>(QStringLiteral("upload"), ActionCategory::upload);
            preparing->preparationError = ActionError(ActionError::Kind::exceededAllowedFileSize);
            action = preparing;
        } else {
            action = Test::makeAction(QStringLiteral("upload"), ActionCategory::upload);
        }
        action->strategy = ActionItemPreparationStrategy::zipDirectories;
        makeController({folder(QStringLiteral("docs")), folder(QStringLiteral("broken"))}, {action}, {});
        m_controller->prepare();
        QTRY_VERIFY(m_controller->actionItems().has_value());
        Test::LogCapture log;
        m_controller->prepareAction(action, *m_controller->actionItems());
        QTRY_COMPARE(m_delegate->results.size(), 1);
        QCOMPARE(int(m_delegate->results.first().error().kind()), errorKind);
        QCOMPARE(m_delegate->events,
                 (QStringList{QStringLiteral("preparing:upload"), QStringLiteral("finished:upload")}));
        QVERIFY(action->performedItems.isEmpty());
        QVERIFY(log.contains(QStringLiteral("Failed assembling items with error ")));
        // Nothing was recorded as run.
        QCOMPARE(m_controller->history().identifiers(), QStringList());
        QTRY_VERIFY(!m_controller->actionItemsAssembler());
        QCOMPARE(filesUnder(m_work->path()), QStringList());
    }

    void delegateMayDropTheControllerAtTheEnd_data()
    {
        QTest::addColumn<bool>("zipped");
        QTest::addColumn<bool>("fails");
        QTest::newRow("plain run") << false << false;
        QTest::newRow("zipped run") << true << false;
        QTest::newRow("failed zipping") << true << true;
    }

    void delegateMayDropTheControllerAtTheEnd()
    {
        QFETCH(bool, zipped);
        QFETCH(bool, fails);
        auto action = Test::makeAction(QStringLiteral("upload"), ActionCategory::upload);
        action->strategy =
            zipped ? ActionItemPreparationStrategy::zipDirectories : ActionItemPreparationStrategy::none;
        makeController({folder(fails ? QStringLiteral("broken") : QStringLiteral("docs"))}, {action}, {});
        m_controller->prepare();
        QTRY_VERIFY(m_controller->preparedMenu().has_value());
        m_delegate->onFinish = [this](ActionsController&) { m_controller.reset(); };
        m_controller->didSelectItem(
            std::get<ActionMenuEntry::ActionRow>(m_controller->preparedMenu()->entries.front().value));
        QTRY_VERIFY(!m_controller);
        QCOMPARE(m_delegate->results.size(), 1);
        QCOMPARE(m_delegate->results.first().has_value(), !fails);
        QTest::qWait(20);
        QCOMPARE(filesUnder(m_work->path()), QStringList());
    }

    void closingTheShelfMidRunCancelsTheAction()
    {
        auto action = Test::makeAction(QStringLiteral("upload"), ActionCategory::upload);
        action->finishesAtOnce = false;
        makeController({file(QStringLiteral("a.txt"))}, {action}, {});
        m_controller->performAction(action, {});
        Test::LogCapture log;
        m_controller.reset();
        QCOMPARE(action->cancelCount, 1);
        QTRY_VERIFY(log.contains(QStringLiteral(
            "Action is finished but lost self reference or lost performingAction reference!")));
        QCOMPARE(m_delegate->events, QStringList{QStringLiteral("performing:upload")});
    }

    void searchItemsRunWhatTheyStandFor()
    {
        auto copy = Test::makeAction(ActionIdentifiers::copyToPasteboard, ActionCategory::shelf,
                                     QStringLiteral("Copy..."));
        auto operations = std::make_unique<FakeOperationsController>();
        FakeOperationsController* operationsView = operations.get();
        makeController({file(QStringLiteral("a.txt"))}, {copy}, {}, std::move(operations));
        bool pinned = false;
        int pinCalls = 0;
        m_controller->setSupplementarySearchActions({
            {{QStringLiteral("custom_pin"), QStringLiteral("Pin"), {}, {}},
             [&pinned] { return !pinned; },
             [&] {
                 ++pinCalls;
                 pinned = true;
                 return true;
             }},
            {{QStringLiteral("custom_unpin"), QStringLiteral("Unpin"), {}, {}},
             [&pinned] { return pinned; },
             [&] {
                 pinned = false;
                 return true;
             }},
        });
        Test::LogCapture log;
        const ActionSearchItem copyItem{
            ActionIdentifiers::copyToPasteboard,
            QStringLiteral("Copy"),
            QStringLiteral("icon-copy_to_pasteboard"),
            {QStringLiteral("pasteboard"), QStringLiteral("copy"), QStringLiteral("clipboard")}};
        QVERIFY(!m_controller->performAction(copyItem));
        QVERIFY(log.contains(QStringLiteral(
            "Failed to find associated action to perform for search item copy_to_pasteboard")));

        m_controller->prepare();
        QTRY_VERIFY(m_controller->preparedMenu().has_value());
        QCOMPARE(searchIdentifiers(*m_controller),
                 (QStringList{QStringLiteral("copy_to_pasteboard"), QStringLiteral("my-script"),
                              QStringLiteral("custom_pin")}));

        QVERIFY(m_controller->performAction(copyItem));
        QTRY_COMPARE(copy->performedItems.size(), 1);
        QVERIFY(log.contains(QStringLiteral("Performing action triggered from search item...")));

        const ActionSearchItem scriptItem = m_controller->searchableElements()->at(1).item;
        QVERIFY(m_controller->performAction(scriptItem));
        QCOMPARE(operationsView->performed, QStringList{QStringLiteral("my-script")});
        QVERIFY(log.contains(QStringLiteral("Performing user operation triggered from search item...")));
        QCOMPARE(m_controller->history().identifiers(),
                 (QStringList{QStringLiteral("my-script"), QStringLiteral("copy_to_pasteboard")}));

        QVERIFY(m_controller->performAction(m_controller->searchableElements()->at(2).item));
        QCOMPARE(pinCalls, 1);
        // The shelf is pinned now: the list offers unpinning in its place, after the rest.
        m_controller->reloadSupplementarySearchElements();
        QCOMPARE(searchIdentifiers(*m_controller),
                 (QStringList{QStringLiteral("copy_to_pasteboard"), QStringLiteral("my-script"),
                              QStringLiteral("custom_unpin")}));
        QVERIFY(m_controller->didSelectOperation(QStringLiteral("resize")));
        QCOMPARE(operationsView->performed.last(), QStringLiteral("resize"));
    }

    void requestMenuHandsTheContextToEveryAction()
    {
        auto copy = Test::makeAction(QStringLiteral("copy"), ActionCategory::shelf);
        auto preview = Test::makeAction(ActionIdentifiers::preview, ActionCategory::primary);
        makeController({file(QStringLiteral("a.txt"))}, {preview, copy},
                       {QStringLiteral("sharingservice_email")});
        QObject window;
        std::optional<ActionsController::MenuResult> menu;
        m_controller->requestMenu(&window,
                                  [&menu](const ActionsController::MenuResult& result) { menu = result; });
        QVERIFY(!menu);
        QTRY_VERIFY(menu.has_value());
        QVERIFY(menu->has_value());
        QCOMPARE(describeMenu((*menu)->entries),
                 (QStringList{QStringLiteral("action:quick-look"), QStringLiteral("---"),
                              QStringLiteral("action:sharingservice_email"), QStringLiteral("---"),
                              QStringLiteral("action:copy")}));
        QVERIFY(m_controller->isMenuShown());
        for (const ActionPtr& action : m_controller->actions()) {
            QVERIFY(action->actionContext().has_value());
            QCOMPARE(action->actionContext()->sourceWindow.data(), &window);
        }
        m_controller->menuDidClose();
        QVERIFY(!m_controller->isMenuShown());

        // Opened again without a window: the context is empty, and the menu is the one that stands.
        menu.reset();
        m_controller->requestMenu({},
                                  [&menu](const ActionsController::MenuResult& result) { menu = result; });
        QTRY_VERIFY(menu.has_value());
        QVERIFY(!copy->actionContext()->sourceWindow);
        QVERIFY(!copy->actionContext()->snapshot);
        QCOMPARE(m_shareQueries.load(), 1);
    }

private:
    using Services = ActionsController::Services;

    // A configurable action whose answer the test changes as the settings would.
    class MutableConfigurableAction final : public Test::TestAction, public ConfigurableAction {
    public:
        MutableConfigurableAction(const QString& identifier, std::shared_ptr<bool> configured)
            : TestAction(identifier, ActionCategory::upload)
            , m_configured(std::move(configured))
        {}
        bool isConfigured() const override { return *m_configured; }

    private:
        std::shared_ptr<bool> m_configured;
    };

    void makeController(const DraggableList& draggables, const ActionList& actions,
                        const QStringList& shareTargets,
                        std::unique_ptr<OperationsProvider> operations = nullptr)
    {
        Services services;
        if (!shareTargets.isEmpty()) {
            services.shareActionsProvider = [this, shareTargets](const QList<QUrl>&) {
                ++m_shareQueries;
                ActionList shareActions;
                for (const QString& identifier : shareTargets) {
                    shareActions.append(Test::makeAction(identifier, ActionCategory::systemShare));
                }
                return shareActions;
            };
        }
        services.archiver = m_archiver;
        services.operationsController = std::move(operations);
        services.archivesFolder = m_work->path();
        m_controller =
            std::make_unique<ActionsController>(draggables, actions, *m_preferences, std::move(services));
        m_controller->setDelegate(m_delegate.get());
    }

    QUrl fileUrl(const QString& name)
    {
        const QString path = m_dir->filePath(name);
        if (!QFileInfo::exists(path)) {
            Test::writeFile(path, name.toUtf8());
        }
        return QUrl::fromLocalFile(path);
    }

    DraggablePtr file(const QString& name) { return std::make_shared<FakeDraggable>(fileUrl(name)); }

    DraggablePtr folder(const QString& name)
    {
        const QString path = m_dir->filePath(name);
        QDir().mkpath(path);
        Test::writeFile(path + QStringLiteral("/inside.txt"), "inside");
        return std::make_shared<FakeDraggable>(QUrl::fromLocalFile(path));
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<QTemporaryDir> m_work;
    std::unique_ptr<Preferences> m_preferences;
    std::shared_ptr<Test::FakeArchiver> m_archiver;
    std::unique_ptr<RecordingDelegate> m_delegate;
    std::unique_ptr<ActionsController> m_controller;
    std::atomic<int> m_shareQueries = 0;
};

QTEST_GUILESS_MAIN(TestActionsController)
#include "TestActionsController.moc"
