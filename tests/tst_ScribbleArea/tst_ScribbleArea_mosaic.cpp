// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Canvas.h"

namespace
{

/// A brush that goes over a picture as the canvas' brush is to.
struct Brush {
    Brush(const QImage& image, int blockSide, int penWidth)
        : picture(image)
        , blocks(inBlocks(image, blockSide))
        , track(image.size(), QImage::Format_RGB32)
        , width(penWidth)
        , widget(image.size())
    {
        track.fill(Qt::black);
    }

    void segment(const QPoint& from, const QPoint& to)
    {
        QPainter painter(&track);
        painter.setPen(QPen(QBrush(Qt::white), width, Qt::SolidLine, Qt::RoundCap));
        if (from == to)
            painter.drawPoint(from);
        else
            painter.drawLine(from, to);
        painter.end();

        const int margin = width / 2 + 2;
        const int left = qMin(from.x(), to.x()) - margin;
        const int top = qMin(from.y(), to.y()) - margin;
        const int right = qMax(from.x(), to.x()) + margin;
        const int bottom = qMax(from.y(), to.y()) + margin;
        // Without the last column and row.
        const QRect scanned(
            QPoint(qMax(left, 0), qMax(top, 0)),
            QPoint(qMin(right, widget.width()) - 1, qMin(bottom, widget.height()) - 1));
        const QRect inside = scanned & picture.rect();
        for (int y = inside.top(); y <= inside.bottom(); ++y) {
            for (int x = inside.left(); x <= inside.right(); ++x) {
                if (track.pixel(x, y) == qRgb(255, 255, 255))
                    picture.setPixel(x, y, blocks.pixel(x, y));
            }
        }
    }

    QImage picture;
    QImage blocks;
    QImage track;
    int width;
    QSize widget;
};

} // namespace

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
    void brushWithoutWidthKeepsTheCursor();
    void mosaicFollowsTheMouseUntilTheRelease();
    void everyChangeStartsTheWaitAgain();
    void newBlocksGoOnlyWhereTheNextStrokeIs();
    void mosaicIsClampedToTheCanvas_data();
    void mosaicIsClampedToTheCanvas();
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

void tst_ScribbleArea_mosaic::brushWithoutWidthKeepsTheCursor()
{
    Canvas canvas;
    canvas.setMosaicPen(scribblePen(Qt::red, 24));
    canvas.setMosaicPen(scribblePen(Qt::red, 0));
    QCOMPARE(canvas.mosaicPen().width(), 0);
    QCOMPARE(canvas.cursor().shape(), Qt::BitmapCursor);
    QCOMPARE(canvas.cursor().pixmap().size(), QSize(24, 24));
}

void tst_ScribbleArea_mosaic::mosaicFollowsTheMouseUntilTheRelease()
{
    Canvas canvas;
    canvas.setMosaicBlur(6);
    canvas.setPaintTypeToMosaic();
    Brush brush(picture(), 6, 16);
    canvas.press(QPoint(30, 30));
    QCOMPARE(canvas.image(), picture());
    canvas.move(QPoint(100, 40));
    brush.segment(QPoint(30, 30), QPoint(100, 40));
    QCOMPARE(canvas.image(), brush.picture);
    canvas.move(QPoint(60, 120));
    brush.segment(QPoint(100, 40), QPoint(60, 120));
    QCOMPARE(canvas.image(), brush.picture);
    canvas.release(QPoint(150, 100));
    brush.segment(QPoint(60, 120), QPoint(150, 100));
    QCOMPARE(canvas.image(), brush.picture);
    // The stroke has ended.
    canvas.move(QPoint(180, 30));
    canvas.release(QPoint(180, 30));
    QCOMPARE(canvas.image(), brush.picture);
    QCOMPARE(canvas.history().size(), 1);
    const DiffRect entry = canvas.history().at(0);
    QCOMPARE(QRect(entry.position, entry.image.size()), edges(20, 20, 160, 130));
}

void tst_ScribbleArea_mosaic::everyChangeStartsTheWaitAgain()
{
    Canvas canvas;
    canvas.setMosaicBlur(4);
    constexpr int kHalfWay = 150;
    QTRY_VERIFY(ScribbleAreaAccess::rebuildRemaining(canvas) < kHalfWay);
    canvas.setMosaicBlur(5);
    QVERIFY(ScribbleAreaAccess::rebuildRemaining(canvas) > kHalfWay);
}

void tst_ScribbleArea_mosaic::newBlocksGoOnlyWhereTheNextStrokeIs()
{
    Canvas canvas;
    canvas.setMosaicBlur(6);
    canvas.setPaintTypeToMosaic();
    Brush brush(picture(), 6, 16);
    const auto stroke = [&](const QPoint& from, const QPoint& to) {
        canvas.press(from);
        canvas.release(to);
        brush.segment(from, to);
    };
    stroke(QPoint(20, 30), QPoint(180, 30));
    stroke(QPoint(20, 120), QPoint(180, 120));
    QCOMPARE(canvas.image(), brush.picture);

    canvas.setMosaicBlur(9);
    QTRY_VERIFY(!ScribbleAreaAccess::rebuildPending(canvas));
    // Of the picture with its strokes, while the strokes stay.
    QCOMPARE(canvas.image(), brush.picture);
    brush.blocks = inBlocks(brush.picture, 9);
    QCOMPARE(ScribbleAreaAccess::pixelated(canvas), brush.blocks);

    // Its area reaches into the first stroke, and not to the second.
    const QImage before = canvas.image();
    stroke(QPoint(60, 44), QPoint(100, 44));
    QCOMPARE(canvas.image(), brush.picture);
    QVERIFY(canvas.image().copy(60, 34, 40, 4) != before.copy(60, 34, 40, 4));
}

void tst_ScribbleArea_mosaic::mosaicIsClampedToTheCanvas_data()
{
    QTest::addColumn<QSize>("widget");
    QTest::newRow("smaller than the picture") << QSize(50, 40);
    QTest::newRow("as large as the picture") << kSize;
    QTest::newRow("larger than the picture") << QSize(500, 400);
}

void tst_ScribbleArea_mosaic::mosaicIsClampedToTheCanvas()
{
    QFETCH(QSize, widget);
    Canvas canvas;
    canvas.setMosaicBlur(6);
    canvas.setMosaicPen(scribblePen(Qt::red, 60));
    canvas.setPaintTypeToMosaic();
    canvas.resize(widget);
    Brush brush(picture(), 6, 60);
    brush.widget = widget;
    canvas.press(QPoint(0, 0));
    canvas.release(QPoint(450, 350));
    brush.segment(QPoint(0, 0), QPoint(450, 350));
    QVERIFY(brush.picture != picture());
    QCOMPARE(canvas.image(), brush.picture);
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
}

QTEST_MAIN(tst_ScribbleArea_mosaic)
#include "tst_ScribbleArea_mosaic.moc"
