// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Core/FileImages.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>
#include <sys/stat.h>

using namespace Vantrope;
using namespace Qt::StringLiterals;

class TestFileImages final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        Test::isolateStandardPaths();
        QVERIFY(m_dir.isValid());
        QImage wide(400, 200, QImage::Format_RGB32);
        wide.fill(Qt::red);
        QVERIFY(wide.save(path(u"wide.png"_s)));
        QVERIFY(Test::writeFile(path(u"broken.png"_s), "\x89PNG\r\n\x1a\nnot really"));
        QVERIFY(Test::writeFile(path(u"notes.txt"_s), "words"));
        // Opening a pipe for reading waits for a writer that never comes.
        QCOMPARE(::mkfifo(QFile::encodeName(path(u"pipe.png"_s)).constData(), 0600), 0);
    }

    void preview_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QSize>("expected");
        QTest::addColumn<bool>("isPicture"); // the file's own pixels rather than an icon
        QTest::newRow("image scaled to fit") << u"wide.png"_s << QSize(64, 32) << true;
        QTest::newRow("broken image") << u"broken.png"_s << QSize(64, 64) << false;
        QTest::newRow("text file") << u"notes.txt"_s << QSize(64, 64) << false;
        QTest::newRow("vanished file") << u"gone.pdf"_s << QSize(64, 64) << false;
        QTest::newRow("named pipe") << u"pipe.png"_s << QSize(64, 64) << false;
    }

    void preview()
    {
        QFETCH(QString, name);
        QFETCH(QSize, expected);
        QFETCH(bool, isPicture);

        const QImage preview = FileImages::previewImage(path(name), QSize(64, 64));
        QCOMPARE(preview.size(), expected);
        QCOMPARE(FileImages::thumbnailImage(path(name), QSize(64, 64)).isNull(), !isPicture);
        if (isPicture) {
            QCOMPARE(QColor(preview.pixel(10, 10)), QColor(Qt::red));
        }
        const QImage icon = FileImages::iconImage(path(name), QSize(48, 48));
        QVERIFY(!icon.isNull());
        QVERIFY(icon.width() <= 48 && icon.height() <= 48);
    }

private:
    QString path(const QString& name) const { return m_dir.path() + QLatin1Char('/') + name; }
    QTemporaryDir m_dir;
};

QTEST_MAIN(TestFileImages)
#include "TestFileImages.moc"
