// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "App/DragMonitorFactory.h"
#include "support/TestSupport.h"

#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

class TestDragMonitorFactory final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void unavailableMonitorSaysWhy_data()
    {
        QTest::addColumn<DisplayEnvironment::Kind>("kind");
        QTest::addColumn<QByteArray>("display");

        QTest::newRow("wayland") << DisplayEnvironment::Kind::wayland << QByteArray();
        QTest::newRow("headless") << DisplayEnvironment::Kind::headless << QByteArray();
#ifdef WITH_X11
        QTest::newRow("unreachable X display") << DisplayEnvironment::Kind::x11 << QByteArray(":97531");
#endif
    }

    void unavailableMonitorSaysWhy()
    {
        QFETCH(DisplayEnvironment::Kind, kind);
        QFETCH(QByteArray, display);

        Test::LogCapture log;
        const std::unique_ptr<DragMonitor> monitor = DragMonitorFactory::create(kind, display);
        QVERIFY(!monitor->isAvailable());
        QVERIFY(!monitor->unavailableReason().isEmpty());
        QCOMPARE(log.count(u"Drag gestures are unavailable: "_s), 1);
        QVERIFY(log.contains(monitor->unavailableReason()));
    }
};

QTEST_GUILESS_MAIN(TestDragMonitorFactory)
#include "TestDragMonitorFactory.moc"
