// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Canvas.h"

namespace
{

const QRect kFrame(30, 40, 91, 61);

/// What the canvas itself paints, without its text box.
QImage paintedBy(Canvas& canvas)
{
    return painted(canvas, QWidget::RenderFlags());
}

QImage nothing()
{
    QImage image = picture();
    image.fill(Qt::magenta);
    return image;
}

// An arrow from the right to the left and downwards, and the other shapes between its ends.
const QVector<QPoint> kPath{{150, 30}, {120, 50}, {40, 110}};

void drawShape(QPainter& painter, const Canvas& canvas, int state)
{
    const QRect frame = edges(40, 30, 150, 110);
    if (state == ScribbleArea::GRAPH_RECT) {
        painter.setPen(canvas.rectPen());
        painter.drawRect(frame);
    } else if (state == ScribbleArea::GRAPH_ELLIPSE) {
        painter.setPen(canvas.ellipsePen());
        painter.setRenderHint(QPainter::Antialiasing);
        painter.drawEllipse(frame);
    } else if (state == ScribbleArea::GRAPH_ARROW) {
        drawArrowOf(painter, kRed, triangle(kPath.first(), {46, 98}, {53, 108}),
                    triangle(kPath.last(), {43, 93}, {57, 113}));
    }
}

} // namespace

/// Rectangles, ellipses and arrows.
class tst_ScribbleArea_shapes : public BehaviourTest
{
    Q_OBJECT

private slots:
    void dragThreshold_data();
    void dragThreshold();
    void shapeIsShownAndThenCommitted_data();
    void shapeIsShownAndThenCommitted();
    void shapeIsShownOnThePixelsOfThePicture_data();
    void shapeIsShownOnThePixelsOfThePicture();
    void canvasAndFrameAgreeOnWhereAPressIs_data();
    void canvasAndFrameAgreeOnWhereAPressIs();
    void otherToolsShowNoShape();
    void drawingAnArrowRestoresThePainter();
    void historyRectangleIsTheGrownFrame_data();
    void historyRectangleIsTheGrownFrame();
    void shapeIsCommittedBy_data();
    void shapeIsCommittedBy();
    void savingTwiceInShapeModeMakesTwoEntries();
    void penSettersReachTheFrameOrNot_data();
    void penSettersReachTheFrameOrNot();
    void toolsTellTheFrameTheirWidth();
    void pressStartsAnArrowWhateverTheTool();
    void everyArrowStartsAfresh();
    void otherButtonsDoNotEndTheDrag();
    void shapesLeaveTheTextBoxAlone();
};

void tst_ScribbleArea_shapes::dragThreshold_data()
{
    QTest::addColumn<QPoint>("by");
    QTest::addColumn<bool>("counts");
    QTest::newRow("2 right") << QPoint(2, 0) << false;
    QTest::newRow("3 right") << QPoint(3, 0) << true;
    QTest::newRow("3 left") << QPoint(-3, 0) << false;
    QTest::newRow("4 left") << QPoint(-4, 0) << false;
    QTest::newRow("5 left") << QPoint(-5, 0) << true;
    QTest::newRow("2 down") << QPoint(0, 2) << false;
    QTest::newRow("3 down") << QPoint(0, 3) << true;
    QTest::newRow("4 up") << QPoint(0, -4) << false;
    QTest::newRow("5 up") << QPoint(0, -5) << true;
}

void tst_ScribbleArea_shapes::dragThreshold()
{
    QFETCH(QPoint, by);
    QFETCH(bool, counts);
    Canvas canvas;
    canvas.setPaintTypeToGraph();
    const QPoint from(50, 50);
    const QPoint to = from + by;
    canvas.drag(from, to);
    QCOMPARE(canvas.frame()->isVisible(), counts);
    if (counts)
        QCOMPARE(canvas.frame()->rect(), QRect(from, from) | QRect(to, to));
}

void tst_ScribbleArea_shapes::shapeIsShownAndThenCommitted_data()
{
    QTest::addColumn<int>("state");
    QTest::newRow("unknown, below") << -1;
    QTest::newRow("rectangle") << int(ScribbleArea::GRAPH_RECT);
    QTest::newRow("ellipse") << int(ScribbleArea::GRAPH_ELLIPSE);
    QTest::newRow("arrow") << int(ScribbleArea::GRAPH_ARROW);
    QTest::newRow("unknown, above") << 3;
}

void tst_ScribbleArea_shapes::shapeIsShownAndThenCommitted()
{
    QFETCH(int, state);
    Canvas canvas;
    canvas.setGraphTool(state);
    const auto shape = [&](QPainter& painter) { drawShape(painter, canvas, state); };
    canvas.press(kPath[0]);
    canvas.move(kPath[1]);
    canvas.move(kPath[2]);
    // No handles yet.
    QCOMPARE(paintedBy(canvas), drawnOn(nothing(), shape));
    canvas.release(kPath[2]);
    QCOMPARE(paintedBy(canvas), drawnOn(nothing(), [&](QPainter& painter) {
                 shape(painter);
                 canvas.frame()->render(painter);
             }));
    QCOMPARE(canvas.image(), picture());
    QVERIFY(!canvas.modified());
    canvas.completeScribble();
    QCOMPARE(canvas.image(), drawnOn(picture(), shape));
    QVERIFY(canvas.modified());
    QVERIFY(!canvas.frame()->isVisible());
}

void tst_ScribbleArea_shapes::shapeIsShownOnThePixelsOfThePicture_data()
{
    shapeIsShownAndThenCommitted_data();
}

// The canvas itself may start between two of them.
void tst_ScribbleArea_shapes::shapeIsShownOnThePixelsOfThePicture()
{
    QFETCH(int, state);
    for (const QPoint& corner : {QPoint(51, 41), QPoint(50, 43), QPoint(54, 52)}) {
        QWidget parent;
        parent.resize(300, 250);
        Canvas canvas;
        canvas.setParent(&parent);
        canvas.setGeometry(QRect(corner, kSize));
        canvas.setGraphTool(state);
        canvas.press(kPath[0]);
        canvas.move(kPath[1]);
        canvas.move(kPath[2]);
        const QPoint start(qRound(corner.x() * ratio()), qRound(corner.y() * ratio()));
        QCOMPARE(painted(parent).copy(QRect(start, canvas.image().size())),
                 drawnOn(nothing(), [&](QPainter& painter) { drawShape(painter, canvas, state); }));
    }
}

void tst_ScribbleArea_shapes::canvasAndFrameAgreeOnWhereAPressIs_data()
{
    QTest::addColumn<qreal>("beyondTheEdge");
    QTest::addColumn<bool>("outside");
    for (const auto& [beyond, outside] : {std::pair(0.0, false),
                                          {4.0, false},
                                          {4.25, false},
                                          {4.5, false},
                                          {5.0, true},
                                          {5.5, true}})
        QTest::addRow("%.2f", beyond) << beyond << outside;
}

// Physical pixels lie between the coordinates. The frame's border reaches 4 of these outwards.
void tst_ScribbleArea_shapes::canvasAndFrameAgreeOnWhereAPressIs()
{
    QFETCH(qreal, beyondTheEdge);
    QFETCH(bool, outside);
    Canvas canvas;
    canvas.setGraphTool(ScribbleArea::GRAPH_RECT);
    canvas.drag(kFrame);
    const int entries = canvas.entries();
    const QPointF p(kFrame.right() + beyondTheEdge, kFrame.top() + 15);
    QMouseEvent press(QEvent::MouseButtonPress, p, p, Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(&canvas, &press);
    QCOMPARE(canvas.entries(), outside ? entries + 1 : entries);
    QCOMPARE(canvas.frame()->isVisible(), !outside);
    QCOMPARE(canvas.frame()->mousePressSection() == ResizableRect::SECTION_OUTSIDE, outside);
}

// The picture is left to the parent.
void tst_ScribbleArea_shapes::otherToolsShowNoShape()
{
    Canvas canvas;
    canvas.drag(kFrame);
    QCOMPARE(paintedBy(canvas), nothing());
    canvas.setPaintTypeToMosaic();
    canvas.drag(kFrame);
    QCOMPARE(paintedBy(canvas), nothing());
    canvas.setPaintTypeToText();
    canvas.press(kFrame.topLeft());
    canvas.move(kFrame.bottomRight());
    QCOMPARE(paintedBy(canvas), nothing());
    canvas.release(kFrame.bottomRight());
    QCOMPARE(paintedBy(canvas),
             drawnOn(nothing(), [&](QPainter& painter) { canvas.frame()->render(painter); }));
}

void tst_ScribbleArea_shapes::drawingAnArrowRestoresThePainter()
{
    const QPen pen = roundPen(kRed, 6);
    const QImage actual = drawnOn(picture(), [&](QPainter& painter) {
        painter.setPen(pen);
        ScribbleArea::drawArrow(painter, edges(20, 70, 120, 70), ArrowAttribute());
        QCOMPARE(painter.pen(), pen);
        QCOMPARE(painter.brush(), QBrush());
        QVERIFY(!painter.testRenderHint(QPainter::Antialiasing));
    });
    QCOMPARE(actual, drawnOn(picture(), [](QPainter& painter) {
                 drawArrowOf(painter, kRed, triangle({20, 70}, {110, 75}, {110, 65}),
                             triangle({120, 70}, {110, 80}, {110, 60}));
             }));
}

void tst_ScribbleArea_shapes::historyRectangleIsTheGrownFrame_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<int>("width");
    QTest::addColumn<bool>("undoneWhole");
    QTest::newRow("rectangle") << 0 << 2 << true;
    QTest::newRow("rectangle, odd pen") << 0 << 3 << true;
    QTest::newRow("ellipse") << 1 << 6 << true;
    // At a ratio of 1 half of an odd pen is rounded down, which an antialiased outline reaches
    // beyond.
    QTest::newRow("ellipse, odd pen") << 1 << 7 << false;
    // The sides of a flat arrow's head stand out of its frame.
    QTest::newRow("arrow") << 2 << 6 << false;
    // A pen that is not set is 1 pixel wide.
    QTest::newRow("unknown") << 7 << 1 << true;
}

void tst_ScribbleArea_shapes::historyRectangleIsTheGrownFrame()
{
    QFETCH(int, state);
    QFETCH(int, width);
    QFETCH(bool, undoneWhole);
    Canvas canvas;
    const QPen pen = roundPen(kRed, width);
    canvas.setRectPen(pen);
    canvas.setEllipsePen(pen);
    canvas.setArrowPen(pen);
    canvas.setGraphTool(state);
    canvas.drag(QPoint(30, 60), QPoint(130, 64));
    canvas.completeScribble();
    const int half = width / 2 + (ratio() == 1 ? 0 : 1);
    QCOMPARE(canvas.areaOf(0),
             inPixels(edges(30, 60, 130, 64).adjusted(-half, -half, half + 1, half + 1)));
    const QImage drawn = canvas.image();
    canvas.undo();
    QCOMPARE(canvas.image() == picture(), undoneWhole || (width == 7 && ratio() != 1));
    canvas.redo();
    QCOMPARE(canvas.image(), drawn);
}

void tst_ScribbleArea_shapes::shapeIsCommittedBy_data()
{
    QTest::addColumn<QString>("what");
    for (const char* what :
         {"press outside", "right press outside", "tool change", "save", "new drag"})
        QTest::newRow(what) << QString(what);
}

void tst_ScribbleArea_shapes::shapeIsCommittedBy()
{
    QFETCH(QString, what);
    Canvas canvas;
    canvas.setPaintTypeToGraph();
    canvas.drag(kFrame);
    canvas.press(QPoint(70, 70), Qt::RightButton);
    QCOMPARE(canvas.entries(), 0);
    QTemporaryDir dir;
    const QString file = dir.filePath("a.png");
    if (what == "press outside")
        canvas.press(QPoint(180, 140));
    else if (what == "right press outside")
        canvas.press(QPoint(180, 140), Qt::RightButton);
    else if (what == "tool change")
        canvas.setPaintTypeToScribble();
    else if (what == "save")
        QVERIFY(canvas.saveImage(file, "PNG"));
    else
        canvas.drag(QPoint(150, 110), QPoint(180, 130));
    QCOMPARE(canvas.entries(), 1);
    QVERIFY(canvas.image() != picture());
    QCOMPARE(canvas.frame()->isVisible(), what == "new drag");
    QCOMPARE(canvas.modified(), what != "save");
    if (what == "save")
        QVERIFY(QImage(file).convertToFormat(QImage::Format_RGB32) == canvas.image());
}

// Intended.
void tst_ScribbleArea_shapes::savingTwiceInShapeModeMakesTwoEntries()
{
    Canvas canvas;
    QTemporaryDir dir;
    canvas.setPaintTypeToGraph();
    QVERIFY(canvas.saveImage(dir.filePath("a.png"), "PNG"));
    QVERIFY(canvas.saveImage(dir.filePath("b.png"), "PNG"));
    QCOMPARE(canvas.entries(), 2);
    QVERIFY(!canvas.modified());
    canvas.completeScribble();
    QCOMPARE(canvas.entries(), 3);
    QVERIFY(canvas.modified());
}

void tst_ScribbleArea_shapes::penSettersReachTheFrameOrNot_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("state");
    // By how much the frame has grown after a setter, half a pen of 40 pixels or of 8.
    QTest::addColumn<QVector<int>>("grown");
    const int shape = ScribbleArea::PAINT_GRAPH;
    QTest::newRow("rectangle") << shape << 0 << QVector<int>{4, 20, 20, 20};
    QTest::newRow("ellipse") << shape << 1 << QVector<int>{4, 4, 20, 20};
    // Intended: unlike the others.
    QTest::newRow("arrow") << shape << 2 << QVector<int>{4, 4, 4, 4};
    const int text = ScribbleArea::PAINT_TEXT;
    QTest::newRow("text, rectangle") << text << 0 << QVector<int>{4, 4, 4, 4};
    QTest::newRow("text, ellipse") << text << 1 << QVector<int>{4, 4, 4, 4};
}

void tst_ScribbleArea_shapes::penSettersReachTheFrameOrNot()
{
    QFETCH(int, type);
    QFETCH(int, state);
    QFETCH(QVector<int>, grown);
    using Setter = void (ScribbleArea::*)(const QPen&);
    const Setter setters[] = {&ScribbleArea::setScribblePen, &ScribbleArea::setRectPen,
                              &ScribbleArea::setEllipsePen, &ScribbleArea::setArrowPen};
    Canvas canvas;
    canvas.setPaintType(ScribbleArea::PAINT_TYPE(type));
    canvas.setGraphState(state);
    canvas.drag(kFrame);
    for (int i = 0; i < grown.size(); ++i) {
        (canvas.*setters[i])(roundPen(Qt::red, 40));
        QCOMPARE(kFrame.left() - canvas.frame()->occupiedRect().left(), grown[i]);
    }
}

void tst_ScribbleArea_shapes::toolsTellTheFrameTheirWidth()
{
    Canvas canvas;
    canvas.setRectPen(roundPen(Qt::red, 20));
    canvas.setArrowPen(roundPen(Qt::red, 30));
    canvas.frame()->setRect(QRect(50, 50, 20, 20));
    const auto grown = [&] { return 50 - canvas.frame()->occupiedRect().left(); };
    canvas.setPaintTypeToGraph();
    QCOMPARE(grown(), 4);
    canvas.setGraphState(ScribbleArea::GRAPH_RECT);
    QCOMPARE(grown(), 10);
    canvas.setGraphState(ScribbleArea::GRAPH_ARROW);
    QCOMPARE(grown(), 15);
    canvas.setPaintTypeToText();
    QCOMPARE(grown(), 4);
    canvas.setGraphState(ScribbleArea::GRAPH_RECT);
    QCOMPARE(grown(), 4);
    canvas.setPaintTypeToGraph();
    QCOMPARE(grown(), 10);
}

void tst_ScribbleArea_shapes::pressStartsAnArrowWhateverTheTool()
{
    Canvas canvas;
    const QRect frame(50, 50, 20, 20);
    canvas.frame()->setRect(frame);
    canvas.click(QPoint(60, 60));
    QCOMPARE(canvas.frame()->arrowHead(), frame.topLeft());
    QCOMPARE(canvas.frame()->arrowTail(), frame.topLeft());
    canvas.setGraphState(ScribbleArea::GRAPH_ARROW);
    canvas.press(QPoint(60, 60));
    QCOMPARE(canvas.frame()->arrowHead(), frame.topRight());
    QCOMPARE(canvas.frame()->arrowTail(), frame.bottomLeft());
}

// In the first column a press flips nothing sideways, so that the corners left by the arrow before
// would show.
void tst_ScribbleArea_shapes::everyArrowStartsAfresh()
{
    Canvas canvas;
    canvas.setGraphTool(ScribbleArea::GRAPH_ARROW);
    canvas.drag(kPath);
    QCOMPARE(canvas.frame()->arrowHead(), kPath.last());
    QCOMPARE(canvas.frame()->arrowTail(), kPath.first());
    canvas.completeScribble();
    canvas.drag(QPoint(0, 100), QPoint(60, 40));
    QCOMPARE(canvas.frame()->arrowHead(), QPoint(60, 100));
    QCOMPARE(canvas.frame()->arrowTail(), QPoint(0, 40));
}

void tst_ScribbleArea_shapes::otherButtonsDoNotEndTheDrag()
{
    Canvas canvas;
    canvas.setPaintTypeToGraph();
    canvas.press(kFrame.topLeft());
    canvas.move(QPoint(80, 80));
    canvas.release(QPoint(80, 80), Qt::RightButton, Qt::LeftButton);
    QVERIFY(!canvas.frame()->isVisible());
    canvas.move(kFrame.bottomRight());
    QCOMPARE(canvas.frame()->rect(), kFrame);
    canvas.release(kFrame.bottomRight());
    QVERIFY(canvas.frame()->isVisible());
}

void tst_ScribbleArea_shapes::shapesLeaveTheTextBoxAlone()
{
    Canvas canvas;
    canvas.show();
    canvas.setPaintTypeToText();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    canvas.textBox()->setPlainText("left over");
    canvas.setGraphTool(ScribbleArea::GRAPH_RECT);
    const QImage written = canvas.image();
    canvas.drag(kFrame);
    canvas.textBox()->show();
    canvas.setPaintTypeToScribble();
    const QImage drawn = drawnOn(written, [&](QPainter& painter) {
        painter.setPen(canvas.rectPen());
        painter.drawRect(kFrame);
    });
    QCOMPARE(canvas.image(), drawn);
    QVERIFY(canvas.textBox()->isVisible());
    canvas.completeScribble();
    QCOMPARE(canvas.image(), drawn);
    QVERIFY(canvas.textBox()->isVisible());
    QCOMPARE(canvas.entries(), 2);
}

QTEST_MAIN(tst_ScribbleArea_shapes)
#include "tst_ScribbleArea_shapes.moc"
