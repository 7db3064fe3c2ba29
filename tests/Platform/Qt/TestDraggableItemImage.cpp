// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggableWeblocation.h"
#include "Platform/Qt/DraggableItemImage.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;

// The kind shown under the pile and in the item list.
class TestDraggableItemImage final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void kindNames_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("kind");
        QTest::newRow("folder") << QStringLiteral("Holiday/") << QStringLiteral("Folder");
        QTest::newRow("picture") << QStringLiteral("sunset.png") << QStringLiteral("Image");
        // The MIME database names it in lower case; the shelf shows it as a label.
        QTest::newRow("text file") << QStringLiteral("notes.txt") << QStringLiteral("Plain text document");
        QTest::newRow("link") << QStringLiteral("https://example.org/page") << QStringLiteral("Link");
    }

    void kindNames()
    {
        QFETCH(QString, file);
        QFETCH(QString, kind);
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        DraggablePtr item;
        if (file.startsWith(QLatin1String("https:"))) {
            item = DraggableWeblocation::make(QUrl(file));
        } else if (file.endsWith(QLatin1Char('/'))) {
            QVERIFY(QDir(folder.path()).mkdir(file.chopped(1)));
            item = DraggableFile::make(QUrl::fromLocalFile(folder.filePath(file.chopped(1))));
        } else if (file.endsWith(QLatin1String(".png"))) {
            QImage picture(8, 8, QImage::Format_RGB32);
            picture.fill(Qt::red);
            QVERIFY(picture.save(folder.filePath(file)));
            item = DraggableFile::make(QUrl::fromLocalFile(folder.filePath(file)));
        } else {
            QFile text(folder.filePath(file));
            QVERIFY(text.open(QIODevice::WriteOnly));
            text.write("some notes\n");
            text.close();
            item = DraggableFile::make(QUrl::fromLocalFile(folder.filePath(file)));
        }
        QVERIFY(item);
        QCOMPARE(DraggableItemImage::kindName(*item), kind);
    }
};

QTEST_MAIN(TestDraggableItemImage)
#include "TestDraggableItemImage.moc"
