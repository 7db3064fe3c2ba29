// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Core/ManualClock.h"
#include "Models/Draggable/DraggablePromise.h"
#include "Models/Pasteboard/PasteboardTypes.h"
#include "support/FakeFileWatcher.h"
#include "support/FakeShelfInterface.h"
#include "support/OneFilePromiseTransport.h"
#include "support/ShelfFixture.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>

using namespace Vantrope;
using namespace std::chrono_literals;

// Runs the shelf logic on fake windows, with real files, a real recent-shelves file and a hand-moved clock.
class TestSessionController final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void init()
    {
        m_clock = std::make_unique<ManualClock>();
        m_shelves = std::make_unique<Test::ShelfFixture>(
            Test::ShelfFixture::Platform{*m_clock, m_fileWatcher, m_screens, m_clipboard});
    }

    void cleanup() { m_shelves.reset(); }

    void gestureOpensAShelfUnlessAnEmptyOneIsVisible_data()
    {
        QTest::addColumn<QString>("existing");
        QTest::addColumn<bool>("opens");
        QTest::newRow("no shelf") << QString() << true;
        QTest::newRow("empty visible shelf") << QStringLiteral("empty") << false;
        QTest::newRow("empty hidden shelf") << QStringLiteral("hidden") << true;
        QTest::newRow("full visible shelf") << QStringLiteral("full") << true;
    }

    void gestureOpensAShelfUnlessAnEmptyOneIsVisible()
    {
        QFETCH(QString, existing);
        QFETCH(bool, opens);
        if (!existing.isEmpty()) {
            auto shelf = controller().startSession(DragSessionSource::MenuBar{});
            if (existing == QStringLiteral("hidden")) {
                ui().m_windows.last()->m_visible = false;
            } else if (existing == QStringLiteral("full")) {
                shelf->appendItems({file(QStringLiteral("held.txt"))});
            }
        }
        const auto before = controller().coordinators().size();
        controller().gestureBegan(QPointF(300, 300));
        QCOMPARE(controller().coordinators().size(), before + (opens ? 1 : 0));
        if (opens) {
            const auto shelf = controller().coordinators().last();
            QVERIFY(shelf->source().is<DragSessionSource::Gesture>());
            // Centred on the point of the gesture.
            QCOMPARE(shelf->window().frame().center(), QPointF(300, 300));
        }
    }

    void dragEndClosesOnlyUntouchedEmptyShelves_data()
    {
        QTest::addColumn<QString>("state");
        QTest::addColumn<bool>("closes");
        QTest::newRow("empty") << QString() << true;
        QTest::newRow("showing a message") << QStringLiteral("message") << false;
        QTest::newRow("pending instant action") << QStringLiteral("instant") << false;
        QTest::newRow("drop being read") << QStringLiteral("reading") << false;
        QTest::newRow("holding items") << QStringLiteral("items") << false;
    }

    void dragEndClosesOnlyUntouchedEmptyShelves()
    {
        QFETCH(QString, state);
        QFETCH(bool, closes);
        controller().gestureBegan(QPointF(500, 500));
        auto shelf = controller().coordinators().first();
        if (state == QStringLiteral("message")) {
            m_shelves->messages.show(shelf->window().windowNumber(),
                                     Message::plain(Message::Icon::info, QStringLiteral("hi")), 0s);
        } else if (state == QStringLiteral("instant")) {
            shelf->setPendingInstantAction(QStringLiteral("mail"));
        } else if (state == QStringLiteral("reading")) {
            // A drag over the shelf was taken in; its drop has not come yet.
            QMimeData data;
            data.setUrls({*file(QStringLiteral("coming.txt"))->url()});
            QVERIFY(shelf->shouldAcceptDrag(data));
        } else if (state == QStringLiteral("items")) {
            shelf->appendItems({file(QStringLiteral("kept.txt"))});
        }
        controller().gestureEnded();
        QTRY_COMPARE(controller().coordinators().isEmpty(), closes);
        QCOMPARE(ui().m_windows.first()->m_closed, closes);
    }

    void changesWithinASecondSaveOnce()
    {
        auto shelf = controller().startSession(DragSessionSource::MenuBar{});
        shelf->appendItems({file(QStringLiteral("a.txt"))});
        QTRY_VERIFY(shelf->itemsController().processingItems().isEmpty());
        QSignalSpy saved(&m_shelves->store, &PersistentDragSessionStore::sessionsChanged);

        shelf->throttleSave();
        m_clock->advance(600ms);
        shelf->throttleSave();
        m_clock->advance(500ms);
        QTRY_COMPARE(saved.size(), 1);
        QVERIFY(m_shelves->store.session(shelf->id()));

        shelf->throttleSave();
        m_clock->advance(1100ms);
        QTRY_COMPARE(saved.size(), 2);
    }

    void outboundDragClosesOnlyByItsRules_data()
    {
        QTest::addColumn<bool>("endedInDrop");
        QTest::addColumn<bool>("hasMoved");
        QTest::addColumn<bool>("alwaysClose");
        QTest::addColumn<bool>("arriving");
        QTest::addColumn<bool>("closes");
        QTest::addColumn<int>("drops");
        QTest::newRow("moved out") << true << true << false << false << true << 1;
        QTest::newRow("copied out") << true << false << false << false << false << 1;
        QTest::newRow("copied out, always close") << true << false << true << false << true << 1;
        QTest::newRow("no drop") << false << true << true << false << false << 0;
        // A promised file still on its way did not go out with the others: the shelf keeps it.
        QTest::newRow("moved out, a file still arriving") << true << true << false << true << false << 1;
        QTest::newRow("always close, a file still arriving") << true << false << true << true << false << 1;
    }

    void outboundDragClosesOnlyByItsRules()
    {
        QFETCH(bool, endedInDrop);
        QFETCH(bool, hasMoved);
        QFETCH(bool, alwaysClose);
        QFETCH(bool, arriving);
        QFETCH(bool, closes);
        QFETCH(int, drops);
        m_shelves->preferences.setValue(PreferenceKeys::alwaysCloseShelf, alwaysClose);
        auto shelf = controller().startSession(DragSessionSource::MenuBar{});
        shelf->appendItems({file(QStringLiteral("out.txt"))});
        if (arriving) {
            shelf->appendItems(
                {DraggablePromise::make([] { return DraggablePromise::VantropePromiseResult(); })});
        }
        // A pinned shelf closes like any other.
        DragSessionLabel label = shelf->label();
        label.pinned = true;
        shelf->setLabel(label);

        shelf->didDragItems({endedInDrop, DragSessionViewDelegate::DragEvent::Kind::ended}, hasMoved);
        QTRY_COMPARE(shelf->hasStopped(), closes);
        QCOMPARE(m_shelves->preferences.value(PreferenceKeys::numberOfDrops), drops);
        QCOMPARE(controller().coordinators().size(), closes ? 0 : 1);
    }

    void promisedFilesArriveOrLeaveWithAMessage_data()
    {
        QTest::addColumn<bool>("delivered");
        QTest::newRow("delivered") << true;
        QTest::newRow("never came") << false;
    }

    // A drop of a promise: the shelf holds it at once and fetches the file; what becomes of the item
    // once the source has answered is the shelf's to decide, not its window's.
    void promisedFilesArriveOrLeaveWithAMessage()
    {
        QFETCH(bool, delivered);
        auto shelf = controller().startSession(DragSessionSource::MenuBar{});
        auto* view = ui().m_views.first();
        QMimeData data;
        data.setData(PasteboardTypes::directSave, QByteArray());
        QVERIFY(shelf->shouldAcceptDrag(data));
        std::optional<quint64> fetchedFor;
        const auto factory = [&](quint64 sequenceNumber) -> DragSessionDropIntake::PromiseTransportFactory {
            fetchedFor = sequenceNumber;
            return [delivered](const PasteboardItem&) {
                return std::make_unique<Test::OneFilePromiseTransport>(delivered);
            };
        };
        QVERIFY(shelf->didDrop({data, QByteArray("promised.txt"), factory}));
        QVERIFY(fetchedFor);
        QCOMPARE(view->m_dropsEnded, 1);
        QCOMPARE(shelf->itemsController().items().size(), 1);
        const DraggablePtr promise = shelf->itemsController().items().first();

        if (delivered) {
            QTRY_COMPARE(view->m_refreshed, DraggableList{promise});
            QVERIFY(promise->isReady());
            QCOMPARE(shelf->itemsController().items(), DraggableList{promise});
            QVERIFY(!m_shelves->messages.hasMessage(shelf->window().windowNumber()));
        } else {
            // The item goes from the shelf and its window, and the shelf says why.
            QTRY_VERIFY(shelf->itemsController().items().isEmpty());
            QVERIFY(!view->m_shown.contains(promise));
            QVERIFY(m_shelves->messages.hasMessage(shelf->window().windowNumber()));
            QVERIFY(view->m_refreshed.isEmpty());
        }
    }

    void failedDropKeepsTheShelfAndOffersClose()
    {
        auto shelf = controller().startSession(DragSessionSource::Gesture{});
        QVERIFY(!ui().m_views.first()->m_permanentClose);
        QMimeData data;
        QVERIFY(Test::writeFile(m_shelves->dir.filePath(QStringLiteral("empty.txt")), QByteArray()));
        data.setUrls({QUrl::fromLocalFile(m_shelves->dir.filePath(QStringLiteral("empty.txt")))});
        QVERIFY(shelf->shouldAcceptDrag(data));
        QVERIFY(!shelf->didDrop({data, std::nullopt, {}}));
        QVERIFY(ui().m_views.first()->m_permanentClose);
        QVERIFY(m_shelves->messages.hasMessage(shelf->window().windowNumber()));
        // The message keeps the empty shelf through the end of the drag, and goes after five seconds.
        controller().gestureEnded();
        QCOMPARE(controller().coordinators().size(), 1);
        m_clock->advance(5100ms);
        QVERIFY(!m_shelves->messages.hasMessage(shelf->window().windowNumber()));
    }

    void alternateCloseEmptiesUnlessSharing_data()
    {
        QTest::addColumn<bool>("sharing");
        QTest::newRow("idle") << false;
        QTest::newRow("share in progress") << true;
    }

    void alternateCloseEmptiesUnlessSharing()
    {
        QFETCH(bool, sharing);
        auto shelf = controller().startSession(DragSessionSource::Gesture{});
        shelf->appendItems({file(QStringLiteral("x.txt"))});
        if (sharing) {
            shelf->setShareState({DragSessionActionState::Loading{0.5, QStringLiteral("Uploading")}});
        }
        shelf->didSelectCloseButton(true);
        QTRY_COMPARE(shelf->hasStopped(), sharing);
        QCOMPARE(shelf->itemsController().items().isEmpty(), true);
        if (!sharing) {
            QVERIFY(ui().m_views.first()->m_permanentClose);
            QCOMPARE(controller().coordinators().size(), 1);
        }
    }

    void recentShelvesReopen()
    {
        auto shelf = controller().startSession(DragSessionSource::MenuBar{});
        const QString id = shelf->id();
        shelf->appendItems({file(QStringLiteral("one.txt")), file(QStringLiteral("two.txt"))});
        QTRY_VERIFY(shelf->itemsController().processingItems().isEmpty());
        shelf->didSelectCloseButton(false);
        QTRY_VERIFY(controller().coordinators().isEmpty());
        m_shelves->store.flush();
        QVERIFY(m_shelves->store.session(id));

        QVERIFY(controller().openMostRecentClosedDragSession());
        const auto reopened = controller().coordinators().first();
        QCOMPARE(reopened->id(), id);
        QCOMPARE(reopened->itemsController().items().size(), 2);

        // Everything recent is open now; opening it by identifier only draws attention to it.
        QVERIFY(!controller().openMostRecentClosedDragSession());
        const int attention = ui().m_views.last()->m_attentionCount;
        QVERIFY(controller().openDragSession(id));
        QCOMPARE(controller().coordinators().size(), 1);
        QCOMPARE(ui().m_views.last()->m_attentionCount, attention + 1);
        QVERIFY(!controller().openDragSession(QStringLiteral("no-such-shelf")));
    }

    void vanishedFilesLeaveWithOneMessage()
    {
        auto shelf = controller().startSession(DragSessionSource::MenuBar{});
        const auto a = file(QStringLiteral("gone-a.txt"));
        const auto b = file(QStringLiteral("gone-b.txt"));
        const auto c = file(QStringLiteral("stays.txt"));
        shelf->appendItems({a, b, c});
        QTRY_VERIFY(shelf->itemsController().isObserving(b->cacheKey()));
        for (const auto& gone : {a, b}) {
            const QString path = gone->url()->toLocalFile();
            QVERIFY(QFile::remove(path));
            QVERIFY(m_fileWatcher.report(path, FileWatcher::Change::deleted));
        }
        // Deletions are gathered on the shelf's clock: move it on while the file events come in.
        QTRY_VERIFY_WITH_TIMEOUT((m_clock->advance(250ms), shelf->itemsController().items().size() == 1),
                                 5000);
        QCOMPARE(ui().m_views.first()->m_shown, DraggableList{c});
        const auto message = m_shelves->messages.message(shelf->window().windowNumber());
        QVERIFY(message);
        QVERIFY2(message->text.contains(QStringLiteral("2 items")), qPrintable(message->text));
    }

    void labelsFollowThePreference()
    {
        auto plain = controller().startSession(DragSessionSource::MenuBar{});
        QCOMPARE(plain->label().color.id(), DragSessionLabelColor::Identifier::monochrome);
        m_shelves->preferences.setValue(PreferenceKeys::shelfLabelsEnabled, true);
        QVERIFY(plain->label().color.id() != DragSessionLabelColor::Identifier::monochrome);
        auto coloured = controller().startSession(DragSessionSource::MenuBar{});
        QVERIFY(coloured->label().color.id() != DragSessionLabelColor::Identifier::monochrome);
        QVERIFY(coloured->label().color.id() != plain->label().color.id());
    }

private:
    DraggablePtr file(const QString& name) const { return m_shelves->fileItem(name); }
    SessionController& controller() const { return *m_shelves->controller; }
    Test::FakeShelfInterface& ui() const { return m_shelves->fakeInterface(); }

    std::unique_ptr<ManualClock> m_clock;
    Test::FakeFileWatcher m_fileWatcher;
    Test::FakeScreens m_screens;
    Test::FakeClipboard m_clipboard;
    std::unique_ptr<Test::ShelfFixture> m_shelves;
};

QTEST_GUILESS_MAIN(TestSessionController)
#include "TestSessionController.moc"
