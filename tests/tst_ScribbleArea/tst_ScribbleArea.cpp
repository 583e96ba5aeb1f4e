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
    void strokeIsDrawnIntoThePicture();
    void clickLeavesADot_data();
    void clickLeavesADot();
    void segmentWithoutLengthIsDrawnAsALine_data();
    void segmentWithoutLengthIsDrawnAsALine();
    void motionlessEndOfAStrokeAddsNothing();
    void strokeGoesOnWithoutAPress();
    void otherButtonsDrawNothing();
    void leftButtonDrawsAmongOthers();
    void otherButtonsLeaveTheStrokeAlone();
    void saveInTheMiddleOfAStrokeLeavesNoDot();
    void penGoesOnWhereTheBrushEnded();
    void toolsSetTheirCursor();
    void clearImageMakesNoEntry();
    void setImageStartsOver();
    void preconditionsAreAsserted();
    void filesThatFail();
    void formatIsThatOfTheNameWhereNoneIsGiven_data();
    void formatIsThatOfTheNameWhereNoneIsGiven();
    void saveCommitsFirst();
    void emptyPictureIsHarmless();
    void pictureThatCannotBePaintedIsHarmless();
};

void tst_ScribbleArea::defaults()
{
    ScribbleArea area;
    QVERIFY(area.image().isNull());
    QVERIFY(area.testAttribute(Qt::WA_StaticContents));
    QVERIFY(area.hasMouseTracking());
    QCOMPARE(area.cursor().shape(), Qt::CrossCursor);
    QCOMPARE(area.scribblePen(), scribblePen(Qt::blue, 2));
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
    QCOMPARE(ScribbleAreaAccess::rebuildDelay(area), 300);
    QCOMPARE(int(ScribbleArea::PAINT_MOSAIC), 3);
    QCOMPARE(int(ScribbleArea::GRAPH_ARROW), 2);
    ArrowAttribute arrow;
    QCOMPARE(arrow.lineWidth, 5);
    QCOMPARE(arrow.headHalfWidth, 10);
    QCOMPARE(arrow.headLength, 10);
}

void tst_ScribbleArea::metaObjectKeepsItsSlots()
{
    const QMetaObject& meta = ScribbleArea::staticMetaObject;
    const int offset = meta.methodOffset();
    QCOMPARE(meta.methodCount() - offset, 2);
    QCOMPARE(meta.method(offset).methodSignature(), QByteArray("onResizableRectChanged(QRect)"));
    QCOMPARE(meta.method(offset + 1).methodSignature(), QByteArray("onupdateMosaicImage()"));
}

void tst_ScribbleArea::strokeIsDrawnIntoThePicture()
{
    Canvas canvas;
    canvas.press(QPoint(20, 20));
    canvas.move(QPoint(60, 30));
    canvas.move(QPoint(70, 90));
    canvas.release(QPoint(50, 95));
    QCOMPARE(canvas.image(), drawnOn(picture(), [](QPainter& painter) {
                 painter.setPen(scribblePen());
                 painter.drawLine(20, 20, 60, 30);
                 painter.drawLine(60, 30, 70, 90);
                 painter.drawLine(70, 90, 50, 95);
             }));
    QVERIFY(canvas.modified());
    QCOMPARE(canvas.history().size(), 1);
}

void tst_ScribbleArea::clickLeavesADot_data()
{
    QTest::addColumn<int>("width");
    for (int width : {1, 2, 3, 8, 21})
        QTest::newRow(qPrintable(QString("width %1").arg(width))) << width;
}

void tst_ScribbleArea::clickLeavesADot()
{
    QFETCH(int, width);
    Canvas canvas;
    canvas.setScribblePen(scribblePen(Qt::green, width));
    canvas.press(QPoint(50, 60));
    canvas.release(QPoint(50, 60));
    const QImage expected = drawnOn(picture(), [&](QPainter& painter) {
        painter.setPen(scribblePen(Qt::green, width));
        painter.drawPoint(50, 60);
    });
    QVERIFY(expected != picture());
    QCOMPARE(canvas.image(), expected);
    QCOMPARE(canvas.history().size(), 1);
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
}

void tst_ScribbleArea::motionlessEndOfAStrokeAddsNothing()
{
    Canvas canvas;
    canvas.setScribblePen(QPen(QBrush(Qt::green), 15, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
    canvas.drag(QPoint(50, 60), QPoint(90, 60));
    QCOMPARE(canvas.image(), drawnOn(picture(), [](QPainter& painter) {
                 painter.setPen(
                     QPen(QBrush(Qt::green), 15, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
                 painter.drawLine(50, 60, 90, 60);
             }));
}

void tst_ScribbleArea::strokeGoesOnWithoutAPress()
{
    Canvas canvas;
    canvas.drag(QPoint(20, 20), QPoint(40, 20));
    QVERIFY(ScribbleAreaAccess::scribbling(canvas));
    canvas.move(QPoint(40, 80));
    QCOMPARE(canvas.image(), drawnOn(picture(), [](QPainter& painter) {
                 painter.setPen(scribblePen());
                 painter.drawLine(20, 20, 40, 20);
                 painter.drawLine(40, 20, 40, 80);
             }));
}

void tst_ScribbleArea::otherButtonsDrawNothing()
{
    Canvas canvas;
    canvas.press(QPoint(20, 20), Qt::RightButton);
    canvas.move(QPoint(60, 60), Qt::RightButton);
    canvas.release(QPoint(60, 60), Qt::RightButton);
    canvas.move(QPoint(80, 80), Qt::NoButton);
    QCOMPARE(canvas.image(), picture());
    QCOMPARE(canvas.history().size(), 0);
}

void tst_ScribbleArea::leftButtonDrawsAmongOthers()
{
    Canvas canvas;
    canvas.press(QPoint(20, 20));
    canvas.move(QPoint(60, 30), Qt::LeftButton | Qt::RightButton);
    QCOMPARE(canvas.image(), drawnOn(picture(), [](QPainter& painter) {
                 painter.setPen(scribblePen());
                 painter.drawLine(20, 20, 60, 30);
             }));
}

void tst_ScribbleArea::otherButtonsLeaveTheStrokeAlone()
{
    Canvas canvas;
    canvas.press(QPoint(20, 20));
    canvas.press(QPoint(60, 60), Qt::RightButton, Qt::LeftButton);
    canvas.move(QPoint(100, 20), Qt::LeftButton | Qt::RightButton);
    canvas.release(QPoint(150, 90), Qt::RightButton, Qt::LeftButton);
    QCOMPARE(canvas.history().size(), 0);
    canvas.release(QPoint(100, 40));
    QCOMPARE(canvas.image(), drawnOn(picture(), [](QPainter& painter) {
                 painter.setPen(scribblePen());
                 painter.drawLine(20, 20, 100, 20);
                 painter.drawLine(100, 20, 100, 40);
             }));
    QCOMPARE(canvas.history().size(), 1);
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
    canvas.press(from);
    canvas.move(end);
    canvas.move(end);
    canvas.release(end);
    QCOMPARE(canvas.image(), drawnOn(picture(), [&](QPainter& painter) {
                 painter.setPen(pen);
                 painter.drawLine(from, end);
                 painter.drawLine(end, end);
                 painter.drawLine(end, end);
             }));
}

void tst_ScribbleArea::saveInTheMiddleOfAStrokeLeavesNoDot()
{
    const QPen flat(QBrush(Qt::green), 15, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin);
    QTemporaryDir dir;
    Canvas canvas;
    canvas.setScribblePen(flat);
    canvas.press(QPoint(50, 60));
    canvas.move(QPoint(90, 60));
    QVERIFY(canvas.saveImage(dir.filePath("a.png"), "PNG"));
    canvas.release(QPoint(90, 60));
    QCOMPARE(canvas.image(), drawnOn(picture(), [&](QPainter& painter) {
                 painter.setPen(flat);
                 painter.drawLine(50, 60, 90, 60);
             }));
}

// The pen's stroke never ends, and the brush leaves its last point to it.
void tst_ScribbleArea::penGoesOnWhereTheBrushEnded()
{
    Canvas canvas;
    canvas.drag(QPoint(20, 20), QPoint(40, 20));
    canvas.setPaintTypeToMosaic();
    canvas.press(QPoint(60, 60));
    canvas.move(QPoint(80, 70));
    canvas.release(QPoint(100, 120));
    canvas.setPaintTypeToScribble();
    const QImage brushed = canvas.image();
    canvas.move(QPoint(180, 30));
    QCOMPARE(canvas.image(), drawnOn(brushed, [](QPainter& painter) {
                 painter.setPen(scribblePen());
                 painter.drawLine(100, 120, 180, 30);
             }));
}

void tst_ScribbleArea::toolsSetTheirCursor()
{
    Canvas canvas;
    const auto brushed = [&] {
        canvas.setPaintTypeToMosaic();
        return canvas.cursor().shape() == Qt::BitmapCursor;
    };
    QVERIFY(brushed());
    QCOMPARE(canvas.cursor().pixmap().size(), QSize(16, 16));
    canvas.setPaintTypeToText();
    QCOMPARE(canvas.cursor().shape(), Qt::CrossCursor);
    QVERIFY(brushed());
    canvas.setPaintTypeToGraph();
    QCOMPARE(canvas.cursor().shape(), Qt::CrossCursor);
    QVERIFY(brushed());
    canvas.setPaintTypeToScribble();
    QCOMPARE(canvas.cursor().shape(), Qt::CrossCursor);
}

void tst_ScribbleArea::clearImageMakesNoEntry()
{
    Canvas canvas;
    canvas.clearImage();
    QVERIFY(canvas.modified());
    QVERIFY(!canvas.canUndo());
    QImage white(kSize, QImage::Format_RGB32);
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
    QCOMPARE(canvas.image(), picture());
    QVERIFY(!canvas.canUndo());
}

void tst_ScribbleArea::formatIsThatOfTheNameWhereNoneIsGiven_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::newRow("null") << QByteArray();
    QTest::newRow("empty") << QByteArray("");
}

void tst_ScribbleArea::formatIsThatOfTheNameWhereNoneIsGiven()
{
    QFETCH(QByteArray, format);
    QTemporaryDir dir;
    Canvas canvas;
    QVERIFY(canvas.saveImage(dir.filePath("a.bmp"), format.isNull() ? nullptr : format.data()));
    QCOMPARE(QImageReader::imageFormat(dir.filePath("a.bmp")), QByteArray("bmp"));
}

void tst_ScribbleArea::saveCommitsFirst()
{
    QTemporaryDir dir;
    Canvas canvas;
    canvas.setPaintTypeToGraph();
    canvas.drag(QPoint(30, 40), QPoint(120, 100));
    QVERIFY(canvas.saveImage(dir.filePath("a.png"), "PNG"));
    QCOMPARE(QImage(dir.filePath("a.png")).convertToFormat(QImage::Format_RGB32), canvas.image());
    QVERIFY(canvas.image() != picture());
    QVERIFY(!canvas.modified());
}

void tst_ScribbleArea::emptyPictureIsHarmless()
{
    Canvas canvas{QImage()};
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    canvas.setPaintTypeToMosaic();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    canvas.setPaintTypeToGraph();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    canvas.completeScribble();
    canvas.clearImage();
    while (canvas.canUndo())
        canvas.undo();
    while (canvas.canRedo())
        canvas.redo();
    QVERIFY(canvas.image().isNull());
}

// Qt warns of every painter that it cannot open on such a picture; here that is expected.
void tst_ScribbleArea::pictureThatCannotBePaintedIsHarmless()
{
    const QImage indexed = picture().convertToFormat(QImage::Format_Indexed8);
    const auto previous = qInstallMessageHandler(
        [](QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& /*text*/) {});
    Canvas canvas(indexed);
    canvas.show();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    canvas.setPaintTypeToMosaic();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    canvas.setPaintTypeToGraph();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    canvas.setPaintTypeToText();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    canvas.textBox()->setPlainText("text");
    canvas.completeScribble();
    const int entries = canvas.history().size();
    while (canvas.canUndo())
        canvas.undo();
    const QImage undone = canvas.image();
    qInstallMessageHandler(previous);
    QCOMPARE(entries, 4);
    QCOMPARE(undone, indexed);
}

QTEST_MAIN(tst_ScribbleArea)
#include "tst_ScribbleArea.moc"
