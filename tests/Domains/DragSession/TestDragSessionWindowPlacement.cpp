// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/DragSession/DragSessionWindowPlacement.h"

#include <QTest>

using namespace Vantrope;
using Location = SettingsItem::ShelfLocation;

Q_DECLARE_METATYPE(Vantrope::SettingsItem::ShelfLocation)

class TestDragSessionWindowPlacement final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void origin_data()
    {
        QTest::addColumn<Location>("location");
        QTest::addColumn<QRectF>("visibleFrame");
        QTest::addColumn<QList<QRectF>>("others");
        QTest::addColumn<QPointF>("expected");
        const QRectF v(0, 0, 1440, 875);
        QTest::newRow("top right") << Location::topRight << v << QList<QRectF>{} << QPointF(1240, 667);
        QTest::newRow("top left") << Location::topLeft << v << QList<QRectF>{} << QPointF(20, 667);
        QTest::newRow("bottom right") << Location::bottomRight << v << QList<QRectF>{} << QPointF(1240, 20);
        QTest::newRow("bottom left") << Location::bottomLeft << v << QList<QRectF>{} << QPointF(20, 20);
        QTest::newRow("center") << Location::center << v << QList<QRectF>{} << QPointF(630, 343.5);
        // Measured without the origin of a secondary display, as it always was.
        QTest::newRow("center on a second display")
            << Location::center << QRectF(1440, 0, 1920, 1055) << QList<QRectF>{} << QPointF(1590, 433.5);
        QTest::newRow("top right taken: next one below")
            << Location::topRight << v << QList<QRectF>{QRectF(1240, 667, 180, 188)} << QPointF(1240, 469);
        QTest::newRow("bottom left taken: next one above")
            << Location::bottomLeft << v << QList<QRectF>{QRectF(20, 20, 180, 188)} << QPointF(20, 218);
        QTest::newRow("cursor near a corner stays on screen")
            << Location::cursor << v << QList<QRectF>{} << QPointF(1260, 0);
        // Two shelves fill the right column of a short screen.
        QTest::newRow("full column moves inwards")
            << Location::topRight << QRectF(0, 0, 800, 420)
            << QList<QRectF>{QRectF(600, 212, 180, 188), QRectF(600, 14, 180, 188)} << QPointF(410, 212);
    }

    void origin()
    {
        QFETCH(Location, location);
        QFETCH(QRectF, visibleFrame);
        QFETCH(QList<QRectF>, others);
        QFETCH(QPointF, expected);
        const Screen screen{QStringLiteral("test"), visibleFrame, visibleFrame};
        const QPointF mouse(1430, 5);
        QCOMPARE(DragSessionWindowPlacement::origin(location, {180, 188}, screen, mouse, others), expected);
    }
};

QTEST_GUILESS_MAIN(TestDragSessionWindowPlacement)
#include "TestDragSessionWindowPlacement.moc"
