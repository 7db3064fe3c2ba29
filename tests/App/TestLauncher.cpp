// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "App/Launcher.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;

class TestLauncher final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    // The entry is read by the session's own parser, not by ours: GLib's, as GNOME and most desktops use.
    // A path with "%" is left out: GLib looks for the program before it turns "%%" back into "%", so no
    // spelling of such a path runs under GLib.
    void entryStartsTheProgram_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::newRow("plain") << QStringLiteral("bin");
        QTest::newRow("spaces") << QStringLiteral("my programs/vantrope build");
        QTest::newRow("quote and dollar") << QStringLiteral("say \"hi\" $HOME");
        QTest::newRow("backslash and backtick") << QStringLiteral("back\\slash `tick`");
        QTest::newRow("shell characters") << QStringLiteral("a;b&c|d (e) *?#~'");
    }

    void entryStartsTheProgram()
    {
        QFETCH(QString, folder);
        const QString gio = QStandardPaths::findExecutable(QStringLiteral("gio"));
        if (gio.isEmpty()) {
            QSKIP("gio (libglib2.0-bin) is not installed");
        }
        QTemporaryDir dir;
        const QString marker = dir.filePath(QStringLiteral("started"));
        const QString program = dir.filePath(folder + QStringLiteral("/run me"));
        QVERIFY(QDir().mkpath(dir.filePath(folder)));
        QVERIFY(Test::writeFile(program, "#!/bin/sh\nprintf '%s' \"$0\" > '" + marker.toUtf8() + "'\n"));
        QVERIFY(QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));

        const Launcher launcher(dir.filePath(QStringLiteral("autostart")), program);
        QVERIFY(launcher.enableLaunchAtLogin().has_value());
        QProcess launch;
        launch.start(gio, {QStringLiteral("launch"), launcher.entryPath()});
        QVERIFY(launch.waitForFinished(10000));
        QVERIFY2(launch.exitCode() == 0, launch.readAllStandardError().constData());
        QTRY_VERIFY(QFile::exists(marker));
        QTRY_COMPARE(QString::fromUtf8(Test::readFile(marker)), program);
    }

    void enableAndDisable()
    {
        QTemporaryDir dir;
        const Launcher launcher(dir.filePath(QStringLiteral("autostart")),
                                QStringLiteral("/usr/bin/vantrope"));
        QVERIFY(!launcher.isLaunchAtLoginEnabled());
        QVERIFY(launcher.disableLaunchAtLogin().has_value());

        // An entry left by another copy of the program is replaced.
        QVERIFY(Test::writeFile(launcher.entryPath(), "[Desktop Entry]\nExec=/elsewhere/vantrope\n"));
        QVERIFY(launcher.enableLaunchAtLogin().has_value());
        QCOMPARE(Test::readFile(launcher.entryPath()), launcher.entry());
        QVERIFY(launcher.entry().contains("\nExec=/usr/bin/vantrope\n"));
        QVERIFY(launcher.enableLaunchAtLogin().has_value());
        QCOMPARE(QDir(dir.filePath(QStringLiteral("autostart"))).entryList(QDir::Files).size(), 1);

        QVERIFY(launcher.disableLaunchAtLogin().has_value());
        QVERIFY(!launcher.isLaunchAtLoginEnabled());
    }

    void failureIsAValue()
    {
        QTemporaryDir dir;
        // A file where the folder should be: no one, root included, can create the entry.
        QVERIFY(Test::writeFile(dir.filePath(QStringLiteral("autostart")), "not a folder"));
        const Launcher launcher(dir.filePath(QStringLiteral("autostart")),
                                QStringLiteral("/usr/bin/vantrope"));
        const auto enabled = launcher.enableLaunchAtLogin();
        QVERIFY(!enabled.has_value());
        QVERIFY(!enabled.error().reason.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestLauncher)
#include "TestLauncher.moc"
