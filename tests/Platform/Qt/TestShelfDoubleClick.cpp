// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Platform/Desktop/DesktopTestEnvironment.h"
#include "Platform/Desktop/LinuxDesktopActions.h"
#include "Platform/Desktop/PreviewWindow.h"
#include "Platform/Linux/InotifyFileWatcher.h"
#include "Platform/Qt/QtClipboardSource.h"
#include "Platform/Qt/QtScreenEnvironment.h"
#include "Preferences/SettingsItem.h"
#include "ShelfWindowTestSupport.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QMenu>
#include <QTest>

using namespace Vantrope;
using namespace Vantrope::Test;

Q_DECLARE_METATYPE(SettingsItem::DoubleClick)

namespace {

QList<PreviewWindow*> previewWindows()
{
    QList<PreviewWindow*> windows;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* preview = qobject_cast<PreviewWindow*>(widget); preview && preview->isVisible()) {
            windows.append(preview);
        }
    }
    return windows;
}

} // namespace

// A real double click (X input) on the pile of a real shelf window, with each double-click setting, through
// the desktop's real actions on a desktop of the test's own: "test-recorder" opens text files and folders
// and writes down what it was given.
class TestShelfDoubleClick final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_desktop = std::make_unique<DesktopTestEnvironment>();
        m_actions = std::make_unique<LinuxDesktopActions>();
        QCOMPARE(QGuiApplication::platformName(), QStringLiteral("xcb"));
        // Showing a file then opens its folder, which the recorder writes down.
        QVERIFY(!QDBusConnection::sessionBus().interface()->isServiceRegistered(
            QStringLiteral("org.freedesktop.FileManager1")));
    }

    void init()
    {
        m_desktop->clearRecorded();
        m_shelves = std::make_unique<ShelfFixture>(
            ShelfFixture::Platform{Clock::system(), InotifyFileWatcher::shared(), m_screens, m_clipboard,
                                   makeQtShelves, true, m_actions.get()});
    }

    void cleanup()
    {
        for (PreviewWindow* preview : previewWindows()) {
            preview->close();
        }
        QVERIFY(m_shelves->closeAllShelves());
        m_shelves.reset();
    }

    void doesWhatTheSettingSays_data()
    {
        QTest::addColumn<SettingsItem::DoubleClick>("setting");
        QTest::addColumn<QString>("recorded");
        QTest::addColumn<bool>("previews");
        QTest::newRow("show in the file manager")
            << SettingsItem::DoubleClick::showInFileManager << QStringLiteral("folder") << false;
        QTest::newRow("open") << SettingsItem::DoubleClick::open << QStringLiteral("file") << false;
        QTest::newRow("nothing") << SettingsItem::DoubleClick::none << QString() << false;
        QTest::newRow("preview") << SettingsItem::DoubleClick::preview << QString() << true;
    }

    void doesWhatTheSettingSays()
    {
        QFETCH(SettingsItem::DoubleClick, setting);
        QFETCH(QString, recorded);
        QFETCH(bool, previews);
        m_shelves->preferences.setValue(PreferenceKeys::doubleClickAction,
                                        SettingsItem::storedValue(setting));
        auto shelf = openShelf(*m_shelves->controller, QPoint(500, 400));
        const QString notes = m_shelves->file(QStringLiteral("notes.txt"));
        shelf->appendItems({m_shelves->fileItem(QStringLiteral("notes.txt"))});
        QTRY_VERIFY(!stackView(*shelf).visibleItemFrames().isEmpty());

        const QPoint pile = pileCentre(*shelf);
        QVERIFY(runXdotool({QStringLiteral("mousemove"), QString::number(pile.x()), QString::number(pile.y()),
                            QStringLiteral("click"), QStringLiteral("--repeat"), QStringLiteral("2"),
                            QStringLiteral("--delay"), QStringLiteral("80"), QStringLiteral("1")}));

        if (recorded == QLatin1String("folder")) {
            QTRY_COMPARE_WITH_TIMEOUT(DesktopTestEnvironment::asPaths(m_desktop->recorded()),
                                      QStringList{QDir::cleanPath(m_shelves->dir.path())}, 10000);
        } else if (recorded == QLatin1String("file")) {
            QTRY_COMPARE_WITH_TIMEOUT(DesktopTestEnvironment::asPaths(m_desktop->recorded()),
                                      QStringList{notes}, 10000);
        }
        if (previews) {
            QTRY_COMPARE(previewWindows().size(), 1);
        }
        // The action has ended and let go of its performer.
        QTRY_VERIFY(!shelf->doubleClickPerformer());
        // Give anything that should not happen the time to happen.
        QTest::qWait(700);
        QCOMPARE(previewWindows().size(), previews ? 1 : 0);
        if (recorded.isEmpty()) {
            QCOMPARE(m_desktop->recorded(), QStringList());
        } else {
            // Once, not once per click.
            QCOMPARE(m_desktop->recorded().size(), 1);
        }
        // A double click is no drag and no menu: the item is where it was, and no menu opened.
        QVERIFY(!shelfView(*shelf).actionsMenu());
        QVERIFY(!shelfView(*shelf).hasDraggedOutItems());
        QCOMPARE(shelf->itemsController().items().size(), 1);
        QVERIFY(shelfWindow(*shelf).widget().isVisible());
    }

    // Two double clicks in a row while the first one's action is still running start it once.
    void aRunningActionIsNotStartedTwice()
    {
        m_shelves->preferences.setValue(PreferenceKeys::doubleClickAction,
                                        SettingsItem::storedValue(SettingsItem::DoubleClick::open));
        auto shelf = openShelf(*m_shelves->controller, QPoint(500, 400));
        shelf->appendItems({m_shelves->fileItem(QStringLiteral("notes.txt"))});
        shelf->performDoubleClickAction();
        QVERIFY(shelf->doubleClickPerformer());
        shelf->performDoubleClickAction();
        QTRY_VERIFY_WITH_TIMEOUT(!shelf->doubleClickPerformer(), 10000);
        QTRY_COMPARE_WITH_TIMEOUT(m_desktop->recorded().size(), 1, 10000);
        QTest::qWait(500);
        QCOMPARE(m_desktop->recorded().size(), 1);
    }

private:
    std::unique_ptr<DesktopTestEnvironment> m_desktop;
    std::unique_ptr<LinuxDesktopActions> m_actions;
    QtScreenEnvironment m_screens;
    QtClipboardSource m_clipboard;
    std::unique_ptr<ShelfFixture> m_shelves;
};

QTEST_MAIN(TestShelfDoubleClick)
#include "TestShelfDoubleClick.moc"
