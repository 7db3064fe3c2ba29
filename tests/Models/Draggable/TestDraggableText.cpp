// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Core/ReservedTemporaryDirectory.h"
#include "Libraries/Core/URL.h"
#include "Models/Draggable/DraggableContext.h"
#include "Models/Draggable/DraggableText.h"
#include "Models/Draggable/DraggableWeblocation.h"
#include "Models/Draggable/RichTextConverter.h"
#include "Models/Pasteboard/PasteboardTypes.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>
#include <QThread>
#include <sys/stat.h>
#include <thread>

using namespace Vantrope;
using namespace Qt::StringLiterals;

namespace {

QByteArray utf16WithBom(const QString& text)
{
    return "\xFF\xFE"_ba + QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
}

std::shared_ptr<DraggableText> textItem(const QByteArray& data, const QString& type, bool force = false)
{
    PasteboardItem item;
    item.setData(type, data);
    DraggableContext context;
    context.forcePlainText = force;
    return DraggableText::fromPasteboard(item, type, context);
}

QString fileName(const std::shared_ptr<Draggable>& item)
{
    return QFileInfo(item->url()->toLocalFile()).fileName();
}

} // namespace

class TestDraggableText final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void naming_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QString>("expected"); // "*" stands for a UUID

        const QString plain = PasteboardTypes::utf8PlainText;
        QTest::newRow("short lines skipped") << plain << "ab\ncd\nefgh"_ba << u"efgh.txt"_s;
        QTest::newRow("single short line") << plain << "ab"_ba << u"Text.txt"_s;
        // Forty characters, not code units.
        QTest::newRow("cut to 40 characters")
            << plain << u"e\u0301"_s.repeated(45).toUtf8() << QString(u"e\u0301"_s.repeated(40) + u".txt"_s);
        QTest::newRow("slashes removed") << plain << "a/b/c/d"_ba << u"abcd.txt"_s;
        QTest::newRow("nothing but slashes") << plain << "////\nlater line"_ba << u"Text.txt"_s;
        QTest::newRow("control characters removed") << plain << "tab\there\x1b[0m"_ba << u"tabhere[0m.txt"_s;
        QTest::newRow("direction override removed")
            << plain << u"invoice\u202Efdp.exe"_s.toUtf8() << u"invoicefdp.exe.txt"_s;
        QTest::newRow("undecodable") << plain << "\xff\xfe\xfd words"_ba << u"*.txt"_s;
        QTest::newRow("html by its text")
            << PasteboardTypes::html << "<p>ab</p><p>Hello <b>world</b></p>"_ba << u"Hello world.html"_s;
        QTest::newRow("html in UTF-16")
            << PasteboardTypes::html << utf16WithBom(u"<b>Grüße aus Köln</b>"_s) << u"Grüße aus Köln.html"_s;
        QTest::newRow("rtf by its text")
            << PasteboardTypes::rtf
            << "{\\rtf1\\ansi{\\fonttbl\\f0 Helvetica;}\\f0 ab\\par Caf\\'e9 cr\\u232?me\\par}"_ba
            << u"Café crème.rtf"_s;
        QTest::newRow("rtf that is not rtf")
            << PasteboardTypes::applicationRTF << "plain words here"_ba << u"*.rtf"_s;
    }

    void naming()
    {
        QFETCH(QString, type);
        QFETCH(QByteArray, data);
        QFETCH(QString, expected);

        const auto item = textItem(data, type);
        QVERIFY(item);
        const QString name = fileName(item);
        if (expected.startsWith(u'*')) {
            static const QRegularExpression uuid(
                u"^[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}$"_s);
            QVERIFY2(uuid.match(QFileInfo(name).completeBaseName()).hasMatch(), qPrintable(name));
            QCOMPARE(u'*' + QFileInfo(name).suffix().prepend(u'.'), expected);
        } else {
            QCOMPARE(name, expected);
        }
        QCOMPARE(QFileInfo(QFileInfo(item->url()->toLocalFile()).path()).path(),
                 *TemporaryDirectories::path(ReservedTemporaryDirectory::textFiles));
        QVERIFY(!QFileInfo::exists(item->url()->toLocalFile()));
    }

    void itemFilesNeverCollide_data()
    {
        QTest::addColumn<QByteArray>("first");
        QTest::addColumn<QByteArray>("second");
        QTest::newRow("same first words") << "Meeting notes for the Monday planning session\nbudget"_ba
                                          << "Meeting notes for the Monday planning session\nhiring"_ba;
        QTest::newRow("same text") << "Exactly the same"_ba
                                   << "Exactly the same"_ba;
        QTest::newRow("links to one host") << "https://same.example/a"_ba
                                           << "https://same.example/b"_ba;
        QTest::newRow("same link") << "https://same.example/a"_ba
                                   << "https://same.example/a"_ba;
    }

    // Two items write their files side by side; neither may take the other's content, and only equal
    // contents make equal items.
    void itemFilesNeverCollide()
    {
        QFETCH(QByteArray, first);
        QFETCH(QByteArray, second);
        const auto make = [](const QByteArray& value) -> DraggablePtr {
            if (value.startsWith("https:")) {
                return DraggableWeblocation::make(QUrl(QString::fromUtf8(value)));
            }
            return textItem(value, PasteboardTypes::utf8PlainText);
        };
        const DraggablePtr a = make(first);
        const DraggablePtr b = make(second);
        QVERIFY(a && b);
        QCOMPARE(fileName(a), fileName(b));
        for (const DraggablePtr& item : {a, b}) {
            std::optional<Draggable::ResolveResult> answer;
            item->resolveUrl([&answer](const Draggable::ResolveResult& result) { answer = result; });
            QTRY_VERIFY(answer.has_value());
            QVERIFY(answer->has_value());
        }
        QCOMPARE(a->isEqual(*b), first == second);
        QCOMPARE(a->url() == b->url(), first == second);
        for (const auto& [item, value] : {std::pair(a, first), std::pair(b, second)}) {
            QVERIFY(Test::readFile(item->url()->toLocalFile()).contains(value));
        }
    }

    void nameOfHeavyCharactersStaysWritable()
    {
        // One letter under hundreds of combining marks is a single character, and far too long a name.
        const QString line = u'a' + QString(300, QChar(0x0301)) + u"bcd"_s;
        const auto item = textItem(line.toUtf8(), PasteboardTypes::utf8PlainText);
        QVERIFY(fileName(item).startsWith(u'a'));
        std::optional<Draggable::ResolveResult> answer;
        item->resolveUrl([&answer](const Draggable::ResolveResult& result) { answer = result; });
        QTRY_VERIFY(answer.has_value());
        QVERIFY(answer->has_value());
        QVERIFY(QFileInfo::exists(item->url()->toLocalFile()));
    }

    void rtfPlainText_data()
    {
        QTest::addColumn<QByteArray>("rtf");
        QTest::addColumn<std::optional<QString>>("expected");

        QTest::newRow("tables and ignorable groups dropped")
            << "{\\rtf1{\\fonttbl{\\f0 Times;}}{\\colortbl;\\red0;}{\\*\\generator Writer;}Hello\\par World}"_ba
            << std::optional(u"Hello\nWorld"_s);
        QTest::newRow("escaped braces and backslash")
            << "{\\rtf1 a\\{b\\}c\\\\d}"_ba << std::optional(u"a{b}c\\d"_s);
        QTest::newRow("unicode and its fallback")
            << "{\\rtf1 \\u8364?\\uc2\\u8212??x}"_ba << std::optional(u"€—x"_s);
        QTest::newRow("surrogate pair")
            << "{\\rtf1 \\u-10179?\\u-8704?}"_ba << std::optional(u"\U0001F600"_s);
        QTest::newRow("code page escapes")
            << "{\\rtf1 \\'93quoted\\'94 \\'e9}"_ba << std::optional(u"“quoted” é"_s);
        QTest::newRow("binary data skipped") << "{\\rtf1 a\\bin3 {}}b}"_ba << std::optional(u"ab"_s);
        QTest::newRow("unbalanced braces") << "{\\rtf1 a}}}b{{"_ba << std::optional(u"ab"_s);
        QTest::newRow("truncated escape") << "{\\rtf1 a\\'9"_ba << std::optional(u"a"_s);
        QTest::newRow("very deep nesting")
            << "{\\rtf1 "_ba + QByteArray(200000, '{') + "x" << std::optional(u"x"_s);
        QTest::newRow("not rtf") << "Hello"_ba << std::optional<QString>();
    }

    void rtfPlainText()
    {
        QFETCH(QByteArray, rtf);
        QFETCH(std::optional<QString>, expected);
        QCOMPARE(RichTextConverter::plainTextFromRTF(rtf), expected);
    }

    void forcePlainText_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<bool>("force");
        QTest::addColumn<QString>("keptType");
        QTest::addColumn<QByteArray>("keptData");

        const QByteArray rtf = "{\\rtf1{\\fonttbl\\f0 Helvetica;}\\f0\\b Hello\\b0\\par Caf\\'e9}"_ba;
        const QByteArray html =
            "<html><body><h1>Title</h1><p>Caf&eacute; <img src=\"x.png\">ok</p></body></html>"_ba;
        QTest::newRow("rtf forced") << PasteboardTypes::rtf << rtf << true << PasteboardTypes::utf8PlainText
                                    << u"Hello\nCafé"_s.toUtf8();
        QTest::newRow("rtf kept") << PasteboardTypes::rtf << rtf << false << PasteboardTypes::rtf << rtf;
        QTest::newRow("html forced") << PasteboardTypes::html << html << true
                                     << PasteboardTypes::utf8PlainText << u"Title\nCafé ok"_s.toUtf8();
        QTest::newRow("unreadable rtf stays")
            << PasteboardTypes::rtf << "not rtf"_ba << true << PasteboardTypes::rtf << "not rtf"_ba;
    }

    void forcePlainText()
    {
        QFETCH(QString, type);
        QFETCH(QByteArray, data);
        QFETCH(bool, force);
        QFETCH(QString, keptType);
        QFETCH(QByteArray, keptData);

        const auto item = textItem(data, type, force);
        QCOMPARE(item->type(), keptType);
        QCOMPARE(item->data(), keptData);
        QCOMPARE(QFileInfo(item->url()->toLocalFile()).suffix(), DraggableText::fileExtension(keptType));
        QCOMPARE(item->pasteboardItem().data(keptType), std::optional(keptData));
    }

    void writtenOnceOnDemand()
    {
        const QByteArray data = "Written once\n"_ba + QByteArray(1 << 20, 'x');
        const auto item = textItem(data, PasteboardTypes::utf8PlainText);
        const QString path = item->url()->toLocalFile();
        QVERIFY(!item->isWrittenToUrl());
        QVERIFY(!item->systemFileNumber());

        // Through a pipe in the file's place every write arrives here, so a second one would show.
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        std::atomic<int> answers = 0;
        std::atomic<bool> failed = false;
        std::vector<std::thread> callers;
        for (int t = 0; t < 4; ++t) {
            callers.emplace_back([&] {
                for (int i = 0; i < 8; ++i) {
                    item->resolveUrl([&](const Draggable::ResolveResult& result) {
                        failed = failed || QThread::currentThread() != qApp->thread() || !result;
                        ++answers;
                    });
                }
            });
        }
        for (auto& caller : callers) {
            caller.join();
        }
        QThread::msleep(100); // lets concurrent requests reach the file before it is read
        QFile pipe(path);
        QVERIFY(pipe.open(QIODevice::ReadOnly));
        const QByteArray received = pipe.readAll();
        QCOMPARE(received.size(), data.size());
        QCOMPARE(received, data);
        QTRY_COMPARE(answers.load(), 32);
        QVERIFY(!failed);
        QVERIFY(item->isWrittenToUrl());
        QCOMPARE(item->systemFileNumber(), URL::systemFileNumber(*item->url()));
    }

    void failedWriteIsReported()
    {
        const auto item = textItem("Blocked by a folder"_ba, PasteboardTypes::utf8PlainText);
        QVERIFY(QDir().mkpath(item->url()->toLocalFile()));
        std::optional<Draggable::ResolveResult> answer;
        item->resolveUrl([&answer](const Draggable::ResolveResult& result) { answer = result; });
        QTRY_VERIFY(answer.has_value());
        QVERIFY(!answer->has_value());
        QCOMPARE(answer->error().kind, DraggableError::Kind::failedWriting);
        QVERIFY(!item->isWrittenToUrl());
    }
};

QTEST_MAIN(TestDraggableText)
#include "TestDraggableText.moc"
