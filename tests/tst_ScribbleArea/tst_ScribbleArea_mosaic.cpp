// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Canvas.h"

/// The mosaic brush.
class tst_ScribbleArea_mosaic : public BehaviourTest
{
    Q_OBJECT

private slots:
    void mosaicPixelatesARoundSpot();
    void mosaicStrokeLeavesModifiedAlone();
    void mosaicLeavesOutTheLastColumnAndRow();
    void mosaicMaskSurvivesUndo();
    void mosaicRebuildsOnceAfterTheLastChange();
    void mosaicWiderThanTheCanvas();
    void mosaicCursorIsTheBrush();
};

void tst_ScribbleArea_mosaic::mosaicPixelatesARoundSpot()
{
    Canvas canvas;
    canvas.setMosaicBlur(6);
    canvas.setPaintTypeToMosaic();
    const QImage pixelated = ScribbleAreaAccess::pixelated(canvas);
    QCOMPARE(pixelated.size(), kSize);
    canvas.press(QPoint(80, 70));
    canvas.release(QPoint(80, 70));
    QImage spot(kSize, QImage::Format_ARGB32);
    spot.fill(Qt::black);
    spot = drawnOn(spot, [](QPainter& painter) {
        painter.setPen(QPen(QBrush(Qt::white), 16, Qt::SolidLine, Qt::RoundCap));
        painter.drawPoint(80, 70);
    });
    const QImage original = picture();
    const QImage actual = canvas.image();
    for (int y = 0; y < kSize.height(); ++y) {
        for (int x = 0; x < kSize.width(); ++x) {
            const bool covered = spot.pixelColor(x, y) == QColor(Qt::white);
            QCOMPARE(actual.pixel(x, y), (covered ? pixelated : original).pixel(x, y));
        }
    }
}

void tst_ScribbleArea_mosaic::mosaicStrokeLeavesModifiedAlone()
{
    Canvas canvas;
    canvas.setPaintTypeToMosaic();
    canvas.drag(QPoint(40, 40), QPoint(120, 90));
    QVERIFY(!canvas.modified());
    QCOMPARE(canvas.history().size(), 1);
    QVERIFY(canvas.image() != picture());
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
}

void tst_ScribbleArea_mosaic::mosaicLeavesOutTheLastColumnAndRow()
{
    // A black column far away from the brush would never be scanned, so the stroke goes to the
    // edge.
    Canvas canvas;
    canvas.setMosaicBlur(6);
    canvas.setPaintTypeToMosaic();
    canvas.drag(QPoint(20, 149), QPoint(199, 149));
    for (int x = 30; x < 190; ++x)
        QCOMPARE(canvas.image().pixel(x, 149), ScribbleAreaAccess::pixelated(canvas).pixel(x, 149));
    // Inside the widget, earlier-brushed pixels in the area's last column and row are not scanned.
    Canvas inner;
    inner.setMosaicBlur(6);
    inner.setPaintTypeToMosaic();
    inner.drag(QPoint(20, 60), QPoint(180, 60));
    inner.undo();
    inner.press(QPoint(100, 60));
    inner.release(QPoint(100, 60));
    QCOMPARE(inner.image().pixel(110, 60), picture().pixel(110, 60));
    QCOMPARE(inner.image().pixel(109, 60), ScribbleAreaAccess::pixelated(inner).pixel(109, 60));
    QCOMPARE(inner.image().pixel(90, 60), ScribbleAreaAccess::pixelated(inner).pixel(90, 60));
    QCOMPARE(inner.image().pixel(89, 60), picture().pixel(89, 60));
}

void tst_ScribbleArea_mosaic::mosaicMaskSurvivesUndo()
{
    Canvas canvas;
    canvas.setMosaicBlur(6);
    canvas.setPaintTypeToMosaic();
    canvas.drag(QPoint(40, 40), QPoint(120, 40));
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
    // Off the first stroke's path, but its area overlaps it.
    canvas.drag(QPoint(60, 54), QPoint(100, 54));
    QCOMPARE(canvas.image().pixel(80, 45), ScribbleAreaAccess::pixelated(canvas).pixel(80, 45));
    canvas.undo();
    canvas.setPaintTypeToMosaic();
    canvas.drag(QPoint(60, 58), QPoint(100, 58));
    QCOMPARE(canvas.image().pixel(80, 48), picture().pixel(80, 48));
}

void tst_ScribbleArea_mosaic::mosaicRebuildsOnceAfterTheLastChange()
{
    Canvas canvas;
    canvas.setPaintTypeToMosaic();
    const QImage before = ScribbleAreaAccess::pixelated(canvas);
    for (int blur = 4; blur <= 12; ++blur)
        canvas.setMosaicBlur(blur);
    QVERIFY(ScribbleAreaAccess::rebuildPending(canvas));
    QCOMPARE(ScribbleAreaAccess::pixelated(canvas), before);
    QTRY_VERIFY(!ScribbleAreaAccess::rebuildPending(canvas));
    const QImage after = ScribbleAreaAccess::pixelated(canvas);
    QVERIFY(after != before);
    QCOMPARE(after.pixel(11, 11), after.pixel(0, 0));
    QVERIFY(after.pixel(12, 12) != after.pixel(0, 0));
}

void tst_ScribbleArea_mosaic::mosaicWiderThanTheCanvas()
{
    Canvas canvas;
    canvas.setMosaicPen(scribblePen(Qt::red, 1000));
    canvas.setPaintTypeToMosaic();
    canvas.drag(QPoint(-300, -300), QPoint(500, 500));
    canvas.drag(QPoint(-3000, -3000), QPoint(-2500, -2900));
    QCOMPARE(canvas.image().convertToFormat(QImage::Format_ARGB32),
             ScribbleAreaAccess::pixelated(canvas));
    canvas.resize(50, 40);
    canvas.drag(QPoint(0, 0), QPoint(100, 100));
    canvas.resize(500, 400);
    canvas.drag(QPoint(0, 0), QPoint(450, 350));
}

void tst_ScribbleArea_mosaic::mosaicCursorIsTheBrush()
{
    Canvas canvas;
    canvas.setMosaicPen(scribblePen(Qt::red, 24));
    QCOMPARE(canvas.mosaicPen().width(), 24);
    const QCursor cursor = canvas.cursor();
    QCOMPARE(cursor.shape(), Qt::BitmapCursor);
    QCOMPARE(cursor.hotSpot(), QPoint(12, 12));
    QImage expected(24, 24, QImage::Format_ARGB32);
    expected.fill(Qt::transparent);
    expected = drawnOn(expected, [](QPainter& painter) { painter.drawEllipse(1, 1, 22, 22); });
    QCOMPARE(cursor.pixmap().toImage().convertToFormat(QImage::Format_ARGB32), expected);
}

QTEST_MAIN(tst_ScribbleArea_mosaic)
#include "tst_ScribbleArea_mosaic.moc"
