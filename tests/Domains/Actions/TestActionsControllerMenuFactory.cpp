// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/Actions/ActionsControllerMenuFactory.h"
#include "MenuDescription.h"
#include "support/TestSupport.h"
#include "TestActions.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using Vantrope::Test::categoryNamed;
using Vantrope::Test::describeMenu;

namespace {

// "id:category", or "id:category:hidden" for an action that brings no menu row.
ActionList makeActions(const QStringList& rows)
{
    ActionList actions;
    for (const QString& row : rows) {
        const QStringList parts = row.split(QLatin1Char(':'));
        auto action = Test::makeAction(parts[0], categoryNamed(parts[1]));
        action->hiddenFromMenu = parts.size() > 2 && parts[2] == QStringLiteral("hidden");
        actions.append(action);
    }
    return actions;
}

QList<OperationsProvider::MenuItem> makeOperations(const QStringList& identifiers)
{
    QList<OperationsProvider::MenuItem> items;
    for (const QString& identifier : identifiers) {
        items.append({identifier, identifier, QStringLiteral("run-build")});
    }
    return items;
}

QList<ActionCategory> makeCategories(const QStringList& names)
{
    QList<ActionCategory> categories;
    for (const QString& name : names) {
        categories.append(categoryNamed(name));
    }
    return categories;
}

// Brings its own row: a submenu, as an "open with" list of programs would.
class SubmenuProvider final : public ActionMenuItemProvider {
public:
    std::optional<ActionMenuEntry> makeMenuEntry(const std::shared_ptr<Action>& action,
                                                 const ActionItemList& items) const override
    {
        ActionMenuEntry::Submenu submenu{action->title(), action->iconName(), QStringLiteral("Programs"), {}};
        for (const ActionItem& item : items) {
            submenu.entries.push_back(
                ActionMenuEntry{ActionMenuEntry::ActionRow{action, item.url().fileName(), {}, true}});
        }
        return ActionMenuEntry{std::move(submenu)};
    }
};

class OpenWithTestAction final : public Test::TestAction {
public:
    OpenWithTestAction()
        : TestAction(QStringLiteral("openwith"), ActionCategory::primary)
    {}
    const ActionMenuItemProvider* menuItemProvider() const override { return &m_provider; }

private:
    SubmenuProvider m_provider;
};

} // namespace

// The menu's layout: groups, separators, the share submenu and the place of the file operations.
class TestActionsControllerMenuFactory final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void layout_data()
    {
        QTest::addColumn<QStringList>("actions");
        QTest::addColumn<QStringList>("operations");
        QTest::addColumn<QStringList>("excluded");
        QTest::addColumn<QStringList>("expected");

        const auto l = [](std::initializer_list<const char*> values) {
            QStringList list;
            for (const char* value : values) {
                list.append(QString::fromUtf8(value));
            }
            return list;
        };

        QTest::newRow("groups by category order, actions keep their order")
            << l({"dock:supplementary", "open:primary", "copy:shelf", "reveal:primary", "s3:upload",
                  "clear:supplementary"})
            << QStringList() << QStringList()
            << l({"action:open", "action:reveal", "---", "action:s3", "---", "action:copy", "---",
                  "action:dock", "action:clear"});
        QTest::newRow("one group has no separator") << l({"copy:shelf", "add:shelf"}) << QStringList()
                                                    << QStringList() << l({"action:copy", "action:add"});
        QTest::newRow("nothing at all") << QStringList() << QStringList() << QStringList() << QStringList();
        QTest::newRow("four share targets stand inline")
            << l({"preview:primary", "s1:systemShare", "s2:systemShare", "s3:systemShare", "s4:systemShare"})
            << QStringList() << QStringList()
            << l({"action:preview", "---", "action:s1", "action:s2", "action:s3", "action:s4"});
        QTest::newRow("the fifth share target sits alone in the submenu")
            << l({"preview:primary", "s1:systemShare", "s2:systemShare", "s3:systemShare", "s4:systemShare",
                  "s5:systemShare", "copy:shelf"})
            << QStringList() << QStringList()
            << l({"action:preview", "---", "action:s1", "action:s2", "action:s3", "action:s4",
                  "Share[action:s5]", "---", "action:copy"});
        QTest::newRow("all share targets beyond four go to the submenu in order")
            << l({"s1:systemShare", "s2:systemShare", "s3:systemShare", "s4:systemShare", "s5:systemShare",
                  "s6:systemShare", "s7:systemShare"})
            << QStringList() << QStringList()
            << l({"action:s1", "action:s2", "action:s3", "action:s4",
                  "Share[action:s5,action:s6,action:s7]"});
        QTest::newRow("operations go before the supplementary group without a separator")
            << l({"open:primary", "copy:shelf", "dock:supplementary"}) << l({"resize", "rename"})
            << QStringList()
            << l({"action:open", "---", "action:copy", "operation:resize", "operation:rename", "---",
                  "action:dock"});
        QTest::newRow("without a supplementary group operations are third of three, before the last")
            << l({"open:primary", "s3:upload", "copy:shelf"}) << l({"resize"}) << QStringList()
            << l({"action:open", "---", "action:s3", "operation:resize", "---", "action:copy"});
        QTest::newRow("with a single group operations come first")
            << l({"copy:shelf"}) << l({"resize"}) << QStringList()
            << l({"operation:resize", "---", "action:copy"});
        QTest::newRow("operations alone")
            << QStringList() << l({"resize"}) << QStringList() << l({"operation:resize"});
        QTest::newRow("excluded operations leave no group")
            << l({"open:primary", "copy:shelf", "dock:supplementary"}) << l({"resize"})
            << l({"fileOperations"}) << l({"action:open", "---", "action:copy", "---", "action:dock"});
        QTest::newRow("an excluded category is left out")
            << l({"open:primary", "copy:shelf", "dock:supplementary"}) << QStringList() << l({"shelf"})
            << l({"action:open", "---", "action:dock"});
        QTest::newRow("excluding the supplementary group moves the operations before the last group")
            << l({"open:primary", "copy:shelf", "dock:supplementary"}) << l({"resize"})
            << l({"supplementary"}) << l({"action:open", "operation:resize", "---", "action:copy"});
        QTest::newRow("an action without a row is skipped, and an empty group leaves no separator")
            << l({"open:primary", "settings:shelf:hidden", "dock:supplementary",
                  "prefs:supplementary:hidden"})
            << QStringList() << QStringList() << l({"action:open", "---", "action:dock"});
        QTest::newRow("operations count a group of hidden actions as absent")
            << l({"open:primary", "copy:shelf", "settings:supplementary:hidden"}) << l({"resize"})
            << QStringList() << l({"action:open", "operation:resize", "---", "action:copy"});
    }

    void layout()
    {
        QFETCH(QStringList, actions);
        QFETCH(QStringList, operations);
        QFETCH(QStringList, excluded);
        QFETCH(QStringList, expected);
        const ActionsControllerMenuFactory factory(
            makeActions(actions), {}, makeOperations(operations),
            ActionsControllerMenuFactory::defaultSystemShareActionsLimit, makeCategories(excluded));
        QCOMPARE(describeMenu(factory.makeMenu().entries), expected);
    }

    void shareSubmenuRowHasItsOwnTitle()
    {
        ActionList actions;
        for (int index = 1; index <= 5; ++index) {
            actions.append(Test::makeAction(QStringLiteral("s%1").arg(index), ActionCategory::systemShare));
        }
        const ActionsControllerMenu menu = ActionsControllerMenuFactory(actions, {}, {}).makeMenu();
        QCOMPARE(menu.title, QStringLiteral("Actions"));
        const auto& submenu = std::get<ActionMenuEntry::Submenu>(menu.entries.back().value);
        QCOMPARE(submenu.menuTitle, QStringLiteral("Share"));
        QCOMPARE(submenu.title, QStringLiteral("More"));
        QVERIFY(!submenu.iconName.isEmpty());
    }

    void anActionsOwnProviderMakesItsRow()
    {
        QTemporaryDir dir;
        QVERIFY(Test::writeFile(dir.filePath(QStringLiteral("a.txt")), "a"));
        QVERIFY(Test::writeFile(dir.filePath(QStringLiteral("b.txt")), "b"));
        const ActionItemList items{
            *ActionItem::fromFile(QUrl::fromLocalFile(dir.filePath(QStringLiteral("a.txt")))),
            *ActionItem::fromFile(QUrl::fromLocalFile(dir.filePath(QStringLiteral("b.txt"))))};
        const ActionList actions{Test::makeAction(QStringLiteral("reveal"), ActionCategory::primary),
                                 std::make_shared<OpenWithTestAction>()};
        const ActionsControllerMenu menu = ActionsControllerMenuFactory(actions, items, {}).makeMenu();
        QCOMPARE(describeMenu(menu.entries),
                 (QStringList{QStringLiteral("action:reveal"),
                              QStringLiteral("Programs[action:openwith,action:openwith]")}));
        const auto& submenu = std::get<ActionMenuEntry::Submenu>(menu.entries.back().value);
        QCOMPARE(std::get<ActionMenuEntry::ActionRow>(submenu.entries[1].value).title,
                 QStringLiteral("b.txt"));
    }
};

QTEST_GUILESS_MAIN(TestActionsControllerMenuFactory)
#include "TestActionsControllerMenuFactory.moc"
