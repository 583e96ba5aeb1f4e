// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Canvas.h"

#include <QAbstractEventDispatcher>
#include <QPaintEvent>
#include <QTimer>

namespace
{

QImage nothing()
{
    QImage image(kSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

/// What the canvas itself paints, without its text box.
QImage paintedBy(Canvas& canvas)
{
    QImage image = nothing();
    canvas.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    return image;
}

/// Collects what is painted on a widget.
template <typename Widget>
class Watched : public Widget
{
public:
    /// The region that `action` has painted again.
    template <typename Action>
    QRegion repaintedBy(Action action)
    {
        QCoreApplication::sendPostedEvents();
        m_painted = QRegion();
        action();
        QCoreApplication::sendPostedEvents();
        return m_painted;
    }

protected:
    void paintEvent(QPaintEvent* event) override
    {
        m_painted |= event->region();
        Widget::paintEvent(event);
    }

private:
    QRegion m_painted;
};

bool isShownOn(QWidget& parent, Canvas& canvas)
{
    parent.resize(300, 250);
    canvas.setParent(&parent);
    canvas.setGeometry(QRect(QPoint(50, 40), kSize));
    parent.show();
    return QTest::qWaitForWindowExposed(&parent);
}

const QPoint kFrom(150, 30);
const QPoint kOver(120, 50);
const QPoint kTo(40, 110);

void drawShape(QPainter& painter, const Canvas& canvas, int state)
{
    const QRect frame = QRect(kFrom, kTo).normalized();
    if (state == ScribbleArea::GRAPH_RECT) {
        painter.setPen(canvas.rectPen());
        painter.drawRect(frame);
    } else if (state == ScribbleArea::GRAPH_ELLIPSE) {
        painter.setPen(canvas.ellipsePen());
        painter.setRenderHint(QPainter::Antialiasing);
        painter.drawEllipse(frame);
    } else {
        drawArrowOf(painter, kRed, triangle(kFrom, {46, 98}, {53, 108}),
                    triangle(kTo, {43, 93}, {57, 113}));
    }
}

} // namespace

/// What the canvas paints, and what it asks to be painted again.
class tst_ScribbleArea_painting : public BehaviourTest
{
    Q_OBJECT

private slots:
    void shapeIsShownWhileItIsEdited_data();
    void shapeIsShownWhileItIsEdited();
    void otherToolsShowNoShape();
    void pictureIsLeftToTheParent();
    void segmentsRepaintTheirArea();
    void undoAndRedoRepaintThePicture();
    void newPictureRepaintsEverything();
    void shapePensRepaintEverything();
    void shapeWithoutAFrameIsRepaintedByItsTool();
    void shapeWithoutAFrameIsRepaintedByThePress();
    void firstMoveAndReleaseRepaintAllOfTheParent_data();
    void firstMoveAndReleaseRepaintAllOfTheParent();
    void laterMovesOfAStrokeRepaintWhatChanged_data();
    void laterMovesOfAStrokeRepaintWhatChanged();
    void laterMovesOfAFrameRepaintOldAndNewPlace_data();
    void laterMovesOfAFrameRepaintOldAndNewPlace();
    void movesThatChangeNothingRepaintNothing();
    void onlyTheMosaicHasATimer();
};

void tst_ScribbleArea_painting::shapeIsShownWhileItIsEdited_data()
{
    QTest::addColumn<int>("state");
    QTest::newRow("rectangle") << int(ScribbleArea::GRAPH_RECT);
    QTest::newRow("ellipse") << int(ScribbleArea::GRAPH_ELLIPSE);
    QTest::newRow("arrow") << int(ScribbleArea::GRAPH_ARROW);
}

void tst_ScribbleArea_painting::shapeIsShownWhileItIsEdited()
{
    QFETCH(int, state);
    Canvas canvas;
    canvas.setPaintTypeToGraph();
    canvas.setGraphState(state);
    canvas.press(kFrom);
    canvas.move(kOver);
    canvas.move(kTo);
    // No handles yet.
    QCOMPARE(paintedBy(canvas),
             drawnOn(nothing(), [&](QPainter& painter) { drawShape(painter, canvas, state); }));
    canvas.release(kTo);
    QCOMPARE(paintedBy(canvas), drawnOn(nothing(), [&](QPainter& painter) {
                 drawShape(painter, canvas, state);
                 canvas.frame()->render(painter);
             }));
}

void tst_ScribbleArea_painting::otherToolsShowNoShape()
{
    Canvas canvas;
    canvas.setGraphState(ScribbleArea::GRAPH_RECT);
    canvas.setPaintTypeToText();
    canvas.press(kFrom);
    canvas.move(kTo);
    QCOMPARE(paintedBy(canvas), nothing());
    canvas.release(kTo);
    QCOMPARE(paintedBy(canvas),
             drawnOn(nothing(), [&](QPainter& painter) { canvas.frame()->render(painter); }));
    canvas.setPaintTypeToMosaic();
    canvas.drag(kFrom, kTo);
    QCOMPARE(paintedBy(canvas), nothing());
}

void tst_ScribbleArea_painting::pictureIsLeftToTheParent()
{
    Canvas canvas;
    canvas.drag(kFrom, kTo);
    QCOMPARE(paintedBy(canvas), nothing());
}

void tst_ScribbleArea_painting::segmentsRepaintTheirArea()
{
    Watched<Canvas> canvas;
    canvas.show();
    QVERIFY(QTest::qWaitForWindowExposed(&canvas));
    canvas.press(QPoint(60, 50));
    // Half the pen of 2 pixels and 2 more.
    QCOMPARE(canvas.repaintedBy([&] { canvas.move(QPoint(40, 80)); }),
             QRegion(edges(37, 47, 63, 83)));
    QCOMPARE(canvas.repaintedBy([&] { canvas.release(QPoint(90, 80)); }),
             QRegion(edges(37, 77, 93, 83)));
    canvas.setPaintTypeToMosaic();
    canvas.press(QPoint(60, 50));
    // Half the brush of 16 pixels and 2 more.
    QCOMPARE(canvas.repaintedBy([&] { canvas.move(QPoint(40, 80)); }),
             QRegion(edges(30, 40, 70, 90)));
    QCOMPARE(canvas.repaintedBy([&] { canvas.release(QPoint(90, 80)); }),
             QRegion(edges(30, 70, 100, 90)));
}

void tst_ScribbleArea_painting::undoAndRedoRepaintThePicture()
{
    Watched<Canvas> canvas;
    canvas.resize(300, 250);
    canvas.show();
    QVERIFY(QTest::qWaitForWindowExposed(&canvas));
    canvas.drag(kFrom, kTo);
    QCOMPARE(canvas.repaintedBy([&] { canvas.undo(); }), QRegion(QRect(QPoint(), kSize)));
    QCOMPARE(canvas.repaintedBy([&] { canvas.undo(); }), QRegion());
    QCOMPARE(canvas.repaintedBy([&] { canvas.redo(); }), QRegion(QRect(QPoint(), kSize)));
    QCOMPARE(canvas.repaintedBy([&] { canvas.redo(); }), QRegion());
}

void tst_ScribbleArea_painting::newPictureRepaintsEverything()
{
    Watched<Canvas> canvas;
    canvas.show();
    QVERIFY(QTest::qWaitForWindowExposed(&canvas));
    QCOMPARE(canvas.repaintedBy([&] { canvas.setImage(picture()); }), QRegion(canvas.rect()));
    QCOMPARE(canvas.repaintedBy([&] { canvas.clearImage(); }), QRegion(canvas.rect()));
}

// What a commit leaves in the canvas's corner goes with the tool.
void tst_ScribbleArea_painting::shapeWithoutAFrameIsRepaintedByItsTool()
{
    Watched<Canvas> canvas;
    QPen pen = canvas.rectPen();
    pen.setWidth(9);
    canvas.setRectPen(pen);
    canvas.setPaintTypeToGraph();
    canvas.setGraphState(ScribbleArea::GRAPH_RECT);
    canvas.show();
    QVERIFY(QTest::qWaitForWindowExposed(&canvas));
    canvas.drag(kFrom, kTo);
    canvas.undo();
    QVERIFY(paintedBy(canvas) != nothing());
    const QRegion repainted = canvas.repaintedBy([&] { canvas.setPaintTypeToScribble(); });
    QCOMPARE(paintedBy(canvas), nothing());
    QVERIFY(repainted.contains(QPoint(0, 0)));
}

// The press turns the arrow round, whose ends are on the corners of the null rectangle.
void tst_ScribbleArea_painting::shapeWithoutAFrameIsRepaintedByThePress()
{
    Watched<Canvas> canvas;
    canvas.setPaintTypeToGraph();
    canvas.setGraphState(ScribbleArea::GRAPH_ARROW);
    canvas.initArrow();
    canvas.show();
    QVERIFY(QTest::qWaitForWindowExposed(&canvas));
    const QImage before = paintedBy(canvas);
    const QRegion repainted = canvas.repaintedBy([&] { canvas.press(kFrom); });
    QVERIFY(paintedBy(canvas) != before);
    QVERIFY(!repainted.isEmpty());
}

void tst_ScribbleArea_painting::shapePensRepaintEverything()
{
    Watched<Canvas> canvas;
    canvas.show();
    QVERIFY(QTest::qWaitForWindowExposed(&canvas));
    const QPen pen = scribblePen(Qt::red, 9);
    QCOMPARE(canvas.repaintedBy([&] { canvas.setRectPen(pen); }), QRegion(canvas.rect()));
    QCOMPARE(canvas.repaintedBy([&] { canvas.setEllipsePen(pen); }), QRegion(canvas.rect()));
    QCOMPARE(canvas.repaintedBy([&] { canvas.setArrowPen(pen); }), QRegion(canvas.rect()));
    QCOMPARE(canvas.repaintedBy([&] { canvas.setScribblePen(pen); }), QRegion());
}

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
    Watched<QWidget> parent;
    Canvas canvas;
    QVERIFY(isShownOn(parent, canvas));
    const QRegion all(parent.rect());
    canvas.setPaintType(ScribbleArea::PAINT_TYPE(type));
    for (int stroke = 0; stroke < 2; ++stroke) {
        canvas.press(kFrom);
        QCOMPARE(parent.repaintedBy([&] { canvas.move(kOver); }), all);
        QCOMPARE(parent.repaintedBy([&] { canvas.move(kTo, Qt::NoButton); }), QRegion());
        QVERIFY(parent.repaintedBy([&] { canvas.move(kTo); }) != all);
        QCOMPARE(parent.repaintedBy([&] { canvas.release(kTo); }), all);
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
    Watched<QWidget> parent;
    Canvas canvas;
    QVERIFY(isShownOn(parent, canvas));
    canvas.setPaintType(ScribbleArea::PAINT_TYPE(type));
    canvas.press(kFrom);
    canvas.move(kOver);
    QCOMPARE(parent.repaintedBy([&] { canvas.move(kTo); }),
             QRegion(QRect(kOver, kTo)
                         .normalized()
                         .adjusted(-margin, -margin, margin, margin)
                         .translated(canvas.pos())));
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
    Watched<QWidget> parent;
    Canvas canvas;
    QVERIFY(isShownOn(parent, canvas));
    canvas.setPaintTypeToGraph();
    canvas.setGraphState(state);
    const QPoint from(30, 60);
    const QPoint over(120, 60);
    const QPoint to(150, 60);
    canvas.press(from);
    canvas.move(over);
    const QRegion painted = parent.repaintedBy([&] { canvas.move(to); });
    const QRect both = QRect(from, to).adjusted(-4, -height, 4, height);
    QVERIFY(QRegion(both.translated(canvas.pos())).subtracted(painted).isEmpty());
    // A little more, for outlines.
    const QRect most = both.adjusted(-6, -6, 6, 6).translated(canvas.pos());
    QCOMPARE(painted.boundingRect() | most, most);
}

void tst_ScribbleArea_painting::movesThatChangeNothingRepaintNothing()
{
    Watched<QWidget> parent;
    Canvas canvas;
    QVERIFY(isShownOn(parent, canvas));
    canvas.setPaintTypeToGraph();
    canvas.press(kFrom);
    canvas.move(kFrom);
    // Too short a drag for a frame.
    QCOMPARE(parent.repaintedBy([&] { canvas.move(kFrom + QPoint(1, 0)); }), QRegion());
}

void tst_ScribbleArea_painting::onlyTheMosaicHasATimer()
{
    Canvas canvas;
    canvas.press(kFrom);
    canvas.move(kOver);
    canvas.move(kTo);
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(&canvas);
    QCOMPARE(timers.size(), 0);
    QCOMPARE(canvas.findChildren<QTimer*>().size(), 0);
}

QTEST_MAIN(tst_ScribbleArea_painting)
#include "tst_ScribbleArea_painting.moc"
