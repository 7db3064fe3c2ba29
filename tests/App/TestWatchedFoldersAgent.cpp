// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "AgentUnderTest.h"
#include "support/TestSupport.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageWriter>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Vantrope::Test;
using namespace Qt::StringLiterals;

// Watched folders in the real program on the test display, driven by its command line, with files
// written as any other program writes them and the kernel's inotify telling the program.
class TestWatchedFoldersAgent final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_agent = std::make_unique<AgentUnderTest>();
        QVERIFY(QDir().mkpath(inbox()));
    }

    void cleanup() { m_agent.reset(); }

    void newFilesInAWatchedFolderGoOnOneShelf()
    {
        QVERIFY(m_agent->start());
        const auto added = m_agent->run({u"folders"_s, u"add"_s, inbox()});
        QCOMPARE(added.exitCode, 0);
        const QStringList fields = added.text().split(u'\t');
        QCOMPARE(fields.size(), 3);
        QCOMPARE(fields[1], u"active"_s);
        QCOMPARE(fields[2], inbox());

        QVERIFY(writeFile(inbox() + u"/report.pdf"_s, "%PDF-1.4 first"));
        QTRY_COMPARE_WITH_TIMEOUT(m_agent->list().size(), 1, 10000);
        QCOMPARE(m_agent->items(), QJsonArray{QString(inbox() + u"/report.pdf"_s)});

        QVERIFY(writeFile(inbox() + u"/notes.txt"_s, "second"));
        QTRY_COMPARE_WITH_TIMEOUT(m_agent->items().size(), 2, 10000);
        QCOMPARE(m_agent->list().size(), 1);
        QVERIFY(m_agent->items().contains(QString(inbox() + u"/notes.txt"_s)));
    }

    void foldersSurviveARestartAndRefuseBadRequests()
    {
        QVERIFY(m_agent->start());
        QCOMPARE(m_agent->run({u"folders"_s, u"add"_s, inbox()}).exitCode, 0);
        const QString identifier = onlyFolder().value(u"identifier"_s).toString();
        QVERIFY(!identifier.isEmpty());

        const struct {
            QStringList arguments;
            int exitCode;
            QString error;
        } refusals[] = {
            {{u"folders"_s, u"add"_s, inbox()}, 1, u"is watched already"_s},
            {{u"folders"_s, u"add"_s, inbox() + u"/nothing"_s}, 1, u"no such folder"_s},
            {{u"folders"_s, u"pause"_s, u"NOT-AN-ID"_s}, 1, u"no watched folder has the identifier"_s},
            {{u"folders"_s, u"pause"_s}, 2, u"needs one folder identifier"_s},
            {{u"folders"_s, u"frobnicate"_s}, 2, u"unknown folders command"_s},
        };
        for (const auto& refusal : refusals) {
            const auto result = m_agent->run(refusal.arguments);
            QCOMPARE(result.exitCode, refusal.exitCode);
            QVERIFY2(result.error.contains(refusal.error), qPrintable(result.error));
        }
        QCOMPARE(m_agent->run({u"folders"_s, u"pause"_s, identifier}).exitCode, 0);

        QCOMPARE(m_agent->run({u"quit"_s}).exitCode, 0);
        QVERIFY(m_agent->process().waitForFinished(10000));
        QVERIFY(m_agent->start());
        QCOMPARE(onlyFolder().value(u"status"_s).toString(), u"paused"_s);
        QVERIFY(writeFile(inbox() + u"/while-paused.txt"_s, "x"));

        QCOMPARE(m_agent->run({u"folders"_s, u"resume"_s, identifier}).exitCode, 0);
        QCOMPARE(onlyFolder().value(u"status"_s).toString(), u"active"_s);
        QVERIFY(writeFile(inbox() + u"/resumed.txt"_s, "x"));
        QTRY_COMPARE_WITH_TIMEOUT(m_agent->list().size(), 1, 10000);
        QCOMPARE(m_agent->items(), QJsonArray{QString(inbox() + u"/resumed.txt"_s)});

        QCOMPARE(m_agent->run({u"folders"_s, u"remove"_s, identifier}).exitCode, 0);
        QCOMPARE(folders().size(), 0);
        // The folder and what it holds are the user's: removing the watch leaves them.
        QVERIFY(QFileInfo::exists(inbox() + u"/resumed.txt"_s));
    }

    void aVanishedFolderIsMissingUntilItComesBack()
    {
        QVERIFY(m_agent->start());
        QCOMPARE(m_agent->run({u"folders"_s, u"add"_s, inbox()}).exitCode, 0);
        QVERIFY(QDir(inbox()).removeRecursively());
        QTRY_COMPARE_WITH_TIMEOUT(onlyFolder().value(u"status"_s).toString(), u"missing"_s, 10000);
        // The program has seen it gone, not only the listing.
        QTRY_VERIFY_WITH_TIMEOUT(m_agent->log().contains(QByteArray(QFile::encodeName(inbox()) + " is missing")), 10000);

        QVERIFY(QDir().mkpath(inbox()));
        QTRY_COMPARE_WITH_TIMEOUT(onlyFolder().value(u"status"_s).toString(), u"active"_s, 10000);
        QVERIFY(writeFile(inbox() + u"/after.txt"_s, "x"));
        QTRY_COMPARE_WITH_TIMEOUT(m_agent->list().size(), 1, 10000);
        QCOMPARE(m_agent->items(), QJsonArray{QString(inbox() + u"/after.txt"_s)});
        QVERIFY(m_agent->process().state() == QProcess::Running);
    }

    // The screenshot shelf on: a screenshot saved where GNOME saves them lands on a shelf, an ordinary
    // picture beside it does not, and no watched folder may take the folder as well.
    void screenshotsLandOnAShelf_data()
    {
        QTest::addColumn<bool>("turnedOnWhileRunning");
        QTest::newRow("on at start") << false;
        QTest::newRow("turned on while running") << true;
    }

    void screenshotsLandOnAShelf()
    {
        QFETCH(bool, turnedOnWhileRunning);
        const QString screenshots = m_agent->path(u"Pictures/Screenshots"_s);
        QVERIFY(QDir().mkpath(screenshots));
        if (!turnedOnWhileRunning) {
            QVERIFY(writeFile(m_agent->path(u"config/vantrope/preferences.json"_s),
                              R"({"ScreenshotObservationEnabled": true})"));
        }
        QVERIFY(m_agent->start());
        if (turnedOnWhileRunning) {
            const auto on =
                m_agent->run({u"settings"_s, u"set"_s, u"ScreenshotObservationEnabled"_s, u"true"_s});
            QCOMPARE(on.exitCode, 0);
        }

        QVERIFY(writeFile(screenshots + u"/holiday.png"_s, png({})));
        QTest::qWait(4000);
        QCOMPARE(m_agent->list().size(), 0);

        const QString shot = screenshots + u"/Screenshot from 2026-11-25 16-40-12.png"_s;
        QVERIFY(writeFile(shot, png(u"gnome-screenshot"_s)));
        QTRY_COMPARE_WITH_TIMEOUT(m_agent->list().size(), 1, 10000);
        QCOMPARE(m_agent->items(), QJsonArray{shot});

        const auto added = m_agent->run({u"folders"_s, u"add"_s, screenshots});
        QCOMPARE(added.exitCode, 1);
        QVERIFY2(added.error.contains(u"screenshot"_s), qPrintable(added.error));
    }

private:
    static QByteArray png(const QString& software)
    {
        QImage image(32, 24, QImage::Format_RGB32);
        image.fill(Qt::darkMagenta);
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        QImageWriter writer(&buffer, "png");
        if (!software.isEmpty()) {
            writer.setText(u"Software"_s, software);
        }
        writer.write(image);
        return buffer.data();
    }

    QString inbox() const { return m_agent->path(u"Inbox"_s); }

    QJsonArray folders()
    {
        const auto listed = m_agent->run({u"folders"_s, u"list"_s, u"--json"_s});
        if (listed.exitCode != 0) {
            return {};
        }
        return QJsonDocument::fromJson(listed.output).array();
    }

    QJsonObject onlyFolder()
    {
        const QJsonArray all = folders();
        return all.size() == 1 ? all.first().toObject() : QJsonObject();
    }

    std::unique_ptr<AgentUnderTest> m_agent;
};

QTEST_GUILESS_MAIN(TestWatchedFoldersAgent)
#include "TestWatchedFoldersAgent.moc"
