// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Core/ReservedTemporaryDirectory.h"
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggablePromise.h"
#include "Models/Draggable/DraggableText.h"
#include "Models/Draggable/DraggableWebImage.h"
#include "Models/Draggable/DraggableWeblocation.h"
#include "Platform/DBus/FileTransferPortal.h"
#include "Platform/Linux/InotifyFileWatcher.h"
#include "Platform/Qt/QtClipboardSource.h"
#include "Platform/Qt/QtScreenEnvironment.h"
#include "Platform/X11/X11Properties.h"
#include "ShelfWindowTestSupport.h"
#include "support/PointerScript.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QBuffer>
#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusUnixFileDescriptor>
#include <QDir>
#include <QIcon>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <xcb/xcb.h>

using namespace Vantrope;
using namespace std::chrono_literals;
using namespace Vantrope::Test;

namespace {

// What an item is and which file it stands for, as the rows name it.
QString describe(const DraggablePtr& item)
{
    QString kind = QStringLiteral("other");
    if (dynamic_cast<const DraggablePromise*>(item.get())) {
        kind = QStringLiteral("promise");
    } else if (dynamic_cast<const DraggableWebImage*>(item.get())) {
        kind = QStringLiteral("webimage");
    } else if (dynamic_cast<const DraggableText*>(item.get())) {
        kind = QStringLiteral("text");
    } else if (dynamic_cast<const DraggableWeblocation*>(item.get())) {
        kind = QStringLiteral("link");
    } else if (dynamic_cast<const DraggableFile*>(item.get())) {
        kind = QStringLiteral("file");
    }
    const std::optional<QUrl> url = item->url();
    if (!url || !QFileInfo::exists(url->toLocalFile())) {
        return kind + QStringLiteral(": (no file yet)");
    }
    QString name = QFileInfo(url->toLocalFile()).fileName();
    // Web images are named after the page's picture where it says, so only the kind of file is compared.
    if (kind == QLatin1String("webimage")) {
        name = QStringLiteral("*.") + QFileInfo(name).suffix();
    }
    return kind + QStringLiteral(": ") + name;
}

QStringList describe(const DraggableList& items)
{
    QStringList result;
    for (const DraggablePtr& item : items) {
        result.append(describe(item));
    }
    return result;
}

QByteArray gradientPng(const QSize& size)
{
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, 0, size.height());
    sky.setColorAt(0, QColor(90, 160, 230));
    sky.setColorAt(0.6, QColor(250, 200, 140));
    sky.setColorAt(1, QColor(70, 110, 60));
    painter.fillRect(image.rect(), sky);
    painter.setBrush(QColor(255, 240, 200));
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(QPointF(size.width() * 0.7, size.height() * 0.45), size.height() * 0.12,
                        size.height() * 0.12);
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

// The file-transfer portal, on a bus connection and thread of its own so that the shelf's blocking calls
// travel through the bus as they would to the real one, descriptors and all.
class FakeTransferPortal final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.FileTransfer")

public:
    QStringList paths() const
    {
        QMutexLocker lock(&m_mutex);
        return m_paths;
    }

public Q_SLOTS:
    QString StartTransfer(const QVariantMap& options)
    {
        QMutexLocker lock(&m_mutex);
        m_options = options;
        return QStringLiteral("transfer-key-1");
    }

    void AddFiles(const QString& key, const QList<QDBusUnixFileDescriptor>& fds, const QVariantMap&)
    {
        QMutexLocker lock(&m_mutex);
        for (const QDBusUnixFileDescriptor& fd : fds) {
            m_paths.append(
                key + QLatin1Char(' ') +
                QFileInfo(QStringLiteral("/proc/self/fd/%1").arg(fd.fileDescriptor())).symLinkTarget());
        }
    }

private:
    mutable QMutex m_mutex;
    QVariantMap m_options;
    QStringList m_paths;
};

} // namespace

// Shelves as the program shows them, on a real X server with a window manager: real drags from other
// programs, moved by xdotool, dropped on the shelf and dragged out of it; the shelf logic behind them.
class TestShelfWindow final : public QObject {
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
        m_source.stop();
        m_target.stop();
        QVERIFY(m_shelves->closeAllShelves());
        m_shelves.reset();
    }

    void windowKeepsToItsDesktopsAndStaysOnTop_data()
    {
        QTest::addColumn<bool>("keepInOwnSpace");
        QTest::newRow("every desktop") << false;
        QTest::newRow("its own desktop") << true;
    }

    void windowKeepsToItsDesktopsAndStaysOnTop()
    {
        QFETCH(bool, keepInOwnSpace);
        auto shelf = openShelf(QPoint(700, 400));
        DragSessionLabel label = shelf->label();
        label.keepInOwnSpace = keepInOwnSpace;
        shelf->setLabel(label);

        QWidget& widget = shelfWindow(*shelf).widget();
        const quint32 id = quint32(widget.winId());
        QCOMPARE(widget.size(), QSize(180, 188));
        QVERIFY(widget.windowFlags().testFlag(Qt::FramelessWindowHint));
        // The window manager keeps these properties; they are read back from the server.
        const quint32 allDesktops = 0xFFFFFFFF;
        QTRY_COMPARE(X11Properties::read32(id, X11Properties::atom("_NET_WM_DESKTOP"))
                             .value_or(QList<quint32>{})
                             .value(0) == allDesktops,
                     !keepInOwnSpace);
        const QList<quint32> states =
            X11Properties::read32(id, X11Properties::atom("_NET_WM_STATE")).value_or(QList<quint32>());
        QVERIFY(states.contains(X11Properties::atom("_NET_WM_STATE_ABOVE")));
        QVERIFY(states.contains(X11Properties::atom("_NET_WM_STATE_SKIP_TASKBAR")));
        // Placed where the logic put it, in points from the bottom left.
        const QRectF frame = shelf->window().frame();
        shelf->window().setFrameOrigin(QPointF(300, 250));
        QTRY_COMPARE(widget.geometry().topLeft(), QPoint(300, 1080 - 250 - 188));
        QCOMPARE(shelf->window().frame(), QRectF(300, 250, 180, 188));
        QVERIFY(frame.isValid());
    }

    void dropsBecomeItems_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<QByteArray>("firstContent");
        QTest::addColumn<QString>("logLine");

        QTest::newRow("file") << QStringList{QStringLiteral("--kind"), QStringLiteral("files"),
                                             QStringLiteral("--file"), QStringLiteral("@dropped.txt")}
                              << QStringList{QStringLiteral("file: dropped.txt")}
                              << QByteArray("bytes of dropped.txt") << QString();
        QTest::newRow("text") << QStringList{QStringLiteral("--kind"), QStringLiteral("text")}
                              << QStringList{QStringLiteral("text: Shopping list.txt")}
                              << QByteArray("Shopping list\nMilk, bread and a good deal of coffee")
                              << QString();
        QTest::newRow("link") << QStringList{QStringLiteral("--kind"), QStringLiteral("link")}
                              << QStringList{QStringLiteral("link: example.org.webloc")} << QByteArray()
                              << QString();
        QTest::newRow("browser image")
            << QStringList{QStringLiteral("--kind"), QStringLiteral("image")}
            << QStringList{QStringLiteral("webimage: *.png")} << QByteArray() << QString();
        QTest::newRow("direct save, saved by the source")
            << QStringList{QStringLiteral("--kind"),     QStringLiteral("xds"),
                           QStringLiteral("--xds-mode"), QStringLiteral("S"),
                           QStringLiteral("--xds-name"), QStringLiteral("Quarterly report.txt")}
            << QStringList{QStringLiteral("promise: Quarterly report.txt")}
            << QByteArray("saved by the source\n") << QStringLiteral("Promise succeeded");
        QTest::newRow("direct save, fetched and saved here")
            << QStringList{QStringLiteral("--kind"),     QStringLiteral("xds"),
                           QStringLiteral("--xds-mode"), QStringLiteral("F"),
                           QStringLiteral("--xds-name"), QStringLiteral("fetched.txt")}
            << QStringList{QStringLiteral("promise: fetched.txt")} << QByteArray("saved by the source\n")
            << QStringLiteral("Promise succeeded");
        QTest::newRow("direct save, failed at the source")
            << QStringList{QStringLiteral("--kind"), QStringLiteral("xds"), QStringLiteral("--xds-mode"),
                           QStringLiteral("E")}
            << QStringList() << QByteArray() << QStringLiteral("Failed to receive promise with error ");
        QTest::newRow("direct save naming a parent folder")
            << QStringList{QStringLiteral("--kind"), QStringLiteral("xds"), QStringLiteral("--xds-name"),
                           QStringLiteral("../x")}
            << QStringList() << QByteArray()
            << QStringLiteral("Refused a promised file whose name leaves its folder");
        QTest::newRow("text from GTK")
            << QStringList{QStringLiteral("gtk"), QStringLiteral("--kind"), QStringLiteral("text")}
            << QStringList{QStringLiteral("text: Meeting notes.txt")}
            << QByteArray("Meeting notes\nBring the slides and the budget") << QString();
        QTest::newRow("files from GTK")
            << QStringList{QStringLiteral("gtk"),          QStringLiteral("--kind"),
                           QStringLiteral("files"),        QStringLiteral("--file"),
                           QStringLiteral("@gtk one.txt"), QStringLiteral("--file"),
                           QStringLiteral("@gtk two.txt")}
            << QStringList{QStringLiteral("file: gtk one.txt"), QStringLiteral("file: gtk two.txt")}
            << QByteArray("bytes of gtk one.txt") << QString();
        QTest::newRow("archive extraction")
            << QStringList{QStringLiteral("--kind"), QStringLiteral("ark")}
            << QStringList{QStringLiteral("promise: first.txt"), QStringLiteral("file: second.txt")}
            << QByteArray("first entry\n") << QStringLiteral("Promise succeeded");
    }

    void dropsBecomeItems()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QStringList, expected);
        QFETCH(QByteArray, firstContent);
        QFETCH(QString, logLine);

        for (QString& argument : arguments) {
            if (argument.startsWith(QLatin1Char('@'))) {
                argument = file(argument.mid(1));
            }
        }
        LogCapture log;
        auto shelf = openShelf(QPoint(800, 420));
        const QPoint from = startSource(arguments);
        QVERIFY(!from.isNull());
        QVERIFY(runXdotool(PointerScript().drag(from, shelfCentre(*shelf)).arguments()));
        QVERIFY(m_source.waitFor("drag finished"));

        const DragSessionItemsController& items = shelf->itemsController();
        QTRY_COMPARE_WITH_TIMEOUT(describe(items.items()), expected, 10000);
        if (!logLine.isEmpty()) {
            QTRY_VERIFY(log.contains(logLine));
        }
        if (expected.isEmpty()) {
            // Refused promises leave nothing behind, neither on the shelf nor beside its folder.
            QTRY_VERIFY(stackView(*shelf).draggables().isEmpty());
            // The shelf says why the item it showed for a moment went away.
            QTRY_VERIFY(m_shelves->messages.hasMessage(shelf->window().windowNumber()));
            const std::optional<Message> message =
                m_shelves->messages.message(shelf->window().windowNumber());
            QCOMPARE(message->title, std::optional(QStringLiteral("A file could not be received")));
            const QString promises = *TemporaryDirectories::path(ReservedTemporaryDirectory::promises);
            QVERIFY(!QFileInfo::exists(promises + QStringLiteral("/x")));
            if (arguments.contains(QStringLiteral("../x"))) {
                QVERIFY(!m_source.output().contains("asked to save"));
            }
            QVERIFY(!shelf->hasStopped());
            return;
        }
        QCOMPARE(stackView(*shelf).draggables().size(), expected.size());
        const QString path = items.items().first()->url()->toLocalFile();
        if (!firstContent.isEmpty()) {
            QCOMPARE(readFile(path), firstContent);
        }
        if (arguments.contains(QStringLiteral("image"))) {
            QCOMPARE(QImage(path).size(), QSize(64, 48));
        }
        if (arguments.contains(QStringLiteral("link"))) {
            QVERIFY(readFile(path).contains("https://www.example.org/articles/shelf"));
        }
        if (arguments.contains(QStringLiteral("xds"))) {
            QCOMPARE(QFileInfo(path).canonicalPath().startsWith(
                         QFileInfo(*TemporaryDirectories::path(ReservedTemporaryDirectory::promises))
                             .canonicalFilePath()),
                     true);
            if (arguments.contains(QStringLiteral("F"))) {
                QVERIFY(m_source.waitFor("fetched"));
            }
        }
    }

    void shelfOpenedMidDragTakesDropsFromSourcesThatKnowOnlyEarlierWindows_data()
    {
        QTest::addColumn<bool>("secondShelf");
        QTest::newRow("first shelf") << false;
        // The window waiting for the next shelf is replaced once the first one is taken.
        QTest::newRow("next shelf") << true;
    }

    // Like Chromium, the source looks for drop targets only among the windows mapped when its drag began,
    // and the shelf its shake opens comes later. The shelf also leaves the focus with the source.
    void shelfOpenedMidDragTakesDropsFromSourcesThatKnowOnlyEarlierWindows()
    {
        QFETCH(bool, secondShelf);
        if (secondShelf) {
            auto first = openShelf(QPoint(400, 700));
            first->appendItems({fileItem(QStringLiteral("held.txt"))});
        }
        // The window that waits for the next shelf takes no clicks, even where the window manager keeps
        // a corner of it on screen.
        QTest::qWait(200);
        QVERIFY(runXdotool(PointerScript().moveTo(QPoint(3, 3)).arguments()));
        xcb_connection_t* connection = X11Properties::connection();
        xcb_query_pointer_reply_t* pointer = xcb_query_pointer_reply(
            connection, xcb_query_pointer(connection, X11Properties::rootWindow()), nullptr);
        QVERIFY(pointer);
        const xcb_window_t underPointer = pointer->child;
        std::free(pointer);
        QCOMPARE(underPointer, xcb_window_t(XCB_NONE));
        const QString path = file(QStringLiteral("from a snapshot source.txt"));
        const QPoint from = m_source.start(QStringLiteral(SNAPSHOT_SOURCE_SCRIPT), {path});
        QVERIFY(!from.isNull());
        QVERIFY(runXdotool(PointerScript().startDrag(from).arguments()));
        QVERIFY(m_source.waitFor("dragging"));

        auto shelf = openShelf(QPoint(800, 420));
        QVERIFY(runXdotool(PointerScript()
                               .glide(from + QPoint(40, 0), shelfCentre(*shelf))
                               .pause(300ms)
                               .release()
                               .arguments()));
        QVERIFY(m_source.waitFor("dropped"));
        QTRY_COMPARE(describe(shelf->itemsController().items()),
                     QStringList{QStringLiteral("file: from a snapshot source.txt")});
        QVERIFY(QGuiApplication::focusWindow() != shelfWindow(*shelf).widget().windowHandle());
    }

    void fileAlreadyOnTheShelfIsRefused()
    {
        const QString path = file(QStringLiteral("twice.txt"));
        auto shelf = openShelf(QPoint(800, 420));
        shelf->appendItems({DraggableFile::make(QUrl::fromLocalFile(path))});
        const QPoint from =
            startSource({QStringLiteral("--kind"), QStringLiteral("files"), QStringLiteral("--file"), path});
        QVERIFY(runXdotool(PointerScript().drag(from, shelfCentre(*shelf)).arguments()));
        QVERIFY(m_source.waitFor("drag finished"));

        const quint64 number = shelf->window().windowNumber();
        QTRY_VERIFY(m_shelves->messages.hasMessage(number));
        QCOMPARE(m_shelves->messages.message(number)->text, QStringLiteral("This is already on the shelf."));
        QCOMPARE(shelf->itemsController().items().size(), 1);
        QCOMPARE(stackView(*shelf).draggables().size(), 1);
        QVERIFY(shelf->window().isVisible());
        QVERIFY(!shelf->hasStopped());
    }

    void largeDropsAreReadLater_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<bool>("efficient");
        QTest::newRow("29 files") << 29 << false;
        QTest::newRow("30 files") << 30 << true;
    }

    void largeDropsAreReadLater()
    {
        QFETCH(int, count);
        QFETCH(bool, efficient);
        QStringList arguments{QStringLiteral("--kind"), QStringLiteral("files")};
        for (int i = 0; i < count; ++i) {
            arguments << QStringLiteral("--file") << file(QStringLiteral("many-%1-%2.txt").arg(count).arg(i));
        }
        auto shelf = openShelf(QPoint(800, 420));
        std::optional<bool> readLater;
        connect(&shelf->itemsController(), &DragSessionItemsController::itemsChanged, shelf.get(),
                [&] { readLater = readLater.value_or(shelf->isReadingDropInBackground()); });
        const QPoint from = startSource(arguments);
        QVERIFY(runXdotool(PointerScript().drag(from, shelfCentre(*shelf)).arguments()));
        if (efficient) {
            // Read after a pause, off the main thread; the empty shelf is not closed in the meantime.
            QTRY_VERIFY(shelf->isReadingDropInBackground());
            QVERIFY(shelf->itemsController().items().isEmpty());
            m_shelves->controller->closeSessions(SessionCloseFilter::empty);
            QVERIFY(!shelf->isStopping());
        }
        QTRY_COMPARE(shelf->itemsController().items().size(), count);
        QCOMPARE(readLater, std::optional(efficient));
        QVERIFY(!shelf->isReadingDropInBackground());
    }

    void dragOutEndsAsTheTargetSays_data()
    {
        QTest::addColumn<bool>("gtk");
        QTest::addColumn<QString>("action");
        QTest::addColumn<bool>("closes");
        QTest::addColumn<QString>("logLine");
        const QString finished = QStringLiteral("Finishing drag session");
        QTest::newRow("copied") << false << QStringLiteral("copy") << false << finished;
        QTest::newRow("moved") << false << QStringLiteral("move") << true << finished;
        QTest::newRow("refused") << false << QStringLiteral("refuse") << false
                                 << QStringLiteral("No drag operation, cancelling drag session...");
        QTest::newRow("copied into a GTK program") << true << QStringLiteral("copy") << false << finished;
        QTest::newRow("moved into a GTK program") << true << QStringLiteral("move") << true << finished;
    }

    void dragOutEndsAsTheTargetSays()
    {
        QFETCH(bool, gtk);
        QFETCH(QString, action);
        QFETCH(bool, closes);
        QFETCH(QString, logLine);
        const QString a = file(QStringLiteral("out-a.txt"));
        const QString b = file(QStringLiteral("out b.txt"));
        auto shelf = openShelf(QPoint(800, 420));
        shelf->appendItems(
            {DraggableFile::make(QUrl::fromLocalFile(a)), DraggableFile::make(QUrl::fromLocalFile(b))});
        QTRY_VERIFY(shelf->itemsController().processingItems().isEmpty());
        const QPoint to = startTarget(action, gtk);
        QVERIFY(!to.isNull());

        LogCapture log;
        QVERIFY(runXdotool(PointerScript().drag(pileCentre(*shelf), to).arguments()));
        QTRY_VERIFY(log.contains(logLine));
        QVERIFY(log.contains(QStringLiteral("About start drag session...")));
        QTRY_COMPARE(shelf->hasStopped(), closes);
        if (action == QLatin1String("refuse")) {
            QVERIFY(stackView(*shelf).isCancelAnimationRunning());
            QCOMPARE(shelf->itemsController().items().size(), 2);
            QCOMPARE(m_shelves->preferences.value(PreferenceKeys::numberOfDrops), 0);
            return;
        }
        QVERIFY(m_target.waitFor("end"));
        const QByteArray uris = QByteArray::fromPercentEncoding(m_target.typeValue("text/uri-list"));
        QCOMPARE(uris,
                 QUrl::fromLocalFile(a).toEncoded() + "\r\n" + QUrl::fromLocalFile(b).toEncoded() + "\r\n");
        QCOMPARE(m_shelves->preferences.value(PreferenceKeys::numberOfDrops), 1);
        QVERIFY(!shelf->view().hasDraggedOutItems());
    }

    // Some file managers (pcmanfm) ask for a drop's data with the Unix time as the X time, far in the X
    // server's future. They get the data, and later drags out still offer their items once another
    // program has dragged something.
    void dragsOutOutliveForeignTimestamps()
    {
        const QString path = file(QStringLiteral("dragged twice.txt"));
        auto shelf = openShelf(QPoint(800, 420));
        shelf->appendItems({DraggableFile::make(QUrl::fromLocalFile(path))});
        QTRY_VERIFY(shelf->itemsController().processingItems().isEmpty());
        const QByteArray uri = QUrl::fromLocalFile(path).toEncoded() + "\r\n";

        QPoint to = startTarget(QStringLiteral("copy"), true, {QStringLiteral("--unix-time")});
        QVERIFY(!to.isNull());
        QVERIFY(runXdotool(PointerScript().drag(pileCentre(*shelf), to).arguments()));
        QVERIFY(m_target.waitFor("end"));
        QCOMPARE(QByteArray::fromPercentEncoding(m_target.typeValue("text/uri-list")), uri);
        m_target.stop();
        // Another program's drag takes the drag selection away.
        QVERIFY(takeDragSelection());

        to = startTarget(QStringLiteral("copy"));
        QVERIFY(!to.isNull());
        QVERIFY(runXdotool(PointerScript().drag(pileCentre(*shelf), to).arguments()));
        QVERIFY(m_target.waitFor("end"));
        QCOMPARE(QByteArray::fromPercentEncoding(m_target.typeValue("text/uri-list")), uri);
    }

    void dragOutOffersFilesToThePortal()
    {
        qDBusRegisterMetaType<QList<QDBusUnixFileDescriptor>>();
        QThread thread;
        FakeTransferPortal portal;
        portal.moveToThread(&thread);
        thread.start();
        QDBusConnection bus =
            QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("portal"));
        QVERIFY(bus.registerService(FileTransferPortal::service));
        QVERIFY(bus.registerObject(FileTransferPortal::objectPath, &portal, QDBusConnection::ExportAllSlots));
        const auto stop = qScopeGuard([&] {
            bus.unregisterObject(FileTransferPortal::objectPath);
            bus.unregisterService(FileTransferPortal::service);
            QDBusConnection::disconnectFromBus(QStringLiteral("portal"));
            thread.quit();
            thread.wait();
        });

        const QString path = file(QStringLiteral("for the sandbox.txt"));
        auto shelf = openShelf(QPoint(800, 420));
        shelf->appendItems({DraggableFile::make(QUrl::fromLocalFile(path))});
        const QPoint to = startTarget(QStringLiteral("copy"));
        QVERIFY(runXdotool(PointerScript().drag(pileCentre(*shelf), to).arguments()));
        QVERIFY(m_target.waitFor("end"));
        QCOMPARE(m_target.typeValue(FileTransferPortal::mimeType.toUtf8()), QByteArray("transfer-key-1"));
        QCOMPARE(portal.paths(), QStringList{QStringLiteral("transfer-key-1 ") + path});
    }

    void refusedDragsOut_data()
    {
        QTest::addColumn<QString>("state");
        QTest::addColumn<QString>("logLine");
        QTest::newRow("interaction disabled, sharing too")
            << QStringLiteral("disabled") << QStringLiteral("Interaction disabled, ignoring mosue drag");
        QTest::newRow("share in progress")
            << QStringLiteral("sharing") << QStringLiteral("Share state in progress, ignoring mouse drag");
        QTest::newRow("items on their way back")
            << QStringLiteral("cancelling")
            << QStringLiteral("Cancel animation is in progress, ignoring mouse drag");
        QTest::newRow("press beside the items")
            << QStringLiteral("beside") << QStringLiteral("No eligible item views, ignoring mouse drag");
        QTest::newRow("only a promise not yet kept")
            << QStringLiteral("promise")
            << QStringLiteral("Attempted outbound drag items but the factory returned an empty array.");
    }

    void refusedDragsOut()
    {
        QFETCH(QString, state);
        QFETCH(QString, logLine);
        auto shelf = openShelf(QPoint(800, 420));
        if (state == QLatin1String("promise")) {
            shelf->appendItems(
                {DraggablePromise::make([] { return DraggablePromise::VantropePromiseResult(); })});
        } else {
            shelf->appendItems({fileItem(QStringLiteral("held.txt"))});
        }
        auto& view = shelfView(*shelf);
        QPoint press = stackView(*shelf).visibleItemFrames().first().center().toPoint();
        if (state == QLatin1String("disabled")) {
            view.setInteractionEnabled(false);
            view.setShareState({DragSessionActionState::Loading{0.2, QStringLiteral("Uploading")}});
        } else if (state == QLatin1String("sharing")) {
            view.setShareState({DragSessionActionState::Loading{0.2, QStringLiteral("Uploading")}});
        } else if (state == QLatin1String("cancelling")) {
            stackView(*shelf).cancelDragSession(QPointF(400, 400));
        } else if (state == QLatin1String("beside")) {
            press = QPoint(0, 0);
        }
        LogCapture log;
        QVERIFY(!view.mouseDragged(press));
        QVERIFY(!log.messages().isEmpty());
        QCOMPARE(log.messages().first(), logLine);
        QVERIFY(!log.contains(QStringLiteral("About start drag session...")));
    }

    void replacingAnItemSwapsItsView()
    {
        const auto before = fileItem(QStringLiteral("draft.txt"));
        const auto after = fileItem(QStringLiteral("final.txt"));
        const auto other = fileItem(QStringLiteral("other.txt"));
        auto shelf = openShelf(QPoint(800, 420));
        shelf->appendItems({before, other});
        auto& view = shelfView(*shelf);

        LogCapture log;
        view.replaceDraggable(before, after);
        QCOMPARE(stackView(*shelf).draggables(), (DraggableList{after, other}));
        QVERIFY(!log.contains(QStringLiteral("Attempted to replace")));
        // The old one has no view any more.
        view.replaceDraggable(before, other);
        QVERIFY(log.contains(
            QStringLiteral("Attempted to replace a draggable that does not have an associated view")));
        QCOMPARE(stackView(*shelf).draggables(), (DraggableList{after, other}));
    }

    void screenshotOfAShelf()
    {
        // Something of a desktop behind the shelf.
        QWidget desktop(nullptr, Qt::FramelessWindowHint | Qt::WindowStaysOnBottomHint);
        QPalette wallpaper;
        QLinearGradient gradient(0, 0, 0, 1080);
        gradient.setColorAt(0, QColor(44, 62, 98));
        gradient.setColorAt(1, QColor(120, 84, 130));
        wallpaper.setBrush(QPalette::Window, gradient);
        desktop.setPalette(wallpaper);
        desktop.setAutoFillBackground(true);
        desktop.setGeometry(400, 150, 1160, 400);
        desktop.show();
        QVERIFY(QTest::qWaitForWindowExposed(&desktop));

        const QString photo = m_shelves->dir.filePath(QStringLiteral("Lake at dusk.png"));
        QVERIFY(writeFile(photo, gradientPng(QSize(400, 300))));
        const auto pdf = fileItem(QStringLiteral("Itinerary.pdf"));
        const auto link = DraggableWeblocation::make(QUrl(QStringLiteral("https://www.example.org/stay")));
        const auto text =
            DraggableText::make("Packing list\nBoots, map, a warm coat and the tickets for the ferry",
                                QStringLiteral("text/plain"), false);

        auto trip = openShelf(QPoint(620, 330));
        DragSessionLabel label = trip->label();
        label.name = QStringLiteral("Trip notes");
        label.color = DragSessionLabelColor(DragSessionLabelColor::Identifier::blue);
        label.colorVisibility = DragSessionLabel::ColorVisibility::always;
        label.pinned = true;
        trip->setLabel(label);
        trip->appendItems({pdf, link, text, DraggableFile::make(QUrl::fromLocalFile(photo))});
        // A gesture opens a new shelf only where no empty one is showing.
        auto notes = openShelf(QPoint(850, 330));
        notes->appendItems({link, text});
        shelfView(*notes).setShareState(
            {DragSessionActionState::Confirmation{QUrl(QStringLiteral("https://example.org/s/k3Yw9"))}});
        auto upload = openShelf(QPoint(1080, 330));
        upload->appendItems({DraggableFile::make(QUrl::fromLocalFile(photo))});
        shelfView(*upload).setShareState(
            {DragSessionActionState::Loading{0.62, QStringLiteral("Uploading 1 item")}});
        auto empty = openShelf(QPoint(1310, 330));
        m_shelves->messages.show(
            empty->window().windowNumber(),
            Message::plain(Message::Icon::warning, QStringLiteral("This is already on the shelf.")), 0s);
        shelfView(*empty).updateHoverState(true);
        QTest::qWait(600);

        const QRect area = shelfWindow(*trip)
                               .widget()
                               .geometry()
                               .united(shelfWindow(*empty).widget().geometry())
                               .adjusted(-24, -24, 24, 24);
        const QImage shot = QGuiApplication::primaryScreen()
                                ->grabWindow(0, area.x(), area.y(), area.width(), area.height())
                                .toImage();
        // Each shelf is drawn over the desktop: its card hides the wallpaper, its rounded corners show it.
        const QColor wallpaperAtCorner = shot.pixelColor(4, 4);
        for (const auto& shelf : {trip, notes, upload, empty}) {
            const QRect frame = shelfWindow(*shelf).widget().geometry().translated(-area.topLeft());
            QVERIFY(shot.pixelColor(frame.center().x(), frame.top() + 30) != wallpaperAtCorner);
            QVERIFY(qAbs(shot.pixelColor(frame.topLeft()).blue() - wallpaperAtCorner.blue()) < 40);
        }
        const QString path = QCoreApplication::applicationDirPath() + QStringLiteral("/shelf-screenshot.png");
        QVERIFY(shot.save(path));
        qInfo().noquote() << "Screenshot saved to" << path;
    }

private:
    QString file(const QString& name) const { return m_shelves->file(name); }
    DraggablePtr fileItem(const QString& name) const { return m_shelves->fileItem(name); }
    std::shared_ptr<DragSessionCoordinator> openShelf(const QPoint& centre) const
    {
        return Test::openShelf(*m_shelves->controller, centre);
    }

    // A first argument "gtk" runs the GTK source instead of the Qt one.
    QPoint startSource(QStringList arguments)
    {
        if (arguments.value(0) == QLatin1String("gtk")) {
            arguments.removeFirst();
            return m_source.start(QStringLiteral(GTK_DRAG_SOURCE_SCRIPT), arguments);
        }
        return m_source.start(QStringLiteral(SHELF_DRAG_SOURCE_BINARY), arguments);
    }

    QPoint startTarget(const QString& action, bool gtk = false, const QStringList& more = {})
    {
        return m_target.start(gtk ? QStringLiteral(GTK_DROP_TARGET_SCRIPT)
                                  : QStringLiteral(SHELF_DROP_TARGET_BINARY),
                              QStringList{QStringLiteral("--action"), action} + more);
    }

    QtScreenEnvironment m_screens;
    QtClipboardSource m_clipboard;
    std::unique_ptr<ShelfFixture> m_shelves;
    HelperProgram m_source;
    HelperProgram m_target;
};

QTEST_MAIN(TestShelfWindow)
#include "TestShelfWindow.moc"
