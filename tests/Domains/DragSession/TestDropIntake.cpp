// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/DragSession/DraggablePasteboardReader.h"
#include "Domains/DragSession/DragSessionDropIntake.h"
#include "Domains/DragSession/DragSessionPasteboardController.h"
#include "Libraries/Core/ManualClock.h"
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggableText.h"
#include "Models/Draggable/DraggableWeblocation.h"
#include "Models/Pasteboard/PasteboardTypes.h"
#include "support/FakeShelfInterface.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using namespace std::chrono_literals;
using Kind = DraggablePasteboardReader::Kind;

Q_DECLARE_METATYPE(Vantrope::DraggablePasteboardReader::Kind)
Q_DECLARE_METATYPE(std::optional<Vantrope::DragError>)

namespace {

PasteboardItem itemWith(std::initializer_list<std::pair<QString, QByteArray>> entries)
{
    PasteboardItem item;
    for (const auto& [type, data] : entries) {
        item.setData(type, data);
    }
    return item;
}

} // namespace

class TestDropIntake final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        Test::isolateStandardPaths();
        QVERIFY(m_dir.isValid());
        m_full = writeFile(QStringLiteral("report.txt"), "contents");
        m_empty = writeFile(QStringLiteral("empty.txt"), "");
    }

    void chosenKinds_data()
    {
        QTest::addColumn<QStringList>("types");
        QTest::addColumn<QList<Kind>>("expected");
        const QList<Kind> base{Kind::promise, Kind::weblocation, Kind::file, Kind::text};
        QTest::newRow("files") << QStringList{PasteboardTypes::uriList} << base;
        QTest::newRow("browser native image")
            << QStringList{PasteboardTypes::uriList, PasteboardTypes::mozillaNativeImage,
                           PasteboardTypes::png}
            << QList<Kind>{Kind::webImage};
        QTest::newRow("browser image with promise url")
            << QStringList{PasteboardTypes::mozillaFilePromiseURL, PasteboardTypes::jpeg}
            << QList<Kind>{Kind::webImage};
        QTest::newRow("promise url without an image")
            << QStringList{PasteboardTypes::mozillaFilePromiseURL} << base;
        QTest::newRow("bare image") << QStringList{PasteboardTypes::png} << base;
    }

    void chosenKinds()
    {
        QFETCH(QStringList, types);
        QFETCH(QList<Kind>, expected);
        PasteboardItem item;
        for (const QString& type : types) {
            item.setData(type, "x");
        }
        QCOMPARE(DraggablePasteboardReader::kinds(Pasteboard({item})), expected);
    }

    void readsEachItemAsTheFirstKindThatTakesIt()
    {
        const Pasteboard pasteboard({
            itemWith({{PasteboardTypes::uriList, QUrl::fromLocalFile(m_full).toEncoded()}}),
            itemWith({{PasteboardTypes::uriList, "https://www.example.org/page"},
                      {PasteboardTypes::plainText, "https://www.example.org/page"}}),
            itemWith({{PasteboardTypes::utf8PlainText, "Shopping list\nmilk"}}),
            itemWith({{QStringLiteral("application/x-unknown"), "?"}}),
            itemWith({{PasteboardTypes::uriList, "file:///tmp/bad%zzname"}}),
        });
        const DraggableList items = DraggablePasteboardReader::read(pasteboard, {});
        QCOMPARE(items.size(), 3);
        QVERIFY(std::dynamic_pointer_cast<DraggableFile>(items[0]));
        QCOMPARE(items[0]->url(), QUrl::fromLocalFile(m_full));
        QVERIFY(std::dynamic_pointer_cast<DraggableWeblocation>(items[1]));
        QVERIFY(std::dynamic_pointer_cast<DraggableText>(items[2]));
    }

    void validation_data()
    {
        QTest::addColumn<QStringList>("shelf");
        QTest::addColumn<QStringList>("dropped");
        QTest::addColumn<std::optional<DragError>>("expected");
        QTest::addColumn<int>("rejectedCount");
        using Type = DragError::RejectionType;
        // Entries are file names in the test folder, or "text:" followed by a text.
        QTest::newRow("nothing dropped")
            << QStringList{} << QStringList{} << std::optional(DragError::other()) << 0;
        QTest::newRow("one empty file") << QStringList{} << QStringList{QStringLiteral("empty.txt")}
                                        << std::optional(DragError::rejected(Type::empty)) << 1;
        QTest::newRow("empty file with a text")
            << QStringList{} << QStringList{QStringLiteral("empty.txt"), QStringLiteral("text:hello there")}
            << std::optional<DragError>() << 0;
        QTest::newRow("empty file with a full one")
            << QStringList{} << QStringList{QStringLiteral("empty.txt"), QStringLiteral("report.txt")}
            << std::optional<DragError>() << 0;
        QTest::newRow("one already held refuses the whole drop")
            << QStringList{QStringLiteral("report.txt")}
            << QStringList{QStringLiteral("new.txt"), QStringLiteral("report.txt")}
            << std::optional(DragError::rejected(Type::existing)) << 1;
        QTest::newRow("held and empty files together")
            << QStringList{QStringLiteral("report.txt")}
            << QStringList{QStringLiteral("empty.txt"), QStringLiteral("report.txt"),
                           QStringLiteral("new.txt")}
            << std::optional(DragError::rejected(Type::combined)) << 2;
        QTest::newRow("new items") << QStringList{QStringLiteral("report.txt")}
                                   << QStringList{QStringLiteral("new.txt")} << std::optional<DragError>()
                                   << 0;
    }

    void validation()
    {
        QFETCH(QStringList, shelf);
        QFETCH(QStringList, dropped);
        QFETCH(std::optional<DragError>, expected);
        QFETCH(int, rejectedCount);
        writeFile(QStringLiteral("new.txt"), "new");
        const auto rejection = DragSessionDropIntake::validate(make(shelf), make(dropped));
        QCOMPARE(rejection ? std::optional(rejection->error) : std::nullopt, expected);
        QCOMPARE(rejection ? rejection->count : 0, rejectedCount);
    }

    void dropsAreReadNowOrLater_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<bool>("later");
        QTest::newRow("29 files, read at the drop") << 29 << false;
        QTest::newRow("30 files, read after a pause") << 30 << true;
    }

    void dropsAreReadNowOrLater()
    {
        QFETCH(int, count);
        QFETCH(bool, later);
        QList<QUrl> urls;
        for (int i = 0; i < count; ++i) {
            const QString name = QStringLiteral("many-%1.txt").arg(i);
            writeFile(name, name.toUtf8());
            urls.append(QUrl::fromLocalFile(m_dir.filePath(name)));
        }
        QMimeData data;
        data.setUrls(urls);
        ManualClock clock;
        DragSessionDropIntake intake(clock);
        QList<qsizetype> read;
        connect(&intake, &DragSessionDropIntake::largeDropRead, this,
                [&read](const DraggableList& files) { read.append(files.size()); });
        QVERIFY(intake.enter(data));
        QCOMPARE(intake.isEfficiencyModeActive(), later);
        const auto outcome = intake.drop(data, std::nullopt, {}, false, {});
        QCOMPARE(outcome.has_value(), !later);
        QVERIFY(intake.isDragInProgress());
        if (!later) {
            QCOMPARE(std::get<DraggableList>(outcome->value).size(), count);
            return;
        }
        // Nothing more comes in while the large drop waits to be read.
        QVERIFY(!intake.enter(data));
        clock.advance(DragSessionDropIntake::efficiencyModeReadDelay - 10ms);
        QCoreApplication::processEvents();
        QCOMPARE(read.size(), 0);
        clock.advance(20ms);
        QTRY_COMPARE(read.size(), 1);
        QCOMPARE(read.first(), count);
        intake.finish();
        QVERIFY(!intake.isAsyncDragInProgress());
        QVERIFY(intake.enter(data));
    }

    void clipboardIsCachedPerChange()
    {
        Test::FakeClipboard clipboard;
        DragSessionPasteboardController::clearSharedCache();
        DragSessionPasteboardController controller(clipboard);
        clipboard.set({itemWith({{PasteboardTypes::uriList, QUrl::fromLocalFile(m_full).toEncoded()}})});

        const DraggableList first = controller.draggables();
        QCOMPARE(first.size(), 1);
        QCOMPARE(controller.draggables().first().get(), first.first().get());

        // The shelf emptied the clipboard itself: nothing until the next change.
        controller.invalidate();
        QVERIFY(controller.draggables().isEmpty());
        clipboard.set({itemWith({{PasteboardTypes::utf8PlainText, "a note to keep"}})});
        QCOMPARE(controller.draggables().size(), 1);
    }

    void clipboardWithAMissingFileGivesNothing()
    {
        Test::FakeClipboard clipboard;
        DragSessionPasteboardController::clearSharedCache();
        DragSessionPasteboardController controller(clipboard);
        const QString doomed = writeFile(QStringLiteral("doomed.txt"), "soon gone");
        clipboard.set({itemWith({{PasteboardTypes::uriList, QUrl::fromLocalFile(doomed).toEncoded()}}),
                       itemWith({{PasteboardTypes::uriList, QUrl::fromLocalFile(m_full).toEncoded()}})});
        QCOMPARE(controller.draggables().size(), 2);
        QVERIFY(QFile::remove(doomed));
        QVERIFY(controller.draggables().isEmpty());
    }

    void largeClipboardIsNotRead_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("expected");
        QTest::newRow("99 items") << 99 << 99;
        QTest::newRow("100 items") << 100 << 0;
    }

    void largeClipboardIsNotRead()
    {
        QFETCH(int, count);
        QFETCH(int, expected);
        Test::FakeClipboard clipboard;
        DragSessionPasteboardController::clearSharedCache();
        DragSessionPasteboardController controller(clipboard);
        QList<PasteboardItem> items;
        for (int i = 0; i < count; ++i) {
            items.append(
                itemWith({{PasteboardTypes::uriList, "https://example.org/" + QByteArray::number(i)}}));
        }
        clipboard.set(items);
        QCOMPARE(controller.draggables().size(), expected);
    }

private:
    QString writeFile(const QString& name, const QByteArray& data)
    {
        const QString path = m_dir.filePath(name);
        Test::writeFile(path, data);
        return path;
    }

    DraggableList make(const QStringList& entries)
    {
        DraggableList result;
        for (const QString& entry : entries) {
            if (entry.startsWith(QStringLiteral("text:"))) {
                result.append(DraggableText::fromPasteboard(
                    itemWith({{PasteboardTypes::utf8PlainText, entry.mid(5).toUtf8()}}),
                    PasteboardTypes::utf8PlainText, {}));
            } else {
                result.append(DraggableFile::make(QUrl::fromLocalFile(m_dir.filePath(entry))));
            }
        }
        return result;
    }

    QTemporaryDir m_dir;
    QString m_full;
    QString m_empty;
};

QTEST_MAIN(TestDropIntake)
#include "TestDropIntake.moc"
