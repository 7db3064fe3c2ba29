// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/Actions/TestActions.h"
#include "Platform/Qt/DragSessionInlineEditor.h"
#include "Platform/Qt/DragSessionSearchView.h"
#include "Platform/Qt/QtActionsMenu.h"

#include <QIcon>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QTest>

using namespace Vantrope;

namespace {

QStringList strings(std::initializer_list<const char*> values)
{
    QStringList result;
    for (const char* value : values) {
        result.append(QString::fromUtf8(value));
    }
    return result;
}

ActionMenuEntry row(const QString& identifier)
{
    auto action = std::make_shared<Test::TestAction>(identifier, ActionCategory::primary,
                                                     identifier + QStringLiteral(" title"));
    return ActionMenuEntry{
        ActionMenuEntry::ActionRow{action, action->title(), QStringLiteral("document-open"), true}};
}

ActionMenuEntry separator()
{
    return ActionMenuEntry{ActionMenuEntry::Separator{}};
}

// The menu as text: "-" for a separator, "name>" opening a submenu, "[x]"/"[ ]" for marked rows.
QStringList describe(const QMenu& menu, const QString& indent = {})
{
    QStringList lines;
    for (QAction* action : menu.actions()) {
        if (action->isSeparator()) {
            lines.append(indent + QStringLiteral("-"));
        } else if (action->menu()) {
            lines.append(indent + action->text() + QStringLiteral(">"));
            lines.append(describe(*action->menu(), indent + QStringLiteral("  ")));
        } else {
            const QString mark = action->isCheckable()
                                     ? (action->isChecked() ? QStringLiteral("[x] ") : QStringLiteral("[ ] "))
                                     : QString();
            lines.append(indent + mark + action->text() +
                         (action->isEnabled() ? QString() : QStringLiteral(" (off)")));
        }
    }
    return lines;
}

SearchItem item(const QString& identifier, const QString& title, QStringList keywords = {})
{
    return SearchItem{identifier, title, QString(), std::move(keywords)};
}

} // namespace

// The shelf's action menu as Qt shows it, and its type-to-search field, on the offscreen platform.
class TestShelfActionsUi final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void menuKeepsGroupsSeparatorsAndSubmenus()
    {
        ActionMenuEntry::Submenu share{QStringLiteral("More"),
                                       QStringLiteral("document-share"),
                                       QStringLiteral("Share"),
                                       {row(QStringLiteral("fifth"))}};
        ActionMenuEntry disabled = row(QStringLiteral("off"));
        std::get<ActionMenuEntry::ActionRow>(disabled.value).enabled = false;
        ActionMenuEntry marked = row(QStringLiteral("orange"));
        std::get<ActionMenuEntry::ActionRow>(marked.value).checked = true;
        ActionMenuEntry unmarked = row(QStringLiteral("blue"));
        std::get<ActionMenuEntry::ActionRow>(unmarked.value).checked = false;
        const ActionsControllerMenu value{QStringLiteral("Actions"),
                                          {row(QStringLiteral("open")), disabled, separator(),
                                           row(QStringLiteral("mail")), ActionMenuEntry{share},
                                           ActionMenuEntry{ActionMenuEntry::OperationRow{
                                               {QStringLiteral("convert"), QStringLiteral("Convert"), {}}}},
                                           separator(),
                                           ActionMenuEntry{ActionMenuEntry::Submenu{
                                               QStringLiteral("Red shelf"),
                                               {},
                                               QStringLiteral("Shelf Settings"),
                                               {row(QStringLiteral("name")), separator(), marked, unmarked}}},
                                           separator()}};

        std::unique_ptr<QMenu> menu(QtActionsMenu::build(value, nullptr, {}));
        QCOMPARE(menu->title(), QStringLiteral("Actions"));
        QCOMPARE(describe(*menu), strings({"open title", "off title (off)", "-", "mail title", "More>",
                                           "  fifth title", "Convert", "-", "Red shelf>", "  name title",
                                           "  -", "  [x] orange title", "  [ ] blue title"}));
        QCOMPARE(menu->actions().at(4)->icon().name(),
                 QIcon::fromTheme(QStringLiteral("document-share")).name());
    }

    void emptyGroupsLeaveNoDoubleSeparators()
    {
        const ActionsControllerMenu value{
            QStringLiteral("Actions"),
            {separator(), row(QStringLiteral("a")), separator(), separator(), row(QStringLiteral("b"))}};
        std::unique_ptr<QMenu> menu(QtActionsMenu::build(value, nullptr, {}));
        QCOMPARE(describe(*menu), strings({"a title", "-", "b title"}));
    }

    void choosingARowHandsBackItsEntry()
    {
        const ActionsControllerMenu value{
            QStringLiteral("Actions"),
            {row(QStringLiteral("open")),
             ActionMenuEntry{
                 ActionMenuEntry::Submenu{QStringLiteral("More"), {}, {}, {row(QStringLiteral("deep"))}}},
             ActionMenuEntry{
                 ActionMenuEntry::OperationRow{{QStringLiteral("convert"), QStringLiteral("Convert"), {}}}}}};
        QStringList chosen;
        std::unique_ptr<QMenu> menu(
            QtActionsMenu::build(value, nullptr, [&chosen](const ActionMenuEntry& entry) {
                if (const auto* action = std::get_if<ActionMenuEntry::ActionRow>(&entry.value)) {
                    chosen.append(action->action->identifier());
                } else if (const auto* operation = std::get_if<ActionMenuEntry::OperationRow>(&entry.value)) {
                    chosen.append(QStringLiteral("operation:") + operation->item.identifier);
                }
            }));
        menu->actions().at(1)->menu()->actions().at(0)->trigger();
        menu->actions().at(2)->trigger();
        menu->actions().at(0)->trigger();
        QCOMPARE(chosen, strings({"deep", "operation:convert", "open"}));
    }

    void searchFiltersAndSuggests_data()
    {
        QTest::addColumn<QStringList>("recent");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QStringList>("shown");

        QTest::newRow("recent first")
            << strings({"compress", "openfile"}) << QString() << strings({"compress", "openfile"});
        QTest::newRow("recent not on offer: suggested")
            << strings({"gone"}) << QString() << strings({"openfile", "copy_to_pasteboard"});
        QTest::newRow("title prefix") << QStringList() << "com" << strings({"compress"});
        QTest::newRow("keyword") << QStringList() << "zip" << strings({"compress"});
        QTest::newRow("accents and case") << QStringList() << "ÉMPTY" << strings({"clear_shelf"});
        QTest::newRow("two words") << QStringList() << "copy cl" << strings({"copy_to_pasteboard"});
        QTest::newRow("nothing") << QStringList() << "xyz" << QStringList();
    }

    void searchFiltersAndSuggests()
    {
        QFETCH(QStringList, recent);
        QFETCH(QString, typed);
        QFETCH(QStringList, shown);
        QWidget host;
        DragSessionView::SearchRequest request = makeRequest();
        request.recentIdentifiers = recent;
        auto* search = new DragSessionSearchView(request, &host);
        QTest::keyClicks(&search->field(), typed);
        QCOMPARE(search->shownIdentifiers(), shown);
    }

    void searchKeys_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QList<int>>("keys");
        QTest::addColumn<QString>("outcome");

        QTest::newRow("enter runs the first") << "c" << QList<int>{Qt::Key_Return} << "compress";
        QTest::newRow("down then enter")
            << "c" << QList<int>{Qt::Key_Down, Qt::Key_Return} << "copy_to_pasteboard";
        QTest::newRow("down stops at the end")
            << "c" << QList<int>{Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}
            << "clear_shelf";
        QTest::newRow("up stops at the top")
            << "c" << QList<int>{Qt::Key_Down, Qt::Key_Up, Qt::Key_Up, Qt::Key_Enter} << "compress";
        QTest::newRow("suggestion skips its heading") << "" << QList<int>{Qt::Key_Return} << "openfile";
        QTest::newRow("escape dismisses") << "c" << QList<int>{Qt::Key_Escape} << "<dismissed>";
        QTest::newRow("enter on no match does nothing") << "xyz" << QList<int>{Qt::Key_Return} << "";
    }

    void searchKeys()
    {
        QFETCH(QString, typed);
        QFETCH(QList<int>, keys);
        QFETCH(QString, outcome);
        QWidget host;
        QStringList answers;
        DragSessionView::SearchRequest request = makeRequest();
        request.select = [&answers](const QString& identifier) { answers.append(identifier); };
        request.dismiss = [&answers] { answers.append(QStringLiteral("<dismissed>")); };
        QPointer<DragSessionSearchView> search = new DragSessionSearchView(request, &host);
        QTest::keyClicks(&search->field(), typed);
        for (const int key : keys) {
            QTest::keyClick(&search->field(), Qt::Key(key));
        }
        QCOMPARE(answers, outcome.isEmpty() ? QStringList() : QStringList{outcome});
        // It answers once and goes; no key after that answers again.
        if (!outcome.isEmpty()) {
            QTRY_VERIFY(!search);
        }
    }

    void inlineEditorAnswersOnce_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("answer");
        QTest::newRow("enter") << "new name.txt" << int(Qt::Key_Return) << "new name.txt";
        QTest::newRow("escape") << "new name.txt" << int(Qt::Key_Escape) << "<none>";
    }

    void inlineEditorAnswersOnce()
    {
        QFETCH(QString, typed);
        QFETCH(int, key);
        QFETCH(QString, answer);
        QWidget host;
        QStringList answers;
        QPointer<DragSessionInlineEditor> editor = new DragSessionInlineEditor(
            QStringLiteral("report.final.pdf"),
            [&answers](const std::optional<QString>& text) {
                answers.append(text.value_or(QStringLiteral("<none>")));
            },
            &host);
        // The name is selected without its extension.
        QCOMPARE(editor->selectedText(), QStringLiteral("report"));
        editor->selectAll();
        QTest::keyClicks(editor, typed);
        QTest::keyClick(editor, Qt::Key(key));
        QCOMPARE(answers, QStringList{answer});
        QTRY_VERIFY(!editor);
        QCOMPARE(answers.size(), 1);
    }

private:
    static DragSessionView::SearchRequest makeRequest()
    {
        DragSessionView::SearchRequest request;
        request.items = {
            item(QStringLiteral("openfile"), QStringLiteral("Open")),
            item(QStringLiteral("compress"), QStringLiteral("Compress"),
                 {QStringLiteral("zip"), QStringLiteral("archive")}),
            item(QStringLiteral("copy_to_pasteboard"), QStringLiteral("Copy to Clipboard")),
            item(QStringLiteral("clear_shelf"), QStringLiteral("Clear Shelf"), {QStringLiteral("émpty")})};
        request.suggestedIdentifiers = {QStringLiteral("openfile"), QStringLiteral("copy_to_pasteboard")};
        request.placeholder = QStringLiteral("Search");
        return request;
    }
};

QTEST_MAIN(TestShelfActionsUi)
#include "TestShelfActionsUi.moc"
