// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "OverlayGeometry.h"

class tst_OverlayGeometry : public BehaviourTest
{
    Q_OBJECT

private slots:
    void pointOfInterestSnapsToTheDraggedEdge();
    void loupeSourceIsCentredOnThePoint();
    void loupeStandsBesideTheCursor_data();
    void loupeStandsBesideTheCursor();
    void toolBarStandsAtTheRegion_data();
    void toolBarStandsAtTheRegion();
};

void tst_OverlayGeometry::pointOfInterestSnapsToTheDraggedEdge()
{
    const QPoint cursor(7, 9);
    const QRect region(QPoint(100, 200), QPoint(299, 349));
    // From inside, outside and border to the handles left, right, top, bottom and the corners.
    const QPoint expected[] = {cursor,   cursor,     cursor,     {100, 9},   {299, 9},   {7, 200},
                               {7, 349}, {100, 200}, {299, 200}, {100, 349}, {299, 349}, cursor};
    for (int section = -3; section <= 8; ++section)
        QCOMPARE(overlay::pointOfInterest(cursor, section, region), expected[section + 3]);
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
    QTest::newRow("last place with room") << QPoint(714, 494) << QPoint(720, 520);
    QTest::newRow("one too far right") << QPoint(715, 494) << QPoint(629, 520);
    QTest::newRow("one too far down") << QPoint(714, 495) << QPoint(720, 389);
    QTest::newRow("both") << QPoint(715, 495) << QPoint(629, 389);
}

void tst_OverlayGeometry::loupeStandsBesideTheCursor()
{
    QFETCH(QPoint, cursor);
    QFETCH(QPoint, expected);
    QCOMPARE(overlay::loupePos(cursor, QSize(800, 600)), expected);
}

void tst_OverlayGeometry::toolBarStandsAtTheRegion_data()
{
    // A bar of 400 x 30 on a window of 800 x 600, whose last row is 599.
    QTest::addColumn<QPoint>("topLeft");
    QTest::addColumn<QPoint>("bottomRight");
    QTest::addColumn<int>("extraHeight");
    QTest::addColumn<QPoint>("bar");
    const auto add = [](const char* name, const QPoint& topLeft, const QPoint& bottomRight,
                        int extraHeight, const QPoint& bar) {
        QTest::newRow(name) << topLeft << bottomRight << extraHeight << bar;
    };
    add("below, right edges aligned", {100, 100}, {700, 300}, 0, {300, 306});
    add("extra height is not in the place below", {100, 100}, {700, 300}, 40, {300, 306});
    add("last bottom with room", {100, 100}, {700, 563}, 0, {300, 569});
    add("first bottom without room", {100, 100}, {700, 564}, 0, {300, 64});
    add("room also for the extra height", {100, 100}, {700, 523}, 40, {300, 529});
    add("extra height is in the room test", {100, 100}, {700, 523}, 41, {300, 23});
    add("above, at 1", {100, 37}, {700, 599}, 0, {300, 1});
    add("above, never negative", {100, 5}, {700, 599}, 0, {300, 0});
    add("left, at 1", {10, 100}, {401, 300}, 0, {1, 306});
    add("left, never negative", {10, 100}, {50, 300}, 0, {0, 306});
}

void tst_OverlayGeometry::toolBarStandsAtTheRegion()
{
    QFETCH(QPoint, topLeft);
    QFETCH(QPoint, bottomRight);
    QFETCH(int, extraHeight);
    QFETCH(QPoint, bar);
    QCOMPARE(overlay::mainToolBarPos(QRect(topLeft, bottomRight), QSize(400, 30), extraHeight,
                                     QRect(0, 0, 800, 600)),
             bar);
}

QTEST_APPLESS_MAIN(tst_OverlayGeometry)
#include "tst_OverlayGeometry.moc"
