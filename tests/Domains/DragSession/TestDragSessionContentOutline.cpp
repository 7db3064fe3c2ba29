// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/DragSession/DragSessionContentOutlineCoordinator.h"
#include "Domains/SessionController/SessionController.h"
#include "Libraries/Core/ManualClock.h"
#include "support/FakeFileWatcher.h"
#include "support/FakeShelfInterface.h"
#include "support/ShelfFixture.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>

using namespace Vantrope;
using namespace std::chrono_literals;

namespace {

// The list's panel as far as the logic needs one: it answers the name editor as the test says.
class AnsweringOutlineView final : public DragSessionContentOutlineView {
public:
    void editName(const DraggablePtr&, const QString& text,
                  std::function<void(const std::optional<QString>&)> done) override
    {
        offered = text;
        done(answer);
    }
    void showActionsMenu(const ActionsControllerMenu&) override { ++menus; }
    void closeOutline() override { ++closes; }

    std::optional<QString> answer;
    QString offered;
    int menus = 0;
    int closes = 0;
};

QStringList fileNames(const DraggableList& items)
{
    QStringList names;
    for (const DraggablePtr& item : items) {
        names.append(item->url()->fileName());
    }
    return names;
}

} // namespace

// The shelf with its item list open: what the list's removals, renames and drags do to the shelf and to
// the files, and when the list may open at all.
class TestDragSessionContentOutline final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void init()
    {
        // Outlives the shelves, which close their lists when they go.
        m_panel = std::make_unique<AnsweringOutlineView>();
        m_clock = std::make_unique<ManualClock>();
        m_shelves = std::make_unique<Test::ShelfFixture>(
            Test::ShelfFixture::Platform{*m_clock, m_fileWatcher, m_screens, m_clipboard});
    }

    void cleanup()
    {
        QVERIFY(m_shelves->closeAllShelves());
        m_shelves.reset();
        m_panel.reset();
    }

    void openingIsRefused_data()
    {
        QTest::addColumn<int>("items");
        QTest::addColumn<bool>("alreadyOpen");
        QTest::addColumn<bool>("opens");
        QTest::newRow("a shelf with items") << 3 << false << true;
        QTest::newRow("a list is open already") << 3 << true << false;
        QTest::newRow("an empty shelf") << 0 << false << false;
    }

    void openingIsRefused()
    {
        QFETCH(int, items);
        QFETCH(bool, alreadyOpen);
        QFETCH(bool, opens);
        auto shelf = openShelf(items);
        if (alreadyOpen) {
            QVERIFY(shelf->openOutline());
        }
        auto* const before = shelf->outlineCoordinator();
        QCOMPARE(shelf->openOutline(), opens);
        QCOMPARE(view(*shelf).m_outlinesPresented, (opens || alreadyOpen) ? 1 : 0);
        if (alreadyOpen) {
            // The open list is the same one, untouched.
            QCOMPARE(shelf->outlineCoordinator(), before);
        }
        QCOMPARE(shelf->isOutlineOpen(), opens || alreadyOpen);
    }

    void removal_data()
    {
        QTest::addColumn<QList<int>>("removed");
        QTest::addColumn<QStringList>("left");
        QTest::newRow("two of five") << QList<int>{1, 3}
                                     << QStringList{QStringLiteral("0.txt"), QStringLiteral("2.txt"),
                                                    QStringLiteral("4.txt")};
        QTest::newRow("the last one") << QList<int>{4}
                                      << QStringList{QStringLiteral("0.txt"), QStringLiteral("1.txt"),
                                                     QStringLiteral("2.txt"), QStringLiteral("3.txt")};
        QTest::newRow("all of them") << QList<int>{0, 1, 2, 3, 4} << QStringList{};
    }

    // Removing from the list takes items off the shelf and never touches their files; removing all
    // empties the shelf, unpins it and closes the list, and the shelf stays.
    void removal()
    {
        QFETCH(QList<int>, removed);
        QFETCH(QStringList, left);
        auto shelf = openShelf(5);
        shelf->setLabel([&] {
            DragSessionLabel label = shelf->label();
            label.pinned = true;
            return label;
        }());
        QVERIFY(shelf->openOutline());
        DragSessionContentOutlineCoordinator& outline = *shelf->outlineCoordinator();
        AnsweringOutlineView& panel = *m_panel;
        outline.setView(&panel);
        DraggableList selection;
        for (const int index : removed) {
            selection.append(outline.items()[index]);
        }
        outline.setSelection(selection);
        outline.removeSelection();

        QCOMPARE(fileNames(shelf->itemsController().items()), left);
        QCOMPARE(fileNames(view(*shelf).m_shown), left);
        for (int index = 0; index < 5; ++index) {
            QVERIFY(QFileInfo::exists(m_shelves->dir.filePath(QStringLiteral("%1.txt").arg(index))));
        }
        QVERIFY(!shelf->hasStopped());
        QCOMPARE(shelf->label().pinned, !left.isEmpty());
        // The actions are made ready once, for what is left, without waiting for the items to settle.
        if (left.isEmpty()) {
            QVERIFY(!shelf->actionsController());
            QCOMPARE(panel.closes, 1);
            m_clock->advance(1s);
            QVERIFY(!shelf->isOutlineOpen());
        } else {
            QVERIFY(shelf->actionsController());
            QCOMPARE(shelf->actionsController()->draggables().size(), left.size());
            QCOMPARE(fileNames(outline.items()), left);
            QVERIFY(outline.selection().isEmpty());
            QCOMPARE(panel.closes, 0);
        }
        // The save follows the throttle: what is kept on the disk is what the shelf holds.
        m_clock->advance(1100ms);
        QTRY_COMPARE(m_shelves->store.session(shelf->id()) == nullptr, left.isEmpty());
    }

    void itemsAddedWhileOpenAppear()
    {
        auto shelf = openShelf(2);
        QVERIFY(shelf->openOutline());
        DragSessionContentOutlineCoordinator& outline = *shelf->outlineCoordinator();
        QSignalSpy inserted(&outline, &DragSessionContentOutlineCoordinator::itemsInserted);
        const DraggablePtr added = m_shelves->fileItem(QStringLiteral("new.txt"));
        shelf->appendItems({added});
        QCOMPARE(outline.items().size(), 3);
        QCOMPARE(outline.items().last(), added);
        QCOMPARE(inserted.size(), 1);
        QCOMPARE(inserted.first().at(0).value<qsizetype>(), 2);
        // Gone from the shelf by another way (an action, the pile): gone from the list.
        shelf->clear();
        QVERIFY(outline.items().isEmpty());
    }

    void rename_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<bool>("renamed");
        QTest::newRow("a new name") << QStringLiteral("renamed.txt") << true;
        // Taken by another file: refused, and neither file is touched.
        QTest::newRow("the name of another file") << QStringLiteral("1.txt") << false;
        QTest::newRow("a name with a slash") << QStringLiteral("sub/x.txt") << false;
        QTest::newRow("given up") << QString() << false;
    }

    void rename()
    {
        QFETCH(QString, answer);
        QFETCH(bool, renamed);
        auto shelf = openShelf(3);
        QVERIFY(shelf->openOutline());
        DragSessionContentOutlineCoordinator& outline = *shelf->outlineCoordinator();
        AnsweringOutlineView& panel = *m_panel;
        if (!answer.isEmpty()) {
            panel.answer = answer;
        }
        outline.setView(&panel);
        QSignalSpy failed(&outline, &DragSessionContentOutlineCoordinator::failed);
        const QString original = m_shelves->dir.filePath(QStringLiteral("0.txt"));
        outline.setSelection({outline.items().first()});
        outline.renameSelection();

        QCOMPARE(panel.offered, QStringLiteral("0.txt"));
        QCOMPARE(QFileInfo::exists(original), !renamed);
        QCOMPARE(Test::readFile(m_shelves->dir.filePath(QStringLiteral("1.txt"))),
                 QByteArray("bytes of 1.txt"));
        const QString expected = renamed ? answer : QStringLiteral("0.txt");
        QCOMPARE(outline.items().first()->url()->fileName(), expected);
        QCOMPARE(fileNames(shelf->itemsController().items()).count(expected), 1);
        QCOMPARE(view(*shelf).m_shown.size(), 3);
        if (renamed) {
            QCOMPARE(Test::readFile(m_shelves->dir.filePath(answer)), QByteArray("bytes of 0.txt"));
            QCOMPARE(outline.selection(), DraggableList{outline.items().first()});
        }
        QCOMPARE(failed.size(), (!renamed && !answer.isEmpty()) ? 1 : 0);
    }

    void draggingOut_data()
    {
        QTest::addColumn<int>("dragged");
        QTest::addColumn<bool>("moved");
        QTest::addColumn<int>("left");
        QTest::addColumn<bool>("stops");
        QTest::newRow("two of five, copied") << 2 << false << 5 << false;
        QTest::newRow("two of five, moved") << 2 << true << 3 << false;
        // Every item moved out: the same as the pile moved out, the shelf goes.
        QTest::newRow("all five, moved") << 5 << true << 0 << true;
        QTest::newRow("all five, copied") << 5 << false << 5 << false;
    }

    void draggingOut()
    {
        QFETCH(int, dragged);
        QFETCH(bool, moved);
        QFETCH(int, left);
        QFETCH(bool, stops);
        auto shelf = openShelf(5);
        QVERIFY(shelf->openOutline());
        DragSessionContentOutlineCoordinator& outline = *shelf->outlineCoordinator();
        const DraggableList out = outline.items().mid(0, dragged);
        outline.setSelection(out);
        outline.didDragSelection(out, moved);
        QCOMPARE(m_shelves->preferences.value(PreferenceKeys::numberOfDrops), 1);
        QTRY_COMPARE(shelf->hasStopped(), stops);
        if (!stops) {
            QCOMPARE(shelf->itemsController().items().size(), left);
            QCOMPARE(view(*shelf).m_shown.size(), left);
            QCOMPARE(outline.items().size(), left);
            for (const DraggablePtr& item : out) {
                QCOMPARE(shelf->itemsController().items().contains(item), !moved);
            }
        }
    }

    // A file deleted before the list opened shows, greyed out, rather than vanishing unexplained.
    void vanishedFileIsMarked()
    {
        auto shelf = openShelf(3);
        QVERIFY(QFile::remove(m_shelves->dir.filePath(QStringLiteral("1.txt"))));
        QVERIFY(shelf->openOutline());
        const DragSessionContentOutlineCoordinator& outline = *shelf->outlineCoordinator();
        QCOMPARE(outline.items().size(), 3);
        QVERIFY(!outline.isMissing(outline.items()[0]));
        QVERIFY(outline.isMissing(outline.items()[1]));
    }

    // Typing on the shelf opens the action search, but not while the list has the keys.
    void keysPauseWhileOpen()
    {
        auto shelf = openShelf(2);
        QVERIFY(shelf->openOutline());
        shelf->didTypeToSearch(QStringLiteral("c"));
        m_clock->advance(1s);
        QVERIFY(!shelf->isSearchShown());
        shelf->outlineCoordinator()->close();
        m_clock->advance(1s);
        QVERIFY(!shelf->isOutlineOpen());
        shelf->didTypeToSearch(QStringLiteral("c"));
        QVERIFY(shelf->isSearchShown());
    }

private:
    std::shared_ptr<DragSessionCoordinator> openShelf(int count)
    {
        DraggableList items;
        for (int index = 0; index < count; ++index) {
            items.append(m_shelves->fileItem(QStringLiteral("%1.txt").arg(index)));
        }
        auto shelf = m_shelves->controller->startSession(DragSessionSource::MenuBar{});
        shelf->appendItems(items);
        m_clock->advance(600ms);
        return shelf;
    }

    Test::FakeShelfView& view(const DragSessionCoordinator& shelf) const
    {
        return dynamic_cast<Test::FakeShelfView&>(shelf.view());
    }

    std::unique_ptr<ManualClock> m_clock;
    Test::FakeFileWatcher m_fileWatcher;
    Test::FakeScreens m_screens;
    Test::FakeClipboard m_clipboard;
    std::unique_ptr<Test::ShelfFixture> m_shelves;
    std::unique_ptr<AnsweringOutlineView> m_panel;
};

QTEST_MAIN(TestDragSessionContentOutline)
#include "TestDragSessionContentOutline.moc"
