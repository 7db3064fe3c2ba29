// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/UserScreenshot/UserScreenshotObserver.h"
#include "Libraries/Core/ManualClock.h"
#include "support/FakeDirectoryWatcher.h"
#include "support/TestSupport.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QImageWriter>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

using Status = UserScreenshotLocator::MatchStatus;

const QString gnomeName = u"Screenshot from 2026-11-25 16-40-12.png"_s;

// A real PNG as a screenshot tool writes it, with its "Software" text when one is given.
QByteArray png(const QString& software = {})
{
    QImage image(64, 48, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "png");
    if (!software.isEmpty()) {
        writer.setText(u"Software"_s, software);
    }
    writer.write(image);
    return buffer.data();
}

struct Fixture {
    QTemporaryDir root;
    QString folder = root.path() + u"/Screenshots"_s;
    ManualClock clock{QDateTime::currentDateTimeUtc()};
    Test::FakeDirectoryWatcher watcher;
    BookmarkStore bookmarks{u"user-screenshot-test"_s, 1};
    UserScreenshotObserver observer{bookmarks, watcher, clock, u"en"_s};
    QList<QUrl> handed;

    Fixture()
    {
        QDir().mkpath(folder);
        (void)bookmarks.clear();
        observer.changeDirectory(QUrl::fromLocalFile(folder));
        observer.setChangeHandler([this](const QUrl& url) { handed.append(url); });
    }
    QString path(const QString& name) const { return folder + u'/' + name; }
    bool write(const QString& name, const QByteArray& data) const
    {
        return Test::writeFile(path(name), data);
    }
    // The kernel's signal, then the throttle, the scan and the retries with the clock moving as they wait.
    void signalAndRunOut(std::chrono::milliseconds time = 3500ms)
    {
        watcher.fireAll();
        for (auto passed = 0ms; passed <= time; passed += 50ms) {
            QTest::qWait(10);
            clock.advance(50ms);
        }
        QTest::qWait(50);
    }
};

} // namespace

class TestUserScreenshotObserver final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void tellsScreenshotsFromOtherPictures_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("secondsOld");
        QTest::addColumn<QString>("language");
        QTest::addColumn<int>("expected");
        const QByteArray gnome = png(u"gnome-screenshot"_s);
        const QByteArray plain = png();
        QTest::newRow("GNOME name and Software text")
            << gnomeName << gnome << 0 << u"en"_s << int(Status::match);
        QTest::newRow("GNOME 47 name, no text")
            << u"Screenshot From 2026-11-25 16-40-12.png"_s << plain << 0 << u"en"_s << int(Status::match);
        QTest::newRow("Spectacle name")
            << u"Screenshot_20261125_164012.png"_s << plain << 0 << u"en"_s << int(Status::match);
        QTest::newRow("Flameshot name")
            << u"2026-11-25_16-40.png"_s << plain << 0 << u"en"_s << int(Status::match);
        QTest::newRow("any name with the Software text")
            << u"capture.png"_s << gnome << 0 << u"en"_s << int(Status::match);
        QTest::newRow("an ordinary picture")
            << u"holiday.png"_s << plain << 0 << u"en"_s << int(Status::discard);
        QTest::newRow("another program's Software text")
            << u"drawing.png"_s << png(u"GIMP 2.10"_s) << 0 << u"en"_s << int(Status::discard);
        QTest::newRow("only the first word: maybe, later")
            << u"Screenshot of my desk.png"_s << plain << 0 << u"en"_s << int(Status::possible);
        QTest::newRow("a German name and the text")
            << u"Bildschirmfoto vom 2026-11-25 16-40-12.png"_s << gnome << 0 << u"de"_s << int(Status::match);
        QTest::newRow("a German name alone") << u"Bildschirmfoto vom 2026-11-25 16-40-12.png"_s << plain << 0
                                             << u"de"_s << int(Status::possible);
        QTest::newRow("half written")
            << gnomeName << gnome.left(gnome.size() / 2) << 0 << u"en"_s << int(Status::possible);
        QTest::newRow("hidden") << u"."_s + gnomeName << gnome << 0 << u"en"_s << int(Status::discard);
        QTest::newRow("another format")
            << u"Screenshot from 2026-11-25 16-40-12.gif"_s << gnome << 0 << u"en"_s << int(Status::discard);
        QTest::newRow("too old to be new") << gnomeName << gnome << 30 << u"en"_s << int(Status::discard);
    }

    void tellsScreenshotsFromOtherPictures()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, content);
        QFETCH(int, secondsOld);
        QFETCH(QString, language);
        QFETCH(int, expected);
        QTemporaryDir folder;
        const QString path = folder.filePath(name);
        QVERIFY(Test::writeFile(path, content));
        ManualClock clock{QDateTime::currentDateTimeUtc().addSecs(secondsOld)};
        UserScreenshotLocator locator(clock, language);
        QCOMPARE(int(locator.matchStatus(QUrl::fromLocalFile(path), false)), expected);
        if (secondsOld > 0) {
            // A second look skips the age: the first look already found the file new.
            QCOMPARE(locator.matchStatus(QUrl::fromLocalFile(path), true), Status::match);
        }
    }

    void aScreenshotIsHandedOnOnceAndAnOrdinaryPictureNever()
    {
        Fixture f;
        QVERIFY(f.observer.start());
        QVERIFY(f.write(u"holiday.png"_s, png()));
        f.signalAndRunOut();
        QVERIFY(f.handed.isEmpty());

        QVERIFY(f.write(gnomeName, png(u"gnome-screenshot"_s)));
        f.signalAndRunOut();
        QCOMPARE(f.handed, QList<QUrl>{QUrl::fromLocalFile(f.path(gnomeName))});
        // A later signal in the same folder does not bring it again.
        f.signalAndRunOut();
        QCOMPARE(f.handed.size(), 1);

        f.observer.stop();
        QVERIFY(f.write(u"Screenshot from 2026-11-25 16-40-13.png"_s, png(u"gnome-screenshot"_s)));
        f.signalAndRunOut();
        QCOMPARE(f.handed.size(), 1);
    }

    void aHalfWrittenScreenshotWaits_data()
    {
        QTest::addColumn<bool>("finished");
        QTest::newRow("finished within the retries") << true;
        QTest::newRow("never finished") << false;
    }

    void aHalfWrittenScreenshotWaits()
    {
        QFETCH(bool, finished);
        Fixture f;
        QVERIFY(f.observer.start());
        const QByteArray whole = png(u"gnome-screenshot"_s);
        QVERIFY(f.write(gnomeName, whole.left(whole.size() / 2)));
        f.signalAndRunOut(800ms);
        QVERIFY(f.handed.isEmpty());
        if (finished) {
            QVERIFY(f.write(gnomeName, whole));
        }
        for (int step = 0; step < 60; ++step) {
            QTest::qWait(10);
            f.clock.advance(50ms);
        }
        QTest::qWait(50);
        QCOMPARE(f.handed.size(), finished ? 1 : 0);
    }

    void refusesToStartWithoutAFolder_data()
    {
        QTest::addColumn<bool>("folderChosen");
        QTest::addColumn<int>("error");
        QTest::newRow("none chosen") << false
                                     << int(UserScreenshotObserver::ValidationError::missingDirectory);
        QTest::newRow("chosen, then deleted")
            << true << int(UserScreenshotObserver::ValidationError::nonExistingDirectory);
    }

    void refusesToStartWithoutAFolder()
    {
        QFETCH(bool, folderChosen);
        QFETCH(int, error);
        Fixture f;
        if (folderChosen) {
            QVERIFY(QDir(f.folder).removeRecursively());
        } else {
            QVERIFY(f.bookmarks.clear());
        }
        const auto started = f.observer.start();
        QVERIFY(!started);
        QCOMPARE(int(std::get<UserScreenshotObserver::ValidationError>(started.error())), error);
        QVERIFY(std::holds_alternative<UserScreenshotObserver::Failed>(f.observer.status()));
    }
};

QTEST_GUILESS_MAIN(TestUserScreenshotObserver)
#include "TestUserScreenshotObserver.moc"
