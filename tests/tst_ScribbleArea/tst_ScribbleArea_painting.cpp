// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Canvas.h"
#include "Repainted.h"

#include <QAbstractEventDispatcher>
#include <functional>

namespace
{

/// A canvas on a parent that is larger and paints the picture on whole physical pixels.
class Framed : public QWidget
{
public:
    Framed()
    {
        resize(300, 250);
        canvas.setParent(this);
        canvas.setGeometry(QRect(QPoint(51, 43), kSize));
        // Shown first, since that paints everything.
        repaintedBy(*this, [] {});
    }
    /// What `action` paints of this widget, in coordinates of the canvas.
    template <typename Action>
    QRegion repainted(Action action)
    {
        return repaintedBy(*this, action).translated(-canvas.pos());
    }
    QRegion all() const { return rect().translated(-canvas.pos()); }
    /// What is on the screen.
    QImage shown()
    {
        QCoreApplication::processEvents();
        return screen()->grabWindow(winId()).toImage();
    }

    Canvas canvas;

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QImage pixels = canvas.image();
        pixels.setDevicePixelRatio(1);
        QPainter painter(this);
        painter.scale(1 / ratio(), 1 / ratio());
        painter.drawImage(qRound(canvas.x() * ratio()), qRound(canvas.y() * ratio()), pixels);
    }
};

const QPoint kFrom(150, 30);
const QPoint kOver(120, 50);
const QPoint kTo(40, 110);

QRegion around(const QPoint& a, const QPoint& b, int margin)
{
    return (QRect(a, a) | QRect(b, b)).adjusted(-margin, -margin, margin, margin);
}

} // namespace

/// What the canvas and its parent are asked to paint again.
class tst_ScribbleArea_painting : public BehaviourTest
{
    Q_OBJECT

private slots:
    void firstMoveAndReleaseRepaintAllOfTheParent_data();
    void firstMoveAndReleaseRepaintAllOfTheParent();
    void laterMovesOfAStrokeRepaintWhatChanged_data();
    void laterMovesOfAStrokeRepaintWhatChanged();
    void laterMovesOfAFrameRepaintOldAndNewPlace_data();
    void laterMovesOfAFrameRepaintOldAndNewPlace();
    void movesLeaveNothingStale_data();
    void movesLeaveNothingStale();
    void movesThatChangeNothingRepaintNothing();
    void changesRepaintThePicture();
    void shapeWithoutAFrameIsRepaintedByItsTool();
    void shapeWithoutAFrameIsRepaintedByThePress();
    void onlyTheMosaicHasATimer();
};

void tst_ScribbleArea_painting::firstMoveAndReleaseRepaintAllOfTheParent_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("pen") << int(ScribbleArea::PAINT_SCRIBBLE);
    QTest::newRow("text") << int(ScribbleArea::PAINT_TEXT);
    QTest::newRow("shape") << int(ScribbleArea::PAINT_GRAPH);
    QTest::newRow("mosaic") << int(ScribbleArea::PAINT_MOSAIC);
}

void tst_ScribbleArea_painting::firstMoveAndReleaseRepaintAllOfTheParent()
{
    QFETCH(int, type);
    Framed parent;
    Canvas& canvas = parent.canvas;
    canvas.setPaintType(ScribbleArea::PAINT_TYPE(type));
    for (int stroke = 0; stroke < 2; ++stroke) {
        canvas.press(kFrom);
        QCOMPARE(parent.repainted([&] { canvas.move(kOver); }), parent.all());
        QCOMPARE(parent.repainted([&] { canvas.hover(kTo); }), QRegion());
        QVERIFY(parent.repainted([&] { canvas.move(kTo); }) != parent.all());
        QCOMPARE(parent.repainted([&] { canvas.release(kTo); }), parent.all());
    }
}

void tst_ScribbleArea_painting::laterMovesOfAStrokeRepaintWhatChanged_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("margin");
    // Half the width of 2 or 16 pixels and 2 more.
    QTest::newRow("pen") << int(ScribbleArea::PAINT_SCRIBBLE) << 3;
    QTest::newRow("mosaic") << int(ScribbleArea::PAINT_MOSAIC) << 10;
}

void tst_ScribbleArea_painting::laterMovesOfAStrokeRepaintWhatChanged()
{
    QFETCH(int, type);
    QFETCH(int, margin);
    Framed parent;
    Canvas& canvas = parent.canvas;
    canvas.setPaintType(ScribbleArea::PAINT_TYPE(type));
    canvas.press(kFrom);
    canvas.move(kOver);
    QCOMPARE(parent.repainted([&] { canvas.move(kTo); }), around(kOver, kTo, margin));

    Canvas alone;
    alone.setPaintType(ScribbleArea::PAINT_TYPE(type));
    alone.press(kFrom);
    QCOMPARE(repaintedBy(alone, [&] { alone.move(kOver); }), around(kFrom, kOver, margin));
    QCOMPARE(repaintedBy(alone, [&] { alone.release(kTo); }), around(kOver, kTo, margin));
}

void tst_ScribbleArea_painting::laterMovesOfAFrameRepaintOldAndNewPlace_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<int>("height");
    // Half of a handle, or of the point of an arrow.
    QTest::newRow("rectangle") << int(ScribbleArea::GRAPH_RECT) << 4;
    QTest::newRow("ellipse") << int(ScribbleArea::GRAPH_ELLIPSE) << 4;
    QTest::newRow("arrow") << int(ScribbleArea::GRAPH_ARROW) << 12;
}

void tst_ScribbleArea_painting::laterMovesOfAFrameRepaintOldAndNewPlace()
{
    QFETCH(int, state);
    QFETCH(int, height);
    Framed parent;
    Canvas& canvas = parent.canvas;
    canvas.setGraphTool(state);
    canvas.press(QPoint(30, 60));
    canvas.move(QPoint(120, 60));
    const QRegion painted = parent.repainted([&] { canvas.move(QPoint(150, 60)); });
    const QRect both = edges(30, 60, 150, 60).adjusted(-4, -height, 4, height);
    QCOMPARE(QRegion(both).subtracted(painted), QRegion());
    // A little more, for outlines.
    QVERIFY(both.adjusted(-6, -6, 6, 6).contains(painted.boundingRect()));
}

void tst_ScribbleArea_painting::movesLeaveNothingStale_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("state");
    QTest::newRow("pen") << int(ScribbleArea::PAINT_SCRIBBLE) << 0;
    QTest::newRow("mosaic") << int(ScribbleArea::PAINT_MOSAIC) << 0;
    QTest::newRow("text") << int(ScribbleArea::PAINT_TEXT) << 0;
    QTest::newRow("rectangle") << int(ScribbleArea::PAINT_GRAPH) << 0;
    QTest::newRow("ellipse") << int(ScribbleArea::PAINT_GRAPH) << 1;
    QTest::newRow("arrow") << int(ScribbleArea::PAINT_GRAPH) << 2;
}

// At fractions, the edge of what is repainted may lie within a physical pixel.
void tst_ScribbleArea_painting::movesLeaveNothingStale()
{
    QFETCH(int, type);
    QFETCH(int, state);
    Framed parent;
    Canvas& canvas = parent.canvas;
    canvas.setPaintTypeToMosaic();
    canvas.setGraphState(state);
    canvas.setPaintType(ScribbleArea::PAINT_TYPE(type));
    const auto isFresh = [&] {
        const QImage shown = parent.shown();
        parent.update();
        return shown == parent.shown();
    };
    QRandomGenerator random(7);
    const auto point = [&] { return QPoint(random.bounded(-10, 210), random.bounded(-10, 160)); };
    for (int stroke = 0; stroke < 3; ++stroke) {
        canvas.press(point());
        for (int i = 0; i < 10; ++i) {
            canvas.move(point());
            QVERIFY(isFresh());
        }
        canvas.release(point());
        QVERIFY(isFresh());
    }
    canvas.undo();
    QVERIFY(isFresh());
}

void tst_ScribbleArea_painting::movesThatChangeNothingRepaintNothing()
{
    Framed parent;
    Canvas& canvas = parent.canvas;
    canvas.setPaintTypeToGraph();
    canvas.press(kFrom);
    canvas.move(kFrom);
    // Too short a drag for a frame.
    QCOMPARE(parent.repainted([&] { canvas.move(kFrom + QPoint(1, 0)); }), QRegion());
}

void tst_ScribbleArea_painting::changesRepaintThePicture()
{
    Canvas canvas;
    canvas.resize(300, 250);
    const QSize pixels = canvas.image().size();
    const QRegion pictureOnly =
        QRect(0, 0, qCeil(pixels.width() / ratio()), qCeil(pixels.height() / ratio()));
    const QRegion all = canvas.rect();
    const QPen pen = roundPen(Qt::red, 9);
    const struct {
        const char* name;
        std::function<void()> change;
        QRegion repainted;
    } rows[] = {
        {"undo", [&] { canvas.undo(); }, pictureOnly},
        {"undo past the first edit", [&] { canvas.undo(); }, QRegion()},
        {"redo", [&] { canvas.redo(); }, pictureOnly},
        {"redo past the last edit", [&] { canvas.redo(); }, QRegion()},
        {"another picture", [&] { canvas.setImage(picture()); }, all},
        {"clear", [&] { canvas.clearImage(); }, all},
        {"pen of rectangles", [&] { canvas.setRectPen(pen); }, all},
        {"pen of ellipses", [&] { canvas.setEllipsePen(pen); }, all},
        {"pen of arrows", [&] { canvas.setArrowPen(pen); }, all},
        {"pen of strokes", [&] { canvas.setScribblePen(pen); }, QRegion()},
    };
    canvas.drag(kFrom, kTo);
    for (const auto& row : rows)
        QVERIFY2(repaintedBy(canvas, row.change) == row.repainted, row.name);
}

// What a commit leaves in the canvas's corner goes with the tool.
void tst_ScribbleArea_painting::shapeWithoutAFrameIsRepaintedByItsTool()
{
    Canvas canvas;
    QPen pen = canvas.rectPen();
    pen.setWidth(9);
    canvas.setRectPen(pen);
    canvas.setGraphTool(ScribbleArea::GRAPH_RECT);
    canvas.drag(kFrom, kTo);
    canvas.undo();
    const QImage nothing = painted(canvas, QWidget::RenderFlags()).copy(edges(50, 50, 60, 60));
    QVERIFY(painted(canvas, QWidget::RenderFlags()).copy(edges(0, 0, 10, 10)) != nothing);
    const QRegion repainted = repaintedBy(canvas, [&] { canvas.setPaintTypeToScribble(); });
    QCOMPARE(painted(canvas, QWidget::RenderFlags()).copy(edges(0, 0, 10, 10)), nothing);
    QVERIFY(repainted.contains(QPoint(0, 0)));
}

// The press turns the arrow round, whose ends are on the corners of the null rectangle.
void tst_ScribbleArea_painting::shapeWithoutAFrameIsRepaintedByThePress()
{
    Canvas canvas;
    canvas.setGraphTool(ScribbleArea::GRAPH_ARROW);
    canvas.initArrow();
    const QImage before = painted(canvas, QWidget::RenderFlags());
    const QRegion repainted = repaintedBy(canvas, [&] { canvas.press(kFrom); });
    QVERIFY(painted(canvas, QWidget::RenderFlags()) != before);
    QVERIFY(!repainted.isEmpty());
}

void tst_ScribbleArea_painting::onlyTheMosaicHasATimer()
{
    Canvas canvas;
    canvas.press(kFrom);
    canvas.move(kOver);
    canvas.move(kTo);
    QCOMPARE(QAbstractEventDispatcher::instance()->registeredTimers(&canvas).size(), 0);
    QCOMPARE(canvas.findChildren<QTimer*>().size(), 0);
}

QTEST_MAIN(tst_ScribbleArea_painting)
#include "tst_ScribbleArea_painting.moc"
