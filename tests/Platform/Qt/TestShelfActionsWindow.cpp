// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Platform/Linux/InotifyFileWatcher.h"
#include "Platform/Qt/DragSessionInlineEditor.h"
#include "Platform/Qt/DragSessionSearchView.h"
#include "Platform/Qt/QtClipboardSource.h"
#include "Platform/Qt/QtScreenEnvironment.h"
#include "ShelfWindowTestSupport.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QTest>

using namespace Vantrope;
using namespace Vantrope::Test;

// The action menu, type-to-search and the inline editor of a real shelf window on the test display,
// driven by real X input.
class TestShelfActionsWindow final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        isolateStandardPaths();
        QCOMPARE(QGuiApplication::platformName(), QStringLiteral("xcb"));
    }

    void init()
    {
        m_shelves = std::make_unique<ShelfFixture>(ShelfFixture::Platform{
            Clock::system(), InotifyFileWatcher::shared(), m_screens, m_clipboard, makeQtShelves});
    }

    void cleanup()
    {
        QVERIFY(m_shelves->closeAllShelves());
        m_shelves.reset();
    }

    void rightClickOpensTheMenuAndARowRuns()
    {
        auto shelf = shelfWith({QStringLiteral("a.txt"), QStringLiteral("b.txt")});
        const QPoint centre = shelfCentre(*shelf);
        QVERIFY(runXdotool({QStringLiteral("mousemove"), QString::number(centre.x()),
                            QString::number(centre.y()), QStringLiteral("click"), QStringLiteral("3")}));
        QTRY_VERIFY(shelfView(*shelf).actionsMenu() && shelfView(*shelf).actionsMenu()->isVisible());
        QMenu* menu = shelfView(*shelf).actionsMenu();
        QAction* clear = nullptr;
        QStringList titles;
        for (QAction* action : menu->actions()) {
            titles.append(action->text());
            if (action->text() == QStringLiteral("Clear Shelf")) {
                clear = action;
            }
        }
        QVERIFY2(clear, qPrintable(titles.join(u'|')));
        const QPoint row = menu->mapToGlobal(menu->actionGeometry(clear).center());
        QVERIFY(runXdotool({QStringLiteral("mousemove"), QString::number(row.x()), QString::number(row.y()),
                            QStringLiteral("click"), QStringLiteral("1")}));
        QTRY_VERIFY(shelf->itemsController().items().isEmpty());
        QTRY_VERIFY(!shelfView(*shelf).actionsMenu());
    }

    void typingSearchesAndEnterRuns()
    {
        auto shelf = shelfWith({QStringLiteral("a.txt"), QStringLiteral("b.txt")});
        QWidget& window = shelfWindow(*shelf).widget();
        // A shelf that came by a gesture leaves the keyboard where it was; the user gives it the focus.
        window.activateWindow();
        QTRY_VERIFY(window.isActiveWindow());
        QVERIFY(runXdotool({QStringLiteral("type"), QStringLiteral("clea")}));
        QTRY_VERIFY(shelfView(*shelf).searchView());
        DragSessionSearchView* search = shelfView(*shelf).searchView();
        QTRY_COMPARE(search->field().text(), QStringLiteral("clea"));
        QCOMPARE(search->shownIdentifiers().value(0), QStringLiteral("clear_shelf"));
        QVERIFY(runXdotool({QStringLiteral("key"), QStringLiteral("Return")}));
        QTRY_VERIFY(shelf->itemsController().items().isEmpty());
        QTRY_VERIFY(!shelfView(*shelf).searchView());
    }

    void renameTypedOnTheShelf()
    {
        auto shelf = shelfWith({QStringLiteral("original.txt")});
        bool done = false;
        shelf->runAction(QStringLiteral("drag_session_stack_rename"),
                         [&done](const Action::Result&) { done = true; });
        QTRY_VERIFY(shelfView(*shelf).inlineEditor());
        QTRY_VERIFY(shelfView(*shelf).inlineEditor()->hasFocus());
        QVERIFY(runXdotool({QStringLiteral("key"), QStringLiteral("ctrl+a"), QStringLiteral("type"),
                            QStringLiteral("renamed.txt")}));
        QVERIFY(runXdotool({QStringLiteral("key"), QStringLiteral("Return")}));
        QTRY_VERIFY(done);
        QVERIFY(!QFile::exists(m_shelves->dir.filePath(QStringLiteral("original.txt"))));
        QCOMPARE(readFile(m_shelves->dir.filePath(QStringLiteral("renamed.txt"))),
                 QByteArray("bytes of original.txt"));
        QCOMPARE(shelf->itemsController().items().first()->url()->fileName(), QStringLiteral("renamed.txt"));
    }

private:
    std::shared_ptr<DragSessionCoordinator> shelfWith(const QStringList& names)
    {
        auto shelf = openShelf(*m_shelves->controller, QPoint(500, 400));
        DraggableList items;
        for (const QString& name : names) {
            items.append(m_shelves->fileItem(name));
        }
        shelf->appendItems(items);
        // The menu is made ahead once the items have settled.
        if (!QTest::qWaitFor([&shelf] { return shelf->hasPreparedMenu(); })) {
            QTest::qFail("The action menu was never prepared", __FILE__, __LINE__);
        }
        return shelf;
    }

    QtScreenEnvironment m_screens;
    QtClipboardSource m_clipboard;
    std::unique_ptr<ShelfFixture> m_shelves;
};

QTEST_MAIN(TestShelfActionsWindow)
#include "TestShelfActionsWindow.moc"
