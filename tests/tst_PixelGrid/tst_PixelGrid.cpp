// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "PixelGrid.h"

namespace
{

constexpr int kEighths = 8;

/// An edge in widget coordinates, in eighths of a physical pixel.
int inEighths(int edge, qreal ratio)
{
    return edge * int(ratio * kEighths);
}

int roundedDown(int eighths)
{
    return eighths >= 0 ? eighths / kEighths : -((-eighths + kEighths - 1) / kEighths);
}

} // namespace

class tst_PixelGrid : public BehaviourTest
{
    Q_OBJECT

private slots:
    void rectanglesMatchTheReference_data();
    void rectanglesMatchTheReference();
    void ratioOfOneChangesNothing();
    void coordinatesUnderThePointerHaveItsPixel_data() { rectanglesMatchTheReference_data(); }
    void coordinatesUnderThePointerHaveItsPixel();
};

void tst_PixelGrid::rectanglesMatchTheReference_data()
{
    QTest::addColumn<qreal>("ratio");
    for (qreal ratio : {0.75, 1.0, 1.25, 1.5, 1.75, 2.0, 2.625, 3.0})
        QTest::addRow("%g", ratio) << ratio;
}

void tst_PixelGrid::rectanglesMatchTheReference()
{
    QFETCH(qreal, ratio);
    for (int origin : {-3840, 0, 3840}) {
        for (int from = origin - 9; from < origin + 9; ++from) {
            for (int to = from; to < from + 20; ++to) {
                const int left = inEighths(from, ratio);
                const int right = inEighths(to, ratio);
                const int half = kEighths / 2;
                // Columns and rows alike, with another origin.
                const QRect rect(QPoint(from, from + 1), QPoint(to - 1, to));
                const QRect nearest = pixels::nearest(rect, ratio);
                QCOMPARE(nearest.left(), roundedDown(left + half));
                QCOMPARE(nearest.left() + nearest.width(), roundedDown(right + half));
                QCOMPARE(nearest.top(), roundedDown(inEighths(from + 1, ratio) + half));
                QCOMPARE(nearest.top() + nearest.height(),
                         roundedDown(inEighths(to + 1, ratio) + half));

                const QRect outward = pixels::outward(rect, ratio);
                QCOMPARE(outward.isEmpty(), from == to);
                if (from == to)
                    continue;
                // The first and the last pixel touch the rectangle, and the ones beside them do
                // not.
                QVERIFY((outward.left() + 1) * kEighths > left &&
                        outward.left() * kEighths <= left);
                QVERIFY(outward.right() * kEighths < right &&
                        (outward.right() + 1) * kEighths >= right);
                QCOMPARE(outward.top(), roundedDown(inEighths(from + 1, ratio)));
                QCOMPARE(outward.bottom(), roundedDown(inEighths(to + 1, ratio) - 1));
            }
        }
    }
}

void tst_PixelGrid::ratioOfOneChangesNothing()
{
    for (const QRect& rect : {QRect(), QRect(5, 6, 0, 3), QRect(QPoint(9, 8), QPoint(-3, 2)),
                              QRect(-7, -8, 20, 30), QRect(0, 0, 65535, 1)}) {
        QCOMPARE(pixels::nearest(rect, 1), rect);
        QCOMPARE(pixels::outward(rect, 1), rect);
    }
}

void tst_PixelGrid::coordinatesUnderThePointerHaveItsPixel()
{
    QFETCH(qreal, ratio);
    QWidget widget;
    widget.setProperty(pixels::kPictureRatio, ratio);
    for (int pixel = 0; pixel < 5000; ++pixel) {
        const QPointF inWindow(pixel / ratio, (pixel + 1) / ratio);
        // As Qt 5 and Qt 6 hand it to a widget.
        const QPoint widgetPos(300, 400);
        for (const QPointF inWidget :
             {QPointF(inWindow.toPoint() - widgetPos), inWindow - widgetPos}) {
            const QMouseEvent event(QEvent::MouseMove, inWidget, inWindow, QPointF(), Qt::NoButton,
                                    Qt::NoButton, Qt::NoModifier);
            const QPoint under = pixels::coordinatesUnder(event, widget) + widgetPos;
            QVERIFY(pixels::nearest(QRect(under, QSize(1, 1)), ratio)
                        .contains(QPoint(pixel, pixel + 1)));
        }
    }
}

QTEST_MAIN(tst_PixelGrid)
#include "tst_PixelGrid.moc"
