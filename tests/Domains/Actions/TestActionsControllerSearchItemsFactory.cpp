// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/Actions/ActionIdentifiers.h"
#include "Domains/Actions/ActionsControllerSearchItemsFactory.h"
#include "TestActions.h"

#include <QTest>

using namespace Vantrope;
using Factory = ActionsControllerSearchItemsFactory;

Q_DECLARE_METATYPE(ActionCategory)

namespace {

ActionSearchItem searchItem(const QString& identifier)
{
    return {identifier, identifier, {}, {}};
}

QStringList identifiers(const QList<ActionSearchItem>& items)
{
    QStringList result;
    for (const ActionSearchItem& item : items) {
        result.append(item.identifier);
    }
    return result;
}

} // namespace

// The shelf's search list: what enters it, in which order, under which words, and what shows first.
class TestActionsControllerSearchItemsFactory final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void titlesLoseTheirDots_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("expected");
        QTest::newRow("three dots") << QStringLiteral("Rename...") << QStringLiteral("Rename");
        QTest::newRow("ellipsis character")
            << QStringLiteral("Open With\u2026") << QStringLiteral("Open With");
        QTest::newRow("both, inside too") << QStringLiteral("Send...to\u2026") << QStringLiteral("Sendto");
        QTest::newRow("two dots stay") << QStringLiteral("v1..2") << QStringLiteral("v1..2");
        QTest::newRow("four dots leave one") << QStringLiteral("Wait....") << QStringLiteral("Wait.");
        QTest::newRow("plain") << QStringLiteral("Compress") << QStringLiteral("Compress");
    }

    void titlesLoseTheirDots()
    {
        QFETCH(QString, title);
        QFETCH(QString, expected);
        auto action = Test::makeAction(QStringLiteral("x"), ActionCategory::shelf, title);
        const QList<Factory::Element> elements = Factory({action}, {}, {}).makeElements();
        QCOMPARE(elements.size(), 1);
        QCOMPARE(elements.first().item.title, expected);
        QCOMPARE(Factory::searchTitle(title), expected);
    }

    void keywordsByAction_data()
    {
        QTest::addColumn<QString>("identifier");
        QTest::addColumn<ActionCategory>("category");
        QTest::addColumn<QStringList>("keywords");
        QTest::newRow("upload") << QStringLiteral("s3") << ActionCategory::upload
                                << QStringList{QStringLiteral("cloud"), QStringLiteral("upload"),
                                               QStringLiteral("compress")};
        QTest::newRow("copy") << ActionIdentifiers::copyToPasteboard << ActionCategory::shelf
                              << QStringList{QStringLiteral("pasteboard"), QStringLiteral("copy"),
                                             QStringLiteral("clipboard")};
        QTest::newRow("add from clipboard")
            << ActionIdentifiers::addFromClipboard << ActionCategory::shelf
            << QStringList{QStringLiteral("pasteboard"), QStringLiteral("paste")};
        QTest::newRow("clear") << ActionIdentifiers::clearShelf << ActionCategory::supplementary
                               << QStringList{QStringLiteral("remove"), QStringLiteral("empty")};
        QTest::newRow("compress") << ActionIdentifiers::compress << ActionCategory::shelf
                                  << QStringList{QStringLiteral("archive"), QStringLiteral("compress")};
        QTest::newRow("mail") << QStringLiteral("sharingservice_email") << ActionCategory::systemShare
                              << QStringList{QStringLiteral("email"), QStringLiteral("send")};
        QTest::newRow("bluetooth") << QStringLiteral("sharingservice_bluetooth")
                                   << ActionCategory::systemShare << QStringList{QStringLiteral("bluetooth")};
        QTest::newRow("a phone") << QStringLiteral("sharingservice_kdeconnect_1234")
                                 << ActionCategory::systemShare << QStringList();
        QTest::newRow("open") << ActionIdentifiers::openFile << ActionCategory::primary << QStringList();
    }

    void keywordsByAction()
    {
        QFETCH(QString, identifier);
        QFETCH(ActionCategory, category);
        QFETCH(QStringList, keywords);
        auto action = Test::makeAction(identifier, category);
        const QList<Factory::Element> elements = Factory({action}, {}, {}).makeElements();
        QCOMPARE(elements.size(), 1);
        QCOMPARE(elements.first().item.keywords, keywords);
        QCOMPARE(elements.first().item.identifier, identifier);
        QCOMPARE(elements.first().item.iconName, QStringLiteral("icon-") + identifier);
    }

    void elementsComeInOrderWithTheirBackings()
    {
        auto open = Test::makeAction(QStringLiteral("openfile"), ActionCategory::primary);
        auto openWith = Test::makeAction(QStringLiteral("openfilewith"), ActionCategory::primary);
        openWith->searchable = false;
        auto copy = Test::makeAction(QStringLiteral("copy_to_pasteboard"), ActionCategory::shelf);
        const QList<OperationsProvider::SearchElement> operations{
            {OperationsProvider::SearchElement::Kind::operationType,
             QStringLiteral("op.resize"),
             QStringLiteral("Resize Images..."),
             QStringLiteral("transform-scale"),
             {QStringLiteral("image")}},
            {OperationsProvider::SearchElement::Kind::userOperation,
             QStringLiteral("7f1c"),
             QStringLiteral("My script"),
             QStringLiteral("run-build"),
             {}},
        };
        int pinned = 0;
        int unpinned = 0;
        const QList<ActionsControllerSupplementarySearchAction> supplementary{
            {searchItem(QStringLiteral("custom_pin")), [] { return true; },
             [&pinned] { return ++pinned > 0; }},
            {searchItem(QStringLiteral("custom_unpin")), [] { return false; },
             [&unpinned] { return ++unpinned > 0; }},
        };
        const QList<Factory::Element> elements =
            Factory({open, openWith, copy}, operations, supplementary).makeElements();

        QStringList order;
        for (const Factory::Element& element : elements) {
            order.append(element.item.identifier);
        }
        // Not searchable and not offered are both left out.
        QCOMPARE(order, (QStringList{QStringLiteral("openfile"), QStringLiteral("copy_to_pasteboard"),
                                     QStringLiteral("op.resize"), QStringLiteral("7f1c"),
                                     QStringLiteral("custom_pin")}));
        QCOMPARE(std::get<Factory::ActionBacking>(elements[1].backing).action, ActionPtr(copy));
        const auto& operation = std::get<Factory::OperationBacking>(elements[2].backing);
        QCOMPARE(operation.element, operations.first());
        QCOMPARE(elements[2].item.title, QStringLiteral("Resize Images"));
        QCOMPARE(elements[2].item.keywords, QStringList{QStringLiteral("image")});
        QCOMPARE(elements[4].item, supplementary.first().item);
        QVERIFY(std::get<Factory::SupplementaryBacking>(elements[4].backing).perform());
        QCOMPARE(pinned, 1);
        QCOMPARE(unpinned, 0);
    }

    void suggestion_data()
    {
        QTest::addColumn<QStringList>("offered");
        QTest::addColumn<QStringList>("history");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("recent ones in the order of the history")
            << QStringList{QStringLiteral("openfile"), QStringLiteral("compress"), QStringLiteral("s3")}
            << QStringList{QStringLiteral("s3"), QStringLiteral("gone"), QStringLiteral("openfile")}
            << QStringLiteral("Recent") << QStringList{QStringLiteral("s3"), QStringLiteral("openfile")};
        QTest::newRow("history of things not on offer gives the suggested ones")
            << QStringList{QStringLiteral("copy_to_pasteboard"), QStringLiteral("compress"),
                           QStringLiteral("openfile"), QStringLiteral("sharingservice_email")}
            << QStringList{QStringLiteral("cloud-drive")} << QStringLiteral("Suggested")
            << QStringList{QStringLiteral("copy_to_pasteboard"), QStringLiteral("openfile"),
                           QStringLiteral("sharingservice_email")};
        QTest::newRow("empty history offers only the suggested ones that are there")
            << QStringList{QStringLiteral("compress"), QStringLiteral("copy_to_pasteboard")} << QStringList()
            << QStringLiteral("Suggested") << QStringList{QStringLiteral("copy_to_pasteboard")};
        QTest::newRow("nothing to suggest") << QStringList{QStringLiteral("compress")} << QStringList()
                                            << QStringLiteral("Suggested") << QStringList();
    }

    void suggestion()
    {
        QFETCH(QStringList, offered);
        QFETCH(QStringList, history);
        QFETCH(QString, title);
        QFETCH(QStringList, expected);
        QList<ActionSearchItem> items;
        for (const QString& identifier : offered) {
            items.append(searchItem(identifier));
        }
        const Factory::Suggestion suggestion = Factory::suggestion(items, history);
        QCOMPARE(suggestion.title, title);
        QCOMPARE(identifiers(suggestion.items), expected);
    }
};

QTEST_GUILESS_MAIN(TestActionsControllerSearchItemsFactory)
#include "TestActionsControllerSearchItemsFactory.moc"
