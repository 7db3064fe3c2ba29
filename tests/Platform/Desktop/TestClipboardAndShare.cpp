// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/Actions/ActionIdentifiers.h"
#include "Platform/Desktop/CopyToPasteboardAction.h"
#include "Platform/Desktop/LinuxDesktopActions.h"
#include "support/TestSupport.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

namespace {

// Runs a helper while this thread's event loop goes on (the clipboard's owner must answer it), and
// answers what it printed.
QByteArray runAlongside(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    if (!process.waitForStarted(10000)) {
        return {};
    }
    QSignalSpy finished(&process, &QProcess::finished);
    if (!finished.wait(30000)) {
        process.kill();
        process.waitForFinished();
    }
    return process.readAllStandardOutput();
}

QByteArray valueOf(const QByteArray& output, const QByteArray& prefix)
{
    for (const QByteArray& line : output.split('\n')) {
        if (line.startsWith(QByteArray(prefix + ' '))) {
            return line.mid(prefix.size() + 1);
        }
    }
    return "<missing>";
}

} // namespace

// The clipboard as GTK programs read it, and the share targets against stand-ins for the mail program,
// the Bluetooth sender and the KDE Connect daemon on the test's own bus.
class TestClipboardAndShare final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        Test::isolateStandardPaths();
        QVERIFY(m_root.isValid());
        QVERIFY(QDBusConnection::sessionBus().isConnected());
        m_files = m_root.filePath(u"files"_s) + QLatin1Char('/');
        QVERIFY(Test::writeFile(m_files + u"a.txt"_s, "a"));
        QVERIFY(Test::writeFile(m_files + u"with space & ü.txt"_s, "b"));
        QVERIFY(Test::writeFile(m_files + u"folder/inside.txt"_s, "c"));
    }

    void cleanup()
    {
        if (m_kdeConnect.state() != QProcess::NotRunning) {
            m_kdeConnect.kill();
            m_kdeConnect.waitForFinished(5000);
            QTRY_VERIFY(!QDBusConnection::sessionBus()
                             .interface()
                             ->isServiceRegistered(u"org.kde.kdeconnect"_s)
                             .value());
        }
        qputenv("PATH", m_path);
    }

    void gtkReadsTheCopiedFiles_data()
    {
        QTest::addColumn<QStringList>("files");
        QTest::newRow("one file") << QStringList{u"a.txt"_s};
        QTest::newRow("names to escape, and a folder")
            << QStringList{u"with space & ü.txt"_s, u"folder"_s, u"a.txt"_s};
    }

    void gtkReadsTheCopiedFiles()
    {
        QFETCH(QStringList, files);
        LinuxDesktopActions desktop;
        ActionPtr copy;
        for (const ActionPtr& action : desktop.makeItemActions()) {
            if (action->identifier() == ActionIdentifiers::copyToPasteboard) {
                copy = action;
            }
        }
        QVERIFY(copy);
        QCOMPARE(copy->category(), ActionCategory::shelf);
        QVERIFY(copy->canPerform(items(files)));

        QList<Action::Result> results;
        copy->perform(items(files), {}, [&results](const Action::Result& result) { results.append(result); });
        QCOMPARE(results.size(), 1);
        QVERIFY(results.first().has_value());
        QCOMPARE(*results.first(),
                 ActionResultContext{ActionResultContext::Message{u"Copied to the clipboard"_s}});

        const QByteArray output = runAlongside(u"/usr/bin/python3"_s, {QStringLiteral(GTK_CLIPBOARD_READER)});
        const QList<QByteArray> targets = valueOf(output, "targets").split(' ');
        for (const QByteArray& target :
             {QByteArray("text/uri-list"), QByteArray("x-special/gnome-copied-files"),
              QByteArray("UTF8_STRING"), QByteArray("text/plain")}) {
            QVERIFY2(targets.contains(target), output.constData());
        }

        QByteArray uriList;
        QByteArray copied = "copy";
        QStringList uris;
        QStringList paths;
        for (const QString& file : files) {
            const QUrl url = QUrl::fromLocalFile(m_files + file);
            uriList += url.toEncoded() + "\r\n";
            copied += '\n' + url.toEncoded();
            uris.append(QString::fromUtf8(url.toEncoded()));
            paths.append(m_files + file);
        }
        QCOMPARE(QByteArray::fromHex(valueOf(output, "data text/uri-list")), uriList);
        QCOMPARE(QByteArray::fromHex(valueOf(output, "data x-special/gnome-copied-files")), copied);
        QCOMPARE(QString::fromUtf8(QByteArray::fromHex(valueOf(output, "uris"))),
                 uris.join(QLatin1Char('\n')));
        QCOMPARE(QString::fromUtf8(QByteArray::fromHex(valueOf(output, "text"))),
                 paths.join(QLatin1Char('\n')));
    }

    void shareTargets_data()
    {
        // The programs found on PATH, whether the KDE Connect daemon runs, and the actions on offer.
        QTest::addColumn<QStringList>("programs");
        QTest::addColumn<bool>("kdeConnect");
        QTest::addColumn<QStringList>("expected");

        QTest::newRow("nothing to share with") << QStringList() << false << QStringList();
        QTest::newRow("a mail program")
            << QStringList{u"xdg-email"_s} << false << QStringList{u"sharingservice_email"_s};
        QTest::newRow("GNOME's Bluetooth sender")
            << QStringList{u"bluetooth-sendto"_s} << false << QStringList{u"sharingservice_bluetooth"_s};
        QTest::newRow("Plasma's Bluetooth sender")
            << QStringList{u"bluedevil-sendfile"_s} << false << QStringList{u"sharingservice_bluetooth"_s};
        QTest::newRow("only the paired phone that is reachable")
            << QStringList() << true << QStringList{u"sharingservice_kdeconnect_phone1"_s};
        QTest::newRow("everything") << QStringList{u"xdg-email"_s, u"bluetooth-sendto"_s} << true
                                    << QStringList{u"sharingservice_email"_s,
                                                   u"sharingservice_kdeconnect_phone1"_s,
                                                   u"sharingservice_bluetooth"_s};
    }

    void shareTargets()
    {
        QFETCH(QStringList, programs);
        QFETCH(bool, kdeConnect);
        QFETCH(QStringList, expected);

        QTemporaryDir work;
        const QString bin = work.filePath(u"bin"_s);
        const QString records = work.filePath(u"records"_s) + QLatin1Char('/');
        QDir().mkpath(bin);
        QDir().mkpath(records);
        for (const QString& program : programs) {
            const QString path = bin + QLatin1Char('/') + program;
            QVERIFY(
                Test::writeFile(path, "#!/bin/sh\nfor argument in \"$@\"; do printf '%s\\n' \"$argument\"; "
                                      "done > '" +
                                          (records + program).toLocal8Bit() + "'\n"));
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
        // Only the stand-ins: the real programs of this machine stay out of reach.
        qputenv("PATH", bin.toLocal8Bit());
        if (kdeConnect) {
            m_kdeConnect.setProcessChannelMode(QProcess::ForwardedErrorChannel);
            m_kdeConnect.start(u"/usr/bin/python3"_s,
                               {QStringLiteral(FAKE_KDECONNECT), records + u"kdeconnect"_s});
            QVERIFY(m_kdeConnect.waitForReadyRead(15000));
            QCOMPARE(m_kdeConnect.readLine().trimmed(), QByteArray("ready"));
        }

        const QStringList files{u"a.txt"_s, u"with space & ü.txt"_s};
        QList<QUrl> urls;
        for (const QString& file : files) {
            urls.append(QUrl::fromLocalFile(m_files + file));
        }
        LinuxDesktopActions desktop;
        const ActionList actions = desktop.makeShareActions(urls);
        QStringList identifiers;
        for (const ActionPtr& action : actions) {
            identifiers.append(action->identifier());
            QCOMPARE(action->category(), ActionCategory::systemShare);
            QVERIFY(action->isDestructive());
            QVERIFY(action->hidesSourceWindowDuringAction());
        }
        QCOMPARE(identifiers, expected);
        // Nothing that is not a local file goes anywhere.
        QCOMPARE(desktop.makeShareActions({QUrl(u"https://example.org/a.txt"_s)}).size(), 0);

        for (const ActionPtr& action : actions) {
            QVERIFY(action->canPerform(items(files)));
            QList<Action::Result> results;
            action->perform(items(files), {},
                            [&results](const Action::Result& result) { results.append(result); });
            QTRY_COMPARE(results.size(), 1);
            QVERIFY2(results.first().has_value(), qPrintable(action->identifier()));
        }

        const QStringList paths{m_files + files[0], m_files + files[1]};
        const QStringList uris{QString::fromUtf8(urls[0].toEncoded()),
                               QString::fromUtf8(urls[1].toEncoded())};
        if (expected.contains(u"sharingservice_email"_s)) {
            QTRY_COMPARE(lines(records + u"xdg-email"_s),
                         (QStringList{u"--attach"_s, paths[0], u"--attach"_s, paths[1]}));
        }
        if (programs.contains(u"bluetooth-sendto"_s)) {
            QTRY_COMPARE(lines(records + u"bluetooth-sendto"_s), paths);
        }
        if (programs.contains(u"bluedevil-sendfile"_s)) {
            QTRY_COMPARE(lines(records + u"bluedevil-sendfile"_s),
                         (QStringList{u"-f"_s, paths[0], u"-f"_s, paths[1]}));
        }
        if (kdeConnect) {
            const ActionPtr phone = actions[expected.indexOf(u"sharingservice_kdeconnect_phone1"_s)];
            QCOMPARE(phone->title(), u"Send to Test Phone"_s);
            QTRY_COMPARE(lines(records + u"kdeconnect"_s),
                         (QStringList{u"phone1 "_s + uris[0], u"phone1 "_s + uris[1]}));
        }
    }

    void aPhoneThatWentAwayIsAnError()
    {
        m_kdeConnect.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_kdeConnect.start(u"/usr/bin/python3"_s,
                           {QStringLiteral(FAKE_KDECONNECT), m_root.filePath(u"record"_s)});
        QVERIFY(m_kdeConnect.waitForReadyRead(15000));
        LinuxDesktopActions desktop;
        const ActionList actions = desktop.makeShareActions({QUrl::fromLocalFile(m_files + u"a.txt"_s)});
        const auto phone = std::find_if(actions.begin(), actions.end(), [](const ActionPtr& action) {
            return action->identifier() == u"sharingservice_kdeconnect_phone1"_s;
        });
        QVERIFY(phone != actions.end());
        m_kdeConnect.kill();
        m_kdeConnect.waitForFinished(5000);

        QList<Action::Result> results;
        (*phone)->perform(items({u"a.txt"_s}), {},
                          [&results](const Action::Result& result) { results.append(result); });
        QTRY_COMPARE(results.size(), 1);
        QVERIFY(!results.first().has_value());
        QVERIFY2(results.first().error().description().startsWith(u"Test Phone did not take the files: "_s),
                 qPrintable(results.first().error().description()));
        QVERIFY(!QFile::exists(m_root.filePath(u"record"_s)));
    }

private:
    static QStringList lines(const QString& path)
    {
        return QString::fromUtf8(Test::readFile(path)).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

    ActionItemList items(const QStringList& files) const
    {
        ActionItemList list;
        for (const QString& file : files) {
            list.append(*ActionItem::fromFile(QUrl::fromLocalFile(m_files + file)));
        }
        return list;
    }

    QTemporaryDir m_root;
    QString m_files;
    QByteArray m_path = qgetenv("PATH");
    QProcess m_kdeConnect;
};

QTEST_MAIN(TestClipboardAndShare)
#include "TestClipboardAndShare.moc"
