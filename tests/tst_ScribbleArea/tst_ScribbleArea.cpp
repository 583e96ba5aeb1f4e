// SPDX-License-Identifier: MIT
#include "AssertionProbe.h"
#include "BehaviourTest.h"
#include "ResizableRect.h"
#include "ScribbleArea.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTextEdit>
#include <QtTest>

using DiffRect = ScribbleArea::DiffRect;

struct ScribbleAreaAccess {
    static QList<DiffRect> history(const ScribbleArea& area) { return area.m_diffRectStack; }
    static int applied(const ScribbleArea& area) { return area.m_currentDiffIndex; }
    static bool modified(const ScribbleArea& area) { return area.m_modified; }
    static bool scribbling(const ScribbleArea& area) { return area.m_scribbling; }
    static bool rebuildPending(const ScribbleArea& area) { return area.m_mosaicTimer.isActive(); }
    static int rebuildDelay(const ScribbleArea& area) { return area.m_mosaicTimer.interval(); }
    static void restore(ScribbleArea& area) { area.restoreDiffRect(); }
    static void drawText(ScribbleArea& area) { area.drawText(); }
    static void initTextEdit(ScribbleArea& area) { area.initTextEdit(); }
    static QImage pixelated(const ScribbleArea& area) { return area.m_mosaicImage; }
};

namespace
{

constexpr QSize kSize(200, 150);
const QColor kRed(251, 56, 56);

QImage picture(const QSize& size = kSize)
{
    QImage image(size, QImage::Format_RGB32);
    QRandomGenerator random(42);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, 0xff000000u | random.generate());
    }
    return image;
}

/// A canvas with a picture on it, and the mouse in front of it.
class Canvas : public ScribbleArea
{
public:
    explicit Canvas(const QImage& image = picture())
    {
        resize(image.isNull() ? kSize : image.size());
        setImage(image);
    }
    ResizableRect* frame() const { return findChild<ResizableRect*>(); }
    QTextEdit* textBox() const { return findChild<QTextEdit*>(); }
    QList<DiffRect> history() const { return ScribbleAreaAccess::history(*this); }
    bool modified() const { return ScribbleAreaAccess::modified(*this); }

    void press(const QPoint& p, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonPress, p, button, button);
    }
    void move(const QPoint& p, Qt::MouseButtons buttons = Qt::LeftButton)
    {
        send(QEvent::MouseMove, p, Qt::NoButton, buttons);
    }
    void release(const QPoint& p, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonRelease, p, button, Qt::NoButton);
    }
    void drag(const QPoint& from, const QPoint& to)
    {
        press(from);
        move(to);
        release(to);
    }

private:
    void send(QEvent::Type type, const QPoint& p, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, p, button, buttons, Qt::NoModifier);
        QApplication::sendEvent(this, &event);
    }
};

QPen scribblePen(const QColor& color = Qt::blue, int width = 2)
{
    return {QBrush(color), qreal(width), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

template <typename Draw>
QImage drawnOn(QImage image, Draw draw)
{
    QPainter painter(&image);
    draw(painter);
    painter.end();
    return image;
}

QRect edges(int left, int top, int right, int bottom)
{
    return {QPoint(left, top), QPoint(right, bottom)};
}

} // namespace

class tst_ScribbleArea : public BehaviourTest
{
    Q_OBJECT

private slots:
    void defaults();
    void metaObjectKeepsItsSlots();
    void strokeIsDrawnIntoThePicture();
    void clickLeavesADot_data();
    void clickLeavesADot();
    void motionlessEndOfAStrokeAddsNothing();
    void strokeGoesOnWithoutAPress();
    void otherButtonsDrawNothing();
    void entryHoldsTheStrokesBounds();
    void undoAndRedoAreExact();
    void newEditDropsTheRedoTail();
    void editsBeyondTheEdgeAreUndone();
    void clearImageMakesNoEntry();
    void setImageStartsOver();
    void preconditionsAreAsserted();

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

    void mosaicPixelatesARoundSpot();
    void mosaicStrokeLeavesModifiedAlone();
    void mosaicLeavesOutTheLastColumnAndRow();
    void mosaicMaskSurvivesUndo();
    void mosaicRebuildsOnceAfterTheLastChange();
    void mosaicWiderThanTheCanvas();
    void mosaicCursorIsTheBrush();

    void textBoxSettings();
    void textIsRenderedIntoThePicture();
    void blanksLeaveNoTrace();
    void textBoxFollowsTheFrame();
    void undoTakesThePendingTextBack();
    void fontSizeAndColourMakeTheBox();
    void secondCommitInTextModeHoldsNoPixels();
    void hugeTextIsHarmless();

    void filesThatFail();
    void saveCommitsFirst();
    void emptyPictureIsHarmless();
    void randomEditsUndoAndRedo_data();
    void randomEditsUndoAndRedo();
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

void tst_ScribbleArea::entryHoldsTheStrokesBounds()
{
    Canvas canvas;
    canvas.setScribblePen(scribblePen(Qt::blue, 5));
    canvas.drag(QPoint(60, 50), QPoint(40, 80));
    const QRect first = QRect(QPoint(60, 50), QPoint(40, 80)).normalized().adjusted(-4, -4, 4, 4);
    const QRect bounds = QRect(60, 50, 1, 1) | first | QRect(40, 80, 1, 1).adjusted(-4, -4, 4, 4);
    const DiffRect entry = canvas.history().at(0);
    QCOMPARE(entry.position, bounds.topLeft());
    QCOMPARE(entry.image.size(), bounds.size());
    const QImage before = picture();
    const QImage after = canvas.image();
    for (int y = 0; y < bounds.height(); ++y) {
        for (int x = 0; x < bounds.width(); ++x) {
            const QPoint p = bounds.topLeft() + QPoint(x, y);
            QCOMPARE(entry.image.pixel(x, y) & 0xffffffu,
                     (before.pixel(p) ^ after.pixel(p)) & 0xffffffu);
        }
    }
}

void tst_ScribbleArea::undoAndRedoAreExact()
{
    Canvas canvas;
    canvas.drag(QPoint(20, 20), QPoint(90, 60));
    const QImage drawn = canvas.image();
    for (int i = 0; i < 2; ++i) {
        QVERIFY(canvas.canUndo() && !canvas.canRedo());
        canvas.undo();
        QCOMPARE(canvas.image(), picture());
        QVERIFY(!canvas.canUndo() && canvas.canRedo());
        canvas.undo();
        QCOMPARE(canvas.image(), picture());
        canvas.redo();
        QCOMPARE(canvas.image(), drawn);
        canvas.redo();
        QCOMPARE(canvas.image(), drawn);
    }
}

void tst_ScribbleArea::newEditDropsTheRedoTail()
{
    Canvas canvas;
    canvas.drag(QPoint(20, 20), QPoint(90, 60));
    canvas.drag(QPoint(30, 20), QPoint(90, 70));
    canvas.undo();
    canvas.undo();
    canvas.drag(QPoint(40, 20), QPoint(90, 80));
    QCOMPARE(canvas.history().size(), 1);
    QVERIFY(!canvas.canRedo());
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
}

void tst_ScribbleArea::editsBeyondTheEdgeAreUndone()
{
    Canvas canvas;
    canvas.setScribblePen(scribblePen(Qt::blue, 9));
    canvas.drag(QPoint(-40, -20), QPoint(260, 190));
    QCOMPARE(canvas.history().at(0).position, QPoint(-46, -26));
    const QImage drawn = canvas.image();
    QVERIFY(drawn != picture());
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
    canvas.redo();
    QCOMPARE(canvas.image(), drawn);
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

void tst_ScribbleArea::dragThreshold_data()
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

void tst_ScribbleArea::dragThreshold()
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

void tst_ScribbleArea::rectangleIsCommittedWithoutAntialiasing()
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

void tst_ScribbleArea::ellipseIsCommittedWithAntialiasing()
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

void tst_ScribbleArea::arrowIsCommitted()
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

void tst_ScribbleArea::arrowDrawing_data()
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

void tst_ScribbleArea::arrowDrawing()
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

void tst_ScribbleArea::historyRectangleIsTheGrownFrame_data()
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

void tst_ScribbleArea::historyRectangleIsTheGrownFrame()
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

void tst_ScribbleArea::shapeIsCommittedBy_data()
{
    QTest::addColumn<QString>("what");
    for (const char* what : {"press outside", "right press outside", "tool change", "save",
                             "completeScribble", "new drag"})
        QTest::newRow(what) << QString(what);
}

void tst_ScribbleArea::shapeIsCommittedBy()
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

void tst_ScribbleArea::undoTakesThePendingShapeBack()
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

void tst_ScribbleArea::savingTwiceInShapeModeMakesTwoEntries()
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

void tst_ScribbleArea::penSettersReachTheFrameOrNot()
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

void tst_ScribbleArea::toolsTellTheFrameTheirWidth()
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

void tst_ScribbleArea::mosaicPixelatesARoundSpot()
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

void tst_ScribbleArea::mosaicStrokeLeavesModifiedAlone()
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

void tst_ScribbleArea::mosaicLeavesOutTheLastColumnAndRow()
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

void tst_ScribbleArea::mosaicMaskSurvivesUndo()
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

void tst_ScribbleArea::mosaicRebuildsOnceAfterTheLastChange()
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

void tst_ScribbleArea::mosaicWiderThanTheCanvas()
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

void tst_ScribbleArea::mosaicCursorIsTheBrush()
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

void tst_ScribbleArea::textBoxSettings()
{
    Canvas canvas;
    canvas.show();
    canvas.setPaintTypeToText();
    canvas.drag(QPoint(20, 30), QPoint(150, 100));
    const QTextEdit* box = canvas.textBox();
    QVERIFY(box->isVisible());
    QVERIFY(canvas.frame()->isVisible());
    QCOMPARE(box->parentWidget(), &canvas);
    QVERIFY(box->windowFlags() & Qt::FramelessWindowHint);
    QCOMPARE(box->geometry(), edges(24, 34, 146, 96));
    QCOMPARE(box->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(box->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(box->lineWrapMode(), QTextEdit::NoWrap);
    QVERIFY(!box->isUndoRedoEnabled());
    QCOMPARE(box->styleSheet(),
             QString("background:rgba(0,0,0,0%); border-width:0; border-style:outset}"));
}

void tst_ScribbleArea::textIsRenderedIntoThePicture()
{
    QImage plain(kSize, QImage::Format_RGB32);
    plain.fill(QColor(10, 200, 30));
    Canvas canvas(plain);
    canvas.show();
    canvas.setTextFontSize(20);
    canvas.setTextColor(Qt::red);
    canvas.setPaintTypeToText();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    QTest::keyClicks(canvas.textBox(), "HHHHHHHHHHHHHHHHHHHH");
    canvas.press(QPoint(190, 140));
    QVERIFY(canvas.textBox()->isHidden());
    QVERIFY(!canvas.frame()->isVisible());
    QVERIFY(canvas.modified());

    const QRect box = edges(24, 34, 116, 96);
    const DiffRect entry = canvas.history().at(0);
    QCOMPARE(QRect(entry.position, entry.image.size()), box);
    int changed = 0;
    for (int y = 0; y < kSize.height(); ++y) {
        for (int x = 0; x < kSize.width(); ++x) {
            const bool differs = canvas.image().pixel(x, y) != plain.pixel(x, y);
            QVERIFY(!differs || box.contains(x, y));
            changed += differs;
        }
    }
    // Glyphs alone: some pixels, and far from all of the box.
    QVERIFY(changed > 100);
    QVERIFY(changed < box.width() * box.height() / 2);
    canvas.undo();
    QCOMPARE(canvas.image(), plain);
}

void tst_ScribbleArea::blanksLeaveNoTrace()
{
    Canvas canvas;
    canvas.show();
    canvas.setPaintTypeToText();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    canvas.textBox()->setPlainText("  \n \t ");
    canvas.completeScribble();
    QCOMPARE(canvas.image(), picture());
    QCOMPARE(canvas.history().size(), 0);
    QVERIFY(!canvas.modified());
    QVERIFY(canvas.textBox()->isHidden());
}

void tst_ScribbleArea::textBoxFollowsTheFrame()
{
    Canvas canvas;
    canvas.show();
    canvas.setPaintTypeToText();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    canvas.textBox()->setPlainText("abc");
    canvas.drag(QPoint(40, 30), QPoint(50, 40));
    QCOMPARE(canvas.frame()->rect(), edges(30, 40, 130, 110));
    QCOMPARE(canvas.textBox()->geometry(), edges(34, 44, 126, 106));
    canvas.completeScribble();
    // The next text starts empty, in the same box.
    QTextEdit* box = canvas.textBox();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    QCOMPARE(canvas.textBox(), box);
    QVERIFY(box->toPlainText().isEmpty());
}

void tst_ScribbleArea::undoTakesThePendingTextBack()
{
    Canvas canvas;
    canvas.show();
    canvas.setPaintTypeToText();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    QTest::keyClicks(canvas.textBox(), "undo me");
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
    QVERIFY(canvas.textBox()->isHidden());
    QVERIFY(canvas.canRedo());
    canvas.redo();
    QVERIFY(canvas.image() != picture());
}

void tst_ScribbleArea::fontSizeAndColourMakeTheBox()
{
    Canvas canvas;
    QVERIFY(!canvas.textBox());
    canvas.setTextFontSize(22);
    QVERIFY(canvas.textBox());
    QVERIFY(canvas.textBox()->isHidden());
    QCOMPARE(canvas.textBox()->font().pointSize(), 22);
    Canvas other;
    other.setTextColor(Qt::magenta);
    QCOMPARE(other.textBox()->textColor(), QColor(Qt::magenta));
    QVERIFY(other.textBox()->isHidden());
}

void tst_ScribbleArea::secondCommitInTextModeHoldsNoPixels()
{
    Canvas canvas;
    canvas.show();
    canvas.setPaintTypeToText();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    QTest::keyClicks(canvas.textBox(), "twice");
    canvas.completeScribble();
    const QImage once = canvas.image();
    canvas.completeScribble();
    QCOMPARE(canvas.history().size(), 2);
    QVERIFY(canvas.history().at(1).image.isNull());
    canvas.undo();
    QCOMPARE(canvas.image(), once);
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
}

void tst_ScribbleArea::hugeTextIsHarmless()
{
    Canvas canvas;
    canvas.show();
    canvas.setPaintTypeToText();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    canvas.textBox()->insertPlainText(QString(100000, 'x'));
    canvas.completeScribble();
    QVERIFY(canvas.image() != picture());
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
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

void tst_ScribbleArea::randomEditsUndoAndRedo_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 10; ++seed)
        QTest::newRow(qPrintable(QString("seed %1").arg(seed))) << seed;
}

// Only tools whose pixels lie inside their recorded rectangle.
void tst_ScribbleArea::randomEditsUndoAndRedo()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    Canvas canvas;
    QList<QImage> pictures{canvas.image()};
    int applied = 0;
    const auto point = [&] { return QPoint(random.bounded(-20, 220), random.bounded(-20, 170)); };
    const auto edited = [&] {
        pictures = pictures.mid(0, applied + 1);
        pictures << canvas.image();
        ++applied;
    };
    for (int step = 0; step < 120; ++step) {
        switch (random.bounded(6)) {
        case 0:
            canvas.setPaintTypeToScribble();
            canvas.setScribblePen(scribblePen(QColor(random.generate()), random.bounded(1, 20)));
            canvas.drag(point(), point());
            edited();
            break;
        case 1:
            canvas.setMosaicPen(scribblePen(Qt::red, random.bounded(16, 46)));
            canvas.setPaintTypeToMosaic();
            canvas.drag(point(), point());
            edited();
            break;
        case 2: {
            canvas.setPaintTypeToGraph();
            canvas.setGraphState(random.bounded(2));
            const QPoint from = point();
            canvas.drag(from, from + QPoint(random.bounded(8, 60), random.bounded(8, 60)));
            canvas.setPaintTypeToScribble();
            edited();
            break;
        }
        case 3:
        case 4:
            canvas.undo();
            applied = qMax(applied - 1, 0);
            break;
        default:
            canvas.redo();
            applied = qMin(applied + 1, pictures.size() - 1);
            break;
        }
        QCOMPARE(canvas.history().size(), pictures.size() - 1);
        QCOMPARE(ScribbleAreaAccess::applied(canvas), applied);
        QCOMPARE(canvas.image(), pictures.at(applied));
    }
    while (canvas.canUndo()) {
        canvas.undo();
        QCOMPARE(canvas.image(), pictures.at(--applied));
    }
    while (canvas.canRedo()) {
        canvas.redo();
        QCOMPARE(canvas.image(), pictures.at(++applied));
    }
    QCOMPARE(applied, pictures.size() - 1);
}

QTEST_MAIN(tst_ScribbleArea)
#include "tst_ScribbleArea.moc"
