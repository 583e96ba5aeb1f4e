// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Canvas.h"

#include <QPaintEvent>

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
    /// What was painted since repaintedBy() began.
    const QRegion& painted() const { return m_painted; }

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

class TimerCounter : public QObject
{
public:
    explicit TimerCounter(QObject& object) { object.installEventFilter(this); }
    int count = 0;
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        count += event->type() == QEvent::Timer ? 1 : 0;
        return false;
    }
};

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
    void movesRepaintTheParent();
    void fastMovesRepaintWhatChangedFirst();
    void restAfterASingleMoveRepaintsNothing();
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

void tst_ScribbleArea_painting::movesRepaintTheParent()
{
    Watched<QWidget> parent;
    Canvas canvas;
    QVERIFY(isShownOn(parent, canvas));
    const QRegion all(parent.rect());
    canvas.press(kFrom);
    QCOMPARE(parent.repaintedBy([&] { canvas.move(kOver); }), all);
    QCOMPARE(parent.repaintedBy([&] { canvas.move(kTo, Qt::NoButton); }), QRegion());
    canvas.release(kTo);
    canvas.setPaintTypeToMosaic();
    // Without a press nothing is brushed.
    QCOMPARE(parent.repaintedBy([&] { canvas.move(kOver); }), all);
    canvas.press(kFrom);
    QCOMPARE(parent.repaintedBy([&] { canvas.move(kOver); }), all);
    canvas.release(kOver);
    canvas.setPaintTypeToGraph();
    canvas.press(kFrom);
    // Too short a drag for a frame.
    QCOMPARE(parent.repaintedBy([&] { canvas.move(kFrom + QPoint(1, 0)); }), all);
    QTRY_COMPARE(parent.painted(), all);
}

// So that the line keeps up with the pointer, what changed comes first, and all when it rests.
void tst_ScribbleArea_painting::fastMovesRepaintWhatChangedFirst()
{
    Watched<QWidget> parent;
    Canvas canvas;
    QVERIFY(isShownOn(parent, canvas));
    canvas.press(kFrom);
    canvas.move(kOver);
    const QRect changed = QRect(kOver, kTo).normalized().adjusted(-3, -3, 3, 3).translated(50, 40);
    const QRegion first = parent.repaintedBy([&] { canvas.move(kTo); });
    QVERIFY(QRegion(changed).subtracted(first).isEmpty());
    QVERIFY(first != QRegion(parent.rect()));
    QTRY_COMPARE(parent.painted(), QRegion(parent.rect()));
    // The release does not wait for the pointer to rest.
    canvas.move(kFrom);
    canvas.move(kOver);
    QCOMPARE(parent.repaintedBy([&] { canvas.release(kOver); }), QRegion(parent.rect()));
}

// The first move has asked for all already.
void tst_ScribbleArea_painting::restAfterASingleMoveRepaintsNothing()
{
    Watched<QWidget> parent;
    Canvas canvas;
    QVERIFY(isShownOn(parent, canvas));
    canvas.press(kFrom);
    canvas.move(kOver);
    TimerCounter timer(canvas);
    QCOMPARE(parent.repaintedBy([&] { QTRY_COMPARE(timer.count, 1); }), QRegion());
    canvas.release(kOver);
    QCOMPARE(parent.repaintedBy([&] { canvas.press(kOver); }), QRegion());
}

QTEST_MAIN(tst_ScribbleArea_painting)
#include "tst_ScribbleArea_painting.moc"
