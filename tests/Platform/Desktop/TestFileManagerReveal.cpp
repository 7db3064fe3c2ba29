// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DesktopTestEnvironment.h"
#include "Domains/Actions/ActionIdentifiers.h"
#include "Platform/Desktop/FileManagerReveal.h"
#include "Platform/Desktop/LinuxDesktopActions.h"
#include "Platform/Desktop/RevealInFinderAction.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

namespace {

bool fileManagerOnBus()
{
    return QDBusConnection::sessionBus()
        .interface()
        ->isServiceRegistered(FileManagerReveal::serviceName)
        .value();
}

// The windows on the display whose title holds `text`.
QStringList windowsNamed(const QString& text)
{
    QProcess xdotool;
    xdotool.start(u"xdotool"_s, {u"search"_s, u"--name"_s, text});
    if (!xdotool.waitForFinished(10000)) {
        return {};
    }
    return QString::fromUtf8(xdotool.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

} // namespace

// Showing files in the file manager, on the test's own session bus: with nobody serving the file
// manager's interface the folders open with their default application, and with Thunar's daemon
// serving it Thunar shows them.
class TestFileManagerReveal final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_desktop = std::make_unique<Test::DesktopTestEnvironment>();
        QVERIFY(QDBusConnection::sessionBus().isConnected());
        m_files = m_desktop->root() + u"/reveal-target-folder/"_s;
        QVERIFY(Test::writeFile(m_files + u"a.txt"_s, "a"));
        QVERIFY(Test::writeFile(m_files + u"b.txt"_s, "b"));
        QVERIFY(Test::writeFile(m_files + u"inner/c.txt"_s, "c"));
        QVERIFY(Test::writeFile(m_files + u"ä ö/d.txt"_s, "d"));
    }

    void cleanupTestCase()
    {
        if (m_thunar.state() != QProcess::NotRunning) {
            m_thunar.kill();
            m_thunar.waitForFinished(5000);
        }
    }

    void init() { m_desktop->clearRecorded(); }

    void withoutAFileManagerTheFoldersOpen_data()
    {
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<QStringList>("folders");

        QTest::newRow("one file") << QStringList{u"a.txt"_s} << QStringList{u""_s};
        QTest::newRow("two files of one folder open it once")
            << QStringList{u"a.txt"_s, u"b.txt"_s} << QStringList{u""_s};
        QTest::newRow("files of two folders")
            << QStringList{u"a.txt"_s, u"inner/c.txt"_s, u"ä ö/d.txt"_s, u"b.txt"_s}
            << QStringList{u""_s, u"inner"_s, u"ä ö"_s};
        QTest::newRow("a folder opens the one that holds it")
            << QStringList{u"inner"_s} << QStringList{u""_s};
    }

    void withoutAFileManagerTheFoldersOpen()
    {
        QFETCH(QStringList, files);
        QFETCH(QStringList, folders);
        QVERIFY2(!fileManagerOnBus(), "something owns the file manager's name on the test bus");

        RevealInFinderAction action;
        QList<Action::Result> results;
        QVERIFY(action.canPerform(items(files)));
        action.perform(items(files), {},
                       [&results](const Action::Result& result) { results.append(result); });
        // The end is reported after perform has returned.
        QCOMPARE(results.size(), 0);
        QTRY_COMPARE(results.size(), 1);
        QVERIFY(results.first().has_value());

        QStringList expected;
        for (const QString& folder : folders) {
            expected.append(QDir::cleanPath(m_files + folder));
        }
        QTRY_COMPARE_WITH_TIMEOUT(m_desktop->recorded().size(), expected.size(), 10000);
        QStringList recorded = Test::DesktopTestEnvironment::asPaths(m_desktop->recorded());
        // Each folder is a launch of its own, and they run side by side.
        recorded.sort();
        expected.sort();
        QCOMPARE(recorded, expected);
    }

    // The program's compress action shows its archive the same way.
    void aNewArchiveIsShown()
    {
        QVERIFY(!fileManagerOnBus());
        LinuxDesktopActions desktop;
        ActionPtr compress;
        for (const ActionPtr& action : desktop.makeItemActions()) {
            if (action->identifier() == ActionIdentifiers::compress) {
                compress = action;
            }
        }
        QVERIFY(compress);
        QList<Action::Result> results;
        compress->perform(items({u"a.txt"_s, u"inner"_s}), {},
                          [&results](const Action::Result& result) { results.append(result); });
        QTRY_COMPARE_WITH_TIMEOUT(results.size(), 1, 30000);
        QVERIFY(results.first().has_value());
        QTRY_COMPARE_WITH_TIMEOUT(m_desktop->recorded().size(), 1, 10000);
        const QString folder = Test::DesktopTestEnvironment::asPaths(m_desktop->recorded()).first();
        QVERIFY2(QFileInfo(folder + u"/Archive.zip"_s).isFile(), qPrintable(folder));
        QVERIFY(!folder.startsWith(m_files));
    }

    void onlyLocalFilesAreShown()
    {
        const auto revealed = FileManagerReveal::reveal(
            {QUrl::fromLocalFile(m_files + u"a.txt"_s), QUrl(u"https://example.org/a.txt"_s)});
        QVERIFY(!revealed);
        QVERIFY(revealed.error().description.contains(u"https://example.org/a.txt"_s));
        QTest::qWait(300);
        QCOMPARE(m_desktop->recorded(), QStringList());
    }

    // A file manager that takes the call and never answers costs a worker thread, not the shelf: the
    // action returns at once, and ends by opening the folders once that file manager has gone.
    void aFileManagerThatHangsHoldsNothingUp()
    {
        QProcess hung;
        hung.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        hung.start(u"/usr/bin/python3"_s, {u"-c"_s, uR"(import sys, time, dbus, dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib
DBusGMainLoop(set_as_default=True)
class Manager(dbus.service.Object):
    @dbus.service.method("org.freedesktop.FileManager1", in_signature="ass")
    def ShowItems(self, uris, startup):
        time.sleep(60)
name = dbus.service.BusName("org.freedesktop.FileManager1", dbus.SessionBus())
Manager(dbus.SessionBus(), "/org/freedesktop/FileManager1")
print("ready", flush=True)
GLib.MainLoop().run()
)"_s});
        QVERIFY(hung.waitForReadyRead(10000));
        QCOMPARE(hung.readLine().trimmed(), QByteArray("ready"));
        QVERIFY(fileManagerOnBus());

        RevealInFinderAction action;
        QList<Action::Result> results;
        QElapsedTimer timer;
        timer.start();
        action.perform(items({u"a.txt"_s}), {},
                       [&results](const Action::Result& result) { results.append(result); });
        QVERIFY2(timer.elapsed() < 500, qPrintable(QString::number(timer.elapsed())));
        QTest::qWait(500);
        QCOMPARE(results.size(), 0);

        hung.kill();
        QVERIFY(hung.waitForFinished(5000));
        QTRY_COMPARE_WITH_TIMEOUT(results.size(), 1, 15000);
        QVERIFY(results.first().has_value());
        QTRY_COMPARE(m_desktop->recorded().size(), 1);
        QCOMPARE(QDir(Test::DesktopTestEnvironment::asPaths(m_desktop->recorded()).first()), QDir(m_files));
        m_desktop->clearRecorded();
    }

    void thunarShowsTheFiles()
    {
        const QString thunar = QStandardPaths::findExecutable(u"thunar"_s);
        if (thunar.isEmpty()) {
            QSKIP("thunar is not installed (scripts/deps.sh test)");
        }
        QVERIFY(windowsNamed(u"reveal-target-folder"_s).isEmpty());
        m_thunar.setProgram(thunar);
        m_thunar.setArguments({u"--daemon"_s});
        m_thunar.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_thunar.start();
        QVERIFY(m_thunar.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(fileManagerOnBus(), 20000);

        RevealInFinderAction action;
        QList<Action::Result> results;
        action.perform(items({u"a.txt"_s, u"b.txt"_s}), {},
                       [&results](const Action::Result& result) { results.append(result); });
        QTRY_COMPARE(results.size(), 1);
        QVERIFY(results.first().has_value());
        // Thunar opens a window on the folder that holds them, titled with its name.
        QTRY_VERIFY_WITH_TIMEOUT(!windowsNamed(u"reveal-target-folder"_s).isEmpty(), 20000);
        // And the folders were not opened another way.
        QTest::qWait(300);
        QCOMPARE(m_desktop->recorded(), QStringList());
    }

private:
    ActionItemList items(const QStringList& files) const
    {
        ActionItemList list;
        for (const QString& file : files) {
            list.append(*ActionItem::fromFile(QUrl::fromLocalFile(m_files + file)));
        }
        return list;
    }

    std::unique_ptr<Test::DesktopTestEnvironment> m_desktop;
    QString m_files;
    QProcess m_thunar;
};

QTEST_MAIN(TestFileManagerReveal)
#include "TestFileManagerReveal.moc"
