// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "App/AppDelegate.h"
#include "App/Launcher.h"
#include "App/MenuItemController.h"
#include "App/RootCoordinator.h"
#include "App/WindowCoordinator.h"
#include "Domains/DragSession/PersistentDragSession.h"
#include "Libraries/Core/ManualClock.h"
#include "Libraries/Core/ReservedTemporaryDirectory.h"
#include "Platform/Qt/QtDragSessionUserInterface.h"
#include "Platform/Qt/QtScreenEnvironment.h"
#include "support/FakeFileWatcher.h"
#include "support/FakeShelfInterface.h"
#include "support/ShelfFixture.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QApplication>
#include <QCursor>
#include <QFile>
#include <QFileInfo>
#include <QMenu>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

using namespace Vantrope;
using namespace std::chrono_literals;

// Launching, reopening and quitting with the real coordinators and shelf windows on the offscreen
// platform, a hand-moved clock and preferences in memory.
class TestAppDelegate final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void init()
    {
        m_clock = std::make_unique<ManualClock>();
        m_shelves = std::make_unique<Test::ShelfFixture>(Test::ShelfFixture::Platform{
            *m_clock, m_fileWatcher, m_screens, m_clipboard,
            [](MessageWindowCenter& messages, Preferences& preferences, Clock& clock) {
                return std::make_unique<QtDragSessionUserInterface>(
                    QtDragSessionUserInterface::Dependencies{messages, preferences, clock});
            },
            false});
        m_launcher = std::make_unique<Launcher>(m_shelves->dir.filePath(QStringLiteral("autostart")),
                                                QStringLiteral("/opt/vantrope/bin/vantrope"));
        m_delegate = std::make_unique<AppDelegate>(AppDelegate::Dependencies{m_shelves->preferences,
                                                                             m_shelves->store,
                                                                             *m_shelves->ui,
                                                                             m_screens,
                                                                             m_clipboard,
                                                                             m_shelves->messages,
                                                                             *m_launcher,
                                                                             {},
                                                                             *m_clock,
                                                                             m_fileWatcher});
    }

    void cleanup()
    {
        m_delegate.reset();
        m_shelves.reset();
    }

    void reopen_data()
    {
        QTest::addColumn<bool>("launched");
        QTest::addColumn<std::chrono::milliseconds>("afterLaunch");
        QTest::addColumn<bool>("hiddenShelf");
        QTest::addColumn<QString>("expectedLine");

        QTest::newRow("before launching is done")
            << false << 0ms << false << QStringLiteral("We haven't launched yet. Ignoring.");
        QTest::newRow("just inside the grace period")
            << true << 2900ms << false << QStringLiteral("Probably triggered during launch. Ignoring");
        QTest::newRow("inside the grace period with a shelf")
            << true << 500ms << true << QStringLiteral("Probably triggered during launch. Ignoring");
        QTest::newRow("after the grace period, no shelf")
            << true << 3000ms << false << QStringLiteral("No coordinator found, opening settings instead.");
        QTest::newRow("after the grace period, a shelf")
            << true << 3000ms << true << QStringLiteral("We have a coordinator, showing it's window now");
    }

    void reopen()
    {
        QFETCH(bool, launched);
        QFETCH(std::chrono::milliseconds, afterLaunch);
        QFETCH(bool, hiddenShelf);
        QFETCH(QString, expectedLine);

        std::shared_ptr<DragSessionCoordinator> shelf;
        if (launched) {
            m_delegate->applicationDidFinishLaunching();
            if (hiddenShelf) {
                shelf = sessions().startSession(DragSessionSource::MenuBar{});
                shelf->window().close();
            }
        }
        m_clock->advance(afterLaunch);

        Test::LogCapture log;
        m_delegate->handleReopen();
        QCOMPARE(log.count(expectedLine), 1);
        const bool opensSettings = expectedLine.startsWith(QStringLiteral("No coordinator"));
        QWidget* settings =
            launched ? m_delegate->rootCoordinator()->windowCoordinator().settingsWindow() : nullptr;
        QCOMPARE(settings && settings->isVisible(), opensSettings);
        if (shelf) {
            QCOMPARE(shelf->window().isVisible(), expectedLine.startsWith(QStringLiteral("We have")));
        }
    }

    void filesBeforeLaunchWaitForIt()
    {
        const QString path = m_shelves->dir.filePath(QStringLiteral("early.txt"));
        QVERIFY(Test::writeFile(path, "early"));

        Test::LogCapture log;
        m_delegate->openFiles({QUrl::fromLocalFile(path)});
        QCOMPARE(m_delegate->pendingActions().size(), 1);
        QVERIFY(
            log.contains(QStringLiteral("Attempted to perform pending actions but we are not launched yet")));

        m_delegate->applicationDidFinishLaunching();
        QVERIFY(m_delegate->pendingActions().isEmpty());
        QVERIFY(log.contains(QStringLiteral("Performing pending actions: 1")));
        const auto shelves = sessions().coordinators();
        QCOMPARE(shelves.size(), 1);
        QVERIFY(shelves.first()->source().is<DragSessionSource::MenuBarDrop>());
        QCOMPARE(shelves.first()->itemsController().items().size(), 1);
        QCOMPARE(shelves.first()->itemsController().items().first()->url(), QUrl::fromLocalFile(path));

        // Once launched, files go straight to a shelf.
        m_delegate->openFiles({QUrl::fromLocalFile(path)});
        QVERIFY(m_delegate->pendingActions().isEmpty());
        QCOMPARE(sessions().coordinators().size(), 2);
    }

    void firstRun_data()
    {
        QTest::addColumn<bool>("launchedBefore");
        QTest::addColumn<bool>("showsIntroduction");
        QTest::addColumn<QString>("lastSeenVersion");
        QTest::newRow("first start") << false << true << QStringLiteral("0.1.0");
        QTest::newRow("later start") << true << false << QStringLiteral("0.0.9");
    }

    void firstRun()
    {
        QFETCH(bool, launchedBefore);
        QFETCH(bool, showsIntroduction);
        QFETCH(QString, lastSeenVersion);
        if (launchedBefore) {
            preferences().setValue(PreferenceKeys::hasLaunchedApp, true);
            preferences().setValue(PreferenceKeys::lastSeenWhatsNewVersion, QStringLiteral("0.0.9"));
        }
        m_delegate->applicationDidFinishLaunching();
        const QWidget* introduction = m_delegate->rootCoordinator()->windowCoordinator().introductionWindow();
        QCOMPARE(introduction && introduction->isVisible(), showsIntroduction);
        QCOMPARE(preferences().value(PreferenceKeys::lastSeenWhatsNewVersion), lastSeenVersion);
        QCOMPARE(preferences().storedValue(PreferenceKeys::hasLaunchedApp), std::optional<bool>(true));

        // A shelf never opens behind the introduction.
        if (showsIntroduction) {
            sessions().startSession(DragSessionSource::MenuBar{});
            QVERIFY(!introduction->isVisible());
        }
    }

    void termination_data()
    {
        QTest::addColumn<bool>("showInTaskbar");
        QTest::addColumn<bool>("menuOpen");
        QTest::addColumn<bool>("quitItem");
        QTest::addColumn<bool>("pointerOverShelf");
        QTest::addColumn<bool>("quits");

        QTest::newRow("tray mode, a stray shortcut") << false << false << false << false << false;
        QTest::newRow("tray mode, menu open") << false << true << false << false << true;
        QTest::newRow("tray mode, the quit item") << false << false << true << false << true;
        QTest::newRow("tray mode, pointer over a shelf, quit item") << false << false << true << true << true;
        QTest::newRow("taskbar mode") << true << false << false << false << true;
        QTest::newRow("taskbar mode, pointer over a shelf") << true << false << false << true << false;
    }

    void termination()
    {
        QFETCH(bool, showInTaskbar);
        QFETCH(bool, menuOpen);
        QFETCH(bool, quitItem);
        QFETCH(bool, pointerOverShelf);
        QFETCH(bool, quits);

        preferences().setValue(PreferenceKeys::prefersShowInTaskbar, showInTaskbar);
        m_delegate->applicationDidFinishLaunching();
        MenuItemController& menu = m_delegate->rootCoordinator()->menuItemController();
        const auto shelf = sessions().startSession(DragSessionSource::MenuBar{});
        QCursor::setPos(QtScreenEnvironment::toTopLeft(shelf->window().frame()).center().toPoint() +
                        (pointerOverShelf ? QPoint() : QPoint(400, 400)));
        QCOMPARE(shelf->window().containsMouse(), pointerOverShelf);
        if (menuOpen) {
            Q_EMIT menu.menu().aboutToShow();
        }

        QSignalSpy quit(m_delegate.get(), &AppDelegate::quitRequested);
        if (quitItem) {
            QAction* quitAction = action(menu.menu(), QStringLiteral("Quit Vantrope"));
            QVERIFY(quitAction);
            quitAction->trigger();
        } else {
            m_delegate->requestTermination();
        }
        QCOMPARE(quit.count(), quits ? 1 : 0);
    }

    void launchAtLogin_data()
    {
        QTest::addColumn<bool>("enabled");
        QTest::newRow("on") << true;
        QTest::newRow("off") << false;
    }

    void launchAtLogin()
    {
        QFETCH(bool, enabled);
        // A leftover entry of an older installation must not survive "off".
        QVERIFY(Test::writeFile(m_launcher->entryPath(), "[Desktop Entry]\nExec=/old/vantrope\n"));
        preferences().setValue(PreferenceKeys::launchAtLogin, enabled);
        m_delegate->applicationDidFinishLaunching();
        QCOMPARE(QFile::exists(m_launcher->entryPath()), enabled);
        if (enabled) {
            QVERIFY(Test::readFile(m_launcher->entryPath()).contains("Exec=/opt/vantrope/bin/vantrope\n"));
        }

        // The settings change it while running.
        preferences().setValue(PreferenceKeys::launchAtLogin, !enabled);
        QCOMPARE(QFile::exists(m_launcher->entryPath()), !enabled);
    }

    // At launch the program's temporary text files go, except those a recent shelf still holds.
    void launchClearsTemporaryDataThatNoShelfHolds()
    {
        const auto text = TemporaryDirectories::path(ReservedTemporaryDirectory::textFiles);
        QVERIFY(text);
        const QString kept = *text + QStringLiteral("/1111/note.txt");
        const QString orphan = *text + QStringLiteral("/2222/old.txt");
        for (const QString& path : {kept, orphan}) {
            QVERIFY(Test::writeFile(path, "words"));
            // Written long ago, so only the shelves decide.
            for (const QString& stamped : {path, QFileInfo(path).path()}) {
                QCOMPARE(QProcess::execute(QStringLiteral("touch"),
                                           {QStringLiteral("-d"), QStringLiteral("3 hours ago"), stamped}),
                         0);
            }
        }
        PersistentDragSession::Bookmarks bookmarks;
        bookmarks.insert(QUrl::fromLocalFile(kept), "note");
        m_shelves->store.addSessionNow(std::make_shared<PersistentDragSession>(
            QStringLiteral("RECENT-1"), m_clock->currentDateTime(), std::nullopt, bookmarks, std::nullopt));

        m_delegate->applicationDidFinishLaunching();
        QTRY_VERIFY(m_shelves->preferences.value(PreferenceKeys::lastTemporaryDataSanitationDate).isValid());
        QVERIFY(!QFileInfo::exists(QFileInfo(orphan).path()));
        QCOMPARE(Test::readFile(kept), QByteArray("words"));
    }

private:
    SessionController& sessions() const { return m_delegate->rootCoordinator()->sessionController(); }
    Preferences& preferences() const { return m_shelves->preferences; }

    static QAction* action(const QMenu& menu, const QString& text)
    {
        for (QAction* action : menu.actions()) {
            if (action->text() == text) {
                return action;
            }
        }
        return nullptr;
    }

    std::unique_ptr<ManualClock> m_clock;
    Test::FakeFileWatcher m_fileWatcher;
    QtScreenEnvironment m_screens;
    Test::FakeClipboard m_clipboard;
    std::unique_ptr<Test::ShelfFixture> m_shelves;
    std::unique_ptr<Launcher> m_launcher;
    std::unique_ptr<AppDelegate> m_delegate;
};

QTEST_MAIN(TestAppDelegate)
#include "TestAppDelegate.moc"
