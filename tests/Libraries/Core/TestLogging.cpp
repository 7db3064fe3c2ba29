// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Core/Logging.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;

Q_LOGGING_CATEGORY(lcTest, "vantrope.test")

class TestLogging final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void linesCarryTheirOrigin_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("level");
        QTest::newRow("debug") << int(QtDebugMsg) << QStringLiteral(" debug ");
        QTest::newRow("info") << int(QtInfoMsg) << QStringLiteral(" info ");
        QTest::newRow("warning") << int(QtWarningMsg) << QStringLiteral(" warning ");
        QTest::newRow("critical is an error") << int(QtCriticalMsg) << QStringLiteral(" error ");
    }

    void linesCarryTheirOrigin()
    {
        QFETCH(int, type);
        QFETCH(QString, level);
        const QMessageLogContext context("/src/Domains/DragSession/DragSessionCoordinator.cpp", 123,
                                         "void DragSessionCoordinator::stop()", "vantrope.dragsession");
        const QString line =
            Logging::formatLine(QtMsgType(type), context, QStringLiteral("Succesfully persisted sessions"));
        QVERIFY2(line.contains(level), qPrintable(line));
        QVERIFY(line.contains(QStringLiteral("vantrope.dragsession: Succesfully persisted sessions")));
        QVERIFY(line.contains(
            QStringLiteral("(DragSessionCoordinator.cpp:123, void DragSessionCoordinator::stop())")));
    }

    void fileLoggingFollowsTheSetting()
    {
        QTemporaryDir dir;
        const QString logs = dir.filePath(QStringLiteral("logs"));
        Logging::install();

        qCInfo(lcTest) << "before file logging";
        Logging::setFileLoggingDirectory(logs);
        const QString path = Logging::currentLogFilePath();
        QVERIFY(path.startsWith(logs + QStringLiteral("/vantrope-")) &&
                path.endsWith(QStringLiteral(".log")));
        qCWarning(lcTest) << "while file logging";
        Logging::setFileLoggingDirectory(QString());
        qCInfo(lcTest) << "after file logging";
        qInstallMessageHandler(nullptr);

        const QString written = QString::fromUtf8(Test::readFile(path));
        QVERIFY2(
            written.contains(QStringLiteral("warning vantrope.test: while file logging (TestLogging.cpp:")),
            qPrintable(written));
        QVERIFY(!written.contains(QStringLiteral("before file logging")));
        QVERIFY(!written.contains(QStringLiteral("after file logging")));
        QCOMPARE(written.count(QLatin1Char('\n')), 1);
    }
};

QTEST_GUILESS_MAIN(TestLogging)
#include "TestLogging.moc"
