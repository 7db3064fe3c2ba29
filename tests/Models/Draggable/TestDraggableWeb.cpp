// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Core/ReservedTemporaryDirectory.h"
#include "Libraries/Core/URL.h"
#include "Models/Draggable/DraggableContext.h"
#include "Models/Draggable/DraggableWebImage.h"
#include "Models/Draggable/DraggableWeblocation.h"
#include "Models/Pasteboard/PasteboardTypes.h"
#include "support/TestSupport.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

namespace {

QByteArray utf16(const QString& text)
{
    return QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
}

QByteArray encoded(const QImage& image, const char* format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

} // namespace

class TestDraggableWeb final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        Test::isolateStandardPaths();
        QVERIFY(m_dir.isValid());
    }

    void weblocation_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QString>("address"); // empty: no item
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<QString>("title");

        QTest::newRow("every www. removed")
            << PasteboardTypes::uriList << "https://www.sub.www.example.org/?q=1&r=2\r\n"_ba
            << u"https://www.sub.www.example.org/?q=1&r=2"_s << u"sub.example.org.webloc"_s
            << u"sub.example.org"_s;
        QTest::newRow("Mozilla form, UTF-16 with title")
            << PasteboardTypes::mozillaURL << utf16(u"https://www.kde.org/news\nKDE News"_s)
            << u"https://www.kde.org/news"_s << u"kde.org.webloc"_s << u"kde.org"_s;
        QTest::newRow("Netscape form")
            << PasteboardTypes::netscapeURL << "https://example.net/a\nTitle"_ba << u"https://example.net/a"_s
            << u"example.net.webloc"_s << u"example.net"_s;
        QTest::newRow("no host") << PasteboardTypes::uriList << "mailto:someone@example.com"_ba
                                 << u"mailto:someone@example.com"_s << u"Link.webloc"_s << u"Link.webloc"_s;
        QTest::newRow("file URL is a file")
            << PasteboardTypes::uriList << "file:///etc/hostname"_ba << QString() << QString() << QString();
        QTest::newRow("words") << PasteboardTypes::uriList << "just some words"_ba << QString() << QString()
                               << QString();
        QTest::newRow("not UTF-8") << PasteboardTypes::uriList << "https://example.com/\xff"_ba << QString()
                                   << QString() << QString();
        QTest::newRow("odd UTF-16") << PasteboardTypes::mozillaURL << "h\0t"_ba << QString() << QString()
                                    << QString();
    }

    void weblocation()
    {
        QFETCH(QString, type);
        QFETCH(QByteArray, value);
        QFETCH(QString, address);
        QFETCH(QString, fileName);
        QFETCH(QString, title);

        PasteboardItem item;
        item.setData(type, value);
        const auto location = DraggableWeblocation::fromPasteboard(item, type, DraggableContext{});
        if (address.isEmpty()) {
            QVERIFY(!location);
            return;
        }
        QVERIFY(location);
        QVERIFY(location->isWebLocation());
        QCOMPARE(location->address(), QUrl(address));
        QCOMPARE(location->locationTitle(), std::optional(title));
        const QString path = location->url()->toLocalFile();
        QCOMPARE(QFileInfo(path).fileName(), fileName);
        QCOMPARE(QFileInfo(QFileInfo(path).path()).path(),
                 *TemporaryDirectories::path(ReservedTemporaryDirectory::textFiles));
        QCOMPARE(location->systemFileNumber(), URL::systemFileNumber(*location->url()));

        // Restoring reads back what was written.
        QCOMPARE(DraggableWeblocation::fromWeblocFile(*location->url())->address(), location->address());
    }

    void restoreReadsWithoutRewriting()
    {
        const QByteArray contents = R"(<?xml version="1.0" encoding="UTF-8"?>
    <plist version="1.0"><dict>
    <key>Other</key><dict><key>URL</key><string>https://nested.example/</string></dict>
    <key>URL</key><string>https://right.example/x?a=1&amp;b=2</string>
    </dict></plist>
    )"_ba;
        const QString path = m_dir.path() + u"/Saved.webloc"_s;
        QVERIFY(Test::writeFile(path, contents));
        const auto inode = URL::systemFileNumber(QUrl::fromLocalFile(path));

        const auto location = DraggableWeblocation::fromWeblocFile(QUrl::fromLocalFile(path));
        QVERIFY(location);
        QCOMPARE(location->address(), QUrl(u"https://right.example/x?a=1&b=2"_s));
        QCOMPARE(location->url(), QUrl::fromLocalFile(path));
        QCOMPARE(Test::readFile(path), contents);
        QCOMPARE(URL::systemFileNumber(QUrl::fromLocalFile(path)), inode);
    }

    void restoreRefusesWhatIsNoWebLocation_data()
    {
        QTest::addColumn<QByteArray>("contents"); // empty: no file at all
        QTest::newRow("missing file") << QByteArray();
        QTest::newRow("no URL key")
            << "<plist version=\"1.0\"><dict><key>Name</key><string>x</string></dict></plist>"_ba;
        QTest::newRow("file address")
            << "<plist version=\"1.0\"><dict><key>URL</key><string>file:///etc/passwd</string></dict></plist>"_ba;
    }

    void restoreRefusesWhatIsNoWebLocation()
    {
        QFETCH(QByteArray, contents);
        const QString path =
            m_dir.path() + u"/"_s + QString::fromLatin1(QTest::currentDataTag()) + u".webloc"_s;
        if (!contents.isEmpty()) {
            QVERIFY(Test::writeFile(path, contents));
        }
        QVERIFY(!DraggableWeblocation::fromWeblocFile(QUrl::fromLocalFile(path)));
    }

    void webImage_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QByteArray>("data");  // empty: the item lacks the type
        QTest::addColumn<QString>("nameType"); // the type that names the picture, if any
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("expected"); // the file's name, "*.ext" for a made-up one; empty: none

        QImage clear(40, 20, QImage::Format_ARGB32);
        clear.fill(Qt::transparent);
        QImage photo(30, 60, QImage::Format_RGB32);
        photo.fill(Qt::white);
        const QByteArray png = encoded(clear, "PNG");
        const QString destination = u"application/x-moz-file-promise-dest-filename"_s;
        QTest::newRow("PNG named by the browser")
            << PasteboardTypes::png << png << destination << "Sunset at the beach.png"_ba
            << u"Sunset at the beach.png"_s;
        QTest::newRow("JPEG named by its address")
            << PasteboardTypes::jpeg << encoded(photo, "JPEG") << PasteboardTypes::mozillaFilePromiseURL
            << "https://images.example.org/2026/harbour.jpeg?w=800"_ba << u"harbour.jpg"_s;
        QTest::newRow("a name that would leave the folder")
            << PasteboardTypes::png << png << destination << "../../.profile"_ba << u"profile.png"_s;
        QTest::newRow("unnamed") << PasteboardTypes::png << png << QString() << QByteArray()
                                 << u"Image.png"_s;
        QTest::newRow("a data address names nothing")
            << PasteboardTypes::png << png << PasteboardTypes::mozillaFilePromiseURL
            << "data:image/png;base64,iVBORw0KGgo/AAAA"_ba << u"Image.png"_s;
        QTest::newRow("name in UTF-16, as Firefox sends it")
            << PasteboardTypes::png << png << destination
            << QByteArray(reinterpret_cast<const char*>(u"Grün.png"), 16) << u"Grün.png"_s;
        QTest::newRow("other formats become JPEG")
            << u"image/bmp"_s << encoded(photo, "BMP") << QString() << QByteArray() << u"*.jpg"_s;
        QTest::newRow("garbage") << PasteboardTypes::png << "\x89PNG\r\n\x1a\ngarbage"_ba << QString()
                                 << QByteArray() << QString();
        QTest::newRow("no data") << PasteboardTypes::png << QByteArray() << QString() << QByteArray()
                                 << QString();
    }

    // A picture from a page keeps its bytes and its name; only formats nobody expects are converted.
    void webImage()
    {
        QFETCH(QString, type);
        QFETCH(QByteArray, data);
        QFETCH(QString, nameType);
        QFETCH(QByteArray, name);
        QFETCH(QString, expected);

        PasteboardItem item;
        if (!data.isEmpty()) {
            item.setData(type, data);
        }
        if (!nameType.isEmpty()) {
            item.setData(nameType, name);
        }
        const auto image = DraggableWebImage::fromPasteboard(item, type, DraggableContext{});
        if (expected.isEmpty()) {
            QVERIFY(!image);
            return;
        }
        QVERIFY(image);
        const QString path = image->url()->toLocalFile();
        QVERIFY(path.startsWith(*TemporaryDirectories::path(ReservedTemporaryDirectory::promises) + u'/'));
        if (expected.startsWith(u'*')) {
            QCOMPARE(u"*."_s + QFileInfo(path).suffix(), expected);
            QImageReader reader(path);
            QCOMPARE(reader.format(), "jpeg"_ba);
            QCOMPARE(reader.read().size(), QImage::fromData(data).size());
        } else {
            QCOMPARE(QFileInfo(path).fileName(), expected);
            QCOMPARE(Test::readFile(path), data);
        }
    }

    // A browser offers the picture re-encoded in several formats; the one its name names is the original.
    void webImageTakesTheEncodingItsNameNames()
    {
        QImage photo(30, 60, QImage::Format_RGB32);
        photo.fill(Qt::darkGreen);
        const QByteArray jpeg = encoded(photo, "JPEG");
        PasteboardItem item;
        item.setData(PasteboardTypes::png, encoded(photo, "PNG"));
        item.setData(PasteboardTypes::jpeg, jpeg);
        item.setData(PasteboardTypes::mozillaFilePromiseDestinationName, "harbour.jpg");
        const auto image = DraggableWebImage::fromPasteboard(item, PasteboardTypes::png, DraggableContext{});
        QVERIFY(image);
        QCOMPARE(QFileInfo(image->url()->toLocalFile()).fileName(), u"harbour.jpg"_s);
        QCOMPARE(Test::readFile(image->url()->toLocalFile()), jpeg);
    }

private:
    QTemporaryDir m_dir;
};

QTEST_MAIN(TestDraggableWeb)
#include "TestDraggableWeb.moc"
