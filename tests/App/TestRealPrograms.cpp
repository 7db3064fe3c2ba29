// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "AgentUnderTest.h"
#include "support/PointerScript.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QJsonObject>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTest>

using namespace std::chrono_literals;
using namespace Vantrope::Test;

// The real program with programs nobody on the team wrote: a web browser as a drag source and as a drop
// target. Their drag code differs from Qt's and GTK's in ways our own helpers only imitate.
class TestRealPrograms final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_browser = QStandardPaths::findExecutable(QStringLiteral("chromium")); }

    void init()
    {
        m_agent = std::make_unique<AgentUnderTest>();
        // No introduction window in the way.
        QVERIFY(writeFile(m_agent->path(QStringLiteral("config/vantrope/preferences.json")),
                          R"({"IsFirstLaunch": true})"));
        // The page reports what lands in its text field through its title, which the window manager sees.
        QVERIFY(writeFile(m_agent->path(QStringLiteral("page.html")), R"(<!doctype html>
<html><head><title>ready</title></head><body style="margin:0">
<a href="https://example.org/a/page" style="position:absolute;left:20px;top:20px;width:260px;height:90px;
   display:block;font-size:40px;background:#ddf">A link</a>
<textarea id="field" style="position:absolute;left:20px;top:200px;width:400px;height:200px"></textarea>
<img src="photo.jpg" style="position:absolute;left:20px;top:440px;width:160px;height:120px">
<script>
const field = document.getElementById('field');
field.addEventListener('input', () => { document.title = 'field:' + field.value; });
// Firefox tells where the page lies on the screen; the picture's place follows from it.
if ('mozInnerScreenY' in window) {
  setInterval(() => { document.title = 'ready ' + Math.round(mozInnerScreenX) + ' ' + Math.round(mozInnerScreenY); }, 200);
}
</script></body></html>)"));
    }

    void cleanup()
    {
        for (QProcess* process : {&m_browserProcess, &m_firefox, &m_fileManager}) {
            if (process->state() != QProcess::NotRunning) {
                process->kill();
                process->waitForFinished();
            }
        }
        m_agent.reset();
        m_browserWindow.clear();
        m_page = {};
    }

    // The browser only sends its drag to windows that were mapped when the drag began; a shelf made by
    // the shake itself must still get the drop.
    void aLinkShakenOutOfTheBrowserLandsOnItsShelf()
    {
        skipWithoutBrowser();
        QVERIFY(m_agent->start());
        startBrowser();
        QVERIFY(!m_page.isEmpty());

        PointerScript gesture;
        gesture.startDrag(m_page.topLeft() + QPoint(120, 60)).pause(1s).shake();
        PointerScript letGo;
        letGo.release();
        auto releaseAll = qScopeGuard([&letGo] { runXdotool(letGo.arguments()); });
        QVERIFY(runXdotool(gesture.arguments()));
        QTRY_COMPARE_WITH_TIMEOUT(m_agent->list().size(), 1, 5000);

        // The browser learns of the window under the pointer from the next motion.
        PointerScript drop;
        drop.move(4, 4).pause(300ms).move(-4, -4).pause(500ms);
        QVERIFY(runXdotool(drop.arguments() + letGo.arguments()));
        releaseAll.dismiss();
        QTRY_COMPARE_WITH_TIMEOUT(m_agent->items().size(), 1, 5000);
        const QString item = m_agent->items().at(0).toString();
        QVERIFY2(item.contains(QStringLiteral("example.org")), qPrintable(item));
    }

    // A text item gives the browser's text field its text, not the path of its file; and a browser that
    // answers "move" for text does not take the item off the shelf.
    void aTextItemDraggedIntoTheBrowserIsText()
    {
        skipWithoutBrowser();
        QVERIFY(m_agent->start());
        startBrowser();
        QVERIFY(!m_page.isEmpty());
        // A text item comes from a text drop, made here with our own drag source onto an open shelf.
        QCOMPARE(m_agent->run({QStringLiteral("new")}).exitCode, 0);
        QTRY_VERIFY_WITH_TIMEOUT(!m_agent->shelfGeometry().isEmpty(), 5000);
        const QRect shelf = m_agent->shelfGeometry();
        HelperProgram source;
        const QPoint from = source.start(QStringLiteral(SHELF_DRAG_SOURCE_BINARY),
                                         {QStringLiteral("--kind"), QStringLiteral("text")});
        QVERIFY(!from.isNull());
        QVERIFY(runXdotool(PointerScript().drag(from, shelf.center()).arguments()));
        QTRY_COMPARE_WITH_TIMEOUT(m_agent->items().size(), 1, 5000);

        const QPoint field = m_page.topLeft() + QPoint(200, 300);
        QVERIFY(runXdotool(PointerScript().drag(shelf.center() + QPoint(0, 10), field).arguments()));
        // The source's text begins with this line; a file item would have given a file:// address.
        QTRY_VERIFY_WITH_TIMEOUT(browserTitle().startsWith(QStringLiteral("field:Shopping list")), 5000);
        QVERIFY2(!browserTitle().contains(QStringLiteral("file:")), qPrintable(browserTitle()));
        // Past the moment a drop that moved the items would close the shelf, it still holds its item.
        QTest::qWait(500);
        QCOMPARE(m_agent->list().size(), 1);
        QCOMPARE(m_agent->items().size(), 1);
    }

    // Firefox offers a picture re-encoded in several formats beside its name and address: the shelf
    // keeps the format and the name the page had.
    void aPictureFromFirefoxKeepsItsNameAndFormat()
    {
        const QString firefox = QStandardPaths::findExecutable(QStringLiteral("firefox-esr"));
        if (firefox.isEmpty()) {
            QSKIP("Firefox ESR is not installed (scripts/deps.sh test installs it)");
        }
        QImage photo(64, 48, QImage::Format_RGB32);
        photo.fill(QColor(40, 120, 200));
        QVERIFY(photo.save(m_agent->path(QStringLiteral("photo.jpg")), "JPEG"));
        QVERIFY(m_agent->start());
        QCOMPARE(m_agent->run({QStringLiteral("new")}).exitCode, 0);
        QTRY_VERIFY_WITH_TIMEOUT(!m_agent->shelfGeometry().isEmpty(), 5000);
        const QRect shelf = m_agent->shelfGeometry();

        const QString profile = m_agent->path(QStringLiteral("firefox"));
        QVERIFY(QDir().mkpath(profile));
        m_firefox.setProcessEnvironment(m_agent->environment());
        m_firefox.start(firefox,
                        {QStringLiteral("--no-remote"), QStringLiteral("--new-instance"),
                         QStringLiteral("--profile"), profile,
                         QUrl::fromLocalFile(m_agent->path(QStringLiteral("page.html"))).toString()});
        QVERIFY(m_firefox.waitForStarted());
        // The page's origin on the screen, as the page itself tells it in its title.
        QPoint page;
        QTRY_VERIFY_WITH_TIMEOUT(
            [&] {
                const QString window = titledWindow(QStringLiteral("firefox"), QStringLiteral("ready "));
                if (window.isEmpty()) {
                    return false;
                }
                const QStringList words =
                    QString::fromUtf8(xdotool({QStringLiteral("getwindowname"), window}).output)
                        .trimmed()
                        .split(QLatin1Char(' '));
                page = QPoint(words.value(1).toInt(), words.value(2).toInt());
                return words.value(0) == QStringLiteral("ready") && !page.isNull();
            }(),
            60000);
        const QPoint picture = page + QPoint(100, 500);
        QVERIFY(!shelf.contains(picture));
        // Firefox starts its drag only after a few moves of the pressed pointer, and learns of the window
        // under the pointer from the motion after a jump.
        PointerScript drag;
        drag.moveTo(picture).pause(300ms).press().pause(200ms);
        drag.move(10, 0).pause(100ms).move(10, 0).pause(300ms);
        drag.moveTo(shelf.center()).pause(300ms).move(3, 3).pause(300ms).move(-3, -3).pause(500ms).release();
        QVERIFY(runXdotool(drag.arguments()));
        QTRY_COMPARE_WITH_TIMEOUT(m_agent->items().size(), 1, 10000);
        const QString item = m_agent->items().at(0).toString();
        QCOMPARE(QFileInfo(item).fileName(), QStringLiteral("photo.jpg"));
        QFile file(item);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.read(3), QByteArray("\xFF\xD8\xFF"));
    }

    // A file manager that gives X times in Unix seconds must not spoil later drags out of a shelf, even
    // once another program has dragged something in between.
    void fileItemsGoIntoTheFileManagerTimeAfterTime()
    {
        const QString fileManager = QStandardPaths::findExecutable(QStringLiteral("pcmanfm"));
        if (fileManager.isEmpty()) {
            QSKIP("pcmanfm is not installed (scripts/deps.sh test installs it)");
        }
        // A file manager moves files within one file system unless told to copy: offer copies only, so
        // the shelf keeps its item for the second round.
        QVERIFY(writeFile(m_agent->path(QStringLiteral("config/vantrope/preferences.json")),
                          R"({"IsFirstLaunch": true, "CopiesContentOnDrag": true})"));
        QVERIFY(m_agent->start());
        const QString report = m_agent->path(QStringLiteral("report.txt"));
        QVERIFY(writeFile(report, "quarterly figures"));
        QCOMPARE(m_agent->run({QStringLiteral("add"), report}).exitCode, 0);
        QTRY_VERIFY_WITH_TIMEOUT(!m_agent->shelfGeometry().isEmpty(), 5000);
        const QRect shelf = m_agent->shelfGeometry();

        const QString inbox = m_agent->path(QStringLiteral("inbox"));
        QVERIFY(QDir().mkpath(inbox));
        m_fileManager.setProcessEnvironment(m_agent->environment());
        m_fileManager.start(fileManager, {inbox});
        QVERIFY(m_fileManager.waitForStarted());
        QString window;
        QTRY_VERIFY_WITH_TIMEOUT(!(window = findWindow(QStringLiteral("pcmanfm"))).isEmpty(), 15000);
        // Away from the shelf, whatever the window manager chose.
        const QRect area = shelf.left() > 960 ? QRect(100, 100, 700, 600) : QRect(1100, 100, 700, 600);
        QCOMPARE(xdotool({QStringLiteral("windowsize"), window, QString::number(area.width()),
                          QString::number(area.height()), QStringLiteral("windowmove"), window,
                          QString::number(area.x()), QString::number(area.y())})
                     .exitCode,
                 0);
        QTest::qWait(500);
        const QString copied = QDir(inbox).filePath(QStringLiteral("report.txt"));
        for (int round = 0; round < 2; ++round) {
            QVERIFY(
                runXdotool(PointerScript().drag(shelf.center() + QPoint(0, 10), area.center()).arguments()));
            QTRY_VERIFY2_WITH_TIMEOUT(QFile::exists(copied),
                                      qPrintable(QStringLiteral("round %1").arg(round)), 10000);
            // The file manager creates the file first and fills it as it copies.
            QTRY_COMPARE_WITH_TIMEOUT(QFile(copied).size(), qint64(17), 10000);
            QVERIFY(QFile::remove(copied));
            // Another program's drag takes the drag selection away before the next drag out.
            QVERIFY(takeDragSelection());
        }
        QVERIFY(QFile::exists(report));
        QCOMPARE(m_agent->items(), QJsonArray{report});
    }

private:
    void skipWithoutBrowser()
    {
        if (m_browser.isEmpty()) {
            QSKIP("Chromium is not installed (scripts/deps.sh test installs it)");
        }
    }

    AgentUnderTest::Result xdotool(const QStringList& arguments)
    {
        return m_agent->runTool(QStringLiteral("xdotool"), arguments);
    }

    // The first visible window of the class whose title starts with `title`.
    QString titledWindow(const QString& windowClass, const QString& title)
    {
        const QList<QByteArray> windows = xdotool({QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                                   QStringLiteral("--class"), windowClass})
                                              .output.split('\n');
        for (const QByteArray& window : windows) {
            if (!window.isEmpty() &&
                QString::fromUtf8(
                    xdotool({QStringLiteral("getwindowname"), QString::fromLatin1(window)}).output)
                    .startsWith(title)) {
                return QString::fromLatin1(window);
            }
        }
        return {};
    }

    QString findWindow(const QString& windowClass)
    {
        return QString::fromLatin1(xdotool({QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                            QStringLiteral("--class"), windowClass})
                                       .output.split('\n')
                                       .value(0));
    }

    // Starts the browser on the test page and notes the page's area on the screen.
    void startBrowser()
    {
        m_browserProcess.setProcessEnvironment(m_agent->environment());
        m_browserProcess.start(
            m_browser, {QStringLiteral("--no-sandbox"), QStringLiteral("--no-first-run"),
                        QStringLiteral("--disable-gpu"), QStringLiteral("--disable-background-networking"),
                        QStringLiteral("--disable-component-update"), QStringLiteral("--disable-sync"),
                        QStringLiteral("--ozone-platform=x11"),
                        QStringLiteral("--user-data-dir=") + m_agent->path(QStringLiteral("browser")),
                        QStringLiteral("--window-position=900,0"), QStringLiteral("--window-size=700,600"),
                        QStringLiteral("--app=") +
                            QUrl::fromLocalFile(m_agent->path(QStringLiteral("page.html"))).toString()});
        QVERIFY(m_browserProcess.waitForStarted());
        QTRY_COMPARE_WITH_TIMEOUT(browserTitle(), QStringLiteral("ready"), 30000);
        m_page = m_agent->windowGeometry(m_browserWindow);
    }

    QString browserTitle()
    {
        if (m_browserWindow.isEmpty()) {
            m_browserWindow = findWindow(QStringLiteral("chromium"));
            if (m_browserWindow.isEmpty()) {
                return {};
            }
        }
        return QString::fromUtf8(xdotool({QStringLiteral("getwindowname"), m_browserWindow}).output)
            .trimmed();
    }

    QString m_browser;
    QString m_browserWindow;
    QRect m_page;
    std::unique_ptr<AgentUnderTest> m_agent;
    QProcess m_browserProcess;
    QProcess m_firefox;
    QProcess m_fileManager;
};

QTEST_GUILESS_MAIN(TestRealPrograms)
#include "TestRealPrograms.moc"
