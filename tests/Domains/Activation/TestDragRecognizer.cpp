// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/Activation/DragRecognizer.h"
#include "Domains/Activation/DragRecognizerConfiguration.h"
#include "Domains/Activation/TransientProperties.h"
#include "Libraries/Core/ManualClock.h"
#include "Preferences/MemoryPreferenceStorage.h"
#include "Preferences/Preferences.h"
#include "support/RecordingRecognizerDelegate.h"
#include "support/TestSupport.h"

#include <QTest>

using namespace Vantrope;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

constexpr quint64 appWindow = 0x100;
constexpr quint64 ignoredWindow = 0x200;
constexpr quint64 dockWindow = 0x300;
constexpr std::chrono::milliseconds step{20};

class FakeDragMonitor final : public DragMonitor {
public:
    bool isAvailable() const override { return true; }
    QString unavailableReason() const override { return {}; }
    QPointF mouseLocation() override { return pointer; }
    qint64 dragPasteboardChangeCount() override
    {
        ++changeCountReads;
        return changeCount;
    }
    std::vector<WindowEntry> windowList() override
    {
        ++listings;
        return windows;
    }

    void drag(QPointF point, quint64 window, EventModifierFlags modifiers = {})
    {
        deliver({GlobalMouseEvent::Type::leftMouseDragged, point, window, modifiers});
    }
    void up() { deliver({GlobalMouseEvent::Type::leftMouseUp, pointer, 0, {}}); }

    QPointF pointer{777, 333};
    qint64 changeCount = 40;
    int changeCountReads = 0;
    int listings = 0;
    std::vector<WindowEntry> windows{{appWindow, u"Files"_s, false},
                                     {ignoredWindow, u"Terminal"_s, false},
                                     {dockWindow, u"Plank"_s, true},
                                     {0x400, QString(), false}};
};

// x positions of a normal shake that completes on its last point: three set-up points, then six runs.
QList<double> completingShake()
{
    QList<double> xs{400, 400, 400};
    double x = 400;
    for (int run = 0; run < 6; ++run) {
        for (int i = 0; i < (run == 5 ? 1 : 3); ++i) {
            x += run % 2 == 0 ? 10 : -10;
            xs.append(x);
        }
    }
    return xs;
}

} // namespace

// The recognizer's decisions, fed from a fake monitor on a manual clock.
class TestDragRecognizer final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void init()
    {
        m_clock = std::make_unique<ManualClock>();
        m_monitor = std::make_unique<FakeDragMonitor>();
        m_properties = std::make_unique<TransientProperties>();
        m_recognizer =
            std::make_unique<DragRecognizer>(*m_monitor, *m_clock, DispatchQueue::main(), m_properties.get());
        m_delegate = std::make_unique<Test::RecordingRecognizerDelegate>();
        m_recognizer->setDelegate(m_delegate.get());
        m_recognizer->setIgnoredApplications({u"Terminal"_s});
    }

    void cleanup()
    {
        m_recognizer.reset();
        m_monitor.reset();
    }

    void begins_data()
    {
        QTest::addColumn<bool>("modifierHeld");
        QTest::addColumn<bool>("content");
        QTest::addColumn<quint64>("window");
        QTest::addColumn<bool>("shakeDisabled");
        QTest::addColumn<bool>("cancelled");
        QTest::addColumn<bool>("began");

        // The dock and cancelled states go through one check for both paths and are tried on one.
        QTest::newRow("shake with content") << false << true << appWindow << false << false << true;
        QTest::newRow("shake without content") << false << false << appWindow << false << false << false;
        QTest::newRow("shake from a dock without content")
            << false << false << dockWindow << false << false << true;
        QTest::newRow("shake in an ignored application")
            << false << true << ignoredWindow << false << false << false;
        QTest::newRow("shake switched off") << false << true << appWindow << true << false << false;
        QTest::newRow("shake while cancelled") << false << true << appWindow << false << true << false;
        QTest::newRow("modifier with content") << true << true << appWindow << false << false << true;
        QTest::newRow("modifier with shaking switched off")
            << true << true << appWindow << true << false << true;
        QTest::newRow("modifier without content") << true << false << appWindow << false << false << false;
        QTest::newRow("modifier in an ignored application")
            << true << true << ignoredWindow << false << false << false;
    }

    void begins()
    {
        QFETCH(bool, modifierHeld);
        QFETCH(bool, content);
        QFETCH(quint64, window);
        QFETCH(bool, shakeDisabled);
        QFETCH(bool, cancelled);
        QFETCH(bool, began);

        m_recognizer->setModifierFlags(EventModifierFlag::control);
        m_recognizer->setShakeGestureDetectionDisabled(shakeDisabled);
        // A dock's window is known as one only after a listing: an earlier drag lists the windows.
        m_monitor->drag({0, 0}, 0x999);
        m_monitor->up();
        m_clock->advance(2s);
        if (cancelled) {
            m_recognizer->setState(DragRecognizer::State::cancelled());
        }

        m_monitor->drag({400, 300}, window);
        if (content) {
            ++m_monitor->changeCount;
        }
        m_clock->advance(PasteboardWatchDog::pollInterval);
        QCOMPARE(m_recognizer->didUpdatePasteboardContent(), content);

        const EventModifierFlags held =
            modifierHeld ? EventModifierFlags(EventModifierFlag::control | EventModifierFlag::shift)
                         : EventModifierFlags(EventModifierFlag::shift);
        const QList<double> xs = modifierHeld ? QList<double>{420} : completingShake();
        for (const double x : xs) {
            m_monitor->drag({x, 300}, window, held);
            m_clock->advance(step);
        }

        QCOMPARE(m_delegate->began.size(), began ? 1 : 0);
        QCOMPARE(m_recognizer->state().kind == DragRecognizer::State::Kind::began, began);
        if (began) {
            QCOMPARE(m_delegate->began.first(), std::optional(QPointF(xs.last(), 300)));
            const DragRecognizer::State& state = m_recognizer->state();
            QVERIFY(state.event);
            QCOMPARE(state.event->locationInWindow, QPointF(xs.last(), 300));
        }
        QCOMPARE(m_properties->isDragging(), !cancelled);
        QCOMPARE(m_properties->isDraggingPasteboardContent(), began || (content && !cancelled));
    }

    void dockNeedsAListingFirst()
    {
        m_recognizer->setModifierFlags(EventModifierFlag::control);
        // The first drag from a dock window nobody has listed yet opens nothing, but lists the windows.
        m_monitor->drag({400, 300}, dockWindow, EventModifierFlag::control);
        QVERIFY(!m_recognizer->isDockSession());
        QCOMPARE(m_delegate->began.size(), 0);
        QVERIFY(m_recognizer->ownerNameCache().dockWindowNumbers().contains(dockWindow));
        m_monitor->up();
        m_clock->advance(1s);

        m_monitor->drag({400, 300}, dockWindow, EventModifierFlag::control);
        QVERIFY(m_recognizer->isDockSession());
        QCOMPARE(m_delegate->began.size(), 1);
    }

    void lateContentBeginsAtThePointer_data()
    {
        QTest::addColumn<quint64>("window");
        QTest::addColumn<bool>("complete");

        QTest::newRow("complete shake") << appWindow << true;
        QTest::newRow("complete shake in an ignored application") << ignoredWindow << true;
        QTest::newRow("incomplete shake") << appWindow << false;
    }

    void lateContentBeginsAtThePointer()
    {
        QFETCH(quint64, window);
        QFETCH(bool, complete);

        QList<double> xs = completingShake();
        if (!complete) {
            xs.removeLast();
        }
        for (const double x : xs) {
            m_monitor->drag({x, 300}, window);
            m_clock->advance(step);
        }
        QCOMPARE(m_recognizer->session().complete, complete);
        QCOMPARE(m_delegate->began.size(), 0);

        ++m_monitor->changeCount;
        m_clock->advance(PasteboardWatchDog::pollInterval);
        QVERIFY(m_recognizer->didUpdatePasteboardContent());
        QCOMPARE(m_delegate->began.size(), complete ? 1 : 0);
        if (complete) {
            QCOMPARE(m_delegate->began.first(), std::optional(m_monitor->pointer));
            QVERIFY(!m_recognizer->state().event);
        }
    }

    void endsAfterTheRelease()
    {
        m_monitor->drag({400, 300}, appWindow);
        ++m_monitor->changeCount;
        m_clock->advance(PasteboardWatchDog::pollInterval);
        m_recognizer->setModifierFlags(EventModifierFlag::shift);
        m_monitor->drag({410, 300}, appWindow, EventModifierFlag::shift);
        QCOMPARE(m_delegate->began.size(), 1);

        m_monitor->up();
        QVERIFY(!m_properties->isDragging());
        QVERIFY(!m_properties->isDraggingPasteboardContent());
        QVERIFY(!m_recognizer->pasteboardWatchDog().polling());
        const int reads = m_monitor->changeCountReads;
        m_clock->advance(DragRecognizer::finishDelay - 10ms);
        QVERIFY(m_delegate->ended.isEmpty());
        m_clock->advance(20ms);
        QCOMPARE(m_delegate->ended, QList<SessionCloseFilter>{SessionCloseFilter::empty});
        QVERIFY(m_recognizer->state().kind == DragRecognizer::State::Kind::none);
        QVERIFY(!m_recognizer->session().initialPosition);
        QVERIFY(!m_recognizer->session().lastDirection);
        m_clock->advance(5s);
        QCOMPARE(m_monitor->changeCountReads, reads);

        // The next drag starts from scratch and polls again.
        m_monitor->drag({500, 300}, appWindow, EventModifierFlag::shift);
        QCOMPARE(m_delegate->began.size(), 1);
        QVERIFY(m_recognizer->pasteboardWatchDog().polling());
    }

    void releaseWithoutGestureKeepsTheSession()
    {
        const QList<double> xs = completingShake().mid(0, 12);
        for (const double x : xs) {
            m_monitor->drag({x, 300}, appWindow);
            m_clock->advance(step);
        }
        const int turns = m_recognizer->session().currentNumberOfTurns;
        QVERIFY(turns > 0);
        m_monitor->up();
        m_clock->advance(DragRecognizer::finishDelay);
        QVERIFY(m_delegate->ended.isEmpty());
        QCOMPARE(m_recognizer->session().currentNumberOfTurns, turns);
        QCOMPARE(m_recognizer->session().initialPosition, std::optional(QPointF(400, 300)));

        // Past the one-second window the next drag's events clear the old count.
        m_clock->advance(1s);
        m_monitor->drag({300, 300}, appWindow);
        QCOMPARE(m_recognizer->session().currentNumberOfTurns, 0);
    }

    void watchDogPollsOnlyWhenAsked()
    {
        qint64 count = 5;
        int reads = 0;
        int updates = 0;
        PasteboardWatchDog watchDog(
            [&] {
                ++reads;
                return count;
            },
            *m_clock, DispatchQueue::main());
        watchDog.setUpdateHandler([&] { ++updates; });
        m_clock->advance(1s);
        QCOMPARE(reads, 0);

        watchDog.setPolling(true);
        m_clock->advance(500ms);
        QCOMPARE(reads, 3);
        count = 6;
        m_clock->advance(200ms);
        // The count is read again after the handler, so one change is reported once.
        m_clock->advance(1s);
        QCOMPARE(updates, 1);
        QCOMPARE(watchDog.changeCount(), 6);

        watchDog.setPolling(false);
        const int readsWhenStopped = reads;
        m_clock->advance(2s);
        QCOMPARE(reads, readsWhenStopped);
        // A stop and a start within one interval leave a single tick running.
        watchDog.setPolling(true);
        watchDog.setPolling(false);
        watchDog.setPolling(true);
        m_clock->advance(300ms);
        QCOMPARE(reads, readsWhenStopped + 3);
    }

    void ownerNamesAreListedOncePerWindow()
    {
        EventWindowOwnerNameCache cache([this] { return m_monitor->windowList(); });
        QCOMPARE(cache.ownerName(appWindow), std::optional(u"Files"_s));
        QCOMPARE(m_monitor->listings, 1);
        // Served from the last listing, then from the cache.
        QCOMPARE(cache.ownerName(ignoredWindow), std::optional(u"Terminal"_s));
        QCOMPARE(cache.ownerName(appWindow), std::optional(u"Files"_s));
        QCOMPARE(m_monitor->listings, 1);
        QCOMPARE(cache.dockWindowNumbers(), QSet<quint64>{dockWindow});

        // A window no listing names is listed for once, and stays nameless.
        QCOMPARE(cache.ownerName(0x400), std::nullopt);
        QCOMPARE(cache.ownerName(0x400), std::nullopt);
        QCOMPARE(m_monitor->listings, 2);

        // A name in the cache survives the window's disappearance from later listings.
        m_monitor->windows = {{0x500, u"Editor"_s, false}};
        QCOMPARE(cache.ownerName(0x500), std::optional(u"Editor"_s));
        QCOMPARE(cache.ownerName(appWindow), std::optional(u"Files"_s));
        QCOMPARE(cache.ownerName(ignoredWindow), std::optional(u"Terminal"_s));
        QCOMPARE(m_monitor->listings, 3);
    }

    void configuration_data()
    {
        QTest::addColumn<QVariantMap>("stored");
        QTest::addColumn<bool>("shakeDisabled");
        QTest::addColumn<QStringList>("ignored");
        QTest::addColumn<std::optional<EventModifierFlags>>("modifier");

        const auto row = [](const char* tag, const QVariantMap& stored, bool shakeDisabled = false,
                            const QStringList& ignored = {},
                            std::optional<EventModifierFlags> modifier = EventModifierFlag::shift) {
            QTest::newRow(tag) << stored << shakeDisabled << ignored << modifier;
        };
        const auto trigger = [](const QString& key) {
            return QVariantMap{{u"ShelfTriggerModifierKeyEnabled"_s, true},
                               {u"ShelfTriggerModifierKey"_s, key}};
        };
        // The sensitivities and the control key at start and on change are configurationFollowsChanges'
        // concern; values of the wrong type read as absent, as the preferences' tests show.
        // Holding shift is on by default; the first start writes that too.
        row("nothing stored", {});
        row("trigger key off", {{u"ShelfTriggerModifierKeyEnabled"_s, false}}, false, {}, std::nullopt);
        row("unknown sensitivity is normal", {{u"ShakeGestureSensitivity"_s, 7}});
        row("shake off", {{u"ShakeGestureDisabled"_s, true}}, true);
        row("ignored applications",
            {{u"IgnoredApplications"_s, QStringList{u"Terminal.app"_s, u"My.app.Tool.app"_s, u"gimp"_s}}},
            false, {u"Terminal"_s, u"My.Tool"_s, u"gimp"_s});
        row("command is Super", trigger(u"command"_s), false, {}, EventModifierFlag::command);
        row("unknown key is shift", trigger(u"hyper"_s), false, {}, EventModifierFlag::shift);
    }

    void configuration()
    {
        QFETCH(QVariantMap, stored);
        QFETCH(bool, shakeDisabled);
        QFETCH(QStringList, ignored);
        QFETCH(std::optional<EventModifierFlags>, modifier);

        Preferences preferences(std::make_unique<MemoryPreferenceStorage>());
        for (auto it = stored.cbegin(); it != stored.cend(); ++it) {
            preferences.storage().setValue(PreferenceDefinition::find(it.key())->key, it.value());
        }
        m_recognizer->setIgnoredApplications({u"stale"_s});
        DragRecognizerConfiguration configuration(preferences, *m_recognizer);

        QCOMPARE(m_recognizer->sensitivity(), DragRecognizer::Sensitivity::normal);
        QCOMPARE(m_recognizer->session().treshold,
                 DragRecognizer::treshold(DragRecognizer::Sensitivity::normal));
        QCOMPARE(m_recognizer->shakeGestureDetectionDisabled(), shakeDisabled);
        QCOMPARE(m_recognizer->ignoredApplications(), ignored);
        QCOMPARE(m_recognizer->modifierFlags(), modifier);
    }

    void configurationFollowsChanges()
    {
        Preferences preferences(std::make_unique<MemoryPreferenceStorage>());
        preferences.setValue(PreferenceKeys::shakeGestureSensitivity, 1);
        DragRecognizerConfiguration configuration(preferences, *m_recognizer);
        QCOMPARE(m_recognizer->sensitivity(), DragRecognizer::Sensitivity::high);

        // A change to an index beyond the table is ignored rather than read as normal.
        preferences.setValue(PreferenceKeys::shakeGestureSensitivity, 3);
        QCOMPARE(m_recognizer->sensitivity(), DragRecognizer::Sensitivity::high);
        preferences.setValue(PreferenceKeys::shakeGestureSensitivity, 2);
        QCOMPARE(m_recognizer->sensitivity(), DragRecognizer::Sensitivity::ludicrous);
        QCOMPARE(m_recognizer->session().treshold.requiredNumberOfTurns, 1);

        preferences.setValue(PreferenceKeys::shakeGestureDisabled, true);
        QVERIFY(m_recognizer->shakeGestureDetectionDisabled());
        preferences.setValue(PreferenceKeys::ignoredApplication, {u"Files.app"_s});
        QCOMPARE(m_recognizer->ignoredApplications(), QStringList{u"Files"_s});

        preferences.setValue(PreferenceKeys::shelfTriggerModifierKeyEnabled, false);
        preferences.setValue(PreferenceKeys::shelfTriggerModifierKey, u"control"_s);
        QCOMPARE(m_recognizer->modifierFlags(), std::nullopt);
        preferences.setValue(PreferenceKeys::shelfTriggerModifierKeyEnabled, true);
        QCOMPARE(m_recognizer->modifierFlags(),
                 std::optional(EventModifierFlags(EventModifierFlag::control)));
        preferences.setValue(PreferenceKeys::shelfTriggerModifierKeyEnabled, false);
        QCOMPARE(m_recognizer->modifierFlags(), std::nullopt);
    }

private:
    std::unique_ptr<ManualClock> m_clock;
    std::unique_ptr<FakeDragMonitor> m_monitor;
    std::unique_ptr<TransientProperties> m_properties;
    std::unique_ptr<DragRecognizer> m_recognizer;
    std::unique_ptr<Test::RecordingRecognizerDelegate> m_delegate;
};

QTEST_GUILESS_MAIN(TestDragRecognizer)
#include "TestDragRecognizer.moc"
