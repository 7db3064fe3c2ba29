// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/DragSession/PersistentDragSessionStore.h"
#include "Platform/Linux/InotifyFileWatcher.h"
#include "Platform/Qt/DragSessionSettingsPopover.h"
#include "Platform/Qt/QtClipboardSource.h"
#include "Platform/Qt/QtScreenEnvironment.h"
#include "ShelfWindowTestSupport.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QScreen>
#include <QTest>

using namespace Vantrope;
using namespace Vantrope::Test;

Q_DECLARE_METATYPE(DragSessionLabelColor::Identifier)

// The settings popover of a real shelf window on the test display, opened and used with real X input.
class TestShelfSettingsPopover final : public QObject {
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
        m_shelf = openShelf(*m_shelves->controller, QPoint(500, 300));
        m_shelf->appendItems({m_shelves->fileItem(QStringLiteral("a.txt"))});
    }

    void cleanup()
    {
        m_shelf.reset();
        QVERIFY(m_shelves->closeAllShelves());
        m_shelves.reset();
    }

    void aClickOnTheGrabberOpensItOnce()
    {
        DragSessionSettingsPopover* popover = openByClick();
        QVERIFY(popover);
        QVERIFY(m_shelf->isSettingsPopoverOpen());
        // It hangs from the grabber.
        const QRect shelf = shelfWindow(*m_shelf).widget().geometry();
        QVERIFY2(
            qAbs(popover->geometry().center().x() - shelf.center().x()) <= 2,
            qPrintable(
                QStringLiteral("%1 vs %2").arg(popover->geometry().center().x()).arg(shelf.center().x())));
        QVERIFY(popover->geometry().top() > shelf.top() && popover->geometry().top() < shelf.top() + 40);

        // A second request while it is open makes no second one.
        QVERIFY(!m_shelf->showSettingsPopover());
        QCOMPARE(shelfView(*m_shelf).findChildren<DragSessionSettingsPopover*>().size(), 1);

        QVERIFY(runXdotool({QStringLiteral("key"), QStringLiteral("Escape")}));
        QTRY_VERIFY(!shelfView(*m_shelf).settingsPopover());
        QVERIFY(!m_shelf->isSettingsPopoverOpen());
        // Closed, it opens again.
        QVERIFY(m_shelf->showSettingsPopover());
        QTRY_VERIFY(shelfView(*m_shelf).settingsPopover());
    }

    void theMenuRowOpensIt()
    {
        QTRY_VERIFY(m_shelf->hasPreparedMenu());
        bool done = false;
        m_shelf->runAction(QStringLiteral("drag_session_settings"),
                           [&done](const Action::Result&) { done = true; });
        QTRY_VERIFY(done);
        QTRY_VERIFY(shelfView(*m_shelf).settingsPopover() &&
                    shelfView(*m_shelf).settingsPopover()->isVisible());
    }

    void aPickedColourIsTheUsersAndIsSaved_data()
    {
        QTest::addColumn<DragSessionLabelColor::Identifier>("color");
        QTest::newRow("monochrome, first") << DragSessionLabelColor::Identifier::monochrome;
        QTest::newRow("turquoise") << DragSessionLabelColor::Identifier::turquoise;
        QTest::newRow("spring, last") << DragSessionLabelColor::Identifier::spring;
    }

    void aPickedColourIsTheUsersAndIsSaved()
    {
        QFETCH(DragSessionLabelColor::Identifier, color);
        DragSessionLabel start = m_shelf->label();
        start.color = DragSessionLabelColor(color == DragSessionLabelColor::Identifier::blue
                                                ? DragSessionLabelColor::Identifier::orange
                                                : DragSessionLabelColor::Identifier::blue);
        start.userDefined = false;
        m_shelf->setLabel(start);
        DragSessionSettingsPopover* popover = openByClick();
        QVERIFY(popover);
        DragSessionColorSwatch* swatch = popover->swatch(color);
        QVERIFY(swatch);
        click(swatch->mapToGlobal(swatch->rect().center()));
        QTRY_COMPARE(m_shelf->label().color.id(), color);
        QVERIFY(m_shelf->label().userDefined);
        QVERIFY(swatch->isChecked());
        // The recent copy has it once the save throttle has run.
        QTRY_VERIFY_WITH_TIMEOUT(
            savedLabel() && savedLabel()->color.id() == color && savedLabel()->userDefined, 5000);
    }

    void eachBoxChangesItsSetting_data()
    {
        QTest::addColumn<QString>("box");
        QTest::newRow("pinned") << QStringLiteral("pinned");
        QTest::newRow("keep in this desktop") << QStringLiteral("keep");
        QTest::newRow("always show the colour") << QStringLiteral("always");
    }

    void eachBoxChangesItsSetting()
    {
        QFETCH(QString, box);
        const DragSessionLabel before = m_shelf->label();
        DragSessionSettingsPopover* popover = openByClick();
        QVERIFY(popover);
        QCheckBox& checkBox = box == QLatin1String("pinned") ? popover->pinnedBox()
                              : box == QLatin1String("keep") ? popover->keepInDesktopBox()
                                                             : popover->alwaysShowColorBox();
        QVERIFY(!checkBox.isChecked());
        click(checkBox.mapToGlobal(QPoint(8, checkBox.height() / 2)));
        QTRY_VERIFY(m_shelf->label() != before);
        DragSessionLabel expected = before;
        if (box == QLatin1String("pinned")) {
            expected.pinned = true;
        } else if (box == QLatin1String("keep")) {
            expected.keepInOwnSpace = true;
        } else {
            expected.colorVisibility = DragSessionLabel::ColorVisibility::always;
        }
        // That one setting changed and nothing else.
        QCOMPARE(m_shelf->label(), expected);
        QTRY_VERIFY_WITH_TIMEOUT(savedLabel() && *savedLabel() == expected, 5000);
    }

    void aTypedNameIsTheTitle()
    {
        DragSessionSettingsPopover* popover = openByClick();
        QVERIFY(popover);
        QTRY_VERIFY(popover->nameField().hasFocus());
        QVERIFY(runXdotool({QStringLiteral("type"), QStringLiteral("Invoices ")}));
        QTRY_COMPARE(m_shelf->label().name, std::optional(QStringLiteral("Invoices")));
        // The space typed last stays in the field: the next word must not run into this one.
        QCOMPARE(popover->nameField().text(), QStringLiteral("Invoices "));
        QVERIFY(runXdotool({QStringLiteral("type"), QStringLiteral("May")}));
        QTRY_COMPARE(shelfWindow(*m_shelf).widget().windowTitle(), QStringLiteral("Invoices May"));
        QVERIFY(runXdotool({QStringLiteral("key"), QStringLiteral("Return")}));
        QTRY_VERIFY(!m_shelf->isSettingsPopoverOpen());
        QTRY_VERIFY_WITH_TIMEOUT(savedLabel() && savedLabel()->name == QStringLiteral("Invoices May"), 5000);
    }

    void aPastedNameBecomesOneShortLine_data()
    {
        QTest::addColumn<QString>("pasted");
        QTest::addColumn<QString>("kept");
        QTest::newRow("4,000 characters") << QString(4000, u'n') << QString(256, u'n');
        QTest::newRow("lines") << QStringLiteral("  first\r\nsecond\n\nthird\n")
                               << QStringLiteral("first second third");
        QTest::newRow("lines of a long page")
            << (QString(200, u'a') + QStringLiteral("\n") + QString(3800, u'b'))
            << (QString(200, u'a') + QLatin1Char(' ') + QString(55, u'b'));
    }

    void aPastedNameBecomesOneShortLine()
    {
        QFETCH(QString, pasted);
        QFETCH(QString, kept);
        DragSessionSettingsPopover* popover = openByClick();
        QVERIFY(popover);
        QTRY_VERIFY(popover->nameField().hasFocus());
        QGuiApplication::clipboard()->setText(pasted);
        QVERIFY(runXdotool({QStringLiteral("key"), QStringLiteral("ctrl+v")}));
        QTRY_COMPARE(m_shelf->label().name.value_or(QString()), kept);
        QCOMPARE(popover->nameField().text(), kept);
        QCOMPARE(shelfWindow(*m_shelf).widget().windowTitle(), kept);
    }

    void theShelfClosingTakesThePopoverAlong()
    {
        QPointer<DragSessionSettingsPopover> popover = openByClick();
        QVERIFY(popover);
        m_shelf->stop(false);
        QTRY_VERIFY(!popover);
        QVERIFY(!m_shelf->isSettingsPopoverOpen());
    }

    // Pictures of the open popover in the desktop's light and dark colours, to look at.
    void screenshots()
    {
        DragSessionLabel label = m_shelf->label();
        label.name = QStringLiteral("Holiday photos");
        label.color = DragSessionLabelColor(DragSessionLabelColor::Identifier::green);
        label.pinned = true;
        m_shelf->setLabel(label);
        for (const bool dark : {false, true}) {
            const QPalette original = QApplication::palette();
            if (dark) {
                QPalette palette;
                palette.setColor(QPalette::Window, QColor(0x2b, 0x2d, 0x31));
                palette.setColor(QPalette::WindowText, QColor(0xe6, 0xe6, 0xe6));
                palette.setColor(QPalette::Base, QColor(0x1e, 0x1f, 0x22));
                palette.setColor(QPalette::Text, QColor(0xe6, 0xe6, 0xe6));
                palette.setColor(QPalette::Button, QColor(0x3a, 0x3c, 0x40));
                palette.setColor(QPalette::ButtonText, QColor(0xe6, 0xe6, 0xe6));
                QApplication::setPalette(palette);
            }
            // Opened without X input, so that this also runs at any scale factor.
            QVERIFY(m_shelf->showSettingsPopover());
            QTRY_VERIFY(shelfView(*m_shelf).settingsPopover() &&
                        shelfView(*m_shelf).settingsPopover()->isVisible());
            DragSessionSettingsPopover* popover = shelfView(*m_shelf).settingsPopover();
            QTest::qWait(300);
            const QRect area = shelfWindow(*m_shelf)
                                   .widget()
                                   .geometry()
                                   .united(popover->geometry())
                                   .adjusted(-20, -20, 20, 20);
            const QPixmap shot = QGuiApplication::primaryScreen()->grabWindow(0, area.x(), area.y(),
                                                                              area.width(), area.height());
            const QString path =
                dark ? QStringLiteral("/tmp/popover-dark.png") : QStringLiteral("/tmp/popover.png");
            QVERIFY(shot.save(path));
            // The popover is drawn: its pixels are not the empty screen's.
            const QImage image = shot.toImage();
            const QPoint inside = popover->geometry().center() - area.topLeft();
            QVERIFY(image.pixelColor(inside) != image.pixelColor(2, 2));
            popover->close();
            QTRY_VERIFY(!m_shelf->isSettingsPopoverOpen());
            QApplication::setPalette(original);
        }
    }

private:
    void click(const QPoint& point)
    {
        QVERIFY(runXdotool({QStringLiteral("mousemove"), QString::number(point.x()),
                            QString::number(point.y()), QStringLiteral("click"), QStringLiteral("1")}));
    }

    // Clicks the colour grabber and waits for the popover.
    DragSessionSettingsPopover* openByClick()
    {
        QtDragSessionView& view = shelfView(*m_shelf);
        const QRect hit = view.grabberHitRect();
        click(view.mapToGlobal(QPoint(hit.center().x(), hit.top() + 10)));
        if (!QTest::qWaitFor(
                [&view] { return view.settingsPopover() && view.settingsPopover()->isVisible(); })) {
            return nullptr;
        }
        return view.settingsPopover();
    }

    std::optional<DragSessionLabel> savedLabel()
    {
        const auto session = m_shelves->store.session(m_shelf->id());
        return session ? session->label() : std::nullopt;
    }

    QtScreenEnvironment m_screens;
    QtClipboardSource m_clipboard;
    std::unique_ptr<ShelfFixture> m_shelves;
    std::shared_ptr<DragSessionCoordinator> m_shelf;
};

QTEST_MAIN(TestShelfSettingsPopover)
#include "TestShelfSettingsPopover.moc"
