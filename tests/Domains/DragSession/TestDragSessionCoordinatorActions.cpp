// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/Actions/ActionsControllerInvalidation.h"
#include "Domains/Actions/DesktopActions.h"
#include "Domains/Actions/TestActions.h"
#include "Domains/DragSession/RenameAction.h"
#include "Libraries/Core/ManualClock.h"
#include "support/FakeFileWatcher.h"
#include "support/FakeShelfInterface.h"
#include "support/ShelfFixture.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

using namespace Vantrope;
using namespace std::chrono_literals;

namespace {

QStringList strings(std::initializer_list<const char*> values)
{
    QStringList result;
    for (const char* value : values) {
        result.append(QString::fromUtf8(value));
    }
    return result;
}

// The program's actions on files as the shelf sees them: open, copy and compress, each a test action
// that the test steers through the last instance made.
class TestDesktopActions final : public DesktopActions {
public:
    ActionList makeItemActions() override
    {
        open = std::make_shared<Test::TestAction>(QStringLiteral("openfile"), ActionCategory::primary);
        copy =
            std::make_shared<Test::TestAction>(QStringLiteral("copy_to_pasteboard"), ActionCategory::shelf);
        compress = std::make_shared<Test::TestAction>(QStringLiteral("compress"), ActionCategory::shelf);
        upload = std::make_shared<Test::TestAction>(QStringLiteral("upload"), ActionCategory::upload);
        for (const auto& configure : configureNext) {
            configure(*this);
        }
        ++made;
        return {open, copy, compress, upload};
    }
    ActionList makeShareActions(const QList<QUrl>&) override { return {}; }
    std::shared_ptr<ActionArchiver> archiver() override { return nullptr; }

    std::shared_ptr<Test::TestAction> open, copy, compress, upload;
    QList<std::function<void(TestDesktopActions&)>> configureNext;
    int made = 0;
};

} // namespace

// The shelf's side of its actions: the controller it keeps for its items, what a run leaves on the shelf,
// and the shelf's own actions on real files.
class TestDragSessionCoordinatorActions final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void init()
    {
        m_clock = std::make_unique<ManualClock>();
        m_desktop.configureNext.clear();
        m_copied.clear();
        m_shelves = std::make_unique<Test::ShelfFixture>(
            Test::ShelfFixture::Platform{*m_clock,
                                         m_fileWatcher,
                                         m_screens,
                                         m_clipboard,
                                         {},
                                         true,
                                         &m_desktop,
                                         [this](const QString& text) { m_copied.append(text); }});
    }

    void cleanup()
    {
        QVERIFY(m_shelves->closeAllShelves());
        m_shelves.reset();
    }

    void controllerFollowsTheItems()
    {
        auto shelf = openShelf({QStringLiteral("a.txt"), QStringLiteral("b.txt")});
        QVERIFY(shelf->actionsController());
        QTRY_VERIFY(shelf->hasPreparedMenu());
        // The desktop's actions first, then the shelf's own in their fixed order, with the desktop's copy
        // action in the shelf's place.
        QStringList identifiers;
        for (const ActionPtr& action : shelf->actionsController()->actions()) {
            identifiers.append(action->identifier());
        }
        QCOMPARE(identifiers,
                 strings({"openfile", "upload", "add_from_clipboard", "copy_to_pasteboard", "compress",
                          "drag_session_stack_rename", "drag_session_stack_remove",
                          "drag_session_stack_add_to_new_shelf", "drag_session_stack_copy_to_new_shelf",
                          "clear_shelf", "drag_session_settings", "global_preferences"}));

        // The same items again, reordered: the controller stays.
        const auto* first = shelf->actionsController();
        const DraggableList items = shelf->itemsController().items();
        shelf->itemsController().removeAllItems();
        shelf->itemsController().addItems({items[1], items[0]});
        m_clock->advance(600ms);
        QCOMPARE(shelf->actionsController(), first);

        shelf->clear();
        m_clock->advance(600ms);
        QVERIFY(!shelf->actionsController());
        QVERIFY(!shelf->hasPreparedMenu());
    }

    void runEndsOnTheShelf_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<QString>("outcome");
        QTest::addColumn<bool>("withProgress");
        QTest::addColumn<QString>("state");

        QTest::newRow("link") << "upload"
                              << "link" << false << "confirmation";
        QTest::newRow("message") << "copy_to_pasteboard"
                                 << "message" << false << "none";
        QTest::newRow("nothing") << "openfile"
                                 << "none" << true << "none";
        QTest::newRow("upload fails") << "upload"
                                      << "error" << false << "error";
        QTest::newRow("upload canceled") << "upload"
                                         << "canceled" << true << "none";
        QTest::newRow("shelf action fails while loading") << "compress"
                                                          << "error" << true << "error";
        QTest::newRow("shelf action fails quietly") << "compress"
                                                    << "error" << false << "none";
        QTest::newRow("open fails quietly") << "openfile"
                                            << "error" << true << "loading";
    }

    void runEndsOnTheShelf()
    {
        QFETCH(QString, action);
        QFETCH(QString, outcome);
        QFETCH(bool, withProgress);
        QFETCH(QString, state);
        auto shelf = openShelf({QStringLiteral("a.txt")});
        QTRY_VERIFY(shelf->hasPreparedMenu());
        auto* view = ui().m_views.first();
        std::shared_ptr<Test::TestAction> running = actionNamed(action);
        QVERIFY(running);
        running->finishesAtOnce = false;

        std::optional<Action::Result> reported;
        shelf->runAction(action, [&reported](const Action::Result& result) { reported = result; });
        QTRY_COMPARE(running->performedItems.size(), 1);
        if (withProgress) {
            running->reportProgress(0.25, QStringLiteral("Working"));
            QTRY_COMPARE(
                view->m_shareState,
                DragSessionActionState({DragSessionActionState::Loading{0.25, QStringLiteral("Working")}}));
        }
        const QUrl link(QStringLiteral("https://example.org/shared/1"));
        if (outcome == QStringLiteral("link")) {
            running->finish(ActionResultContext{ActionResultContext::Link{link}});
        } else if (outcome == QStringLiteral("message")) {
            running->finish(ActionResultContext{ActionResultContext::Message{QStringLiteral("Copied")}});
        } else if (outcome == QStringLiteral("none")) {
            running->finish(ActionResultContext{});
        } else if (outcome == QStringLiteral("canceled")) {
            running->finish(std::unexpected(ActionError(ActionError::Kind::canceled)));
        } else {
            running->finish(std::unexpected(ActionError::underlying(QStringLiteral("disk full"))));
        }
        QTRY_VERIFY(reported.has_value());
        QCOMPARE(reported->has_value(),
                 outcome != QStringLiteral("error") && outcome != QStringLiteral("canceled"));

        if (state == QStringLiteral("confirmation")) {
            QCOMPARE(view->m_shareState,
                     DragSessionActionState({DragSessionActionState::Confirmation{link}}));
            QCOMPARE(m_copied, QStringList{link.toString()});
        } else if (state == QStringLiteral("error")) {
            const auto* error = std::get_if<DragSessionActionState::Error>(&view->m_shareState.value);
            QVERIFY(error);
            QCOMPARE(error->body, QStringLiteral("disk full"));
        } else if (state == QStringLiteral("none")) {
            QVERIFY(view->m_shareState.isNone());
        } else {
            QVERIFY(std::holds_alternative<DragSessionActionState::Loading>(view->m_shareState.value));
        }
        if (outcome != QStringLiteral("link")) {
            QVERIFY(m_copied.isEmpty());
        }
        const auto message = m_shelves->messages.message(ui().m_windows.first()->windowNumber());
        QCOMPARE(message.has_value(), outcome == QStringLiteral("message"));
        if (message) {
            QCOMPARE(message->text, QStringLiteral("Copied"));
            QCOMPARE(message->identifier, std::optional(QStringLiteral("copy_to_pasteboard_message")));
        }
        // The run is over: the controller goes, and the next one is made ahead for the same items.
        QVERIFY(!shelf->actionsController());
        QVERIFY(!shelf->isStopping());
        QCOMPARE(ui().m_windows.first()->alphaValue(), 1.0);
        m_clock->advance(600ms);
        QVERIFY(shelf->actionsController());
        QTRY_VERIFY(shelf->hasPreparedMenu());
    }

    void destructiveActionClosesTheShelf_data()
    {
        QTest::addColumn<bool>("succeeds");
        QTest::newRow("success") << true;
        QTest::newRow("failure") << false;
    }

    void destructiveActionClosesTheShelf()
    {
        QFETCH(bool, succeeds);
        m_desktop.configureNext.append([succeeds](TestDesktopActions& desktop) {
            desktop.open->destructive = true;
            if (!succeeds) {
                desktop.open->result = std::unexpected(ActionError::underlying(QStringLiteral("no")));
            }
        });
        auto shelf = openShelf({QStringLiteral("a.txt")});
        QTRY_VERIFY(shelf->hasPreparedMenu());
        std::weak_ptr<DragSessionCoordinator> weak = shelf;
        bool finished = false;
        shelf->runAction(QStringLiteral("openfile"), [&finished](const Action::Result&) { finished = true; });
        shelf.reset();
        QTRY_VERIFY(finished);
        // A failed action never closes the shelf by itself.
        QTRY_COMPARE(weak.expired(), succeeds);
        if (!succeeds) {
            QVERIFY(!ui().m_windows.first()->m_closed);
        }
    }

    void stopCancelsTheRun()
    {
        auto shelf = openShelf({QStringLiteral("a.txt")});
        QTRY_VERIFY(shelf->hasPreparedMenu());
        std::shared_ptr<Test::TestAction> running = actionNamed(QStringLiteral("compress"));
        running->finishesAtOnce = false;
        std::optional<Action::Result> reported;
        shelf->runAction(QStringLiteral("compress"),
                         [&reported](const Action::Result& result) { reported = result; });
        QTRY_COMPARE(running->performedItems.size(), 1);
        shelf->stop(false);
        QCOMPARE(running->cancelCount, 1);
        QVERIFY(!shelf->actionsController());
    }

    void itemsChangingDuringARunWaitForItsEnd()
    {
        auto shelf = openShelf({QStringLiteral("a.txt")});
        QTRY_VERIFY(shelf->hasPreparedMenu());
        std::shared_ptr<Test::TestAction> running = m_desktop.compress;
        running->finishesAtOnce = false;
        std::optional<Action::Result> reported;
        shelf->runAction(QStringLiteral("compress"),
                         [&reported](const Action::Result& result) { reported = result; });
        QTRY_COMPARE(running->performedItems.size(), 1);
        const auto* controller = shelf->actionsController();
        shelf->appendItems({m_shelves->fileItem(QStringLiteral("b.txt"))});
        m_clock->advance(600ms);
        // The run goes on and still reports to the shelf.
        QCOMPARE(shelf->actionsController(), controller);
        QCOMPARE(running->cancelCount, 0);
        running->finish(ActionResultContext{});
        QTRY_VERIFY(reported.has_value());
        QVERIFY(reported->has_value());
        m_clock->advance(600ms);
        QVERIFY(shelf->actionsController());
        QCOMPARE(shelf->actionsController()->draggables().size(), 2);
    }

    void pinAndUnpinFromSearch()
    {
        auto shelf = openShelf({QStringLiteral("a.txt")});
        const auto offered = [&shelf] {
            QStringList identifiers;
            bool done = false;
            shelf->availableActions([&](const DragSessionCoordinator::AvailableActions& actions) {
                for (const auto& item : actions.value_or(QList<ActionSearchItem>())) {
                    identifiers.append(item.identifier);
                }
                done = true;
            });
            [[maybe_unused]] const bool waited = QTest::qWaitFor([&done] { return done; });
            return identifiers;
        };
        QStringList identifiers = offered();
        QVERIFY(identifiers.contains(QStringLiteral("custom_pin")));
        QVERIFY(!identifiers.contains(QStringLiteral("custom_unpin")));

        bool done = false;
        shelf->runAction(QStringLiteral("custom_pin"),
                         [&done](const Action::Result& result) { done = result.has_value(); });
        QTRY_VERIFY(done);
        QVERIFY(shelf->label().pinned);
        QVERIFY(ui().m_windows.first()->m_label.pinned);
        identifiers = offered();
        QVERIFY(identifiers.contains(QStringLiteral("custom_unpin")));
        QVERIFY(!identifiers.contains(QStringLiteral("custom_pin")));

        done = false;
        shelf->runAction(QStringLiteral("custom_unpin"),
                         [&done](const Action::Result& result) { done = result.has_value(); });
        QTRY_VERIFY(done);
        QVERIFY(!shelf->label().pinned);
    }

    void unknownActionIsAnError()
    {
        auto shelf = openShelf({QStringLiteral("a.txt"), QStringLiteral("b.txt")});
        std::optional<Action::Result> reported;
        // Rename needs exactly one item.
        shelf->runAction(QStringLiteral("drag_session_stack_rename"),
                         [&reported](const Action::Result& result) { reported = result; });
        QTRY_VERIFY(reported.has_value());
        QVERIFY(!reported->has_value());
        QVERIFY(reported->error().description().contains(QStringLiteral("drag_session_stack_rename")));
    }

    void renameOnDisk_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("expectedName");

        QTest::newRow("new name") << "renamed.txt"
                                  << "renamed.txt";
        QTest::newRow("spaces around") << "  spaced.txt "
                                       << "spaced.txt";
        QTest::newRow("utf-8") << "Ünïcødé ✓.txt"
                               << "Ünïcødé ✓.txt";
        QTest::newRow("taken name") << "taken.txt" << QString();
        QTest::newRow("empty") << "   " << QString();
        QTest::newRow("slash") << "sub/dir.txt" << QString();
        QTest::newRow("dot dot") << ".." << QString();
        QTest::newRow("given up") << "<escape>" << QString();
    }

    void renameOnDisk()
    {
        QFETCH(QString, typed);
        QFETCH(QString, expectedName);
        const QString original = m_shelves->file(QStringLiteral("original.txt"));
        const QString taken = m_shelves->file(QStringLiteral("taken.txt"));
        auto shelf = openShelf({QStringLiteral("original.txt")});
        auto* view = ui().m_views.first();

        std::optional<Action::Result> reported;
        shelf->runAction(QStringLiteral("drag_session_stack_rename"),
                         [&reported](const Action::Result& result) { reported = result; });
        QTRY_COMPARE(view->m_editedText, QStringLiteral("original.txt"));
        QVERIFY(view->finishInlineEdit(typed == QStringLiteral("<escape>") ? std::nullopt
                                                                           : std::optional(typed)));
        QTRY_VERIFY(reported.has_value());
        QCOMPARE(reported->has_value(), !expectedName.isEmpty());

        // Nothing is ever lost or overwritten.
        QCOMPARE(Test::readFile(taken), QByteArray("bytes of taken.txt"));
        const QString shown = QFileInfo(view->m_shown.first()->url()->toLocalFile()).fileName();
        if (expectedName.isEmpty()) {
            QCOMPARE(Test::readFile(original), QByteArray("bytes of original.txt"));
            QCOMPARE(shown, QStringLiteral("original.txt"));
            const bool refused = typed != QStringLiteral("<escape>");
            QCOMPARE(m_shelves->messages.message(ui().m_windows.first()->windowNumber()).has_value(),
                     refused);
        } else {
            QVERIFY(!QFile::exists(original));
            QCOMPARE(Test::readFile(QDir(m_shelves->dir.path()).filePath(expectedName)),
                     QByteArray("bytes of original.txt"));
            // The shelf holds the file under its new name.
            QCOMPARE(shown, expectedName);
            QCOMPARE(shelf->itemsController().items().size(), 1);
            QCOMPARE(*shelf->itemsController().items().first()->url(),
                     QUrl::fromLocalFile(QDir(m_shelves->dir.path()).filePath(expectedName)));
        }
    }

    void removeMoveAndClear_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<int>("left");
        QTest::addColumn<int>("shelves");
        QTest::newRow("remove") << "drag_session_stack_remove" << 0 << 1;
        QTest::newRow("move") << "drag_session_stack_add_to_new_shelf" << 0 << 2;
        QTest::newRow("copy") << "drag_session_stack_copy_to_new_shelf" << 2 << 2;
        QTest::newRow("clear") << "clear_shelf" << 0 << 1;
    }

    void removeMoveAndClear()
    {
        QFETCH(QString, action);
        QFETCH(int, left);
        QFETCH(int, shelves);
        auto shelf = openShelf({QStringLiteral("a.txt"), QStringLiteral("b.txt")});
        bool done = false;
        shelf->runAction(action, [&done](const Action::Result& result) { done = result.has_value(); });
        QTRY_VERIFY(done);
        QCOMPARE(shelf->itemsController().items().size(), left);
        QCOMPARE(ui().m_views.first()->m_shown.size(), left);
        QCOMPARE(controller().coordinators().size(), shelves);
        if (shelves == 2) {
            QCOMPARE(controller().coordinators().last()->itemsController().items().size(), 2);
        }
        // The files themselves stay.
        QVERIFY(QFile::exists(m_shelves->dir.filePath(QStringLiteral("a.txt"))));
    }

    void invalidationRebuildsTheMenu()
    {
        auto shelf = openShelf({QStringLiteral("a.txt")});
        QTRY_VERIFY(shelf->hasPreparedMenu());
        const auto* controller = shelf->actionsController();
        ActionsControllerInvalidation::instance().post();
        QVERIFY(!controller->preparedMenu().has_value());
        QTRY_VERIFY(controller->preparedMenu().has_value());
        QCOMPARE(shelf->actionsController(), controller);
    }

private:
    std::shared_ptr<DragSessionCoordinator> openShelf(const QStringList& names)
    {
        DraggableList items;
        for (const QString& name : names) {
            items.append(m_shelves->fileItem(name));
        }
        auto shelf = controller().startSession(DragSessionSource::MenuBar{});
        shelf->appendItems(items);
        m_clock->advance(600ms);
        return shelf;
    }

    std::shared_ptr<Test::TestAction> actionNamed(const QString& identifier) const
    {
        if (identifier == QStringLiteral("openfile")) {
            return m_desktop.open;
        }
        if (identifier == QStringLiteral("copy_to_pasteboard")) {
            return m_desktop.copy;
        }
        if (identifier == QStringLiteral("compress")) {
            return m_desktop.compress;
        }
        if (identifier == QStringLiteral("upload")) {
            return m_desktop.upload;
        }
        return nullptr;
    }

    SessionController& controller() const { return *m_shelves->controller; }
    Test::FakeShelfInterface& ui() const { return m_shelves->fakeInterface(); }

    std::unique_ptr<ManualClock> m_clock;
    Test::FakeFileWatcher m_fileWatcher;
    Test::FakeScreens m_screens;
    Test::FakeClipboard m_clipboard;
    TestDesktopActions m_desktop;
    QStringList m_copied;
    std::unique_ptr<Test::ShelfFixture> m_shelves;
};

QTEST_MAIN(TestDragSessionCoordinatorActions)
#include "TestDragSessionCoordinatorActions.moc"
