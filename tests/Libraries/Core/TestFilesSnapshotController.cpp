// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Core/FilesSnapshotController.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

class TestFilesSnapshotController final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void pilesTheFirstFiles()
    {
        // Solid squares in a colour per file name, so the test needs neither files nor an icon theme.
        const auto colourOf = [](const QUrl& url) {
            return QColor::fromHsv(int(qHash(url.fileName()) % 360), 200, 220);
        };
        QStringList asked;
        FilesSnapshotController::Configuration configuration;
        configuration.imageProvider = [&](const QUrl& url, const QSize& size) {
            asked.append(url.fileName());
            QImage image(size, QImage::Format_ARGB32_Premultiplied);
            image.fill(colourOf(url));
            return image;
        };
        const FilesSnapshotController controller(FilesSnapshotNamespace::defaultNamespace(), configuration);
        const QList<QUrl> files{QUrl::fromLocalFile(u"/x/top.png"_s), QUrl::fromLocalFile(u"/x/second.png"_s),
                                QUrl::fromLocalFile(u"/x/third.png"_s),
                                QUrl::fromLocalFile(u"/x/fourth.png"_s)};
        QVERIFY(controller.generateSnapshot(u"../escape"_s, files));
        QCOMPARE(QFileInfo(controller.snapshotPath(u"../escape"_s)).absolutePath(),
                 QDir(controller.directory()).absolutePath());

        const QImage image = controller.snapshot(u"../escape"_s).value();
        QCOMPARE(image.size(), QSize(180, 180));
        QCOMPARE(asked, (QStringList{u"top.png"_s, u"second.png"_s, u"third.png"_s}));
        QCOMPARE(image.pixelColor(90, 90).rgb(), colourOf(files[0]).rgb());
        QCOMPARE(image.pixelColor(1, 1).alpha(), 0);
        QVERIFY(!controller.generateSnapshot(u"web"_s, {QUrl(u"https://a.example/"_s)}));
    }
};

QTEST_MAIN(TestFilesSnapshotController)
#include "TestFilesSnapshotController.moc"
