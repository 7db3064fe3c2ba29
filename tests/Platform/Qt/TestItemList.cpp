// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/DragSession/DragSessionContentOutlineCoordinator.h"
#include "Platform/Desktop/LinuxDesktopActions.h"
#include "Platform/Desktop/PreviewWindow.h"
#include "Platform/Linux/InotifyFileWatcher.h"
#include "Platform/Qt/DragSessionButton.h"
#include "Platform/Qt/DragSessionInlineEditor.h"
#include "Platform/Qt/DragSessionOutlineListView.h"
#include "Platform/Qt/DragSessionOutlineModel.h"
#include "Platform/Qt/DragSessionOutlinePanel.h"
#include "Platform/Qt/QtClipboardSource.h"
#include "Platform/Qt/QtScreenEnvironment.h"
#include "ShelfWindowTestSupport.h"
#include "support/PointerScript.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QIcon>
#include <QImage>
#include <QMenu>
#include <QToolButton>

using namespace Vantrope;
using namespace Vantrope::Test;
using namespace std::chrono_literals;

namespace {

QStringList names(const DraggableList& items)
{
    QStringList result;
    for (const DraggablePtr& item : items) {
        result.append(item->url()->fileName());
    }
    return result;
}

QStringList fiveNames()
{
    return {QStringLiteral("a.txt"), QStringLiteral("b.txt"), QStringLiteral("c.txt"),
            QStringLiteral("d.txt"), QStringLiteral("e.txt")};
}

} // namespace

// The item list of a shelf on a real X server, driven by xdotool: opening it, choosing items with the
// mouse and keys, dragging some of them out to another program, and what it shows.
class TestItemList final : public QObject {
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
        m_shelves = std::make_unique<ShelfFixture>(
            ShelfFixture::Platform{Clock::system(), InotifyFileWatcher::shared(), m_screens, m_clipboard,
                                   makeQtShelves, true, &m_desktop});
    }

    void cleanup()
    {
        m_target.stop();
        QVERIFY(m_shelves->closeAllShelves());
        m_shelves.reset();
    }

    // The disclosure control opens the list under it; a second open is refused while it stands.
    void opensUnderTheControl()
    {
        auto shelf = shelfWith(fiveNames());
        DragSessionOutlinePanel& panel = openList(*shelf);
        const DragSessionButton& control = shelfView(*shelf).outlineButton();
        const QRect controlRect(control.mapToGlobal(QPoint(0, 0)), control.size());
        QCOMPARE(panel.geometry().top(), controlRect.bottom() + 1 + DragSessionOutlinePanel::gapBelowControl);
        QVERIFY(control.isChecked());
        QCOMPARE(panel.model().rowCount(), 5);
        QVERIFY(!shelf->openOutline());
        QCOMPARE(shelfView(*shelf).outlinePanel(), &panel);

        // Escape closes it, and the control lets go.
        QVERIFY(runXdotool({QStringLiteral("key"), QStringLiteral("Escape")}));
        QTRY_VERIFY(!shelf->isOutlineOpen());
        QTRY_VERIFY(!shelfView(*shelf).outlinePanel());
        QVERIFY(!control.isChecked());
        // The item count opens it too.
        const QPoint count = shelfView(*shelf).mapToGlobal(shelfView(*shelf).countRect().center().toPoint());
        QVERIFY(runXdotool(PointerScript().moveTo(count).press().release().arguments()));
        QTRY_VERIFY(shelfView(*shelf).outlinePanel() && shelfView(*shelf).outlinePanel()->isVisible());
    }

    // A right click on an item that is not selected selects it alone; the menu offers the shelf's item
    // actions for it, and the one chosen acts on it alone.
    void contextMenu()
    {
        auto shelf = shelfWith({QStringLiteral("a.txt"), QStringLiteral("b.txt"), QStringLiteral("c.txt")});
        DragSessionOutlinePanel& panel = openList(*shelf);
        QVERIFY(runXdotool(PointerScript().moveTo(rowCentre(panel, 0)).press().release().arguments()));
        QVERIFY(runXdotool({QStringLiteral("mousemove"), QString::number(rowCentre(panel, 2).x()),
                            QString::number(rowCentre(panel, 2).y()), QStringLiteral("click"),
                            QStringLiteral("3")}));
        QTRY_VERIFY(panel.actionsMenu() && panel.actionsMenu()->isVisible());
        QCOMPARE(names(shelf->outlineCoordinator()->selection()), QStringList{QStringLiteral("c.txt")});
        QStringList titles;
        QAction* remove = nullptr;
        for (QAction* action : panel.actionsMenu()->actions()) {
            titles.append(action->text());
            if (action->text() == QLatin1String("Remove from Shelf")) {
                remove = action;
            }
        }
        for (const char* title : {"Rename", "Remove from Shelf", "Move to New Shelf", "Copy to New Shelf"}) {
            QVERIFY2(
                std::any_of(titles.cbegin(), titles.cend(),
                            [title](const QString& row) { return row.startsWith(QLatin1String(title)); }),
                qPrintable(titles.join(QStringLiteral(", "))));
        }
        QVERIFY(remove);
        QMenu& menu = *panel.actionsMenu();
        const QPoint row = menu.mapToGlobal(menu.actionGeometry(remove).center());
        QVERIFY(runXdotool(PointerScript().moveTo(row).pause(100ms).press().release().arguments()));
        QTRY_COMPARE(names(shelf->itemsController().items()),
                     (QStringList{QStringLiteral("a.txt"), QStringLiteral("b.txt")}));
        QVERIFY(QFileInfo::exists(m_shelves->file(QStringLiteral("c.txt"))));
        QVERIFY(shelf->isOutlineOpen());

        // A click outside the list closes it.
        QVERIFY(runXdotool(PointerScript().moveTo(QPoint(1200, 900)).press().release().arguments()));
        QTRY_VERIFY(!shelf->isOutlineOpen());
        QVERIFY(!shelf->hasStopped());
    }

    // Space previews the selection in the program's own preview window: the selected items, no others.
    void spacePreviews()
    {
        auto shelf = shelfWith({QStringLiteral("a.txt"), QStringLiteral("b.txt"), QStringLiteral("c.txt")});
        DragSessionOutlinePanel& panel = openList(*shelf);
        QVERIFY(runXdotool(PointerScript()
                               .moveTo(rowCentre(panel, 1))
                               .press()
                               .release()
                               .pause(100ms)
                               .keyDown(QStringLiteral("shift"))
                               .moveTo(rowCentre(panel, 2))
                               .press()
                               .release()
                               .keyUp(QStringLiteral("shift"))
                               .pause(100ms)
                               .arguments()));
        QTRY_COMPARE(names(shelf->outlineCoordinator()->selection()),
                     (QStringList{QStringLiteral("b.txt"), QStringLiteral("c.txt")}));
        QVERIFY(runXdotool({QStringLiteral("key"), QStringLiteral("space")}));
        PreviewWindow* preview = nullptr;
        QTRY_VERIFY((preview = shownPreview()));
        QCOMPARE(preview->urls(),
                 (QList<QUrl>{QUrl::fromLocalFile(m_shelves->file(QStringLiteral("b.txt"))),
                              QUrl::fromLocalFile(m_shelves->file(QStringLiteral("c.txt")))}));
        QCOMPARE(preview->shownText(), QStringLiteral("bytes of b.txt"));
        // Whatever becomes of the list, the preview stays until the user closes it.
        QTest::qWait(500);
        QVERIFY(preview->isVisible());
        preview->close();
        QCOMPARE(shelf->itemsController().items().size(), 3);
    }

    void dragTwoOfFive_data()
    {
        QTest::addColumn<QString>("action");
        QTest::newRow("copied") << QStringLiteral("copy");
        QTest::newRow("moved") << QStringLiteral("move");
    }

    // Two items chosen with a click and a Ctrl+click go out, and only they: with a move they leave the
    // shelf, the other three stay.
    void dragTwoOfFive()
    {
        QFETCH(QString, action);
        auto shelf = shelfWith(fiveNames());
        const QPoint to =
            m_target.start(QStringLiteral(SHELF_DROP_TARGET_BINARY), {QStringLiteral("--action"), action});
        QVERIFY(!to.isNull());
        DragSessionOutlinePanel& panel = openList(*shelf);
        const QPoint second = rowCentre(panel, 1);
        const QPoint fourth = rowCentre(panel, 3);
        QVERIFY(runXdotool(PointerScript()
                               .moveTo(second)
                               .press()
                               .release()
                               .pause(100ms)
                               .keyDown(QStringLiteral("ctrl"))
                               .moveTo(fourth)
                               .press()
                               .release()
                               .keyUp(QStringLiteral("ctrl"))
                               .pause(100ms)
                               .arguments()));
        QTRY_COMPARE(names(shelf->outlineCoordinator()->selection()),
                     (QStringList{QStringLiteral("b.txt"), QStringLiteral("d.txt")}));
        QVERIFY(runXdotool(PointerScript().drag(fourth, to).arguments()));
        QVERIFY(m_target.waitFor("end"));

        const QByteArray uris = QByteArray::fromPercentEncoding(m_target.typeValue("text/uri-list"));
        QCOMPARE(uris, QUrl::fromLocalFile(m_shelves->file(QStringLiteral("b.txt"))).toEncoded() + "\r\n" +
                           QUrl::fromLocalFile(m_shelves->file(QStringLiteral("d.txt"))).toEncoded() +
                           "\r\n");
        const QStringList kept =
            action == QLatin1String("move")
                ? QStringList{QStringLiteral("a.txt"), QStringLiteral("c.txt"), QStringLiteral("e.txt")}
                : fiveNames();
        QTRY_COMPARE(names(shelf->itemsController().items()), kept);
        QVERIFY(!shelf->hasStopped());
        QCOMPARE(shelfView(*shelf).draggables().size(), kept.size());
    }

    void keys_data()
    {
        QTest::addColumn<int>("clicked");
        QTest::addColumn<QStringList>("keys");
        QTest::addColumn<QStringList>("kept");
        QTest::addColumn<QStringList>("onDisk");
        const QString a = QStringLiteral("a.txt");
        const QString b = QStringLiteral("b.txt");
        const QString c = QStringLiteral("c.txt");
        const QString renamed = QStringLiteral("renamed.txt");
        // F2, a new name and Enter: the file is renamed on disk and the shelf holds it by its new name.
        QTest::newRow("F2 renames") << 1 << QStringList{QStringLiteral("F2")} << QStringList{a, c, renamed}
                                    << QStringList{a, c, renamed};
        // Delete takes it off the shelf; the file stays.
        QTest::newRow("Delete removes from the shelf")
            << 1 << QStringList{QStringLiteral("Delete")} << QStringList{a, c} << QStringList{a, b, c};
        // The arrows move the selection; with Shift they widen it.
        QTest::newRow("Down, then Delete")
            << 0 << QStringList{QStringLiteral("Down"), QStringLiteral("Delete")} << QStringList{a, c}
            << QStringList{a, b, c};
        QTest::newRow("Shift+Down, then Delete")
            << 0 << QStringList{QStringLiteral("shift+Down"), QStringLiteral("Delete")} << QStringList{c}
            << QStringList{a, b, c};
    }

    void keys()
    {
        QFETCH(int, clicked);
        QFETCH(QStringList, keys);
        QFETCH(QStringList, kept);
        QFETCH(QStringList, onDisk);
        auto shelf = shelfWith({QStringLiteral("a.txt"), QStringLiteral("b.txt"), QStringLiteral("c.txt")});
        DragSessionOutlinePanel& panel = openList(*shelf);
        QVERIFY(runXdotool(PointerScript().moveTo(rowCentre(panel, clicked)).press().release().arguments()));
        QTRY_COMPARE(shelf->outlineCoordinator()->selection().size(), 1);
        for (const QString& key : keys) {
            QVERIFY(runXdotool({QStringLiteral("key"), key}));
            if (key == QLatin1String("F2")) {
                QTRY_VERIFY(panel.nameEditor());
                QVERIFY(runXdotool({QStringLiteral("key"), QStringLiteral("ctrl+a"), QStringLiteral("type"),
                                    QStringLiteral("renamed.txt")}));
                QVERIFY(runXdotool({QStringLiteral("key"), QStringLiteral("Return")}));
            }
        }
        QTRY_COMPARE(QDir(m_shelves->dir.path()).entryList(QDir::Files, QDir::Name), onDisk);
        auto held = names(shelf->itemsController().items());
        held.sort();
        QTRY_COMPARE(held, kept);
        QCOMPARE(panel.model().rowCount(), kept.size());
        QVERIFY(shelf->isOutlineOpen());
    }

    // Ctrl+A and Delete take every item: the shelf is empty and unpinned, the list closes, the shelf
    // stays and the files stay.
    void removingAllEmptiesTheShelf()
    {
        auto shelf = shelfWith(fiveNames());
        DragSessionLabel label = shelf->label();
        label.pinned = true;
        shelf->setLabel(label);
        openList(*shelf);
        QVERIFY(runXdotool({QStringLiteral("key"), QStringLiteral("ctrl+a"), QStringLiteral("Delete")}));
        QTRY_VERIFY(!shelf->isOutlineOpen());
        QVERIFY(shelf->itemsController().items().isEmpty());
        // The pile empties with its animation.
        QTRY_VERIFY(shelfView(*shelf).draggables().isEmpty());
        QVERIFY(!shelf->label().pinned);
        QVERIFY(!shelf->hasStopped());
        QCOMPARE(QDir(m_shelves->dir.path()).entryList(QDir::Files).size(), 5);
    }

    // Items dropped on the shelf while the list is open show in it; a file deleted meanwhile leaves
    // the list with the shelf's message and nothing breaks.
    void followsTheShelf()
    {
        auto shelf = shelfWith({QStringLiteral("a.txt"), QStringLiteral("b.txt")});
        DragSessionOutlinePanel& panel = openList(*shelf);
        shelf->appendItems({m_shelves->fileItem(QStringLiteral("late.txt"))});
        QCOMPARE(panel.model().rowCount(), 3);
        QCOMPARE(panel.model().index(2).data().toString(), QStringLiteral("late.txt"));
        QVERIFY(QFile::remove(m_shelves->file(QStringLiteral("a.txt"))));
        QTRY_COMPARE(panel.model().rowCount(), 2);
        QCOMPARE(names(shelf->itemsController().items()),
                 (QStringList{QStringLiteral("b.txt"), QStringLiteral("late.txt")}));
        QVERIFY(m_shelves->messages.message(shelfWindow(*shelf).windowNumber()));
        QVERIFY(panel.isVisible());
    }

    void pictures_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("thumbnail");
        QByteArray png;
        {
            QImage image(300, 200, QImage::Format_RGB32);
            image.fill(Qt::darkCyan);
            QBuffer buffer(&png);
            buffer.open(QIODevice::WriteOnly);
            QVERIFY(image.save(&buffer, "PNG"));
        }
        QTest::newRow("a picture") << png << true;
        QTest::newRow("a broken picture") << png.left(60) << false;
        QTest::newRow("text posing as a picture") << QByteArray("not a picture") << false;
    }

    // Pictures are decoded off the main thread; one that fails keeps its file type's icon.
    void pictures()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, thumbnail);
        QVERIFY(writeFile(m_shelves->dir.filePath(QStringLiteral("photo.png")), content));
        auto shelf = shelfWith({QStringLiteral("photo.png")});
        DragSessionOutlinePanel& panel = openList(*shelf);
        DragSessionOutlineModel& model = panel.model();
        QTRY_COMPARE(model.pendingThumbnails(), 0);
        const QModelIndex row = model.index(0);
        QCOMPARE(row.data(DragSessionOutlineModel::ThumbnailRole).toBool(), thumbnail);
        const QVariant picture = row.data(Qt::DecorationRole);
        if (thumbnail) {
            const QPixmap pixmap = picture.value<QPixmap>();
            QCOMPARE(pixmap.width() / pixmap.devicePixelRatio(), 64.0);
            QCOMPARE(pixmap.toImage().pixelColor(pixmap.width() / 2, pixmap.height() / 2),
                     QColor(Qt::darkCyan));
        } else {
            QCOMPARE(picture.userType(), int(QMetaType::QIcon));
            QVERIFY(!picture.value<QIcon>().isNull());
        }
    }

    // The mode is remembered for the next list; pictures of both modes are saved for a look.
    void modesAreRemembered()
    {
        QStringList items = fiveNames();
        items << QStringLiteral("a rather long name for a file that will not fit on one line.txt");
        QImage image(120, 80, QImage::Format_RGB32);
        image.fill(QColor(200, 90, 40));
        QVERIFY(image.save(m_shelves->dir.filePath(QStringLiteral("sunset.png"))));
        items << QStringLiteral("sunset.png");
        auto shelf = shelfWith(items);
        DragSessionOutlinePanel* panel = &openList(*shelf);
        QCOMPARE(panel->displayMode(), DragSessionOutlinePanel::DisplayMode::list);
        QTRY_COMPARE(panel->model().pendingThumbnails(), 0);
        QTest::qWait(100);
        saveScreenshot(*shelf, QStringLiteral("/tmp/itemlist-list.png"));
        const QPoint toggle = panel->modeButton().mapToGlobal(panel->modeButton().rect().center());
        QVERIFY(runXdotool(PointerScript().moveTo(toggle).press().release().arguments()));
        QTRY_COMPARE(panel->displayMode(), DragSessionOutlinePanel::DisplayMode::grid);
        QCOMPARE(m_shelves->preferences.value(PreferenceKeys::lastOutlineDisplayMode), 1);
        QTest::qWait(100);
        saveScreenshot(*shelf, QStringLiteral("/tmp/itemlist-grid.png"));
        QVERIFY(runXdotool({QStringLiteral("key"), QStringLiteral("Escape")}));
        QTRY_VERIFY(!shelf->isOutlineOpen());
        panel = &openList(*shelf);
        QCOMPARE(panel->displayMode(), DragSessionOutlinePanel::DisplayMode::grid);

        // A dark desktop gives a dark list.
        const QPalette light = QApplication::palette();
        QPalette dark;
        dark.setColor(QPalette::Window, QColor(45, 45, 48));
        dark.setColor(QPalette::WindowText, QColor(235, 235, 235));
        dark.setColor(QPalette::Base, QColor(30, 30, 32));
        dark.setColor(QPalette::Text, QColor(235, 235, 235));
        dark.setColor(QPalette::Button, QColor(55, 55, 58));
        dark.setColor(QPalette::ButtonText, QColor(235, 235, 235));
        dark.setColor(QPalette::Highlight, QColor(53, 132, 228));
        dark.setColor(QPalette::HighlightedText, Qt::white);
        QApplication::setPalette(dark);
        QTest::qWait(100);
        QVERIFY(panel->palette().color(QPalette::Window).lightness() < 128);
        saveScreenshot(*shelf, QStringLiteral("/tmp/itemlist-grid-dark.png"));
        QApplication::setPalette(light);
    }

private:
    std::shared_ptr<DragSessionCoordinator> shelfWith(const QStringList& files)
    {
        auto shelf = openShelf(*m_shelves->controller, QPoint(500, 260));
        DraggableList items;
        for (const QString& name : files) {
            items.append(m_shelves->fileItem(name));
        }
        shelf->appendItems(items);
        if (!QTest::qWaitFor([&shelf] { return shelf->itemsController().processingItems().isEmpty(); })) {
            QTest::qFail("The items were never ready", __FILE__, __LINE__);
        }
        return shelf;
    }

    // Opens the list with a real click on the shelf's disclosure control.
    DragSessionOutlinePanel& openList(DragSessionCoordinator& shelf)
    {
        QtDragSessionView& view = shelfView(shelf);
        [&] { QTRY_VERIFY(view.outlineButton().isVisible()); }();
        const QPoint control = view.outlineButton().mapToGlobal(view.outlineButton().rect().center());
        [&] {
            QVERIFY(runXdotool(PointerScript().moveTo(control).press().release().arguments()));
            QTRY_VERIFY(view.outlinePanel() && view.outlinePanel()->isVisible());
            QVERIFY(QTest::qWaitForWindowExposed(view.outlinePanel()));
        }();
        if (!view.outlinePanel()) {
            QTest::qFail("The item list never opened", __FILE__, __LINE__);
            static DragSessionOutlinePanel* none = nullptr;
            return *none;
        }
        return *view.outlinePanel();
    }

    static PreviewWindow* shownPreview()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* preview = qobject_cast<PreviewWindow*>(widget); preview && preview->isVisible()) {
                return preview;
            }
        }
        return nullptr;
    }

    static QPoint rowCentre(DragSessionOutlinePanel& panel, int row)
    {
        QListView& list = panel.listView();
        return list.viewport()->mapToGlobal(list.visualRect(panel.model().index(row)).center());
    }

    void saveScreenshot(DragSessionCoordinator& shelf, const QString& path)
    {
        QWidget& window = shelfWindow(shelf).widget();
        QWidget& panel = *shelfView(shelf).outlinePanel();
        const QRect both = window.frameGeometry().united(panel.geometry()).adjusted(-10, -10, 10, 10);
        QScreen* screen = QGuiApplication::primaryScreen();
        QVERIFY(screen->grabWindow(0, both.x(), both.y(), both.width(), both.height()).save(path));
    }

    LinuxDesktopActions m_desktop;
    QtScreenEnvironment m_screens;
    QtClipboardSource m_clipboard;
    std::unique_ptr<ShelfFixture> m_shelves;
    HelperProgram m_target;
};

QTEST_MAIN(TestItemList)
#include "TestItemList.moc"
