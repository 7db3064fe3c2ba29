// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggableText.h"
#include "Models/Draggable/DraggableWeblocation.h"
#include "Platform/Linux/InotifyFileWatcher.h"
#include "Platform/Qt/QtClipboardSource.h"
#include "Platform/Qt/QtScreenEnvironment.h"
#include "ShelfWindowTestSupport.h"
#include "support/PointerScript.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QDir>
#include <QIcon>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using namespace Vantrope::Test;

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
        isolateStandardPaths();
        QCOMPARE(QGuiApplication::platformName(), QStringLiteral("xcb"));
        QIcon::setThemeName(QStringLiteral("Adwaita"));
    }

    void init()
    {
        m_shelves = std::make_unique<ShelfFixture>(ShelfFixture::Platform{
            Clock::system(), InotifyFileWatcher::shared(), m_screens, m_clipboard, makeQtShelves});
    }

    void cleanup()
    {
        m_target.stop();
        QVERIFY(m_shelves->closeAllShelves());
        m_shelves.reset();
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
        auto shelf = openShelf(*m_shelves->controller, QPoint(800, 420));
        shelf->appendItems(draggables);
        QTRY_VERIFY(shelf->itemsController().processingItems().isEmpty());
        const QPoint to =
            m_target.start(QStringLiteral(SHELF_DROP_TARGET_BINARY), {QStringLiteral("--action"), action});
        QVERIFY(!to.isNull());
        QVERIFY(runXdotool(PointerScript().drag(pileCentre(*shelf), to).arguments()));
        QVERIFY(m_target.waitFor("end"));

        if (items.contains(QLatin1String("file"))) {
            QByteArray uris;
            for (const DraggablePtr& draggable : draggables) {
                uris += fileUri(draggable) + "\r\n";
            }
            QCOMPARE(QByteArray::fromPercentEncoding(m_target.typeValue("text/uri-list")), uris);
        } else {
            QStringList texts;
            for (const DraggablePtr& draggable : draggables) {
                texts.append(QString::fromUtf8(std::dynamic_pointer_cast<DraggableText>(draggable)->data()));
            }
            QCOMPARE(QString::fromUtf8(QByteArray::fromPercentEncoding(m_target.typeValue("text/plain"))),
                     texts.join(QLatin1Char('\n')));
            const QByteArray output = m_target.output();
            QVERIFY2(!output.contains("type text/uri-list") && !output.contains("type text/x-moz-url"),
                     output.constData());
            // A target that fetches a text's direct save without naming a place gets a refusal, no file.
            QCOMPARE(m_target.typeValue("XdndDirectSave0"),
                     items.size() == 1 ? QByteArray("E") : QByteArray());
        }
        // Counted once the shelf has made up its mind about the drop.
        QTRY_COMPARE(m_shelves->preferences.value(PreferenceKeys::numberOfDrops), 1);
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
        auto shelf = openShelf(*m_shelves->controller, QPoint(800, 420));
        shelf->appendItems({draggable});
        QTRY_VERIFY(shelf->itemsController().processingItems().isEmpty());
        const QPoint to = m_target.start(
            QStringLiteral(GTK_DROP_TARGET_SCRIPT),
            {QStringLiteral("--action"), QStringLiteral("move"), QStringLiteral("--type"), type});
        QVERIFY(!to.isNull());
        QVERIFY(runXdotool(PointerScript().drag(pileCentre(*shelf), to).arguments()));
        QVERIFY(m_target.waitFor("end"));
        QByteArray expected =
            draggable->pasteboardItem().data(QStringLiteral("text/uri-list")).value_or(QByteArray());
        if (kind == QLatin1String("text")) {
            expected = shoppingList;
        } else if (kind == QLatin1String("file")) {
            expected += "\r\n";
        }
        QCOMPARE(QByteArray::fromPercentEncoding(m_target.typeValue(type.toUtf8())), expected);
        QTRY_COMPARE(m_shelves->preferences.value(PreferenceKeys::numberOfDrops), 1);
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
            QVERIFY(writeFile(saved, "the user's own"));
        }
        auto shelf = openShelf(*m_shelves->controller, QPoint(800, 420));
        shelf->appendItems({text});
        const QPoint to = m_target.start(QStringLiteral(XDS_TARGET_SCRIPT),
                                         nul ? QStringList{folder.path(), QStringLiteral("nul")}
                                             : QStringList{folder.path()});
        QVERIFY(!to.isNull());
        QVERIFY(runXdotool(PointerScript().drag(pileCentre(*shelf), to).arguments()));
        QVERIFY(m_target.waitFor("end"));
        QVERIFY2(m_target.output().contains(taken ? " E\n" : " S\n"), m_target.output().constData());
        QCOMPARE(readFile(saved), taken ? QByteArray("the user's own") : recipe);
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
        return m_shelves->fileItem(QStringLiteral("dragged out.txt"));
    }

    QtScreenEnvironment m_screens;
    QtClipboardSource m_clipboard;
    std::unique_ptr<ShelfFixture> m_shelves;
    HelperProgram m_target;
};

QTEST_MAIN(TestDragOut)
#include "TestDragOut.moc"
