// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "App/DragSessionHistoryMenuItemFactory.h"
#include "Domains/DragSession/PersistentDragSessionFetchController.h"
#include "Libraries/Core/ManualClock.h"
#include "Models/Draggable/DraggableFile.h"
#include "support/FakeFileWatcher.h"
#include "support/FakeShelfInterface.h"
#include "support/ShelfFixture.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QMenu>
#include <QTest>

using namespace Vantrope;
using namespace std::chrono_literals;

// The recent-shelves part of the tray menu over a real store with real files.
class TestDragSessionHistoryMenuItemFactory final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void init()
    {
        m_clock = std::make_unique<ManualClock>();
        m_shelves = std::make_unique<Test::ShelfFixture>(
            Test::ShelfFixture::Platform{*m_clock, m_fileWatcher, m_screens, m_clipboard});
        m_fetch = std::make_unique<PersistentDragSessionFetchController>(m_shelves->store, [this] {
            QSet<QString> open;
            for (const auto& coordinator : sessions().coordinators()) {
                open.insert(coordinator->id());
            }
            return open;
        });
        m_factory = std::make_unique<DragSessionHistoryMenuItemFactory>(*m_fetch, sessions());
    }

    void cleanup()
    {
        m_factory.reset();
        m_shelves.reset();
    }

    void structure_data()
    {
        QTest::addColumn<int>("pinned");
        QTest::addColumn<int>("unpinned");
        QTest::addColumn<int>("openUnpinned");
        QTest::newRow("nothing saved") << 0 << 0 << 0;
        QTest::newRow("recent only") << 0 << 3 << 0;
        QTest::newRow("pinned and recent") << 2 << 3 << 0;
        QTest::newRow("open shelves are left out") << 1 << 3 << 2;
        QTest::newRow("all recent ones open") << 1 << 2 << 2;
    }

    void structure()
    {
        QFETCH(int, pinned);
        QFETCH(int, unpinned);
        QFETCH(int, openUnpinned);
        for (int i = 0; i < pinned; ++i) {
            save(QStringLiteral("P%1").arg(i), {QStringLiteral("p%1.txt").arg(i)}, true);
        }
        for (int i = 0; i < unpinned; ++i) {
            save(QStringLiteral("R%1").arg(i), {QStringLiteral("r%1.txt").arg(i)});
        }
        for (int i = 0; i < openUnpinned; ++i) {
            QVERIFY(sessions().openDragSession(QStringLiteral("R%1").arg(i)));
        }

        QMenu menu;
        m_factory->addItems(menu);
        const QList<QAction*> actions = menu.actions();
        const auto section = std::find_if(actions.cbegin(), actions.cend(), [](const QAction* action) {
            return action->isSeparator() && action->text() == QStringLiteral("Pinned Shelves");
        });
        QCOMPARE(section != actions.cend(), pinned > 0);
        QCOMPARE(sessionMenus(menu).size(), pinned);

        QMenu* recent = submenu(menu, QStringLiteral("Recent Shelves"));
        QVERIFY(recent);
        QCOMPARE(sessionMenus(*recent).size(), unpinned - openUnpinned);
        QCOMPARE(recent->isEnabled(), unpinned > openUnpinned);
        QCOMPARE(recent->actions().last()->text(), QStringLiteral("Clear List"));
        QVERIFY(!recent->actions().last()->toolTip().isEmpty());
    }

    void itemsActOnTheirShelf_data()
    {
        QTest::addColumn<QString>("item");
        QTest::addColumn<int>("openShelves");
        QTest::addColumn<QStringList>("remaining");
        QTest::newRow("open") << QStringLiteral("Open Shelf") << 1
                              << QStringList{QStringLiteral("A"), QStringLiteral("B")};
        QTest::newRow("remove") << QStringLiteral("Remove from Recent Shelves") << 0
                                << QStringList{QStringLiteral("B")};
        QTest::newRow("clear the list") << QStringLiteral("Clear List") << 0 << QStringList{};
    }

    void itemsActOnTheirShelf()
    {
        QFETCH(QString, item);
        QFETCH(int, openShelves);
        QFETCH(QStringList, remaining);
        save(QStringLiteral("B"), {QStringLiteral("b.txt")});
        m_clock->advance(60s);
        save(QStringLiteral("A"), {QStringLiteral("a.txt"), QStringLiteral("a2.txt")});

        QMenu menu;
        m_factory->addItems(menu);
        QMenu* recent = submenu(menu, QStringLiteral("Recent Shelves"));
        QVERIFY(recent);
        // The newest first.
        QMenu* newest = sessionMenus(*recent).value(0);
        QVERIFY(newest);
        QCOMPARE(newest->title(), QStringLiteral("a.txt and 1 more"));
        QAction* chosen = action(item == QStringLiteral("Clear List") ? *recent : *newest, item);
        QVERIFY(chosen);
        chosen->trigger();
        m_shelves->store.flush();

        const auto shelves = sessions().coordinators();
        QCOMPARE(shelves.size(), openShelves);
        if (openShelves) {
            QCOMPARE(shelves.first()->id(), QStringLiteral("A"));
            QCOMPARE(shelves.first()->itemsController().items().size(), 2);
        }
        QStringList stored;
        for (const auto& session : m_shelves->store.sessions()) {
            stored.append(session->identifier());
        }
        QCOMPARE(stored, remaining);
    }

    void title_data()
    {
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("title");
        QTest::newRow("named shelf") << QStringList{QStringLiteral("a.txt")} << QStringLiteral("Invoices")
                                     << QStringLiteral("Invoices");
        QTest::newRow("one file") << QStringList{QStringLiteral("only.pdf")} << QString()
                                  << QStringLiteral("only.pdf");
        QTest::newRow("first in the shelf's order, not the file's")
            << QStringList{QStringLiteral("zebra.txt"), QStringLiteral("apple.txt"),
                           QStringLiteral("mango.txt")}
            << QString() << QStringLiteral("zebra.txt and 2 more");
    }

    void title()
    {
        QFETCH(QStringList, files);
        QFETCH(QString, name);
        QFETCH(QString, title);
        const auto session = save(QStringLiteral("T"), files, false, name);
        QCOMPARE(DragSessionHistoryMenuItemFactory::title(*session), title);
    }

private:
    PersistentDragSessionPtr save(const QString& identifier, const QStringList& names, bool pinned = false,
                                  const QString& name = {})
    {
        DraggableList items;
        QStringList order;
        for (const QString& fileName : names) {
            const QString path = m_shelves->dir.filePath(identifier + QLatin1Char('/') + fileName);
            Test::writeFile(path, fileName.toUtf8());
            items.append(DraggableFile::make(QUrl::fromLocalFile(path)));
            order.append(items.last()->cacheKey());
        }
        DragSessionLabel label = DragSessionLabel::gray(false);
        label.pinned = pinned;
        if (!name.isEmpty()) {
            label.name = name;
        }
        auto session = std::make_shared<PersistentDragSession>(
            identifier, m_clock->currentDateTime(), label,
            PersistentDragSession::collectBookmarks(items, [](quint64) { return std::nullopt; }), order);
        m_shelves->store.addSessionNow(session);
        return session;
    }

    static QList<QMenu*> sessionMenus(const QMenu& menu)
    {
        QList<QMenu*> menus;
        for (QAction* action : menu.actions()) {
            if (action->menu() && TestDragSessionHistoryMenuItemFactory::action(
                                      *action->menu(), QStringLiteral("Open Shelf"))) {
                menus.append(action->menu());
            }
        }
        return menus;
    }

    static QMenu* submenu(const QMenu& menu, const QString& title)
    {
        const QAction* found = action(menu, title);
        return found ? found->menu() : nullptr;
    }

    static QAction* action(const QMenu& menu, const QString& text)
    {
        for (QAction* action : menu.actions()) {
            if (action->text() == text) {
                return action;
            }
        }
        return nullptr;
    }

    SessionController& sessions() const { return *m_shelves->controller; }

    std::unique_ptr<ManualClock> m_clock;
    Test::FakeFileWatcher m_fileWatcher;
    Test::FakeScreens m_screens;
    Test::FakeClipboard m_clipboard;
    std::unique_ptr<Test::ShelfFixture> m_shelves;
    std::unique_ptr<PersistentDragSessionFetchController> m_fetch;
    std::unique_ptr<DragSessionHistoryMenuItemFactory> m_factory;
};

QTEST_MAIN(TestDragSessionHistoryMenuItemFactory)
#include "TestDragSessionHistoryMenuItemFactory.moc"
