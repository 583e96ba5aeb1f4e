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
    void shapePensReachTheFrameOnlyInShapeMode();
    void pressStartsAnArrowWhateverTheTool();
    void everyArrowStartsAfresh();
    void otherButtonsDoNotEndTheDrag();
    void unknownShapeDrawsNothing_data();
    void unknownShapeDrawsNothing();
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
    QCOMPARE(canvas.image(), drawnOn(picture(), [&](QPainter& painter) {
                 drawArrowOf(painter, kRed, triangle({150, 30}, {46, 98}, {53, 108}),
                             triangle({40, 110}, {43, 93}, {57, 113}));
             }));
}

void tst_ScribbleArea_shapes::arrowDrawing_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<QPoint>("tail");
    QTest::addColumn<QPoint>("head");
    QTest::addColumn<QPolygon>("shaft");
    QTest::addColumn<QPolygon>("point");
    QTest::newRow("to the right") << 6 << QPoint(20, 70) << QPoint(120, 70)
                                  << triangle({20, 70}, {108, 76}, {108, 64})
                                  << triangle({120, 70}, {108, 82}, {108, 58});
    QTest::newRow("upwards") << 6 << QPoint(70, 120) << QPoint(70, 20)
                             << triangle({70, 120}, {76, 32}, {64, 32})
                             << triangle({70, 20}, {82, 32}, {58, 32});
    QTest::newRow("shorter than its head points backwards")
        << 6 << QPoint(70, 70) << QPoint(78, 70) << triangle({70, 70}, {66, 76}, {66, 64})
        << triangle({54, 70}, {66, 82}, {66, 58});
    QTest::newRow("as long as its head")
        << 6 << QPoint(70, 70) << QPoint(82, 70) << triangle({70, 70}, {70, 76}, {70, 64})
        << triangle({70, 70}, {70, 82}, {70, 58});
    QTest::newRow("no length") << 6 << QPoint(70, 70) << QPoint(70, 70)
                               << triangle({70, 70}, {70, 70}, {70, 70})
                               << triangle({70, 70}, {70, 70}, {70, 70});

    // 60 by 80 is 100 long: the base is at 52.8, 70.4; its corners at 48, 74 and 57.6, 66.8, and
    // at 43.2, 77.6 and 62.4, 63.2.
    QTest::newRow("right and down")
        << 6 << QPoint(40, 30) << QPoint(100, 110) << triangle({40, 30}, {88, 104}, {98, 97})
        << triangle({100, 110}, {83, 108}, {102, 93});
    QTest::newRow("left and up") << 6 << QPoint(100, 110) << QPoint(40, 30)
                                 << triangle({100, 110}, {52, 36}, {42, 43})
                                 << triangle({40, 30}, {57, 32}, {38, 47});
    QTest::newRow("left and down")
        << 6 << QPoint(100, 30) << QPoint(40, 110) << triangle({100, 30}, {42, 97}, {52, 104})
        << triangle({40, 110}, {38, 93}, {57, 108});
    QTest::newRow("right and up") << 6 << QPoint(40, 110) << QPoint(100, 30)
                                  << triangle({40, 110}, {98, 43}, {88, 36})
                                  << triangle({100, 30}, {102, 47}, {83, 32});
    // The base is at -3.22, 2.68 and the point at -12.44, 10.36, behind the tail.
    QTest::newRow("short and slanting points backwards")
        << 6 << QPoint(70, 70) << QPoint(76, 65) << triangle({70, 70}, {71, 77}, {63, 68})
        << triangle({58, 80}, {74, 82}, {59, 63});

    // Far from the origin a single-precision sum loses what parts an offset from its half.
    QTest::newRow("an offset of 18.49998 is rounded by itself")
        << 6 << QPoint(1500, 1100) << QPoint(1512, 1129)
        << triangle({1500, 1100}, {1502, 1120}, {1513, 1116})
        << triangle({1512, 1129}, {1496, 1123}, {1518, 1113});
    QTest::newRow("an offset of -22.50002 is rounded by itself")
        << 6 << QPoint(1500, 1100) << QPoint(1471, 1088)
        << triangle({1500, 1100}, {1484, 1087}, {1480, 1098})
        << triangle({1471, 1088}, {1487, 1082}, {1477, 1104});
    QTest::newRow("a point at 3023.49997 is rounded as a whole")
        << 15 << QPoint(3000, 2000) << QPoint(2980, 1981)
        << triangle({3000, 2000}, {3012, 1991}, {2991, 2013})
        << triangle({3024, 2022}, {3022, 1980}, {2981, 2023});
}

void tst_ScribbleArea_shapes::arrowDrawing()
{
    QFETCH(int, width);
    QFETCH(QPoint, tail);
    QFETCH(QPoint, head);
    QFETCH(QPolygon, shaft);
    QFETCH(QPolygon, point);
    ArrowAttribute attribute;
    attribute.setWidth(width);
    const QPen pen(QBrush(kRed), 6.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    const QPoint view = tail.x() < kSize.width() ? QPoint() : tail - QPoint(100, 75);
    const QImage actual = drawnOn(picture(), [&](QPainter& painter) {
        painter.translate(-view);
        painter.setPen(pen);
        ScribbleArea::drawArrow(painter, QRect(tail, head), attribute);
        QCOMPARE(painter.pen(), pen);
        QCOMPARE(painter.brush(), QBrush());
        QVERIFY(!painter.testRenderHint(QPainter::Antialiasing));
    });
    QCOMPARE(actual, drawnOn(picture(), [&](QPainter& painter) {
                 painter.translate(-view);
                 drawArrowOf(painter, kRed, shaft, point);
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

void tst_ScribbleArea_shapes::shapePensReachTheFrameOnlyInShapeMode()
{
    const QPen wide = scribblePen(Qt::red, 40);
    for (int state : {ScribbleArea::GRAPH_RECT, ScribbleArea::GRAPH_ELLIPSE}) {
        Canvas canvas;
        canvas.setGraphState(state);
        canvas.setPaintTypeToText();
        canvas.frame()->setRect(QRect(50, 50, 20, 20));
        canvas.setRectPen(wide);
        canvas.setEllipsePen(wide);
        QCOMPARE(canvas.frame()->occupiedRect().left(), 50 - 4);
        canvas.setPaintTypeToGraph();
        QCOMPARE(canvas.frame()->occupiedRect().left(), 50 - 20);
    }
}

void tst_ScribbleArea_shapes::pressStartsAnArrowWhateverTheTool()
{
    Canvas canvas;
    const QRect frame(50, 50, 20, 20);
    canvas.frame()->setRect(frame);
    canvas.press(QPoint(60, 60));
    QCOMPARE(canvas.frame()->arrowHead(), frame.topLeft());
    QCOMPARE(canvas.frame()->arrowTail(), frame.topLeft());
    canvas.release(QPoint(60, 60));
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
    canvas.setPaintTypeToGraph();
    canvas.setGraphState(ScribbleArea::GRAPH_ARROW);
    canvas.press(QPoint(150, 30));
    canvas.move(QPoint(120, 50));
    canvas.move(QPoint(40, 110));
    canvas.release(QPoint(40, 110));
    QCOMPARE(canvas.frame()->arrowHead(), QPoint(40, 110));
    QCOMPARE(canvas.frame()->arrowTail(), QPoint(150, 30));
    canvas.completeScribble();
    canvas.drag(QPoint(0, 100), QPoint(60, 40));
    QCOMPARE(canvas.frame()->arrowHead(), QPoint(60, 100));
    QCOMPARE(canvas.frame()->arrowTail(), QPoint(0, 40));
}

void tst_ScribbleArea_shapes::otherButtonsDoNotEndTheDrag()
{
    Canvas canvas;
    canvas.setPaintTypeToGraph();
    canvas.press(QPoint(30, 40));
    canvas.move(QPoint(80, 80));
    canvas.release(QPoint(80, 80), Qt::RightButton, Qt::LeftButton);
    QVERIFY(!canvas.frame()->isVisible());
    canvas.move(QPoint(120, 100));
    QCOMPARE(canvas.frame()->rect(), edges(30, 40, 120, 100));
    canvas.release(QPoint(120, 100));
    QVERIFY(canvas.frame()->isVisible());
}

void tst_ScribbleArea_shapes::unknownShapeDrawsNothing_data()
{
    QTest::addColumn<int>("state");
    QTest::newRow("below") << -1;
    QTest::newRow("next") << 3;
    QTest::newRow("far") << 7;
}

void tst_ScribbleArea_shapes::unknownShapeDrawsNothing()
{
    QFETCH(int, state);
    Canvas canvas;
    canvas.setPaintTypeToGraph();
    canvas.setGraphState(state);
    canvas.drag(QPoint(30, 40), QPoint(120, 100));
    canvas.completeScribble();
    QCOMPARE(canvas.image(), picture());
    QVERIFY(canvas.modified());
    const DiffRect entry = canvas.history().at(0);
    // A pen that is not set is 1 pixel wide.
    QCOMPARE(QRect(entry.position, entry.image.size()), edges(30, 40, 121, 101));
}

void tst_ScribbleArea_shapes::shapesLeaveTheTextBoxAlone()
{
    Canvas canvas;
    canvas.show();
    canvas.setPaintTypeToText();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    canvas.textBox()->setPlainText("left over");
    canvas.setPaintTypeToGraph();
    const QImage written = canvas.image();
    canvas.setGraphState(ScribbleArea::GRAPH_RECT);
    canvas.drag(QPoint(30, 40), QPoint(150, 120));
    canvas.textBox()->show();
    canvas.setPaintTypeToScribble();
    const QImage drawn = drawnOn(written, [&](QPainter& painter) {
        painter.setPen(canvas.rectPen());
        painter.drawRect(edges(30, 40, 150, 120));
    });
    QCOMPARE(canvas.image(), drawn);
    QVERIFY(canvas.textBox()->isVisible());
    canvas.completeScribble();
    QCOMPARE(canvas.image(), drawn);
    QVERIFY(canvas.textBox()->isVisible());
    QCOMPARE(canvas.history().size(), 2);
}

QTEST_MAIN(tst_ScribbleArea_shapes)
#include "tst_ScribbleArea_shapes.moc"
