#include <QProcess>
#include <QProcessEnvironment>
#include <QTest>

class TestCommandLine final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void runsWithoutDisplay_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("display");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("expectedOutput");
        QTest::addColumn<QString>("expectedError");

        QTest::newRow("version") << QStringList{QStringLiteral("--version")} << QString() << 0
                                 << QStringLiteral("vantrope 0.1.0") << QString();
        QTest::newRow("short version") << QStringList{QStringLiteral("-v")} << QString() << 0
                                       << QStringLiteral("vantrope 0.1.0") << QString();
        QTest::newRow("help") << QStringList{QStringLiteral("--help")} << QString() << 0
                              << QStringLiteral("Usage: vantrope") << QString();
        QTest::newRow("help wins over version")
            << QStringList{QStringLiteral("--version"), QStringLiteral("-h")} << QString() << 0
            << QStringLiteral("Usage: vantrope") << QString();
        QTest::newRow("unknown option") << QStringList{QStringLiteral("--frobnicate")} << QString() << 2
                                        << QString() << QStringLiteral("unknown argument \"--frobnicate\"");
        QTest::newRow("no display at all")
            << QStringList{} << QString() << 1 << QString() << QStringLiteral("no graphical display found");
        QTest::newRow("unreachable X display") << QStringList{} << QStringLiteral(":4242") << 1 << QString()
                                               << QStringLiteral("cannot connect to the X display \":4242\"");
    }

    void runsWithoutDisplay()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, display);
        QFETCH(int, exitCode);
        QFETCH(QString, expectedOutput);
        QFETCH(QString, expectedError);

        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "XDG_SESSION_TYPE"}) {
            environment.remove(QString::fromLatin1(name));
        }
        if (!display.isEmpty()) {
            environment.insert(QStringLiteral("DISPLAY"), display);
        }

        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(VANTROPE_BINARY), arguments);
        QVERIFY2(process.waitForFinished(10000), "vantrope did not exit by itself");
        const QString output = QString::fromLocal8Bit(process.readAllStandardOutput());
        const QString error = QString::fromLocal8Bit(process.readAllStandardError());

        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), exitCode);
        if (!expectedOutput.isEmpty()) {
            QVERIFY2(output.contains(expectedOutput), qPrintable(output));
        }
        if (expectedError.isEmpty()) {
            QVERIFY2(error.isEmpty(), qPrintable(error));
        } else {
            // One clear line, nothing else.
            QCOMPARE(error.count(QLatin1Char('\n')), 1);
            QVERIFY2(error.startsWith(QStringLiteral("vantrope: ")), qPrintable(error));
            QVERIFY2(error.contains(expectedError), qPrintable(error));
        }
    }
};

QTEST_GUILESS_MAIN(TestCommandLine)
#include "TestCommandLine.moc"
