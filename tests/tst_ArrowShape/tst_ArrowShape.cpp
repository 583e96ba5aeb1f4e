// SPDX-License-Identifier: MIT
#include "ArrowShape.h"
#include "BehaviourTest.h"

#include <QLineF>
#include <QPolygonF>
#include <QTransform>

namespace
{

using Triangle = QPolygon;

ArrowShape shapeOf(const QPoint& tail, const QPoint& head, int penWidth)
{
    ArrowAttribute attribute;
    attribute.setWidth(penWidth);
    return {QRect(tail, head), attribute};
}

Triangle polygon(const std::array<QPoint, 3>& points)
{
    return Triangle({points[0], points[1], points[2]});
}

/// An arrow along the x axis, turned into place: its shaft, then its head.
QPolygonF turned(const QPoint& tail, const QPoint& head, int penWidth)
{
    const QLineF axis(tail, head);
    const qreal base = axis.length() - 2 * penWidth;
    const qreal tip = base < 0 ? base - 2 * penWidth : axis.length();
    QTransform transform;
    transform.translate(tail.x(), tail.y());
    transform.rotate(-axis.angle());
    return transform.map(QPolygonF({{0, 0},
                                    {base, qreal(penWidth)},
                                    {base, -qreal(penWidth)},
                                    {tip, 0},
                                    {base, 2.0 * penWidth},
                                    {base, -2.0 * penWidth}}));
}

} // namespace

class tst_ArrowShape : public BehaviourTest
{
    Q_OBJECT

private slots:
    void defaultsAreThoseOfAPenOfFivePixels();
    void corners_data();
    void corners();
    void everyDirectionIsTheSameArrowTurned_data();
    void everyDirectionIsTheSameArrowTurned();
    void boundsHoldEveryCorner();
};

void tst_ArrowShape::defaultsAreThoseOfAPenOfFivePixels()
{
    const ArrowAttribute byDefault;
    QCOMPARE(byDefault.lineWidth, 5);
    QCOMPARE(byDefault.headHalfWidth, 10);
    QCOMPARE(byDefault.headLength, 10);
    ArrowAttribute five;
    five.setWidth(7);
    five.setWidth(5);
    QCOMPARE(five.lineWidth, byDefault.lineWidth);
    QCOMPARE(five.headHalfWidth, byDefault.headHalfWidth);
    QCOMPARE(five.headLength, byDefault.headLength);
}

void tst_ArrowShape::corners_data()
{
    QTest::addColumn<QPoint>("tail");
    QTest::addColumn<QPoint>("head");
    QTest::addColumn<int>("width");
    QTest::addColumn<Triangle>("shaft");
    QTest::addColumn<Triangle>("point");
    QTest::newRow("to the right") << QPoint(0, 0) << QPoint(100, 0) << 6
                                  << Triangle({{0, 0}, {88, 6}, {88, -6}})
                                  << Triangle({{100, 0}, {88, 12}, {88, -12}});
    // 60 by 80 is 100 long: the base is at 52.8, 70.4; its corners at 48, 74 and 57.6, 66.8, and
    // at 43.2, 77.6 and 62.4, 63.2.
    QTest::newRow("right and down")
        << QPoint(40, 30) << QPoint(100, 110) << 6 << Triangle({{40, 30}, {88, 104}, {98, 97}})
        << Triangle({{100, 110}, {83, 108}, {102, 93}});
    QTest::newRow("shorter than its head points backwards")
        << QPoint(70, 70) << QPoint(78, 70) << 6 << Triangle({{70, 70}, {66, 76}, {66, 64}})
        << Triangle({{54, 70}, {66, 82}, {66, 58}});
    QTest::newRow("as long as its head")
        << QPoint(70, 70) << QPoint(82, 70) << 6 << Triangle({{70, 70}, {70, 76}, {70, 64}})
        << Triangle({{70, 70}, {70, 82}, {70, 58}});
    QTest::newRow("without length")
        << QPoint(70, 70) << QPoint(70, 70) << 6 << Triangle({{70, 70}, {70, 70}, {70, 70}})
        << Triangle({{70, 70}, {70, 70}, {70, 70}});
    // Far from the origin a single-precision sum loses what parts an offset from its half.
    QTest::newRow("an offset of 18.49998 is rounded by itself")
        << QPoint(1500, 1100) << QPoint(1512, 1129) << 6
        << Triangle({{1500, 1100}, {1502, 1120}, {1513, 1116}})
        << Triangle({{1512, 1129}, {1496, 1123}, {1518, 1113}});
    QTest::newRow("an offset of -22.50002 is rounded by itself")
        << QPoint(1500, 1100) << QPoint(1471, 1088) << 6
        << Triangle({{1500, 1100}, {1484, 1087}, {1480, 1098}})
        << Triangle({{1471, 1088}, {1487, 1082}, {1477, 1104}});
    QTest::newRow("a point at 3023.49997 is rounded as a whole")
        << QPoint(3000, 2000) << QPoint(2980, 1981) << 15
        << Triangle({{3000, 2000}, {3012, 1991}, {2991, 2013}})
        << Triangle({{3024, 2022}, {3022, 1980}, {2981, 2023}});
}

void tst_ArrowShape::corners()
{
    QFETCH(QPoint, tail);
    QFETCH(QPoint, head);
    QFETCH(int, width);
    QFETCH(Triangle, shaft);
    QFETCH(Triangle, point);
    const ArrowShape arrow = shapeOf(tail, head, width);
    QCOMPARE(polygon(arrow.shaft), shaft);
    QCOMPARE(polygon(arrow.head), point);
}

void tst_ArrowShape::everyDirectionIsTheSameArrowTurned_data()
{
    QTest::addColumn<int>("width");
    for (int width : {1, 2, 6, 15, 40})
        QTest::addRow("width %d", width) << width;
}

void tst_ArrowShape::everyDirectionIsTheSameArrowTurned()
{
    QFETCH(int, width);
    constexpr int kReach = 90;
    // Half a pixel by rounding, and what single precision loses.
    constexpr qreal kTolerance = 0.5001;
    const QPoint tail(100, -70);
    for (int x = -kReach; x <= kReach; x += 3) {
        for (int y = -kReach; y <= kReach; y += 3) {
            // A head as long as the arrow has no direction that both could agree on.
            if (x * x + y * y == 4 * width * width || (x == 0 && y == 0))
                continue;
            const QPoint head = tail + QPoint(x, y);
            const ArrowShape arrow = shapeOf(tail, head, width);
            const QPolygon actual = polygon(arrow.shaft) + polygon(arrow.head);
            const QPolygonF expected = turned(tail, head, width);
            for (int i = 0; i < expected.size(); ++i) {
                const QPointF off = actual[i] - expected[i];
                QVERIFY2(qAbs(off.x()) <= kTolerance && qAbs(off.y()) <= kTolerance,
                         qPrintable(QString("corner %1 to (%2, %3)").arg(i).arg(x).arg(y)));
            }
        }
    }
}

void tst_ArrowShape::boundsHoldEveryCorner()
{
    for (const QPoint& head : {QPoint(100, 0), QPoint(0, 100), QPoint(-90, -40), QPoint(5, -3)}) {
        const ArrowShape arrow = shapeOf(QPoint(0, 0), head, 6);
        const QPolygon corners = polygon(arrow.shaft) + polygon(arrow.head);
        QCOMPARE(arrow.boundingRect(), corners.boundingRect());
    }
}

QTEST_APPLESS_MAIN(tst_ArrowShape)
#include "tst_ArrowShape.moc"
