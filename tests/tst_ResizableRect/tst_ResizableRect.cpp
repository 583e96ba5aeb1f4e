// SPDX-License-Identifier: MIT
#include "AssertionProbe.h"
#include "BehaviourTest.h"
#include "Host.h"
#include "ResizableRect.h"

#include <QTranslator>

#include <QMetaMethod>
#include <QPainter>

namespace
{

void paintOutline(QPainter& painter, const QRect& r, const QColor& color)
{
    painter.fillRect(r.left(), r.top(), r.width() + 1, 1, color);
    painter.fillRect(r.left(), r.bottom() + 1, r.width() + 1, 1, color);
    painter.fillRect(r.left(), r.top(), 1, r.height() + 1, color);
    painter.fillRect(r.right() + 1, r.top(), 1, r.height() + 1, color);
}

void paintHandles(QPainter& painter, const QColor& inner)
{
    for (int id = 0; id < 8; ++id) {
        painter.fillRect(handleAt(anchorOf(id)).adjusted(0, 0, 1, 1), inner);
        paintOutline(painter, handleAt(anchorOf(id)), kColor);
    }
}

QImage canvas()
{
    QImage image(140, 90, QImage::Format_RGB32);
    image.fill(QColor(200, 180, 160));
    return image;
}

QImage rendered(ResizableRect& rect)
{
    QImage image = canvas();
    QPainter painter(&image);
    rect.render(painter);
    return image;
}

} // namespace

/// Geometry, setters, arrow tables and painting.
class tst_ResizableRect : public BehaviourTest
{
    Q_OBJECT

private slots:
    void sectionNumbersAreInterface();
    void signalHasAOneArgumentForm();
    void newRectangleIsHiddenEnabledAndAsGiven();
    void hostOwnsTheRectangle();
    void worksWithoutAWidgetUntilClamped();
    void handlesStandOneOutsideLeftAndTopOnly_data();
    void handlesStandOneOutsideLeftAndTopOnly();
    void wherePoint_data();
    void wherePoint();
    void edgeHandlesBeatCornerHandles();
    void insideOfASmallRectangleIsQtsChoice();
    void containsUpToFourPixelsOutside();
    void penWidthIsNeverBelowEight_data();
    void penWidthIsNeverBelowEight();
    void occupiedAreaIncludesTheLabel();
    void movingKeepsTheSize_data();
    void movingKeepsTheSize();
    void sizingClampsEachEdge_data();
    void sizingClampsEachEdge();
    void rectInWidgetAllowsOneMorePixel_data();
    void rectInWidgetAllowsOneMorePixel();
    void clampingNeedsAWidget();
    void setRectEmitsOnceAndClamps();
    void signalComesAfterTheHandlesAndBeforeTheRepaint();
    void setRectRepaintsOldAndNew();
    void setRectKeepsAnInvertedRectangle();
    void settersRepaint_data();
    void settersRepaint();
    void hiddenLabelIsNotRepainted();
    void arrowMapIsBuiltByChaining();
    void arrowTables_data();
    void arrowTables();
    void arrowEndsWithoutArrowAreTheTopLeft();
    void arrowCorners_data();
    void arrowCorners();
    void arrowEndsFlipWithoutMovingTheRectangle_data();
    void arrowEndsFlipWithoutMovingTheRectangle();
    void missingArrowEndsWalkTheEdgeRows();
    void dashedBorderHasWhiteHandles();
    void solidBorderHasFilledHandles();
    void borderUsesThePaintersBrush();
    void solidBorderIsThatOfDrawRect_data();
    void solidBorderIsThatOfDrawRect();
    void invertedRectangleIsPaintedRaw();
    void labelIsPaintedOnTop_data();
    void labelIsPaintedOnTop();
    void labelOfALongSizeShowsAllDigits_data();
    void labelOfALongSizeShowsAllDigits();
    void painterStateIsChanged();
    void labelFontCanBeTranslated();
    void handlesArePaintedByTheirNumber();
    void labelStandsAboveOrInside_data();
    void labelStandsAboveOrInside();
};

void tst_ResizableRect::sectionNumbersAreInterface()
{
    QCOMPARE(int(ResizableRect::SECTION_INSIDE), -3);
    QCOMPARE(int(ResizableRect::SECTION_OUTSIDE), -2);
    QCOMPARE(int(ResizableRect::SECTION_BORDER), -1);
    QCOMPARE(int(ResizableRect::SECTION_LEFT), 0);
    QCOMPARE(int(ResizableRect::SECTION_RIGHT), 1);
    QCOMPARE(int(ResizableRect::SECTION_TOP), 2);
    QCOMPARE(int(ResizableRect::SECTION_BOTTOM), 3);
    QCOMPARE(int(ResizableRect::SECTION_TOP_LEFT), 4);
    QCOMPARE(int(ResizableRect::SECTION_TOP_RIGHT), 5);
    QCOMPARE(int(ResizableRect::SECTION_BOTTOM_LEFT), 6);
    QCOMPARE(int(ResizableRect::SECTION_BOTTOM_RIGHT), 7);
    QCOMPARE(int(ResizableRect::ARROW_TAIL), 1);
    QCOMPARE(int(ResizableRect::ARROW_HEAD), 2);
}

void tst_ResizableRect::signalHasAOneArgumentForm()
{
    const QMetaObject& meta = ResizableRect::staticMetaObject;
    QCOMPARE(meta.className(), "ResizableRect");
    const int offset = meta.methodOffset();
    QCOMPARE(meta.method(offset).methodSignature(), QByteArray("rectChanged(QRect,bool)"));
    QCOMPARE(meta.method(offset + 1).methodSignature(), QByteArray("rectChanged(QRect)"));
}

void tst_ResizableRect::newRectangleIsHiddenEnabledAndAsGiven()
{
    Host host;
    host.setCursor(Qt::WaitCursor);
    ResizableRect rect(&host, QRect(QPoint(-50, 500), QPoint(-80, 900)));
    QVERIFY(!rect.isVisible());
    QVERIFY(!rect.isSizeInforVisible());
    QCOMPARE(rect.rect(), QRect(QPoint(-50, 500), QPoint(-80, 900)).normalized());
    QCOMPARE(rect.pos(), rect.rect().topLeft());
    QCOMPARE(rect.getColor(), kColor);
    QCOMPARE(rect.mousePressSection(), -2);
    QCOMPARE(host.cursor().shape(), Qt::WaitCursor);
}

void tst_ResizableRect::hostOwnsTheRectangle()
{
    QPointer<ResizableRect> rect;
    {
        Host host;
        rect = new ResizableRect(&host, kRect);
        QCOMPARE(rect->parent(), &host);
    }
    QVERIFY(rect.isNull());
}

void tst_ResizableRect::worksWithoutAWidgetUntilClamped()
{
    ResizableRect rect(nullptr, kRect);
    rect.setVisible(true);
    rect.setColor(Qt::red);
    rect.setBorderSolidPaint(true);
    rect.setSizeInforVisible(true);
    QCOMPARE(rect.rect(), kRect);
    QCOMPARE(rect.wherePoint(QPoint(60, 35)), -3);
}

void tst_ResizableRect::handlesStandOneOutsideLeftAndTopOnly_data()
{
    QTest::addColumn<int>("id");
    for (int id = 0; id < 8; ++id)
        QTest::newRow(qPrintable(QString("handle %1").arg(id))) << id;
}

void tst_ResizableRect::handlesStandOneOutsideLeftAndTopOnly()
{
    QFETCH(int, id);
    Host host;
    ResizableRect rect(&host, kRect);
    const QRect handle = handleAt(anchorOf(id));
    for (const QPoint& p :
         {handle.topLeft(), handle.topRight(), handle.bottomLeft(), handle.bottomRight()})
        QCOMPARE(rect.wherePoint(p), id);
    QVERIFY(rect.wherePoint(handle.topLeft() - QPoint(1, 0)) != id);
    QVERIFY(rect.wherePoint(handle.topLeft() - QPoint(0, 1)) != id);
    QVERIFY(rect.wherePoint(handle.bottomRight() + QPoint(1, 0)) != id);
    QVERIFY(rect.wherePoint(handle.bottomRight() + QPoint(0, 1)) != id);
}

void tst_ResizableRect::wherePoint_data()
{
    QTest::addColumn<QPoint>("p");
    QTest::addColumn<int>("section");
    QTest::newRow("band above the top edge") << QPoint(20, 7) << -1;
    QTest::newRow("inside") << QPoint(60, 35) << -3;
    QTest::newRow("above the band") << QPoint(60, 4) << -2;
    QTest::newRow("left handle") << QPoint(7, 34) << 0;
    QTest::newRow("outermost band row") << QPoint(30, 6) << -1;
    QTest::newRow("beyond the band") << QPoint(30, 5) << -2;
    QTest::newRow("innermost band row") << QPoint(30, 13) << -1;
    QTest::newRow("first inside row") << QPoint(30, 14) << -3;
    QTest::newRow("last inside row") << QPoint(30, 55) << -3;
    QTest::newRow("band inside the bottom edge") << QPoint(30, 56) << -1;
    QTest::newRow("band below the bottom edge") << QPoint(30, 63) << -1;
    QTest::newRow("below the band") << QPoint(30, 64) << -2;
    QTest::newRow("right of the band") << QPoint(114, 20) << -2;
    QTest::newRow("band right of the right edge") << QPoint(113, 20) << -1;
}

void tst_ResizableRect::wherePoint()
{
    QFETCH(QPoint, p);
    QFETCH(int, section);
    Host host;
    ResizableRect rect(&host, kRect);
    QCOMPARE(rect.wherePoint(p), section);
    QCOMPARE(rect.contains(p), section != -2);
}

void tst_ResizableRect::edgeHandlesBeatCornerHandles()
{
    Host host;
    ResizableRect rect(&host, QRect(100, 100, 8, 8));
    // The squares of left (0), top (2) and top-left (4) all hold this point.
    QCOMPARE(rect.wherePoint(QPoint(100, 102)), 0);
    QCOMPARE(rect.wherePoint(QPoint(101, 99)), 2);
    QCOMPARE(rect.wherePoint(QPoint(97, 97)), 4);
}

void tst_ResizableRect::insideOfASmallRectangleIsQtsChoice()
{
    Host host;
    ResizableRect rect(&host, QRect(100, 100, 60, 6));
    const QPoint p(115, 103);
    QCOMPARE(rect.wherePoint(p), QRect(104, 104, 52, -2).contains(p) ? -3 : -1);
}

void tst_ResizableRect::containsUpToFourPixelsOutside()
{
    Host host;
    ResizableRect rect(&host, kRect);
    for (int x = 0; x < 130; ++x) {
        for (int y = 0; y < 80; ++y)
            QCOMPARE(rect.contains(QPoint(x, y)), x >= 6 && x <= 113 && y >= 6 && y <= 63);
    }
}

void tst_ResizableRect::penWidthIsNeverBelowEight_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<QRect>("occupied");
    const auto grown = [](int half) { return kRect.adjusted(-half, -half, half + 1, half + 1); };
    QTest::newRow("default") << 0 << QRect(QPoint(6, 6), QPoint(114, 64));
    QTest::newRow("3") << 3 << grown(4);
    QTest::newRow("8") << 8 << grown(4);
    QTest::newRow("9") << 9 << grown(4);
    QTest::newRow("10") << 10 << grown(5);
    QTest::newRow("31") << 31 << grown(15);
}

void tst_ResizableRect::penWidthIsNeverBelowEight()
{
    QFETCH(int, width);
    QFETCH(QRect, occupied);
    Host host;
    ResizableRect rect(&host, kRect);
    if (width > 0)
        rect.setGraphPenWidth(width);
    QCOMPARE(rect.occupiedRect(), occupied);
}

void tst_ResizableRect::occupiedAreaIncludesTheLabel()
{
    Host host;
    ResizableRect rect(&host, QRect(50, 60, 20, 20));
    rect.setSizeInforVisible(true);
    QVERIFY(rect.isSizeInforVisible());
    QCOMPARE(rect.occupiedRect(), QRect(QPoint(46, 32), QPoint(149, 84)));
}

void tst_ResizableRect::movingKeepsTheSize_data()
{
    QTest::addColumn<QRect>("given");
    QTest::addColumn<QRect>("expected");
    const auto edges = [](int l, int t, int r, int b) { return QRect(QPoint(l, t), QPoint(r, b)); };
    QTest::newRow("inside") << edges(5, 6, 50, 60) << edges(5, 6, 50, 60);
    QTest::newRow("left and top") << edges(-7, -3, 50, 60) << edges(0, 0, 57, 63);
    QTest::newRow("reaching the size") << edges(300, 200, 400, 300) << edges(300, 200, 400, 300);
    QTest::newRow("right and bottom") << edges(300, 200, 410, 306) << edges(290, 194, 400, 300);
    QTest::newRow("too large, from outside")
        << edges(-10, -10, 500, 400) << edges(-110, -110, 400, 300);
}

void tst_ResizableRect::movingKeepsTheSize()
{
    QFETCH(QRect, given);
    QFETCH(QRect, expected);
    Host host;
    ResizableRect rect(&host, QRect());
    rect.ensureMovingRectInWidget(given);
    QCOMPARE(given, expected);

    Host wide(QSize(1920, 1080));
    ResizableRect other(&wide, QRect());
    QRect large(100, 50, 2000, 100);
    other.ensureMovingRectInWidget(large);
    QCOMPARE(large.right(), 1920);
    QCOMPARE(large.left(), -79);
}

void tst_ResizableRect::sizingClampsEachEdge_data()
{
    QTest::addColumn<QRect>("given");
    QTest::addColumn<QRect>("expected");
    const auto edges = [](int l, int t, int r, int b) { return QRect(QPoint(l, t), QPoint(r, b)); };
    QTest::newRow("inside") << edges(5, 6, 50, 60) << edges(5, 6, 50, 60);
    QTest::newRow("all beyond") << edges(-5, -6, 401, 301) << edges(0, 0, 400, 300);
    QTest::newRow("reaching the size") << edges(0, 0, 400, 300) << edges(0, 0, 400, 300);
    QTest::newRow("inverted") << edges(450, 350, -1, -2) << edges(400, 300, 0, 0);
    QTest::newRow("left of it") << edges(-50, 10, -20, 20) << edges(0, 10, 0, 20);
    QTest::newRow("below it") << edges(10, 310, 20, 320) << edges(10, 300, 20, 300);
}

void tst_ResizableRect::sizingClampsEachEdge()
{
    QFETCH(QRect, given);
    QFETCH(QRect, expected);
    Host host;
    ResizableRect rect(&host, QRect());
    rect.ensureSizingRectInWidget(given);
    QCOMPARE(given, expected);
}

void tst_ResizableRect::rectInWidgetAllowsOneMorePixel_data()
{
    QTest::addColumn<QRect>("given");
    QTest::addColumn<bool>("expected");
    const auto edges = [](int l, int t, int r, int b) { return QRect(QPoint(l, t), QPoint(r, b)); };
    QTest::newRow("all of it and one more") << edges(0, 0, 400, 300) << true;
    QTest::newRow("inverted") << edges(400, 300, 0, 0) << true;
    QTest::newRow("left") << edges(-1, 0, 400, 300) << false;
    QTest::newRow("top") << edges(0, -1, 400, 300) << false;
    QTest::newRow("right") << edges(0, 0, 401, 300) << false;
    QTest::newRow("bottom") << edges(0, 0, 400, 301) << false;
}

void tst_ResizableRect::rectInWidgetAllowsOneMorePixel()
{
    QFETCH(QRect, given);
    QFETCH(bool, expected);
    Host host;
    ResizableRect rect(&host, QRect());
    QCOMPARE(rect.isRectInWidget(given), expected);
}

void tst_ResizableRect::clampingNeedsAWidget()
{
    SKIP_WITHOUT_ASSERTIONS();
    ResizableRect rect(nullptr, kRect);
    QRect r = kRect;
    QVERIFY(
        failedAssertion([&] { rect.ensureSizingRectInWidget(r); }).contains("m_widget != NULL"));
    QVERIFY(
        failedAssertion([&] { rect.ensureMovingRectInWidget(r); }).contains("m_widget != NULL"));
    QVERIFY(failedAssertion([&] { rect.isRectInWidget(r); }).contains("m_widget != NULL"));
    QVERIFY(failedAssertion([&] { rect.setRect(r); }).contains("m_widget != NULL"));
}

void tst_ResizableRect::setRectEmitsOnceAndClamps()
{
    Host host(QSize(1920, 1080));
    ResizableRect rect(&host, QRect());
    QSignalSpy spy(&rect, SIGNAL(rectChanged(QRect, bool)));
    QSignalSpy oneArgument(&rect, SIGNAL(rectChanged(QRect)));
    rect.setRect(QRect(QPoint(-20, 30), QPoint(2000, 40)));
    const QRect expected(QPoint(0, 30), QPoint(1920, 40));
    QCOMPARE(rect.rect(), expected);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toRect(), expected);
    QCOMPARE(spy.at(0).at(1).toBool(), true);
    QCOMPARE(oneArgument.count(), 1);
    QCOMPARE(rect.wherePoint(QPoint(1920, 35)), 1);
}

void tst_ResizableRect::signalComesAfterTheHandlesAndBeforeTheRepaint()
{
    Host host;
    ResizableRect rect(&host, QRect(50, 60, 40, 30));
    int seen = ResizableRect::SECTION_OUTSIDE;
    QRegion painted;
    const QRegion all = host.repaintedBy([&] {
        QObject::connect(&rect, &ResizableRect::rectChanged, &host, [&] {
            seen = rect.wherePoint(QPoint(200, 150));
            // What was asked for so far is painted now; nothing should have been.
            QApplication::sendPostedEvents(&host, QEvent::UpdateRequest);
            painted = host.painted;
        });
        rect.setRect(QRect(200, 150, 20, 20));
    });
    QCOMPARE(seen, int(ResizableRect::SECTION_TOP_LEFT));
    QVERIFY(painted.isEmpty());
    QVERIFY(!all.isEmpty());
}

void tst_ResizableRect::setRectRepaintsOldAndNew()
{
    Host host;
    ResizableRect rect(&host, QRect(50, 60, 40, 30));
    const QRect old = rect.occupiedRect();
    const QRegion painted = host.repaintedBy([&] { rect.setRect(QRect(200, 150, 20, 20)); });
    QCOMPARE(painted, QRegion(old | rect.occupiedRect()));
}

void tst_ResizableRect::setRectKeepsAnInvertedRectangle()
{
    Host host;
    ResizableRect rect(&host, QRect());
    QSignalSpy spy(&rect, SIGNAL(rectChanged(QRect, bool)));
    const QRect raw(QPoint(200, 150), QPoint(100, 50));
    rect.setRect(raw);
    QCOMPARE(rect.rect(), raw.normalized());
    QCOMPARE(spy.at(0).at(0).toRect(), raw.normalized());
    // The handles stay on their own, raw, edges and corners.
    QCOMPARE(rect.wherePoint(QPoint(199, 149)), 4);
    QCOMPARE(rect.wherePoint(QPoint(100, 50)), 7);
    QCOMPARE(rect.wherePoint(QPoint(199, 100)), 0);
    QCOMPARE(rect.wherePoint(QPoint(100, 100)), 1);
}

void tst_ResizableRect::settersRepaint_data()
{
    QTest::addColumn<QString>("setter");
    QTest::addColumn<bool>("repaints");
    QTest::newRow("visible") << "visible" << true;
    QTest::newRow("solid") << "solid" << true;
    QTest::newRow("color") << "color" << true;
    QTest::newRow("label") << "label" << true;
    QTest::newRow("enabled") << "enabled" << false;
    QTest::newRow("pen width") << "pen width" << false;
}

void tst_ResizableRect::settersRepaint()
{
    QFETCH(QString, setter);
    QFETCH(bool, repaints);
    Host host;
    ResizableRect rect(&host, QRect(150, 100, 60, 40));
    const QRegion painted = host.repaintedBy([&] {
        if (setter == "visible")
            rect.setVisible(true);
        else if (setter == "solid")
            rect.setBorderSolidPaint(true);
        else if (setter == "color")
            rect.setColor(Qt::red);
        else if (setter == "label")
            rect.setSizeInforVisible(true);
        else if (setter == "enabled")
            rect.setEnabled(false);
        else
            rect.setGraphPenWidth(40);
    });
    QCOMPARE(painted, repaints ? QRegion(rect.occupiedRect()) : QRegion());
}

void tst_ResizableRect::hiddenLabelIsNotRepainted()
{
    Host host;
    ResizableRect rect(&host, QRect(150, 100, 60, 40));
    rect.setSizeInforVisible(true);
    const QRegion painted = host.repaintedBy([&] { rect.setSizeInforVisible(false); });
    QCOMPARE(painted, QRegion(QRect(150, 100, 60, 40).adjusted(-4, -4, 5, 5)));
}

void tst_ResizableRect::arrowMapIsBuiltByChaining()
{
    ArrowMap map;
    ArrowMap& same = map << ArrowMapValue(4, 5) << ArrowMapValue(1, 0) << ArrowMapValue(4, 7);
    QCOMPARE(&same, &map);
    QCOMPARE(map.size(), 2);
    QCOMPARE(map[4], 7);
    QCOMPARE(map[1], 0);
    ArrowMap copy = map;
    copy << ArrowMapValue(1, 3);
    QCOMPARE(copy[1], 3);
    QCOMPARE(map[1], 0);
}

void tst_ResizableRect::arrowTables_data()
{
    QTest::addColumn<QRect>("flip");
    QTest::addColumn<QPoint>("head");
    QTest::addColumn<QPoint>("tail");
    // kRect is left 10, top 10, right 109, bottom 59.
    QTest::newRow("nothing") << QRect(0, 0, 5, 5) << QPoint(109, 10) << QPoint(10, 59);
    QTest::newRow("width 0, height 0") << QRect(0, 0, 0, 0) << QPoint(109, 10) << QPoint(10, 59);
    QTest::newRow("horizontally") << QRect(0, 0, -1, 5) << QPoint(10, 10) << QPoint(109, 59);
    QTest::newRow("horizontally, height 0")
        << QRect(0, 0, -1, 0) << QPoint(10, 10) << QPoint(109, 59);
    QTest::newRow("vertically") << QRect(0, 0, 5, -1) << QPoint(109, 59) << QPoint(10, 10);
    QTest::newRow("vertically, width 0") << QRect(0, 0, 0, -1) << QPoint(109, 59) << QPoint(10, 10);
    QTest::newRow("both") << QRect(0, 0, -1, -1) << QPoint(10, 59) << QPoint(109, 10);
}

void tst_ResizableRect::arrowTables()
{
    QFETCH(QRect, flip);
    QFETCH(QPoint, head);
    QFETCH(QPoint, tail);
    Host host;
    ResizableRect rect(&host, kRect);
    rect.initArrow();
    QCOMPARE(rect.arrowHead(), QPoint(109, 10));
    QCOMPARE(rect.arrowTail(), QPoint(10, 59));
    rect.updateArrowRect(flip);
    QCOMPARE(rect.arrowHead(), head);
    QCOMPARE(rect.arrowTail(), tail);
    // Each table is its own inverse on the corners, which also reads its other corner rows.
    rect.updateArrowRect(flip);
    QCOMPARE(rect.arrowHead(), QPoint(109, 10));
    QCOMPARE(rect.arrowTail(), QPoint(10, 59));
}

void tst_ResizableRect::arrowEndsWithoutArrowAreTheTopLeft()
{
    Host host;
    ResizableRect rect(&host, kRect);
    QCOMPARE(rect.arrowHead(), kRect.topLeft());
    QCOMPARE(rect.arrowTail(), kRect.topLeft());
}

void tst_ResizableRect::arrowCorners_data()
{
    QTest::addColumn<int>("corner");
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<QRect>("moved");
    const auto edges = [](int l, int t, int r, int b) { return QRect(QPoint(l, t), QPoint(r, b)); };
    QTest::newRow("top-left") << 4 << QPoint(10, 10) << edges(30, 20, 109, 59);
    QTest::newRow("top-right") << 5 << QPoint(109, 10) << edges(10, 20, 30, 59);
    QTest::newRow("bottom-left") << 6 << QPoint(10, 59) << edges(30, 10, 109, 20);
    QTest::newRow("bottom-right") << 7 << QPoint(109, 59) << edges(10, 10, 30, 20);
    QTest::newRow("an edge") << 1 << QPoint(10, 10) << kRect;
    QTest::newRow("unknown") << 99 << QPoint(10, 10) << kRect;
}

void tst_ResizableRect::arrowCorners()
{
    QFETCH(int, corner);
    QFETCH(QPoint, point);
    QFETCH(QRect, moved);
    ResizableRect rect(nullptr, kRect);
    QCOMPARE(rect.getArrowRectPoint(corner, kRect), point);
    QRect r = kRect;
    rect.setArrowRectPoint(corner, QPoint(30, 20), r);
    QCOMPARE(r, moved);
}

void tst_ResizableRect::arrowEndsFlipWithoutMovingTheRectangle_data()
{
    QTest::addColumn<QPoint>("p");
    QTest::addColumn<QPoint>("head");
    QTest::addColumn<QPoint>("tail");
    // The tail is the bottom-left corner, (10, 59).
    QTest::newRow("right and above") << QPoint(50, 20) << QPoint(109, 10) << QPoint(10, 59);
    QTest::newRow("left and above") << QPoint(8, 20) << QPoint(10, 10) << QPoint(109, 59);
    QTest::newRow("right and below") << QPoint(50, 61) << QPoint(109, 59) << QPoint(10, 10);
    QTest::newRow("left and below") << QPoint(8, 61) << QPoint(10, 59) << QPoint(109, 10);
    QTest::newRow("one left, above") << QPoint(9, 20) << QPoint(109, 10) << QPoint(10, 59);
    QTest::newRow("one left, below") << QPoint(9, 61) << QPoint(109, 59) << QPoint(10, 10);
}

void tst_ResizableRect::arrowEndsFlipWithoutMovingTheRectangle()
{
    QFETCH(QPoint, p);
    QFETCH(QPoint, head);
    QFETCH(QPoint, tail);
    Host host;
    ResizableRect rect(&host, kRect);
    rect.initArrow();
    QSignalSpy spy(&rect, SIGNAL(rectChanged(QRect, bool)));
    const QRegion painted = host.repaintedBy([&] { rect.setArrowHead(p); });
    QCOMPARE(rect.arrowHead(), head);
    QCOMPARE(rect.arrowTail(), tail);
    QCOMPARE(rect.rect(), kRect);
    QCOMPARE(spy.count(), 0);
    QVERIFY(painted.isEmpty());

    // The tail, mirrored: the head is the top-right corner, (109, 10).
    rect.initArrow();
    rect.setArrowTail(QPoint(119, 69) - p);
    QCOMPARE(rect.arrowHead(), head);
    QCOMPARE(rect.arrowTail(), tail);
    QCOMPARE(rect.rect(), kRect);
}

void tst_ResizableRect::missingArrowEndsWalkTheEdgeRows()
{
    Host host;
    ResizableRect rect(&host, kRect);
    for (const QSize& flip : {QSize(-1, 1), QSize(-1, -1), QSize(1, -1), QSize(-1, -1)}) {
        rect.updateArrowRect(QRect(QPoint(), flip));
        QCOMPARE(rect.arrowHead(), kRect.topLeft());
        QCOMPARE(rect.arrowTail(), kRect.topLeft());
    }
}

void tst_ResizableRect::dashedBorderHasWhiteHandles()
{
    ResizableRect rect(nullptr, kRect);
    QImage expected = canvas();
    QPainter painter(&expected);
    painter.setPen(QPen(QBrush(kColor), 1.0, Qt::DashLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawRect(kRect);
    paintHandles(painter, Qt::white);
    painter.end();
    QCOMPARE(rendered(rect), expected);
}

void tst_ResizableRect::solidBorderHasFilledHandles()
{
    ResizableRect rect(nullptr, kRect);
    rect.setBorderSolidPaint(true);
    QImage expected = canvas();
    QPainter painter(&expected);
    paintOutline(painter, kRect, kColor);
    paintHandles(painter, kColor);
    painter.end();
    QCOMPARE(rendered(rect), expected);
}

void tst_ResizableRect::borderUsesThePaintersBrush()
{
    ResizableRect rect(nullptr, kRect);
    rect.setBorderSolidPaint(true);
    QImage actual = canvas();
    QPainter given(&actual);
    given.setBrush(Qt::darkGreen);
    given.setRenderHint(QPainter::Antialiasing, true);
    rect.render(given);
    given.end();
    QImage expected = canvas();
    QPainter painter(&expected);
    painter.fillRect(kRect, Qt::darkGreen);
    paintOutline(painter, kRect, kColor);
    paintHandles(painter, kColor);
    painter.end();
    QCOMPARE(actual, expected);
}

void tst_ResizableRect::solidBorderIsThatOfDrawRect_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<qreal>("scale");
    QTest::newRow("upright") << QRect(20, 20, 60, 40) << 1.0;
    QTest::newRow("empty") << QRect(30, 30, 0, 0) << 1.0;
    QTest::newRow("without width") << QRect(30, 30, 0, 20) << 1.0;
    QTest::newRow("one pixel") << QRect(30, 30, 1, 1) << 1.0;
    QTest::newRow("thin") << QRect(30, 30, 1, 20) << 1.0;
    QTest::newRow("inverted") << QRect(QPoint(80, 60), QPoint(20, 10)) << 1.0;
    QTest::newRow("inverted by one") << QRect(QPoint(30, 30), QPoint(28, 28)) << 1.0;
    QTest::newRow("over the edge") << QRect(-10, -10, 300, 200) << 1.0;
    QTest::newRow("handles cut by the left edge") << QRect(0, 20, 60, 40) << 1.0;
    QTest::newRow("twice as dense") << QRect(10, 10, 30, 20) << 2.0;
}

void tst_ResizableRect::solidBorderIsThatOfDrawRect()
{
    QFETCH(QRect, rect);
    QFETCH(qreal, scale);
    for (const QBrush& brush : {QBrush(Qt::NoBrush), QBrush(Qt::darkGreen)}) {
        ResizableRect frame(nullptr, rect);
        frame.setBorderSolidPaint(true);
        QImage actual = canvas();
        QPainter given(&actual);
        given.scale(scale, scale);
        given.setBrush(brush);
        frame.render(given);
        given.end();
        QImage expected = canvas();
        QPainter painter(&expected);
        painter.scale(scale, scale);
        painter.setPen(QPen(QBrush(kColor), 1.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(brush);
        painter.drawRect(rect);
        painter.setBrush(kColor);
        const int w = rect.width();
        const int h = rect.height();
        for (const QPoint& offset :
             {QPoint(0, h / 2), QPoint(w, h / 2), QPoint(w / 2, 0), QPoint(w / 2, h), QPoint(0, 0),
              QPoint(w, 0), QPoint(0, h), QPoint(w, h)})
            painter.drawRect(handleAt(rect.topLeft() - QPoint(1, 1) + offset));
        painter.end();
        QCOMPARE(actual, expected);
    }
}

void tst_ResizableRect::invertedRectangleIsPaintedRaw()
{
    ResizableRect raw(nullptr, QRect(QPoint(109, 59), QPoint(10, 10)));
    QImage expected = canvas();
    QPainter painter(&expected);
    painter.setPen(QPen(QBrush(kColor), 1.0, Qt::DashLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawRect(QRect(QPoint(109, 59), QPoint(10, 10)));
    painter.setPen(kColor);
    painter.setBrush(Qt::white);
    // Width -98 and height -48, from the raw top-left corner.
    for (const QPoint& anchor : {QPoint(108, 34), QPoint(10, 34), QPoint(59, 58), QPoint(59, 10),
                                 QPoint(108, 58), QPoint(10, 58), QPoint(108, 10), QPoint(10, 10)})
        painter.drawRect(handleAt(anchor));
    painter.end();
    QCOMPARE(rendered(raw), expected);
}

void tst_ResizableRect::labelIsPaintedOnTop_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QString>("text");
    QTest::addColumn<Qt::LayoutDirection>("direction");
    QTest::newRow("short") << QSize(100, 50) << "100 x 50" << Qt::LeftToRight;
    QTest::newRow("as wide as the label") << QSize(640, 480) << "640 x 480" << Qt::LeftToRight;
    QTest::newRow("right to left") << QSize(502, 80) << "502 x 80" << Qt::RightToLeft;
}

void tst_ResizableRect::labelIsPaintedOnTop()
{
    QFETCH(QSize, size);
    QFETCH(QString, text);
    QFETCH(Qt::LayoutDirection, direction);
    const QRect region(QPoint(10, 10), size);
    ResizableRect rect(nullptr, region);
    rect.setSizeInforVisible(true);
    QImage actual = canvas();
    QPainter given(&actual);
    given.setLayoutDirection(direction);
    rect.render(given);
    given.end();
    QImage expected = canvas();
    QPainter painter(&expected);
    rect.setSizeInforVisible(false);
    rect.render(painter);
    painter.fillRect(QRect(10, 10, 100, 28), QColor(0, 0, 0, 128));
    painter.setPen(Qt::white);
    painter.setFont(QFont("Courier New", 14));
    painter.drawText(QRect(10, 10, 100, 28), Qt::AlignCenter, text);
    painter.end();
    QCOMPARE(actual, expected);
}

void tst_ResizableRect::labelOfALongSizeShowsAllDigits_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("full HD") << QSize(1920, 1080);
    QTest::newRow("8K") << QSize(7680, 4320);
    QTest::newRow("largest widget") << QSize(16777215, 16777215);
}

// A digit that is cut off would not tell these apart.
void tst_ResizableRect::labelOfALongSizeShowsAllDigits()
{
    QFETCH(QSize, size);
    const auto label = [](const QSize& s) {
        ResizableRect rect(nullptr, QRect(QPoint(0, 0), s));
        rect.setSizeInforVisible(true);
        return rendered(rect).copy(0, 0, 140, 60);
    };
    const QImage image = label(size);
    QVERIFY(label(size - QSize(1000, 0)) != image);
    QVERIFY(label(size - QSize(0, 1)) != image);
}

void tst_ResizableRect::painterStateIsChanged()
{
    ResizableRect rect(nullptr, kRect);
    rect.setSizeInforVisible(true);
    QImage image = canvas();
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing, true);
    rect.render(painter);
    QVERIFY(!painter.testRenderHint(QPainter::Antialiasing));
    QCOMPARE(painter.pen().color(), QColor(Qt::white));
    QCOMPARE(painter.brush(), QBrush(QColor(0, 0, 0, 128)));
    QCOMPARE(painter.font().pointSize(), 14);
    QCOMPARE(painter.font().family(), QString("Courier New"));
    QCOMPARE(painter.font().weight(), int(QFont::Normal));
    QVERIFY(!painter.font().italic());
}

void tst_ResizableRect::labelFontCanBeTranslated()
{
    class OtherFont : public QTranslator
    {
    public:
        QString translate(const char* context, const char* text, const char* /*comment*/,
                          int /*n*/) const override
        {
            const bool asked =
                QByteArray(context) == "QObject" && QByteArray(text) == "Courier New";
            return asked ? QStringLiteral("DejaVu Sans Mono") : QString();
        }
        bool isEmpty() const override { return false; }
    };
    OtherFont translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    ResizableRect rect(nullptr, kRect);
    rect.setSizeInforVisible(true);
    QImage image = canvas();
    QPainter painter(&image);
    rect.render(painter);
    QCOMPARE(painter.font().family(), QString("DejaVu Sans Mono"));
    QCoreApplication::removeTranslator(&translator);
}

// On a small rectangle a later handle covers the edge of an earlier one.
void tst_ResizableRect::handlesArePaintedByTheirNumber()
{
    const QRect small(40, 40, 10, 10);
    ResizableRect rect(nullptr, small);
    QImage expected = canvas();
    QPainter painter(&expected);
    painter.setPen(QPen(QBrush(kColor), 1.0, Qt::DashLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawRect(small);
    painter.setPen(kColor);
    painter.setBrush(Qt::white);
    for (const QPoint& anchor : {QPoint(39, 44), QPoint(49, 44), QPoint(44, 39), QPoint(44, 49),
                                 QPoint(39, 39), QPoint(49, 39), QPoint(39, 49), QPoint(49, 49)})
        painter.drawRect(handleAt(anchor));
    painter.end();
    QCOMPARE(rendered(rect), expected);
}

void tst_ResizableRect::labelStandsAboveOrInside_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<QRect>("label");
    QTest::newRow("top 30") << QRect(40, 30, 50, 50) << QRect(40, 2, 100, 28);
    QTest::newRow("top 28") << QRect(40, 28, 50, 50) << QRect(40, 0, 100, 28);
    QTest::newRow("top 27") << QRect(40, 27, 50, 50) << QRect(40, 27, 100, 28);
    QTest::newRow("top 20") << QRect(40, 20, 50, 50) << QRect(40, 20, 100, 28);
    QTest::newRow("beyond the right edge") << QRect(390, 100, 5, 5) << QRect(390, 72, 100, 28);
    QTest::newRow("inverted")
        << QRect(QPoint(90, 80), QPoint(40, 30))
        << QRect(QRect(QPoint(90, 80), QPoint(40, 30)).normalized().topLeft() - QPoint(0, 28),
                 QSize(100, 28));
}

void tst_ResizableRect::labelStandsAboveOrInside()
{
    QFETCH(QRect, rect);
    QFETCH(QRect, label);
    Host host;
    QCOMPARE(ResizableRect(&host, rect).sizeInforPaintRect(), label);
}

QTEST_MAIN(tst_ResizableRect)
#include "tst_ResizableRect.moc"
