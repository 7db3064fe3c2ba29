// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Platform/Desktop/PreviewWindow.h"
#include "Platform/Desktop/QuickLookAction.h"
#include "support/TestSupport.h"

#include <QImage>
#include <QImageReader>
#include <QPainter>
#include <QPdfWriter>
#include <QPointer>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(PreviewWindow::Kind)

namespace {

// A GIF of two 1x1 frames, one red and one blue, that loops.
const QByteArray animatedGif = QByteArray("GIF89a") +
                               QByteArray::fromHex("01000100800000" // 1x1, a table of 2 colours
                                                   "ff00000000ff"   // red, blue
                                                   "21ff0b") +
                               QByteArray("NETSCAPE2.0") +
                               QByteArray::fromHex("0301000000"                     // loop forever
                                                   "21f904000a000000"               // 100 ms
                                                   "2c0000000001000100000202440100" // red pixel
                                                   "21f904000a000000"               // 100 ms
                                                   "2c00000000010001000002024c0100" // blue pixel
                                                   "3b");

} // namespace

// The preview window on real files of each kind it knows.
class TestPreviewWindow final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        Test::isolateStandardPaths();
        QImage picture(40, 30, QImage::Format_RGB32);
        picture.fill(Qt::green);
        QVERIFY(picture.save(path(u"picture.png"_s)));
        QVERIFY(Test::writeFile(path(u"notes.txt"_s), "first line\nsecond line ü\n"));
        QByteArray big(PreviewWindow::textLimit + 4096, 'x');
        big.replace(PreviewWindow::textLimit, 4096, QByteArray(4096, 'y'));
        QVERIFY(Test::writeFile(path(u"big.log"_s), big));
        QVERIFY(Test::writeFile(path(u"data.bin"_s), QByteArray(3072, '\0')));
        QVERIFY(Test::writeFile(path(u"moving.gif"_s), animatedGif));
        {
            QPdfWriter writer(path(u"document.pdf"_s));
            QPainter painter(&writer);
            painter.drawText(100, 100, u"A page"_s);
        }
    }

    void showsEachKind_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<PreviewWindow::Kind>("kind");
        // Text that must be shown, or must be in the summary.
        QTest::addColumn<QStringList>("shown");

        QTest::newRow("picture") << u"picture.png"_s << PreviewWindow::Kind::image << QStringList();
        QTest::newRow("text") << u"notes.txt"_s << PreviewWindow::Kind::text
                              << QStringList{u"first line\nsecond line ü"_s};
        QTest::newRow("PDF") << u"document.pdf"_s
                             << (PreviewWindow::showsPdf() ? PreviewWindow::Kind::pdf
                                                           : PreviewWindow::Kind::summary)
                             << QStringList();
        QTest::newRow("anything else: name, kind, size")
            << u"data.bin"_s << PreviewWindow::Kind::summary
            << QStringList{u"data.bin"_s, u"3.00 KiB"_s, u"Modified"_s};
        QTest::newRow("a file that went away") << u"gone.txt"_s << PreviewWindow::Kind::summary
                                               << QStringList{u"gone.txt"_s, u"no longer there"_s};
    }

    void showsEachKind()
    {
        QFETCH(QString, file);
        QFETCH(PreviewWindow::Kind, kind);
        QFETCH(QStringList, shown);

        PreviewWindow window({QUrl::fromLocalFile(path(file))});
        QCOMPARE(window.currentKind(), kind);
        for (const QString& text : shown) {
            QVERIFY2(window.shownText().contains(text), qPrintable(window.shownText()));
        }
        QCOMPARE(window.windowTitle(), file);
    }

    void animatedPicturesMove()
    {
        QImageReader reader(path(u"moving.gif"_s));
        QVERIFY2(reader.canRead(), qPrintable(reader.errorString()));
        QCOMPARE(reader.imageCount(), 2);
        PreviewWindow window({QUrl::fromLocalFile(path(u"moving.gif"_s))});
        QCOMPARE(window.currentKind(), PreviewWindow::Kind::animation);
    }

    void onlyTheFirstMegabyteOfAText()
    {
        PreviewWindow window({QUrl::fromLocalFile(path(u"big.log"_s))});
        QCOMPARE(window.currentKind(), PreviewWindow::Kind::text);
        const QString text = window.shownText();
        QVERIFY(text.startsWith(QString(1000, QLatin1Char('x'))));
        QVERIFY(!text.contains(QLatin1Char('y')));
        QVERIFY(text.size() <= PreviewWindow::textLimit + 10);
    }

    void keysMoveBetweenItemsAndClose_data()
    {
        QTest::addColumn<QList<int>>("keys");
        QTest::addColumn<int>("index");
        QTest::addColumn<bool>("open");

        QTest::newRow("right, right") << QList<int>{Qt::Key_Right, Qt::Key_Right} << 2 << true;
        QTest::newRow("right past the end stays")
            << QList<int>{Qt::Key_Right, Qt::Key_Right, Qt::Key_Right} << 2 << true;
        QTest::newRow("left at the start stays") << QList<int>{Qt::Key_Left} << 0 << true;
        QTest::newRow("there and back") << QList<int>{Qt::Key_Right, Qt::Key_Left} << 0 << true;
        QTest::newRow("space closes") << QList<int>{Qt::Key_Right, Qt::Key_Space} << 1 << false;
        QTest::newRow("escape closes") << QList<int>{Qt::Key_Escape} << 0 << false;
    }

    void keysMoveBetweenItemsAndClose()
    {
        QFETCH(QList<int>, keys);
        QFETCH(int, index);
        QFETCH(bool, open);

        QuickLookAction action;
        QList<Action::Result> results;
        ActionItemList items;
        for (const QString& file : {u"picture.png"_s, u"notes.txt"_s, u"data.bin"_s}) {
            items.append(*ActionItem::fromFile(QUrl::fromLocalFile(path(file))));
        }
        action.perform(items, {}, [&results](const Action::Result& result) { results.append(result); });
        QCOMPARE(results.size(), 1);
        QPointer<PreviewWindow> window = action.previewWindow();
        QVERIFY(window);
        QVERIFY(window->isVisible());
        const PreviewWindow::Kind kinds[] = {PreviewWindow::Kind::image, PreviewWindow::Kind::text,
                                             PreviewWindow::Kind::summary};
        int lastIndex = 0;
        for (const int key : keys) {
            lastIndex = window->currentIndex();
            QTest::keyClick(window.data(), Qt::Key(key));
            if (!window) {
                break;
            }
            QCOMPARE(window->currentKind(), kinds[window->currentIndex()]);
        }
        QTRY_COMPARE(bool(window), open);
        QCOMPARE(window ? window->currentIndex() : lastIndex, index);
        if (window) {
            QCOMPARE(window->windowTitle(), QFileInfo(path(items[index].url().toLocalFile())).fileName() +
                                                u" (%1/3)"_s.arg(index + 1));
            action.cancel();
            QTRY_VERIFY(!window);
        }
    }

private:
    QString path(const QString& name) const
    {
        return name.startsWith(QLatin1Char('/')) ? name : m_folder.filePath(name);
    }

    QTemporaryDir m_folder;
};

QTEST_MAIN(TestPreviewWindow)
#include "TestPreviewWindow.moc"
