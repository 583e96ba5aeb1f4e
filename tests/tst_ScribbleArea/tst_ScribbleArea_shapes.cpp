// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Canvas.h"

/// Rectangles, ellipses and arrows.
class tst_ScribbleArea_shapes : public BehaviourTest
{
    Q_OBJECT

private slots:
    void dragThreshold_data();
    void dragThreshold();
    void rectangleIsCommittedWithoutAntialiasing();
    void ellipseIsCommittedWithAntialiasing();
    void arrowIsCommitted();
    void arrowDrawing_data();
    void arrowDrawing();
    void historyRectangleIsTheGrownFrame_data();
    void historyRectangleIsTheGrownFrame();
    void shapeIsCommittedBy_data();
    void shapeIsCommittedBy();
    void undoTakesThePendingShapeBack();
    void savingTwiceInShapeModeMakesTwoEntries();
    void penSettersReachTheFrameOrNot();
    void toolsTellTheFrameTheirWidth();
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
    canvas.drag(QPoint(50, 50), QPoint(50, 50) + by);
    QCOMPARE(canvas.frame()->isVisible(), counts);
    if (counts)
        QCOMPARE(canvas.frame()->rect(), QRect(QPoint(50, 50), QPoint(50, 50) + by).normalized());
}

void tst_ScribbleArea_shapes::rectangleIsCommittedWithoutAntialiasing()
{
    Canvas canvas;
    canvas.setPaintTypeToGraph();
    canvas.setGraphState(ScribbleArea::GRAPH_RECT);
    canvas.drag(QPoint(30, 40), QPoint(120, 100));
    QCOMPARE(canvas.image(), picture());
    canvas.completeScribble();
    QCOMPARE(canvas.image(), drawnOn(picture(), [&](QPainter& painter) {
                 painter.setPen(canvas.rectPen());
                 painter.drawRect(edges(30, 40, 120, 100));
             }));
    QVERIFY(canvas.modified());
    QVERIFY(!canvas.frame()->isVisible());
}

void tst_ScribbleArea_shapes::ellipseIsCommittedWithAntialiasing()
{
    Canvas canvas;
    canvas.setPaintTypeToGraph();
    canvas.drag(QPoint(30, 40), QPoint(120, 100));
    canvas.completeScribble();
    QCOMPARE(canvas.image(), drawnOn(picture(), [&](QPainter& painter) {
                 painter.setPen(canvas.ellipsePen());
                 painter.setRenderHint(QPainter::Antialiasing);
                 painter.drawEllipse(edges(30, 40, 120, 100));
             }));
}

void tst_ScribbleArea_shapes::arrowIsCommitted()
{
    Canvas canvas;
    canvas.setPaintTypeToGraph();
    canvas.setGraphState(ScribbleArea::GRAPH_ARROW);
    // From the right to the left and downwards, in two moves.
    canvas.press(QPoint(150, 30));
    canvas.move(QPoint(120, 50));
    canvas.move(QPoint(40, 110));
    canvas.release(QPoint(40, 110));
    canvas.completeScribble();
    ArrowAttribute attribute;
    attribute.setWidth(6);
    const QRect frame = QRect(QPoint(150, 30), QPoint(40, 110)).normalized();
    QCOMPARE(canvas.image(), drawnOn(picture(), [&](QPainter& painter) {
                 painter.setPen(canvas.arrowPen());
                 ScribbleArea::drawArrow(painter, QRect(frame.topRight(), frame.bottomLeft()),
                                         attribute);
             }));
}

void tst_ScribbleArea_shapes::arrowDrawing_data()
{
    QTest::addColumn<QPoint>("tail");
    QTest::addColumn<QPoint>("head");
    QTest::addColumn<QPolygon>("shaft");
    QTest::addColumn<QPolygon>("point");
    const auto triangle = [](QPoint a, QPoint b, QPoint c) { return QPolygon({a, b, c}); };
    QTest::newRow("to the right") << QPoint(20, 70) << QPoint(120, 70)
                                  << triangle({20, 70}, {108, 76}, {108, 64})
                                  << triangle({120, 70}, {108, 82}, {108, 58});
    QTest::newRow("upwards") << QPoint(70, 120) << QPoint(70, 20)
                             << triangle({70, 120}, {76, 32}, {64, 32})
                             << triangle({70, 20}, {82, 32}, {58, 32});
    QTest::newRow("shorter than its head points backwards")
        << QPoint(70, 70) << QPoint(78, 70) << triangle({70, 70}, {66, 76}, {66, 64})
        << triangle({54, 70}, {66, 82}, {66, 58});
    QTest::newRow("as long as its head")
        << QPoint(70, 70) << QPoint(82, 70) << triangle({70, 70}, {70, 76}, {70, 64})
        << triangle({70, 70}, {70, 82}, {70, 58});
    QTest::newRow("no length") << QPoint(70, 70) << QPoint(70, 70)
                               << triangle({70, 70}, {70, 70}, {70, 70})
                               << triangle({70, 70}, {70, 70}, {70, 70});
}

void tst_ScribbleArea_shapes::arrowDrawing()
{
    QFETCH(QPoint, tail);
    QFETCH(QPoint, head);
    QFETCH(QPolygon, shaft);
    QFETCH(QPolygon, point);
    ArrowAttribute attribute;
    attribute.setWidth(6);
    const QPen pen(QBrush(kRed), 6.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    const QImage actual = drawnOn(picture(), [&](QPainter& painter) {
        painter.setPen(pen);
        ScribbleArea::drawArrow(painter, QRect(tail, head), attribute);
        QCOMPARE(painter.pen(), pen);
        QCOMPARE(painter.brush(), QBrush());
        QVERIFY(!painter.testRenderHint(QPainter::Antialiasing));
    });
    QCOMPARE(actual, drawnOn(picture(), [&](QPainter& painter) {
                 painter.setRenderHint(QPainter::Antialiasing);
                 painter.setPen(QPen(QBrush(kRed), 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
                 painter.setBrush(kRed);
                 painter.drawPolygon(shaft, Qt::WindingFill);
                 painter.drawPolygon(point, Qt::WindingFill);
             }));
}

void tst_ScribbleArea_shapes::historyRectangleIsTheGrownFrame_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<int>("width");
    QTest::addColumn<bool>("undoneWhole");
    QTest::newRow("rectangle") << 0 << 2 << true;
    QTest::newRow("ellipse") << 1 << 6 << true;
    // Half of an odd pen is rounded down, which an antialiased outline reaches beyond.
    QTest::newRow("ellipse, odd pen") << 1 << 7 << false;
    // The sides of a flat arrow's head stand out of its frame.
    QTest::newRow("arrow") << 2 << 6 << false;
}

void tst_ScribbleArea_shapes::historyRectangleIsTheGrownFrame()
{
    QFETCH(int, state);
    QFETCH(int, width);
    QFETCH(bool, undoneWhole);
    Canvas canvas;
    QPen pen = canvas.ellipsePen();
    pen.setWidth(width);
    canvas.setRectPen(pen);
    canvas.setEllipsePen(pen);
    canvas.setArrowPen(pen);
    canvas.setPaintTypeToGraph();
    canvas.setGraphState(state);
    canvas.drag(QPoint(30, 60), QPoint(130, 64));
    canvas.completeScribble();
    const int half = width / 2;
    const DiffRect entry = canvas.history().at(0);
    QCOMPARE(QRect(entry.position, entry.image.size()),
             edges(30, 60, 130, 64).adjusted(-half, -half, half + 1, half + 1));
    const QImage drawn = canvas.image();
    canvas.undo();
    QCOMPARE(canvas.image() == picture(), undoneWhole);
    canvas.redo();
    QCOMPARE(canvas.image(), drawn);
}

void tst_ScribbleArea_shapes::shapeIsCommittedBy_data()
{
    QTest::addColumn<QString>("what");
    for (const char* what : {"press outside", "right press outside", "tool change", "save",
                             "completeScribble", "new drag"})
        QTest::newRow(what) << QString(what);
}

void tst_ScribbleArea_shapes::shapeIsCommittedBy()
{
    QFETCH(QString, what);
    Canvas canvas;
    canvas.setPaintTypeToGraph();
    canvas.drag(QPoint(30, 40), QPoint(120, 100));
    canvas.press(QPoint(70, 70), Qt::RightButton);
    QCOMPARE(canvas.history().size(), 0);
    QTemporaryDir dir;
    if (what == "press outside")
        canvas.press(QPoint(180, 140));
    else if (what == "right press outside")
        canvas.press(QPoint(180, 140), Qt::RightButton);
    else if (what == "tool change")
        canvas.setPaintTypeToScribble();
    else if (what == "save")
        QVERIFY(canvas.saveImage(dir.filePath("a.png"), "PNG"));
    else if (what == "completeScribble")
        canvas.completeScribble();
    else
        canvas.drag(QPoint(150, 110), QPoint(180, 130));
    QCOMPARE(canvas.history().size(), 1);
    QVERIFY(canvas.image() != picture());
    QCOMPARE(canvas.frame()->isVisible(), what == "new drag");
}

void tst_ScribbleArea_shapes::undoTakesThePendingShapeBack()
{
    Canvas canvas;
    canvas.setPaintTypeToGraph();
    canvas.drag(QPoint(30, 40), QPoint(120, 100));
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
    QVERIFY(!canvas.frame()->isVisible());
    QVERIFY(canvas.canRedo() && !canvas.canUndo());
    canvas.redo();
    QVERIFY(canvas.image() != picture());
}

void tst_ScribbleArea_shapes::savingTwiceInShapeModeMakesTwoEntries()
{
    Canvas canvas;
    QTemporaryDir dir;
    canvas.setPaintTypeToGraph();
    QVERIFY(canvas.saveImage(dir.filePath("a.png"), "PNG"));
    QVERIFY(canvas.saveImage(dir.filePath("b.png"), "PNG"));
    QCOMPARE(canvas.history().size(), 2);
    QVERIFY(!canvas.modified());
    canvas.completeScribble();
    QCOMPARE(canvas.history().size(), 3);
    QVERIFY(canvas.modified());
}

void tst_ScribbleArea_shapes::penSettersReachTheFrameOrNot()
{
    const auto grown = [](const Canvas& canvas) {
        return 30 - canvas.frame()->occupiedRect().left();
    };
    for (int state :
         {ScribbleArea::GRAPH_RECT, ScribbleArea::GRAPH_ELLIPSE, ScribbleArea::GRAPH_ARROW}) {
        Canvas canvas;
        canvas.setPaintTypeToGraph();
        canvas.setGraphState(state);
        canvas.drag(QPoint(30, 40), QPoint(120, 100));
        const QPen wide = scribblePen(Qt::red, 40);
        canvas.setScribblePen(wide);
        QCOMPARE(grown(canvas), 4);
        canvas.setRectPen(wide);
        QCOMPARE(grown(canvas), state == ScribbleArea::GRAPH_RECT ? 20 : 4);
        canvas.setEllipsePen(wide);
        QCOMPARE(grown(canvas), state == ScribbleArea::GRAPH_ARROW ? 4 : 20);
        canvas.setArrowPen(wide);
        QCOMPARE(grown(canvas), state == ScribbleArea::GRAPH_ARROW ? 4 : 20);
    }
}

void tst_ScribbleArea_shapes::toolsTellTheFrameTheirWidth()
{
    Canvas canvas;
    canvas.setRectPen(scribblePen(Qt::red, 20));
    canvas.setArrowPen(scribblePen(Qt::red, 30));
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
}

QTEST_MAIN(tst_ScribbleArea_shapes)
#include "tst_ScribbleArea_shapes.moc"
