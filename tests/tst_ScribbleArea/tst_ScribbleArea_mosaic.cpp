// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Canvas.h"

namespace
{

/// A brush that goes over a picture as the canvas' brush is to.
class Brush
{
public:
    Brush(const QImage& image, int blockSide, int width)
        : m_picture(image)
    {
        choose(blockSide, width);
    }
    QImage picture() const { return m_picture; }
    QImage blocks() const { return m_blocks; }

    /// Takes the tool, or takes it again.
    void choose(int blockSide, int width)
    {
        m_width = width;
        m_track = m_picture.copy();
        m_track.fill(Qt::black);
        rebuild(blockSide);
    }
    void rebuild(int blockSide) { m_blocks = inBlocks(m_picture, blockSide); }
    void setPicture(const QImage& image) { m_picture = image; }

    /// On a widget of that size, from a point to another.
    void stroke(const QSize& widget, const QPoint& from, const QPoint& to)
    {
        m_track = drawnOn(m_track, [&](QPainter& painter) {
            painter.setPen(QPen(QBrush(Qt::white), m_width, Qt::SolidLine, Qt::RoundCap));
            if (from == to)
                painter.drawPoint(from);
            else
                painter.drawLine(from, to);
        });
        const int margin = m_width / 2 + 2;
        const int right = qMin(qMax(from.x(), to.x()) + margin, widget.width());
        const int bottom = qMin(qMax(from.y(), to.y()) + margin, widget.height());
        const QPoint topLeft(qMax(qMin(from.x(), to.x()) - margin, 0),
                             qMax(qMin(from.y(), to.y()) - margin, 0));
        // Without the last column and row.
        const QRect area = inPixels(QRect(topLeft, QPoint(right - 1, bottom - 1)));
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x) {
                if (m_picture.valid(x, y) && m_track.pixel(x, y) == qRgb(255, 255, 255))
                    m_picture.setPixel(x, y, m_blocks.pixel(x, y));
            }
        }
    }

private:
    QImage m_picture;
    QImage m_blocks;
    QImage m_track;
    int m_width = 0;
};

} // namespace

/// The mosaic brush.
class tst_ScribbleArea_mosaic : public BehaviourTest
{
    Q_OBJECT

private slots:
    void strokesMatchTheReference_data();
    void strokesMatchTheReference();
    void strokeFollowsTheMouseUntilTheRelease();
    void trackSurvivesUndo();
    void blocksAreRebuiltOnceAfterTheLastChange();
    void newBlocksGoOnlyWhereTheNextStrokeIs();
    void cursorIsTheBrush();
};

void tst_ScribbleArea_mosaic::strokesMatchTheReference_data()
{
    QTest::addColumn<QSize>("widget");
    QTest::newRow("smaller than the picture") << QSize(120, 90);
    QTest::newRow("as large as the picture") << kSize;
    QTest::newRow("larger than the picture") << QSize(500, 400);
}

void tst_ScribbleArea_mosaic::strokesMatchTheReference()
{
    QFETCH(QSize, widget);
    constexpr int kBlocks = 6;
    QRandomGenerator random(1);
    Canvas canvas;
    canvas.resize(widget);
    canvas.setMosaicBlur(kBlocks);
    for (int width : {1, 2, 16, 25, 60, 500}) {
        canvas.setMosaicPen(roundPen(Qt::red, width));
        canvas.setPaintTypeToMosaic();
        Brush brush(canvas.image(), kBlocks, width);
        QCOMPARE(ScribbleAreaAccess::pixelated(canvas), brush.blocks());
        for (int i = 0; i < 12; ++i) {
            const QPoint from(random.bounded(-60, 260), random.bounded(-60, 210));
            const bool isClick = i % 4 == 0;
            const QPoint to = isClick ? from : from + QPoint(random.bounded(90), -60);
            const QImage before = canvas.image();
            canvas.press(from);
            QCOMPARE(canvas.image(), before);
            canvas.release(to);
            brush.stroke(widget, from, to);
            QCOMPARE(canvas.image(), brush.picture());
            if (i % 3 == 0) {
                canvas.undo();
                QCOMPARE(canvas.image(), before);
                // The track keeps what is undone.
                brush.setPicture(before);
            }
        }
    }
    QVERIFY(!canvas.modified());
}

void tst_ScribbleArea_mosaic::strokeFollowsTheMouseUntilTheRelease()
{
    const QVector<QPoint> path{{30, 30}, {100, 40}, {60, 120}, {150, 100}};
    Canvas canvas;
    canvas.setMosaicBlur(6);
    canvas.setPaintTypeToMosaic();
    Brush brush(picture(), 6, 16);
    canvas.press(path[0]);
    for (int i = 1; i < path.size(); ++i) {
        if (i + 1 < path.size())
            canvas.move(path[i]);
        else
            canvas.release(path[i]);
        brush.stroke(kSize, path[i - 1], path[i]);
        QCOMPARE(canvas.image(), brush.picture());
    }
    // The stroke has ended.
    canvas.move(QPoint(180, 30));
    canvas.release(QPoint(180, 30));
    QCOMPARE(canvas.image(), brush.picture());
    QCOMPARE(canvas.entries(), 1);
    QCOMPARE(canvas.areaOf(0), inPixels(edges(20, 20, 160, 130)));
}

// Intended.
void tst_ScribbleArea_mosaic::trackSurvivesUndo()
{
    Canvas canvas;
    canvas.setMosaicBlur(6);
    canvas.setPaintTypeToMosaic();
    canvas.drag(QPoint(40, 40), QPoint(120, 40));
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
    // Off the first stroke's path, but its area overlaps it.
    canvas.drag(QPoint(60, 54), QPoint(100, 54));
    const QPoint first = inPixels(QRect(80, 45, 1, 1)).topLeft();
    QCOMPARE(canvas.image().pixel(first), ScribbleAreaAccess::pixelated(canvas).pixel(first));
    canvas.undo();
    canvas.setPaintTypeToMosaic();
    canvas.drag(QPoint(60, 58), QPoint(100, 58));
    const QPoint cleared = inPixels(QRect(80, 48, 1, 1)).topLeft();
    QCOMPARE(canvas.image().pixel(cleared), picture().pixel(cleared));
}

void tst_ScribbleArea_mosaic::blocksAreRebuiltOnceAfterTheLastChange()
{
    constexpr int kHalfWayMs = 150;
    Canvas canvas;
    canvas.setPaintTypeToMosaic();
    const QTimer& timer = ScribbleAreaAccess::mosaicTimer(canvas);
    canvas.setMosaicBlur(4);
    QTRY_VERIFY(timer.remainingTime() < kHalfWayMs);
    canvas.setMosaicBlur(12);
    QVERIFY(timer.remainingTime() > kHalfWayMs);
    QCOMPARE(ScribbleAreaAccess::pixelated(canvas), inBlocks(picture(), 2));
    QTRY_VERIFY(!timer.isActive());
    QCOMPARE(ScribbleAreaAccess::pixelated(canvas), inBlocks(picture(), 12));
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
        brush.stroke(kSize, from, to);
        QCOMPARE(canvas.image(), brush.picture());
    };
    stroke(QPoint(20, 30), QPoint(180, 30));
    stroke(QPoint(20, 120), QPoint(180, 120));

    canvas.setMosaicBlur(9);
    QTRY_VERIFY(!ScribbleAreaAccess::mosaicTimer(canvas).isActive());
    // Of the picture with its strokes, while the strokes stay.
    QCOMPARE(canvas.image(), brush.picture());
    brush.rebuild(9);
    QCOMPARE(ScribbleAreaAccess::pixelated(canvas), brush.blocks());

    // Its area reaches into the first stroke, and not to the second.
    const QImage before = canvas.image();
    stroke(QPoint(60, 44), QPoint(100, 44));
    const QRect reached = inPixels(QRect(60, 34, 40, 4));
    QVERIFY(canvas.image().copy(reached) != before.copy(reached));
}

void tst_ScribbleArea_mosaic::cursorIsTheBrush()
{
    QImage circle(QSize(24, 24) * ratio(), QImage::Format_ARGB32);
    circle.setDevicePixelRatio(ratio());
    circle.fill(Qt::transparent);
    circle = drawnOn(circle, [](QPainter& painter) { painter.drawEllipse(1, 1, 22, 22); });
    Canvas canvas;
    // A brush without width keeps the cursor of the one before.
    for (int width : {24, 0}) {
        canvas.setMosaicPen(roundPen(Qt::red, width));
        QCOMPARE(canvas.mosaicPen().width(), width);
        const QCursor cursor = canvas.cursor();
        QCOMPARE(cursor.shape(), Qt::BitmapCursor);
        // Of physical pixels, whatever the picture's ratio.
        QCOMPARE(cursor.hotSpot(), QPoint(circle.width() / 2, circle.height() / 2));
        QCOMPARE(cursor.pixmap().toImage().convertToFormat(QImage::Format_ARGB32), circle);
    }
}

QTEST_MAIN(tst_ScribbleArea_mosaic)
#include "tst_ScribbleArea_mosaic.moc"
