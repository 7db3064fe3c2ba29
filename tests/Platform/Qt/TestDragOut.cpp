#include "Domains/DragSession/MessageWindowCenter.h"
#include "Domains/DragSession/PersistentDragSessionStore.h"
#include "Domains/SessionController/SessionController.h"
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggableText.h"
#include "Models/Draggable/DraggableWeblocation.h"
#include "Platform/Linux/InotifyFileWatcher.h"
#include "Platform/Qt/DragSessionStackView.h"
#include "Platform/Qt/QtClipboardSource.h"
#include "Platform/Qt/QtDragSessionUserInterface.h"
#include "Platform/Qt/QtDragSessionView.h"
#include "Platform/Qt/QtDragSessionWindow.h"
#include "Platform/Qt/QtScreenEnvironment.h"
#include "Preferences/MemoryPreferenceStorage.h"
#include "Preferences/Preferences.h"
#include "support/PointerScript.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QIcon>
#include <QProcess>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;

namespace {

const QByteArray shoppingList = "Shopping list\nmilk, bread";
const QByteArray recipe = "Recipe\nflour, water, salt";

QByteArray fileUri(const DraggablePtr& item)
{
    return item->url()->toEncoded();
}

} // namespace

// Shelf items dragged out into other programs on a real X server: text targets get text, file targets
// files, and the shelf lets go of its items only when their files went.
class TestDragOut final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        Test::isolateStandardPaths();
        QCOMPARE(QGuiApplication::platformName(), QStringLiteral("xcb"));
        QIcon::setThemeName(QStringLiteral("Adwaita"));
        m_files = std::make_unique<QTemporaryDir>();
    }

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_preferences = std::make_unique<Preferences>(std::make_unique<MemoryPreferenceStorage>());
        m_store = std::make_unique<PersistentDragSessionStore>(
            m_dir->filePath(QStringLiteral(".drag_sessions")), nullptr, Clock::system());
        m_messages = std::make_unique<MessageWindowCenter>(Clock::system());
        m_ui = std::make_unique<QtDragSessionUserInterface>(
            QtDragSessionUserInterface::Dependencies{*m_messages, *m_preferences, Clock::system()});
        m_controller = std::make_unique<SessionController>(
            SessionController::Dependencies{*m_store, *m_preferences, *m_ui, m_screens, *m_messages,
                                            m_clipboard, Clock::system(), InotifyFileWatcher::shared()});
        m_output.clear();
    }

    void cleanup()
    {
        QList<std::weak_ptr<DragSessionCoordinator>> closing;
        for (const auto& shelf : m_controller->coordinators()) {
            closing.append(shelf);
            shelf->stop(false);
        }
        QTRY_VERIFY(
            std::all_of(closing.cbegin(), closing.cend(), [](const auto& shelf) { return shelf.expired(); }));
        if (m_target.state() != QProcess::NotRunning) {
            m_target.kill();
            m_target.waitForFinished();
        }
        m_controller.reset();
        m_ui.reset();
        m_store.reset();
    }

    void textsGoOutAsText_data()
    {
        QTest::addColumn<QStringList>("items");
        QTest::addColumn<QString>("action");
        QTest::addColumn<bool>("keeps");
        const QStringList text{QStringLiteral("text")};
        QTest::newRow("a text, copied") << text << QStringLiteral("copy") << true;
        // Browsers answer "move" for text dropped in a field; nothing left the shelf all the same.
        QTest::newRow("a text, moved") << text << QStringLiteral("move") << true;
        QTest::newRow("two texts, moved") << QStringList{QStringLiteral("text"), QStringLiteral("text 2")}
                                          << QStringLiteral("move") << true;
        // Beside a file a text goes as its file: the target takes both files away.
        QTest::newRow("a text and a file, moved")
            << QStringList{QStringLiteral("text"), QStringLiteral("file")} << QStringLiteral("move") << false;
    }

    // A text field must get the text, not the path of the file that stands for it.
    void textsGoOutAsText()
    {
        QFETCH(QStringList, items);
        QFETCH(QString, action);
        QFETCH(bool, keeps);
        DraggableList draggables;
        for (const QString& kind : items) {
            draggables.append(item(kind));
        }
        auto shelf = openShelf(QPoint(800, 420));
        shelf->appendItems(draggables);
        QTRY_VERIFY(shelf->itemsController().processingItems().isEmpty());
        const QPoint to =
            startProgram(QStringLiteral(SHELF_DROP_TARGET_BINARY), {QStringLiteral("--action"), action});
        QVERIFY(!to.isNull());
        QVERIFY(Test::runXdotool(Test::PointerScript().drag(pileCentre(*shelf), to).arguments()));
        QVERIFY(waitForOutput("end"));

        if (items.contains(QLatin1String("file"))) {
            QByteArray uris;
            for (const DraggablePtr& draggable : draggables) {
                uris += fileUri(draggable) + "\r\n";
            }
            QCOMPARE(QByteArray::fromPercentEncoding(typeValue("text/uri-list")), uris);
        } else {
            QStringList texts;
            for (const DraggablePtr& draggable : draggables) {
                texts.append(QString::fromUtf8(std::dynamic_pointer_cast<DraggableText>(draggable)->data()));
            }
            QCOMPARE(QString::fromUtf8(QByteArray::fromPercentEncoding(typeValue("text/plain"))),
                     texts.join(QLatin1Char('\n')));
            QVERIFY2(!m_output.contains("type text/uri-list") && !m_output.contains("type text/x-moz-url"),
                     m_output.constData());
            // A target that fetches a text's direct save without naming a place gets a refusal, no file.
            QCOMPARE(typeValue("XdndDirectSave0"), items.size() == 1 ? QByteArray("E") : QByteArray());
        }
        // Counted once the shelf has made up its mind about the drop.
        QTRY_COMPARE(m_preferences->value(PreferenceKeys::numberOfDrops), 1);
        QTRY_COMPARE(!shelf->hasStopped(), keeps);
        if (keeps) {
            QCOMPARE(shelf->itemsController().items().size(), items.size());
        }
    }

    void moveTakesItemsAwayOnlyWithTheirFiles_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("type");
        QTest::addColumn<bool>("keeps");
        // Text fields ask for text alone and answer "move".
        QTest::newRow("text into a text field")
            << QStringLiteral("text") << QStringLiteral("UTF8_STRING") << true;
        QTest::newRow("link into a text field")
            << QStringLiteral("link") << QStringLiteral("UTF8_STRING") << true;
        QTest::newRow("file into a file manager")
            << QStringLiteral("file") << QStringLiteral("text/uri-list") << false;
    }

    void moveTakesItemsAwayOnlyWithTheirFiles()
    {
        QFETCH(QString, kind);
        QFETCH(QString, type);
        QFETCH(bool, keeps);
        const DraggablePtr draggable = item(kind);
        auto shelf = openShelf(QPoint(800, 420));
        shelf->appendItems({draggable});
        QTRY_VERIFY(shelf->itemsController().processingItems().isEmpty());
        const QPoint to = startProgram(
            QStringLiteral(GTK_DROP_TARGET_SCRIPT),
            {QStringLiteral("--action"), QStringLiteral("move"), QStringLiteral("--type"), type});
        QVERIFY(!to.isNull());
        QVERIFY(Test::runXdotool(Test::PointerScript().drag(pileCentre(*shelf), to).arguments()));
        QVERIFY(waitForOutput("end"));
        QByteArray expected =
            draggable->pasteboardItem().data(QStringLiteral("text/uri-list")).value_or(QByteArray());
        if (kind == QLatin1String("text")) {
            expected = shoppingList;
        } else if (kind == QLatin1String("file")) {
            expected += "\r\n";
        }
        QCOMPARE(QByteArray::fromPercentEncoding(typeValue(type.toUtf8())), expected);
        QTRY_COMPARE(m_preferences->value(PreferenceKeys::numberOfDrops), 1);
        QTRY_COMPARE(!shelf->hasStopped(), keeps);
        if (keeps) {
            QCOMPARE(shelf->itemsController().items().size(), 1);
        }
    }

    void textsGoToFileManagersAsFiles_data()
    {
        QTest::addColumn<bool>("taken");
        QTest::addColumn<bool>("nul");
        QTest::newRow("new file") << false << false;
        // pcmanfm ends the URI it writes with a NUL.
        QTest::newRow("new file, URI ended by a NUL") << false << true;
        // A file of the user's by that name stays as it is.
        QTest::newRow("name taken") << true << false;
        QTest::newRow("name taken, URI ended by a NUL") << true << true;
    }

    // File managers take a text item's file through X Direct Save: the file appears where they ask.
    void textsGoToFileManagersAsFiles()
    {
        QFETCH(bool, taken);
        QFETCH(bool, nul);
        QTemporaryDir folder;
        const auto text = DraggableText::make(recipe, QStringLiteral("text/plain"), false);
        const QString saved = folder.filePath(QFileInfo(text->url()->toLocalFile()).fileName());
        if (taken) {
            QVERIFY(Test::writeFile(saved, "the user's own"));
        }
        auto shelf = openShelf(QPoint(800, 420));
        shelf->appendItems({text});
        const QPoint to = startProgram(QStringLiteral(XDS_TARGET_SCRIPT),
                                       nul ? QStringList{folder.path(), QStringLiteral("nul")}
                                           : QStringList{folder.path()});
        QVERIFY(!to.isNull());
        QVERIFY(Test::runXdotool(Test::PointerScript().drag(pileCentre(*shelf), to).arguments()));
        QVERIFY(waitForOutput("end"));
        QVERIFY2(m_output.contains(taken ? " E\n" : " S\n"), m_output.constData());
        QCOMPARE(Test::readFile(saved), taken ? QByteArray("the user's own") : recipe);
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
        QCOMPARE(shelf->itemsController().items().size(), 1);
    }

private:
    DraggablePtr item(const QString& kind)
    {
        if (kind == QLatin1String("text")) {
            return DraggableText::make(shoppingList, QStringLiteral("text/plain"), false);
        }
        if (kind == QLatin1String("text 2")) {
            return DraggableText::make(recipe, QStringLiteral("text/plain"), false);
        }
        if (kind == QLatin1String("link")) {
            return DraggableWeblocation::make(QUrl(QStringLiteral("https://example.org/list?week=12")));
        }
        const QString path = m_files->filePath(QStringLiteral("dragged out.txt"));
        Test::writeFile(path, "bytes of a file");
        return DraggableFile::make(QUrl::fromLocalFile(path));
    }

    // A shelf opened by a gesture, centred on a point given in screen pixels from the top left.
    std::shared_ptr<DragSessionCoordinator> openShelf(const QPoint& centre)
    {
        const QRectF primary = QGuiApplication::primaryScreen()->geometry();
        m_controller->gestureBegan(QPointF(centre.x(), primary.height() - centre.y()));
        auto shelf = m_controller->coordinators().last();
        QWidget& widget = dynamic_cast<QtDragSessionWindow&>(shelf->window()).widget();
        [&] { QVERIFY(QTest::qWaitForWindowExposed(&widget)); }();
        // The window manager places the window when it maps it; give it that moment.
        QTest::qWait(150);
        return shelf;
    }

    static QPoint pileCentre(const DragSessionCoordinator& shelf)
    {
        DragSessionStackView& stack = dynamic_cast<QtDragSessionView&>(shelf.view()).stackView();
        return stack.mapToGlobal(stack.visibleItemFrames().first().center().toPoint());
    }

    // Starts a drop target; its centre in screen pixels once it says it is ready.
    QPoint startProgram(const QString& program, const QStringList& arguments)
    {
        m_target.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_target.start(program, arguments);
        if (!m_target.waitForStarted() || !waitForOutput("ready ")) {
            return {};
        }
        const QList<QByteArray> ready =
            m_output.mid(m_output.indexOf("ready ")).split('\n').first().split(' ');
        return ready.size() == 3 ? QPoint(ready[1].toInt(), ready[2].toInt()) : QPoint();
    }

    bool waitForOutput(const QByteArray& line)
    {
        return QTest::qWaitFor(
            [&] { return m_output.append(m_target.readAllStandardOutput()).contains(line); }, 15000);
    }

    // The value the drop target printed for a type.
    QByteArray typeValue(const QByteArray& type) const
    {
        for (const QByteArray& line : m_output.split('\n')) {
            if (line.startsWith(QByteArray("type " + type + ' '))) {
                return line.mid(type.size() + 6);
            }
        }
        return {};
    }

    std::unique_ptr<QTemporaryDir> m_files;
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<Preferences> m_preferences;
    std::unique_ptr<PersistentDragSessionStore> m_store;
    std::unique_ptr<MessageWindowCenter> m_messages;
    std::unique_ptr<QtDragSessionUserInterface> m_ui;
    std::unique_ptr<SessionController> m_controller;
    QtScreenEnvironment m_screens;
    QtClipboardSource m_clipboard;
    QProcess m_target;
    QByteArray m_output;
};

QTEST_MAIN(TestDragOut)
#include "TestDragOut.moc"
