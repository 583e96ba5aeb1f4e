// SPDX-License-Identifier: MIT
#include "tst_desktops.h"

#include "Input.h"
#include "Marks.h"
#include "Pictures.h"
#include "Reports.h"
#include "Screens.h"
#include "Waiting.h"

#include <QLineF>

// Strokes, shapes and texts.

namespace
{

QRect grown(const QRect& r, qreal by)
{
    const int whole = qRound(by);
    return r.adjusted(-whole, -whole, whole, whole);
}

} // namespace

void tst_desktops::strokeIsUndoneAndRedone()
{
    const QPoint start = screens().first().topLeft() + QPoint(100, 150);
    const QPoint onStroke = start + QPoint(100, 50);
    const QColor before = m_atStart.pixelColor(onStroke);
    const auto isBefore = [&] { return m_server->picture().pixelColor(onStroke) == before; };
    startCapture();
    select(QRect(start, QSize(500, 300)));
    QVERIFY(waitFor(isBefore));
    clickOn("scribble");
    QVERIFY(waitFor([this] { return !where("subToolBar").isEmpty(); }));
    drag(start + QPoint(50, 50), start + QPoint(150, 50));
    QVERIFY2(waitFor([&] { return !isBefore(); }), "no stroke is drawn");
    const QColor stroke = m_server->picture().pixelColor(onStroke);
    keyToCapture("ctrl+z");
    QVERIFY2(waitFor(isBefore), "Ctrl+Z does not undo");
    keyToCapture("ctrl+shift+z");
    QVERIFY2(waitFor([&] { return m_server->picture().pixelColor(onStroke) == stroke; }),
             "Ctrl+Shift+Z does not redo");
    keyToCapture("Return");
    expectEnd("captured");
    QCOMPARE(m_host->picture().pixelColor(onStroke - start), stroke);
}

void tst_desktops::startDrawing(const QRect& region, const QString& tool)
{
    startCapture();
    select(region);
    clickOn(tool);
    QVERIFY(waitFor([this] { return !where("subToolBar").isEmpty(); }));
}

/// Draws with the tool along a frame over the region.
void tst_desktops::drawInFrame(const QRect& region, const QString& tool, const QRect& frame)
{
    // The centre of a handle.
    const auto isFrameSeen = [&] {
        return m_server->picture().pixelColor(frame.topRight()) == Qt::white;
    };
    startDrawing(region, tool);
    drag(frame.topLeft(), frame.bottomRight());
    QVERIFY2(waitFor(isFrameSeen), "there is no frame");
    if (tool == "text") {
        input({"type", "HMHMHM"});
        QVERIFY(waitFor([&] { return m_host->content("QTextEdit") == "HMHMHM"; }));
    }
    // Another tool ends the drawing.
    clickOn("scribble");
    QVERIFY2(waitFor([&] { return !isFrameSeen(); }), "the frame stays");
}

/// Delivers the region with a stroke of the tool over it.
void tst_desktops::drawOver(const QRect& region, const QString& tool, const QPoint& from,
                            const QPoint& to)
{
    startDrawing(region, tool);
    drag(from, to);
    keyToCapture("Return");
    expectEnd("captured");
}

/// The pixels of the region that a drag over `dragged` selects.
QImage tst_desktops::regionBefore(const QRect& dragged) const
{
    QImage picture = m_atStart.copy(selected(dragged));
    picture.setDevicePixelRatio(m_ratio);
    return picture;
}

/// The coordinates of the canvas over that region for a pixel of the screen.
QPoint tst_desktops::inCanvas(const QRect& dragged, const QPoint& p) const
{
    return coordinatesAt(p) - coordinatesAt(dragged.topLeft());
}

void tst_desktops::strokeLiesWhereItIsDrawn()
{
    const QRect region = overNotes();
    const QPoint from = region.topLeft() + QPoint(40, 30);
    const QPoint to = from + QPoint(150, 0);
    drawOver(region, "scribble", from, to);
    const QImage picture = m_host->picture();
    QImage expected = regionBefore(region);
    QCOMPARE(picture.size(), expected.size());
    const QColor color = picture.pixelColor(inCanvas(region, from) * m_ratio);
    QPainter painter(&expected);
    painter.setPen(QPen(color, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawLine(inCanvas(region, from), inCanvas(region, (from + to) / 2));
    painter.drawLine(inCanvas(region, (from + to) / 2), inCanvas(region, to));
    painter.end();
    const QString seen = difference(picture, expected);
    QVERIFY2(seen.isEmpty(), qPrintable(seen));
}

// The edge of the brush is not looked at: there a pixel may be either.
void tst_desktops::mosaicLiesWhereItIsDrawn()
{
    constexpr int blockSide = 2;
    constexpr qreal brushRadius = 8;
    const QRect region = overNotes();
    const QPoint from = region.topLeft() + QPoint(60, 60);
    const QPoint to = from + QPoint(120, 0);
    drawOver(region, "Mosaic", from, to);
    const QImage picture = m_host->picture();
    const QImage before = regionBefore(region);
    const QImage blocks = inBlocks(before, blockSide);
    QCOMPARE(picture.size(), before.size());
    const QPointF start = inCanvas(region, from);
    const QPointF end = inCanvas(region, to);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QPointF p = QPointF(x + 0.5, y + 0.5) / m_ratio;
            const qreal away =
                QLineF(p, QPointF(qBound(start.x(), p.x(), end.x()), start.y())).length();
            if (qAbs(away - brushRadius) < 2)
                continue;
            const QImage& expected = away < brushRadius ? blocks : before;
            const QColor actual = picture.pixelColor(x, y);
            QVERIFY2(actual.rgb() == expected.pixelColor(x, y).rgb(),
                     qPrintable(text(QPoint(x, y)) + " is " + actual.name()));
        }
    }
}

void tst_desktops::annotationIsDeliveredAsShown_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<QColor>("color");
    // Of the frame's size.
    QTest::addColumn<QVector<QPointF>>("marks");
    QTest::addColumn<int>("reach");
    const QColor red(251, 56, 56);
    QTest::newRow("arrow") << "Arrow" << red
                           << QVector<QPointF>{{0.25, 0.25}, {0.5, 0.5}, {0.9, 0.9}} << 1;
    QTest::newRow("rectangle") << "Rectangle" << red
                               << QVector<QPointF>{{0, 0.5}, {1, 0.5}, {0.5, 0}, {0.5, 1}} << 1;
    // Its first line begins at the top.
    QTest::newRow("text") << "text" << QColor(Qt::black) << QVector<QPointF>{{0.2, 0}} << 20;
}

// All is compared pixel by pixel of the screen. What the selection's frame covers is not looked at.
void tst_desktops::annotationIsDeliveredAsShown()
{
    constexpr int besidePx = 10;
    QFETCH(QString, tool);
    QFETCH(QColor, color);
    QFETCH(QVector<QPointF>, marks);
    QFETCH(int, reach);
    const QRect region(screens().first().topLeft() + QPoint(100, 150), QSize(500, 300));
    const QRect frame(region.topLeft() + QPoint(150, 100), QSize(200, 100));
    drawInFrame(region, tool, frame);
    const QRect pixels = selected(region);
    const QImage shown = stillPicture().copy(pixels);
    keyToCapture("Return");
    expectEnd("captured");
    const QImage picture = m_host->picture();
    const QImage before = m_atStart.copy(pixels);

    const QRect inner = grown(picture.rect(), -kFrameBand * m_ratio);
    QString seen = difference(picture.copy(inner), shown.copy(inner));
    QVERIFY2(seen.isEmpty(), qPrintable("not as shown: " + seen));

    const QRect drawn = frame.translated(-pixels.topLeft());
    const QRect around = grown(drawn, besidePx * m_ratio);
    seen = difference(without(picture, around), without(before, around));
    QVERIFY2(seen.isEmpty(), qPrintable("beside the annotation: " + seen));

    seen = notBetween(before, picture, color);
    QVERIFY2(seen.isEmpty(), qPrintable(seen));
    for (const QPointF& mark : marks) {
        const QPoint p = drawn.topLeft() + QPoint(qRound(mark.x() * (drawn.width() - 1)),
                                                  qRound(mark.y() * (drawn.height() - 1)));
        QVERIFY2(holdsColor(picture.copy(grown(QRect(p, QSize(1, 1)), reach * m_ratio)), color),
                 qPrintable("no pen at " + text(p)));
    }
}

void tst_desktops::typedTextArrives_data()
{
    QTest::addColumn<QStringList>("keys");
    QTest::addColumn<QString>("text");
    QTest::newRow("typed") << QStringList{"type", "Harbour 46"} << "Harbour 46";
    QTest::newRow("composed") << QStringList{"key", "dead_acute", "e", "a"} << "\u00e9a";
}

void tst_desktops::typedTextArrives()
{
    QFETCH(QStringList, keys);
    QFETCH(QString, text);
    const QRect region(screens().first().topLeft() + QPoint(100, 150), QSize(500, 300));
    startDrawing(region, "text");
    const QRect box(region.topLeft() + QPoint(50, 50), QSize(200, 100));
    drag(box.topLeft(), box.bottomRight());
    QVERIFY2(waitFor([this] { return !where("QTextEdit").isEmpty(); }), "there is no text box");
    input(keys);
    QVERIFY2(waitFor([&] { return m_host->content("QTextEdit") == text; }),
             qPrintable("the text box holds " + m_host->content("QTextEdit")));
    keyToCapture("Escape");
    expectEnd("cancelled");
}
