// SPDX-License-Identifier: MIT
#include "AssertionProbe.h"
#include "BehaviourTest.h"
#include "Canvas.h"

#include <QImageReader>

/// Files, the pen and what every tool has in common.
class tst_ScribbleArea : public BehaviourTest
{
    Q_OBJECT

private slots:
    void defaults();
    void metaObjectKeepsItsSlots();
    void onlyTheLeftButtonDraws();
    void clickLeavesADot_data();
    void clickLeavesADot();
    void segmentWithoutLengthIsDrawnAsALine_data();
    void segmentWithoutLengthIsDrawnAsALine();
    void saveInTheMiddleOfAStrokeLeavesNoDot();
    void strokeGoesOnWithoutAPress();
    void toolsSetTheirCursor();
    void clearImageMakesNoEntry();
    void setImageStartsOver();
    void preconditionsAreAsserted();
    void filesThatFail();
    void formatIsThatOfTheNameWhereNoneIsGiven();
    void picturesThatCannotBePaintedAreHarmless_data();
    void picturesThatCannotBePaintedAreHarmless();
};

void tst_ScribbleArea::defaults()
{
    ScribbleArea area;
    QVERIFY(area.image().isNull());
    QVERIFY(area.testAttribute(Qt::WA_StaticContents));
    QVERIFY(area.hasMouseTracking());
    QCOMPARE(area.cursor().shape(), Qt::CrossCursor);
    QCOMPARE(area.scribblePen(), roundPen(Qt::blue, 2));
    QCOMPARE(area.rectPen(), QPen(QBrush(kRed), 2.0, Qt::SolidLine, Qt::RoundCap, Qt::MiterJoin));
    QCOMPARE(area.ellipsePen(),
             QPen(QBrush(kRed), 2.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    QCOMPARE(area.arrowPen(), QPen(QBrush(kRed), 6.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    QPen mosaicPen;
    mosaicPen.setWidth(16);
    QCOMPARE(area.mosaicPen(), mosaicPen);
    QVERIFY(!area.canUndo());
    QVERIFY(!area.canRedo());
    QVERIFY(!area.findChild<ResizableRect*>()->isVisible());
    QVERIFY(!area.findChild<QTextEdit*>());
    QCOMPARE(ScribbleAreaAccess::mosaicTimer(area).interval(), 300);
    QCOMPARE(int(ScribbleArea::PAINT_MOSAIC), 3);
    QCOMPARE(int(ScribbleArea::GRAPH_ARROW), 2);
}

void tst_ScribbleArea::metaObjectKeepsItsSlots()
{
    const QMetaObject& meta = ScribbleArea::staticMetaObject;
    const int offset = meta.methodOffset();
    QCOMPARE(meta.methodCount() - offset, 2);
    QCOMPARE(meta.method(offset).methodSignature(), QByteArray("onResizableRectChanged(QRect)"));
    QCOMPARE(meta.method(offset + 1).methodSignature(), QByteArray("onupdateMosaicImage()"));
}

void tst_ScribbleArea::onlyTheLeftButtonDraws()
{
    const QVector<QPoint> path{{20, 20}, {100, 20}, {70, 90}, {100, 40}};
    Canvas canvas;
    canvas.press(path[0]);
    canvas.press(QPoint(60, 60), Qt::RightButton, Qt::LeftButton);
    canvas.move(path[1], Qt::LeftButton | Qt::RightButton);
    canvas.release(QPoint(150, 90), Qt::RightButton, Qt::LeftButton);
    QCOMPARE(canvas.entries(), 0);
    canvas.move(path[2]);
    canvas.release(path[3]);
    const QImage drawn = withLines(picture(), roundPen(), path);
    QCOMPARE(canvas.image(), drawn);
    QVERIFY(canvas.modified());
    QCOMPARE(canvas.entries(), 1);

    canvas.press(QPoint(20, 20), Qt::RightButton);
    canvas.move(QPoint(60, 60), Qt::RightButton);
    canvas.release(QPoint(60, 60), Qt::RightButton);
    canvas.hover(QPoint(80, 80));
    QCOMPARE(canvas.image(), drawn);
    QCOMPARE(canvas.entries(), 1);
}

void tst_ScribbleArea::clickLeavesADot_data()
{
    QTest::addColumn<int>("width");
    for (int width : {1, 2, 3, 8, 21})
        QTest::addRow("width %d", width) << width;
}

void tst_ScribbleArea::clickLeavesADot()
{
    QFETCH(int, width);
    Canvas canvas;
    canvas.setScribblePen(roundPen(Qt::green, width));
    canvas.click(QPoint(50, 60));
    const QImage expected = drawnOn(picture(), [&](QPainter& painter) {
        painter.setPen(roundPen(Qt::green, width));
        painter.drawPoint(50, 60);
    });
    QVERIFY(expected != picture());
    QCOMPARE(canvas.image(), expected);
    QCOMPARE(canvas.entries(), 1);
}

void tst_ScribbleArea::segmentWithoutLengthIsDrawnAsALine_data()
{
    QTest::addColumn<Qt::PenCapStyle>("cap");
    QTest::addColumn<int>("width");
    QTest::addColumn<QPoint>("from");
    const QPoint end(60, 70);
    QTest::newRow("square, inside a stroke") << Qt::SquareCap << 6 << QPoint(20, 30);
    QTest::newRow("flat, inside a stroke") << Qt::FlatCap << 6 << QPoint(20, 30);
    QTest::newRow("round, inside a stroke") << Qt::RoundCap << 1 << QPoint(20, 30);
    QTest::newRow("square, alone") << Qt::SquareCap << 6 << end;
    QTest::newRow("flat, alone") << Qt::FlatCap << 6 << end;
}

void tst_ScribbleArea::segmentWithoutLengthIsDrawnAsALine()
{
    QFETCH(Qt::PenCapStyle, cap);
    QFETCH(int, width);
    QFETCH(QPoint, from);
    const QPoint end(60, 70);
    const QPen pen(QBrush(QColor(0, 0, 255, 100)), width, Qt::SolidLine, cap, Qt::RoundJoin);
    Canvas canvas;
    canvas.setScribblePen(pen);
    canvas.drag({from, end, end});
    QCOMPARE(canvas.image(), withLines(picture(), pen, {from, end, end, end}));
}

void tst_ScribbleArea::saveInTheMiddleOfAStrokeLeavesNoDot()
{
    QTemporaryDir dir;
    Canvas canvas;
    canvas.press(QPoint(50, 60));
    canvas.move(QPoint(90, 60));
    QVERIFY(canvas.saveImage(dir.filePath("a.png"), "PNG"));
    QVERIFY(!canvas.modified());
    canvas.release(QPoint(90, 60));
    QVERIFY(canvas.modified());
    QCOMPARE(canvas.image(), withLines(picture(), roundPen(), {{50, 60}, {90, 60}, {90, 60}}));
}

// Intended: the pen's stroke never ends, and the brush leaves its last point to it.
void tst_ScribbleArea::strokeGoesOnWithoutAPress()
{
    Canvas canvas;
    canvas.drag(QPoint(20, 20), QPoint(40, 20));
    QVERIFY(ScribbleAreaAccess::scribbling(canvas));
    canvas.move(QPoint(40, 80));
    QCOMPARE(canvas.image(), withLines(picture(), roundPen(), {{20, 20}, {40, 20}, {40, 80}}));
    canvas.setPaintTypeToMosaic();
    canvas.drag({{60, 60}, {80, 70}, {100, 120}});
    canvas.setPaintTypeToScribble();
    const QImage brushed = canvas.image();
    canvas.move(QPoint(180, 30));
    QCOMPARE(canvas.image(), withLines(brushed, roundPen(), {{100, 120}, {180, 30}}));
}

void tst_ScribbleArea::toolsSetTheirCursor()
{
    using Choose = void (ScribbleArea::*)();
    const Choose others[] = {&ScribbleArea::setPaintTypeToText, &ScribbleArea::setPaintTypeToGraph,
                             &ScribbleArea::setPaintTypeToScribble};
    Canvas canvas;
    for (const Choose choose : others) {
        canvas.setPaintTypeToMosaic();
        QCOMPARE(canvas.cursor().shape(), Qt::BitmapCursor);
        QCOMPARE(canvas.cursor().pixmap().size(), QSize(16, 16) * ratio());
        (canvas.*choose)();
        QCOMPARE(canvas.cursor().shape(), Qt::CrossCursor);
    }
}

void tst_ScribbleArea::clearImageMakesNoEntry()
{
    Canvas canvas;
    canvas.clearImage();
    QVERIFY(canvas.modified());
    QVERIFY(!canvas.canUndo());
    QImage white = picture();
    white.fill(Qt::white);
    QCOMPARE(canvas.image(), white);
    canvas.undo();
    QCOMPARE(canvas.image(), white);
}

void tst_ScribbleArea::setImageStartsOver()
{
    Canvas canvas;
    canvas.drag(QPoint(20, 20), QPoint(90, 60));
    canvas.setPaintTypeToMosaic();
    canvas.setImage(picture());
    QVERIFY(!canvas.modified());
    QVERIFY(!canvas.canUndo() && !canvas.canRedo());
    QCOMPARE(canvas.cursor().shape(), Qt::CrossCursor);
    canvas.drag(QPoint(20, 20), QPoint(90, 60));
    QVERIFY(canvas.modified());
}

void tst_ScribbleArea::preconditionsAreAsserted()
{
    SKIP_WITHOUT_ASSERTIONS();
    Canvas canvas;
    QVERIFY(failedAssertion([&] {
                ScribbleAreaAccess::restore(canvas);
            }).contains("m_currentDiffIndex >= 0 && m_currentDiffIndex < m_diffRectStack.size()"));
    QVERIFY(failedAssertion([&] {
                ScribbleAreaAccess::drawText(canvas);
            }).contains("m_textEdit != NULL"));
    canvas.setTextColor(Qt::red);
    QVERIFY(failedAssertion([&] {
                ScribbleAreaAccess::initTextEdit(canvas);
            }).contains("m_textEdit == NULL"));
}

void tst_ScribbleArea::filesThatFail()
{
    QTemporaryDir dir;
    QFile broken(dir.filePath("broken.png"));
    QVERIFY(broken.open(QIODevice::WriteOnly));
    broken.write("no picture");
    broken.close();
    Canvas canvas;
    canvas.drag(QPoint(20, 20), QPoint(90, 60));
    const QImage drawn = canvas.image();
    QVERIFY(!canvas.openImage(dir.filePath("broken.png")));
    QVERIFY(!canvas.openImage(dir.filePath("none.png")));
    QVERIFY(!canvas.saveImage(dir.filePath("none/a.png"), "PNG"));
    QVERIFY(!canvas.saveImage(dir.filePath("a.xyz"), "XYZ"));
    QCOMPARE(canvas.image(), drawn);
    QVERIFY(canvas.modified());
    QVERIFY(canvas.canUndo());
    // The format is found in the file, whatever its name says.
    QVERIFY(picture().save(dir.filePath("really-png.jpg"), "PNG"));
    QVERIFY(canvas.openImage(dir.filePath("really-png.jpg")));
    QVERIFY(canvas.image() == picture());
    QVERIFY(!canvas.canUndo());
}

void tst_ScribbleArea::formatIsThatOfTheNameWhereNoneIsGiven()
{
    QTemporaryDir dir;
    Canvas canvas;
    for (const char* format : {static_cast<const char*>(nullptr), ""}) {
        QVERIFY(canvas.saveImage(dir.filePath("a.bmp"), format));
        QCOMPARE(QImageReader::imageFormat(dir.filePath("a.bmp")), QByteArray("bmp"));
        QVERIFY(QFile::remove(dir.filePath("a.bmp")));
    }
}

void tst_ScribbleArea::picturesThatCannotBePaintedAreHarmless_data()
{
    QTest::addColumn<QImage>("image");
    QTest::newRow("empty") << QImage();
    QTest::newRow("indexed") << picture().convertToFormat(QImage::Format_Indexed8);
}

void tst_ScribbleArea::picturesThatCannotBePaintedAreHarmless()
{
    QFETCH(QImage, image);
    const QRect area(20, 30, 100, 70);
    // Qt warns of every painter that it cannot open on an indexed picture.
    const bool warns = !image.isNull();
    QtMessageHandler previous = nullptr;
    if (warns)
        previous =
            qInstallMessageHandler([](QtMsgType /*type*/, const QMessageLogContext& /*where*/,
                                      const QString& /*text*/) {});
    Canvas canvas(image);
    canvas.show();
    canvas.drag(area);
    canvas.setPaintTypeToMosaic();
    canvas.drag(area);
    canvas.setPaintTypeToGraph();
    canvas.drag(area);
    canvas.setPaintTypeToText();
    canvas.drag(area);
    canvas.textBox()->setPlainText("text");
    canvas.completeScribble();
    const int entries = canvas.entries();
    while (canvas.canUndo())
        canvas.undo();
    const QImage undone = canvas.image();
    while (canvas.canRedo())
        canvas.redo();
    if (warns)
        qInstallMessageHandler(previous);
    QCOMPARE(entries, 4);
    QCOMPARE(undone, image);
}

QTEST_MAIN(tst_ScribbleArea)
#include "tst_ScribbleArea.moc"
