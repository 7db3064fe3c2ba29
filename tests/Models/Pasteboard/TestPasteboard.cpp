// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Models/Pasteboard/Pasteboard.h"
#include "Models/Pasteboard/PasteboardTypes.h"

#include <QMimeData>
#include <QTest>

using namespace Vantrope;

class TestPasteboard final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void splitsMimeData_data()
    {
        QTest::addColumn<QByteArray>("uriList");
        QTest::addColumn<bool>("withText");
        QTest::addColumn<QList<QByteArray>>("expectedUrls");
        QTest::addColumn<bool>("firstCarriesText");

        QTest::newRow("no urls: one item") << QByteArray() << true << QList<QByteArray>{QByteArray()} << true;
        QTest::newRow("one url keeps the other types") << QByteArray("https://example.org/a\r\n") << true
                                                       << QList<QByteArray>{"https://example.org/a"} << true;
        QTest::newRow("each url its own item")
            << QByteArray("file:///tmp/a\r\nfile:///tmp/b%20c\r\n") << true
            << QList<QByteArray>{"file:///tmp/a", "file:///tmp/b%20c"} << false;
        QTest::newRow("comments and blank lines skipped")
            << QByteArray("# from a file manager\r\n\r\nfile:///tmp/a\nfile:///tmp/b\n") << false
            << QList<QByteArray>{"file:///tmp/a", "file:///tmp/b"} << false;
    }

    void splitsMimeData()
    {
        QFETCH(QByteArray, uriList);
        QFETCH(bool, withText);
        QFETCH(QList<QByteArray>, expectedUrls);
        QFETCH(bool, firstCarriesText);

        QMimeData mime;
        if (!uriList.isEmpty()) {
            mime.setData(PasteboardTypes::uriList, uriList);
        }
        if (withText) {
            mime.setData(PasteboardTypes::plainText, "some words");
        }
        const Pasteboard pasteboard = Pasteboard::fromMimeData(mime, 7);
        QCOMPARE(pasteboard.changeCount(), 7);
        QCOMPARE(pasteboard.items().size(), expectedUrls.size());
        for (qsizetype i = 0; i < expectedUrls.size(); ++i) {
            QCOMPARE(pasteboard.items()[i].data(PasteboardTypes::uriList).value_or(QByteArray()),
                     expectedUrls[i]);
        }
        QCOMPARE(pasteboard.items().first().hasType(PasteboardTypes::plainText), firstCarriesText);
    }

    void hugeUriListIsLinear()
    {
        QByteArray list;
        for (int i = 0; i < 100000; ++i) {
            list += "file:///tmp/f" + QByteArray::number(i) + "\r\n";
        }
        QMimeData mime;
        mime.setData(PasteboardTypes::uriList, list);
        const Pasteboard pasteboard = Pasteboard::fromMimeData(mime);
        QCOMPARE(pasteboard.items().size(), 100000);
        QCOMPARE(pasteboard.items().last().data(PasteboardTypes::uriList).value(),
                 QByteArray("file:///tmp/f99999"));
    }

    void stringsMustBeUtf8()
    {
        PasteboardItem item;
        item.setData(PasteboardTypes::plainText, QByteArray("caf\xc3\xa9"));
        item.setData(PasteboardTypes::html, QByteArray("\xff\xfe<\x00"));
        QCOMPARE(item.string(PasteboardTypes::plainText), QStringLiteral("café"));
        QVERIFY(!item.string(PasteboardTypes::html));
        QVERIFY(!item.string(PasteboardTypes::rtf));
    }
};

QTEST_GUILESS_MAIN(TestPasteboard)
#include "TestPasteboard.moc"
