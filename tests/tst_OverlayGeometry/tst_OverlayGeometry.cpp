// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "OverlayGeometry.h"
#include "ResizableRect.h"

#include <QtTest>

class tst_OverlayGeometry : public BehaviourTest
{
    Q_OBJECT

private slots:
    void pointOfInterestSnapsToTheDraggedEdge_data();
    void pointOfInterestSnapsToTheDraggedEdge();
    void loupeSourceIsCentredOnThePoint();
    void loupeStandsBesideTheCursor_data();
    void loupeStandsBesideTheCursor();
    void toolBarStandsAtTheRegion_data();
    void toolBarStandsAtTheRegion();
};

void tst_OverlayGeometry::pointOfInterestSnapsToTheDraggedEdge_data()
{
    QTest::addColumn<int>("section");
    QTest::addColumn<QPoint>("expected");
    // The region is left 100, top 200, right 299, bottom 349; the cursor is at (7, 9).
    QTest::newRow("inside") << -3 << QPoint(7, 9);
    QTest::newRow("outside") << -2 << QPoint(7, 9);
    QTest::newRow("border") << -1 << QPoint(7, 9);
    QTest::newRow("left") << 0 << QPoint(100, 9);
    QTest::newRow("right") << 1 << QPoint(299, 9);
    QTest::newRow("top") << 2 << QPoint(7, 200);
    QTest::newRow("bottom") << 3 << QPoint(7, 349);
    QTest::newRow("top-left") << 4 << QPoint(100, 200);
    QTest::newRow("top-right") << 5 << QPoint(299, 200);
    QTest::newRow("bottom-left") << 6 << QPoint(100, 349);
    QTest::newRow("bottom-right") << 7 << QPoint(299, 349);
}

void tst_OverlayGeometry::pointOfInterestSnapsToTheDraggedEdge()
{
    QFETCH(int, section);
    QFETCH(QPoint, expected);
    QCOMPARE(overlay::pointOfInterest(QPoint(7, 9), section, QRect(100, 200, 200, 150)), expected);
}

void tst_OverlayGeometry::loupeSourceIsCentredOnThePoint()
{
    QCOMPARE(overlay::loupeSource(QPoint(100, 50)), QRect(93, 43, 16, 16));
    QCOMPARE(overlay::loupeSource(QPoint(0, 0)), QRect(-7, -7, 16, 16));
}

void tst_OverlayGeometry::loupeStandsBesideTheCursor_data()
{
    QTest::addColumn<QPoint>("cursor");
    QTest::addColumn<QPoint>("expected");
    QTest::newRow("top-left corner") << QPoint(0, 0) << QPoint(6, 26);
    QTest::newRow("last place with room") << QPoint(714, 494) << QPoint(720, 520);
    QTest::newRow("one too far right") << QPoint(715, 494) << QPoint(629, 520);
    QTest::newRow("one too far down") << QPoint(714, 495) << QPoint(720, 389);
    QTest::newRow("both") << QPoint(715, 495) << QPoint(629, 389);
    QTest::newRow("bottom-right corner") << QPoint(799, 599) << QPoint(713, 493);
}

void tst_OverlayGeometry::loupeStandsBesideTheCursor()
{
    QFETCH(QPoint, cursor);
    QFETCH(QPoint, expected);
    QCOMPARE(overlay::loupePos(cursor, QSize(800, 600)), expected);
}

void tst_OverlayGeometry::toolBarStandsAtTheRegion_data()
{
    QTest::addColumn<QRect>("region");
    QTest::addColumn<int>("extraHeight");
    QTest::addColumn<QPoint>("expected");
    // A bar of 400 x 30 on a window of 800 x 600, whose last row is 599.
    const auto region = [](int left, int top, int right, int bottom) {
        return QRect(QPoint(left, top), QPoint(right, bottom));
    };
    QTest::newRow("below, right edges aligned")
        << region(100, 100, 700, 300) << 0 << QPoint(300, 306);
    QTest::newRow("extra height is not in the place below")
        << region(100, 100, 700, 300) << 40 << QPoint(300, 306);
    QTest::newRow("last bottom with room") << region(100, 100, 700, 563) << 0 << QPoint(300, 569);
    QTest::newRow("first bottom without room")
        << region(100, 100, 700, 564) << 0 << QPoint(300, 64);
    QTest::newRow("extra height is in the room test")
        << region(100, 100, 700, 523) << 41 << QPoint(300, 23);
    QTest::newRow("room also for the extra height")
        << region(100, 100, 700, 523) << 40 << QPoint(300, 529);
    QTest::newRow("above, at 1") << region(100, 37, 700, 599) << 0 << QPoint(300, 1);
    QTest::newRow("above, 0 stays 0") << region(100, 36, 700, 599) << 0 << QPoint(300, 0);
    QTest::newRow("above, never negative") << region(100, 5, 700, 599) << 0 << QPoint(300, 0);
    QTest::newRow("left, at 1") << region(10, 100, 401, 300) << 0 << QPoint(1, 306);
    QTest::newRow("left, 0 stays 0") << region(10, 100, 400, 300) << 0 << QPoint(0, 306);
    QTest::newRow("left, never negative") << region(10, 100, 50, 300) << 0 << QPoint(0, 306);
}

void tst_OverlayGeometry::toolBarStandsAtTheRegion()
{
    QFETCH(QRect, region);
    QFETCH(int, extraHeight);
    QFETCH(QPoint, expected);
    QCOMPARE(overlay::mainToolBarPos(region, QSize(400, 30), extraHeight, QRect(0, 0, 800, 600)),
             expected);
}

QTEST_MAIN(tst_OverlayGeometry)
#include "tst_OverlayGeometry.moc"
