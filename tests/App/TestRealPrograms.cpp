#include "support/PointerScript.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRect>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace std::chrono_literals;

// The real program with programs nobody on the team wrote: a web browser as a drag source and as a drop
// target. Their drag code differs from Qt's and GTK's in ways our own helpers only imitate.
class TestRealPrograms final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_browser = QStandardPaths::findExecutable(QStringLiteral("chromium")); }

    void init()
    {
        m_home = std::make_unique<QTemporaryDir>();
        QVERIFY(m_home->isValid());
        m_environment = QProcessEnvironment::systemEnvironment();
        m_environment.insert(QStringLiteral("HOME"), m_home->path());
        for (const char* name : {"CONFIG", "DATA", "CACHE"}) {
            m_environment.insert(QStringLiteral("XDG_%1_HOME").arg(QLatin1String(name)),
                                 m_home->filePath(QString::fromLatin1(name).toLower()));
        }
        // No introduction window in the way.
        QVERIFY(
            Vantrope::Test::writeFile(m_home->filePath(QStringLiteral("config/vantrope/preferences.json")),
                                      R"({"IsFirstLaunch": true})"));
        // The page reports what lands in its text field through its title, which the window manager sees.
        QVERIFY(Vantrope::Test::writeFile(m_home->filePath(QStringLiteral("page.html")), R"(<!doctype html>
<html><head><title>ready</title></head><body style="margin:0">
<a href="https://example.org/a/page" style="position:absolute;left:20px;top:20px;width:260px;height:90px;
   display:block;font-size:40px;background:#ddf">A link</a>
<textarea id="field" style="position:absolute;left:20px;top:200px;width:400px;height:200px"></textarea>
<script>
const field = document.getElementById('field');
field.addEventListener('input', () => { document.title = 'field:' + field.value; });
</script></body></html>)"));
    }

    void cleanup()
    {
        for (QProcess* process : {m_browserProcess.get(), m_fileManager.get(), m_agent.get()}) {
            if (process && process->state() != QProcess::NotRunning) {
                process->kill();
                process->waitForFinished();
            }
        }
        m_browserProcess.reset();
        m_fileManager.reset();
        m_agent.reset();
        m_browserWindow.clear();
        m_page = {};
    }

    // The browser only sends its drag to windows that were mapped when the drag began; a shelf made by
    // the shake itself must still get the drop.
    void aLinkShakenOutOfTheBrowserLandsOnItsShelf()
    {
        skipWithoutBrowser();
        startAgent();
        startBrowser();
        const QRect page = m_page;
        QVERIFY(!page.isEmpty());

        Vantrope::Test::PointerScript gesture;
        gesture.startDrag(page.topLeft() + QPoint(120, 60)).pause(1s).shake();
        Vantrope::Test::PointerScript letGo;
        letGo.release();
        auto releaseAll = qScopeGuard([&letGo] { Vantrope::Test::runXdotool(letGo.arguments()); });
        QVERIFY(Vantrope::Test::runXdotool(gesture.arguments()));
        QTRY_COMPARE_WITH_TIMEOUT(list().size(), 1, 5000);

        // The browser learns of the window under the pointer from the next motion.
        Vantrope::Test::PointerScript drop;
        drop.move(4, 4).pause(300ms).move(-4, -4).pause(500ms);
        QVERIFY(Vantrope::Test::runXdotool(drop.arguments() + letGo.arguments()));
        releaseAll.dismiss();
        QTRY_COMPARE_WITH_TIMEOUT(list().at(0).toObject().value(QStringLiteral("items")).toArray().size(), 1,
                                  5000);
        const QString item =
            list().at(0).toObject().value(QStringLiteral("items")).toArray().at(0).toString();
        QVERIFY2(item.contains(QStringLiteral("example.org")), qPrintable(item));
    }

    // A text item gives the browser's text field its text, not the path of its file; and a browser that
    // answers "move" for text does not take the item off the shelf.
    void aTextItemDraggedIntoTheBrowserIsText()
    {
        skipWithoutBrowser();
        startAgent();
        // A text item comes from a text drop, made here with our own drag source onto an open shelf.
        startBrowser();
        const QRect page = m_page;
        QVERIFY(!page.isEmpty());
        QCOMPARE(run({QStringLiteral("new")}).exitCode, 0);
        QTRY_VERIFY_WITH_TIMEOUT(!agentShelfGeometry().isEmpty(), 5000);
        const QRect shelf = agentShelfGeometry();

        QProcess source;
        source.start(QStringLiteral(SHELF_DRAG_SOURCE_BINARY),
                     {QStringLiteral("--kind"), QStringLiteral("text")});
        const auto stopSource = qScopeGuard([&source] {
            source.kill();
            source.waitForFinished();
        });
        QByteArray output;
        QTRY_VERIFY_WITH_TIMEOUT(output.append(source.readAllStandardOutput()).contains("ready "), 10000);
        const QList<QByteArray> ready = output.mid(output.indexOf("ready ")).split('\n').first().split(' ');
        QCOMPARE(ready.size(), 3);
        QVERIFY(
            Vantrope::Test::runXdotool(Vantrope::Test::PointerScript()
                                           .drag(QPoint(ready[1].toInt(), ready[2].toInt()), shelf.center())
                                           .arguments()));
        QTRY_COMPARE_WITH_TIMEOUT(list().at(0).toObject().value(QStringLiteral("items")).toArray().size(), 1,
                                  5000);

        const QPoint field = page.topLeft() + QPoint(200, 300);
        QVERIFY(Vantrope::Test::runXdotool(
            Vantrope::Test::PointerScript().drag(shelf.center() + QPoint(0, 10), field).arguments()));
        // The source's text begins with this line; a file item would have given a file:// address.
        QTRY_VERIFY_WITH_TIMEOUT(browserTitle().startsWith(QStringLiteral("field:Shopping list")), 5000);
        QVERIFY2(!browserTitle().contains(QStringLiteral("file:")), qPrintable(browserTitle()));
        // Past the moment a drop that moved the items would close the shelf, it still holds its item.
        QTest::qWait(500);
        QCOMPARE(list().size(), 1);
        QCOMPARE(list().at(0).toObject().value(QStringLiteral("items")).toArray().size(), 1);
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
        QVERIFY(
            Vantrope::Test::writeFile(m_home->filePath(QStringLiteral("config/vantrope/preferences.json")),
                                      R"({"IsFirstLaunch": true, "CopiesContentOnDrag": true})"));
        startAgent();
        const QString report = m_home->filePath(QStringLiteral("report.txt"));
        QVERIFY(Vantrope::Test::writeFile(report, "quarterly figures"));
        QCOMPARE(run({QStringLiteral("add"), report}).exitCode, 0);
        QTRY_VERIFY_WITH_TIMEOUT(!agentShelfGeometry().isEmpty(), 5000);
        const QRect shelf = agentShelfGeometry();

        const QString inbox = m_home->filePath(QStringLiteral("inbox"));
        QVERIFY(QDir().mkpath(inbox));
        m_fileManager = std::make_unique<QProcess>();
        m_fileManager->setProcessEnvironment(m_environment);
        m_fileManager->start(fileManager, {inbox});
        QVERIFY(m_fileManager->waitForStarted());
        QString window;
        QTRY_VERIFY_WITH_TIMEOUT(
            !(window = runTool(QStringLiteral("xdotool"),
                               {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                QStringLiteral("--class"), QStringLiteral("pcmanfm")})
                           .output.split(QLatin1Char('\n'), Qt::SkipEmptyParts)
                           .value(0))
                 .isEmpty(),
            15000);
        // Away from the shelf, whatever the window manager chose.
        const QRect area = shelf.left() > 960 ? QRect(100, 100, 700, 600) : QRect(1100, 100, 700, 600);
        QCOMPARE(runTool(QStringLiteral("xdotool"),
                         {QStringLiteral("windowsize"), window, QString::number(area.width()),
                          QString::number(area.height()), QStringLiteral("windowmove"), window,
                          QString::number(area.x()), QString::number(area.y())})
                     .exitCode,
                 0);
        QTest::qWait(500);
        const QString copied = QDir(inbox).filePath(QStringLiteral("report.txt"));
        for (int round = 0; round < 2; ++round) {
            QVERIFY(Vantrope::Test::runXdotool(Vantrope::Test::PointerScript()
                                                   .drag(shelf.center() + QPoint(0, 10), area.center())
                                                   .arguments()));
            QTRY_VERIFY2_WITH_TIMEOUT(QFile::exists(copied),
                                      qPrintable(QStringLiteral("round %1").arg(round)), 10000);
            QCOMPARE(QFile(copied).size(), qint64(17));
            QVERIFY(QFile::remove(copied));
            // Another program's drag takes the drag selection away before the next drag out.
            QCOMPARE(
                QProcess::execute(QStringLiteral("/usr/bin/python3"),
                                  {QStringLiteral("-c"),
                                   QStringLiteral("from Xlib import X, display\n"
                                                  "d = display.Display()\n"
                                                  "w = d.screen().root.create_window(0, 0, 1, 1, 0, 0)\n"
                                                  "w.set_selection_owner(d.intern_atom('XdndSelection'), "
                                                  "X.CurrentTime)\n"
                                                  "d.sync()\n")}),
                0);
        }
        QVERIFY(QFile::exists(report));
        QCOMPARE(list().at(0).toObject().value(QStringLiteral("items")).toArray(), QJsonArray{report});
    }

private:
    struct Result {
        int exitCode = -1;
        QString output;
        QString error;
    };

    void skipWithoutBrowser()
    {
        if (m_browser.isEmpty()) {
            QSKIP("Chromium is not installed (scripts/deps.sh test installs it)");
        }
    }

    void startAgent()
    {
        m_agent = std::make_unique<QProcess>();
        m_agent->setProcessEnvironment(m_environment);
        m_agent->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_agent->start(QStringLiteral(VANTROPE_BINARY));
        QVERIFY(m_agent->waitForStarted());
        QTRY_COMPARE_WITH_TIMEOUT(run({QStringLiteral("list")}).exitCode, 0, 10000);
    }

    // Starts the browser on the test page and notes the page's area on the screen.
    void startBrowser()
    {
        m_browserProcess = std::make_unique<QProcess>();
        m_browserProcess->setProcessEnvironment(m_environment);
        m_browserProcess->start(
            m_browser, {QStringLiteral("--no-sandbox"), QStringLiteral("--no-first-run"),
                        QStringLiteral("--disable-gpu"), QStringLiteral("--disable-background-networking"),
                        QStringLiteral("--disable-component-update"), QStringLiteral("--disable-sync"),
                        QStringLiteral("--ozone-platform=x11"),
                        QStringLiteral("--user-data-dir=") + m_home->filePath(QStringLiteral("browser")),
                        QStringLiteral("--window-position=900,0"), QStringLiteral("--window-size=700,600"),
                        QStringLiteral("--app=") +
                            QUrl::fromLocalFile(m_home->filePath(QStringLiteral("page.html"))).toString()});
        QVERIFY(m_browserProcess->waitForStarted());
        QTRY_COMPARE_WITH_TIMEOUT(browserTitle(), QStringLiteral("ready"), 30000);
        const Result geometry =
            runTool(QStringLiteral("xdotool"),
                    {QStringLiteral("getwindowgeometry"), QStringLiteral("--shell"), m_browserWindow});
        QMap<QString, int> values;
        for (const QString& line : geometry.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            values.insert(line.section(QLatin1Char('='), 0, 0), line.section(QLatin1Char('='), 1).toInt());
        }
        m_page = QRect(values.value(QStringLiteral("X")), values.value(QStringLiteral("Y")),
                       values.value(QStringLiteral("WIDTH")), values.value(QStringLiteral("HEIGHT")));
    }

    QString browserTitle()
    {
        if (m_browserWindow.isEmpty()) {
            const Result search =
                runTool(QStringLiteral("xdotool"), {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                                    QStringLiteral("--class"), QStringLiteral("chromium")});
            m_browserWindow = search.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts).value(0);
            if (m_browserWindow.isEmpty()) {
                return {};
            }
        }
        return runTool(QStringLiteral("xdotool"), {QStringLiteral("getwindowname"), m_browserWindow})
            .output.trimmed();
    }

    QRect agentShelfGeometry()
    {
        const Result windows = runTool(QStringLiteral("xdotool"),
                                       {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                        QStringLiteral("--pid"), QString::number(m_agent->processId())});
        for (const QString& window : windows.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            const Result geometry = runTool(QStringLiteral("xdotool"), {QStringLiteral("getwindowgeometry"),
                                                                        QStringLiteral("--shell"), window});
            QMap<QString, int> values;
            for (const QString& line : geometry.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
                values.insert(line.section(QLatin1Char('='), 0, 0),
                              line.section(QLatin1Char('='), 1).toInt());
            }
            const QRect frame(values.value(QStringLiteral("X")), values.value(QStringLiteral("Y")),
                              values.value(QStringLiteral("WIDTH")), values.value(QStringLiteral("HEIGHT")));
            if (frame.size() == QSize(180, 188)) {
                return frame;
            }
        }
        return {};
    }

    Result run(const QStringList& arguments) { return runTool(QStringLiteral(VANTROPE_BINARY), arguments); }

    Result runTool(const QString& program, const QStringList& arguments)
    {
        QProcess process;
        process.setProcessEnvironment(m_environment);
        process.start(program, arguments);
        if (!process.waitForFinished(20000)) {
            process.kill();
            process.waitForFinished();
            return {};
        }
        return {process.exitCode(), QString::fromLocal8Bit(process.readAllStandardOutput()),
                QString::fromLocal8Bit(process.readAllStandardError())};
    }

    QJsonArray list()
    {
        const Result result = run({QStringLiteral("list"), QStringLiteral("--json")});
        const QJsonDocument document = QJsonDocument::fromJson(result.output.toUtf8());
        return result.exitCode == 0 && document.isArray() ? document.array()
                                                          : QJsonArray{QStringLiteral("failed")};
    }

    QString m_browser;
    QString m_browserWindow;
    QRect m_page;
    std::unique_ptr<QTemporaryDir> m_home;
    QProcessEnvironment m_environment;
    std::unique_ptr<QProcess> m_agent;
    std::unique_ptr<QProcess> m_browserProcess;
    std::unique_ptr<QProcess> m_fileManager;
};

QTEST_GUILESS_MAIN(TestRealPrograms)
#include "TestRealPrograms.moc"
