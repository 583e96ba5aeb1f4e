// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "OverlayGeometry.h"

#include <QRandomGenerator>

class tst_OverlayGeometry : public BehaviourTest
{
    Q_OBJECT

private slots:
    void pointOfInterestSnapsToTheDraggedEdge();
    void loupeSourceIsCentredOnThePoint();
    void loupeStandsBesideTheCursor_data();
    void loupeStandsBesideTheCursor();
    void toolBarStandsAtTheRegion_data();
    void toolBarStandsAtTheRegion();
    void toolBarIsBoundedAtTheFirstPixelOfItsScreen();
    void windowCoversTheDesktopHoweverQtRounds_data();
    void windowCoversTheDesktopHoweverQtRounds();
    void pictureHasRoom_data();
    void pictureHasRoom();
    void nearestScreenIsFound_data();
    void nearestScreenIsFound();
    void barIsMovedOntoItsScreen_data();
    void barIsMovedOntoItsScreen();
};

void tst_OverlayGeometry::pointOfInterestSnapsToTheDraggedEdge()
{
    const QPoint cursor(7, 9);
    const QRect region(QPoint(100, 200), QPoint(299, 349));
    // From inside, outside and border to the handles left, right, top, bottom and the corners.
    const QPoint expected[] = {cursor,   cursor,     cursor,     {100, 9},   {299, 9},   {7, 200},
                               {7, 349}, {100, 200}, {299, 200}, {100, 349}, {299, 349}, cursor};
    for (int section = -3; section <= 8; ++section)
        QCOMPARE(overlay::pointOfInterest(cursor, section, region), expected[section + 3]);
}

void tst_OverlayGeometry::loupeSourceIsCentredOnThePoint()
{
    QCOMPARE(overlay::loupeSource(QPoint(100, 50)), QRect(93, 43, 16, 16));
    QCOMPARE(overlay::loupeSource(QPoint(0, 0)), QRect(-7, -7, 16, 16));
}

void tst_OverlayGeometry::loupeStandsBesideTheCursor_data()
{
    QTest::addColumn<QPoint>("cursor");
    QTest::addColumn<QPoint>("expected");
    QTest::newRow("last place with room") << QPoint(714, 494) << QPoint(720, 520);
    QTest::newRow("one too far right") << QPoint(715, 494) << QPoint(629, 520);
    QTest::newRow("one too far down") << QPoint(714, 495) << QPoint(720, 389);
    QTest::newRow("both") << QPoint(715, 495) << QPoint(629, 389);
}

void tst_OverlayGeometry::loupeStandsBesideTheCursor()
{
    QFETCH(QPoint, cursor);
    QFETCH(QPoint, expected);
    QCOMPARE(overlay::loupePos(cursor, QSize(800, 600)), expected);
}

void tst_OverlayGeometry::toolBarStandsAtTheRegion_data()
{
    // A bar of 400 x 30 on a window of 800 x 600, whose last row is 599.
    QTest::addColumn<QPoint>("topLeft");
    QTest::addColumn<QPoint>("bottomRight");
    QTest::addColumn<int>("extraHeight");
    QTest::addColumn<QPoint>("bar");
    const auto add = [](const char* name, const QPoint& topLeft, const QPoint& bottomRight,
                        int extraHeight, const QPoint& bar) {
        QTest::newRow(name) << topLeft << bottomRight << extraHeight << bar;
    };
    add("below, right edges aligned", {100, 100}, {700, 300}, 0, {300, 306});
    add("extra height is not in the place below", {100, 100}, {700, 300}, 40, {300, 306});
    add("last bottom with room", {100, 100}, {700, 563}, 0, {300, 569});
    add("first bottom without room", {100, 100}, {700, 564}, 0, {300, 64});
    add("room also for the extra height", {100, 100}, {700, 523}, 40, {300, 529});
    add("extra height is in the room test", {100, 100}, {700, 523}, 41, {300, 23});
    add("above, at 1", {100, 37}, {700, 599}, 0, {300, 1});
    add("above, never negative", {100, 5}, {700, 599}, 0, {300, 0});
    add("left, at 1", {10, 100}, {401, 300}, 0, {1, 306});
    add("left, never negative", {10, 100}, {50, 300}, 0, {0, 306});
}

void tst_OverlayGeometry::toolBarStandsAtTheRegion()
{
    QFETCH(QPoint, topLeft);
    QFETCH(QPoint, bottomRight);
    QFETCH(int, extraHeight);
    QFETCH(QPoint, bar);
    QCOMPARE(overlay::mainToolBarPos(QRect(topLeft, bottomRight), QSize(400, 30), extraHeight,
                                     QRect(0, 0, 800, 600)),
             bar);
}

// Regions within, beyond and beside a screen at any place, bars that have room on it or not.
void tst_OverlayGeometry::toolBarIsBoundedAtTheFirstPixelOfItsScreen()
{
    const QRect screen(0, 0, 80, 60);
    QRandomGenerator random(1);
    for (int i = 0; i < 20000; ++i) {
        const QRect region(random.bounded(-50, 150), random.bounded(-50, 150), random.bounded(120),
                           random.bounded(120));
        const QSize bar(random.bounded(1, 120), random.bounded(1, 100));
        const int extraHeight = random.bounded(40);
        const int height = bar.height() + extraHeight + 6;
        int x = region.right() - bar.width();
        if (x < 1)
            x = 0;
        int y = region.bottom() + 6;
        if (region.bottom() + height > screen.bottom()) {
            y = region.top() - height;
            if (y < 1)
                y = 0;
        }
        const QPoint origin(random.bounded(-300, 300), random.bounded(-300, 300));
        QCOMPARE(overlay::mainToolBarPos(region.translated(origin), bar, extraHeight,
                                         screen.translated(origin)),
                 origin + QPoint(x, y));
        if (screen.contains(region.bottomRight()) && bar.boundedTo(screen.size()) == bar)
            QVERIFY(screen.contains(QRect(QPoint(x, y), bar)));
    }
}

void tst_OverlayGeometry::windowCoversTheDesktopHoweverQtRounds_data()
{
    QTest::addColumn<QVector<qreal>>("ratios");
    QTest::newRow("1") << QVector<qreal>{1};
    QTest::newRow("2") << QVector<qreal>{2};
    QTest::newRow("1.75") << QVector<qreal>{1.75};
    QTest::newRow("2 and 1") << QVector<qreal>{2, 1};
    QTest::newRow("1.75 and 2") << QVector<qreal>{1.75, 2};
    QTest::newRow("3 and 2.5") << QVector<qreal>{3, 2.5};
    QTest::newRow("0.75 and 1") << QVector<qreal>{0.75, 1};
}

void tst_OverlayGeometry::windowCoversTheDesktopHoweverQtRounds()
{
    QFETCH(QVector<qreal>, ratios);
    for (int pixels = 600; pixels < 4000; ++pixels) {
        const int length = overlay::coveringLength(pixels, ratios);
        QVERIFY(length - pixels <= 2);
        bool isWhole = true;
        for (const qreal ratio : ratios) {
            const int coordinates = qRound(length / ratio);
            QVERIFY2(qRound(coordinates * ratio) >= pixels, qPrintable(QString::number(pixels)));
            isWhole = isWhole && qRound(pixels / ratio) * ratio == pixels;
        }
        if (isWhole)
            QCOMPARE(length, pixels);
    }
}

void tst_OverlayGeometry::pictureHasRoom_data()
{
    QTest::addColumn<QSizeF>("size");
    QTest::addColumn<bool>("onDesktop");
    QTest::newRow("as the desktop") << QSizeF(3000, 1000) << true;
    QTest::newRow("rounded") << QSizeF(2998.4, 1001.5) << true;
    QTest::newRow("not so wide") << QSizeF(2998, 1000) << false;
    QTest::newRow("not so high") << QSizeF(3000, 998) << false;
    QTest::newRow("as the screen") << QSizeF(2000, 1000) << false;
    QTest::newRow("larger") << QSizeF(3002, 1002) << false;
}

void tst_OverlayGeometry::pictureHasRoom()
{
    QFETCH(QSizeF, size);
    QFETCH(bool, onDesktop);
    const QRect screen(1000, 0, 2000, 1000);
    QCOMPARE(overlay::roomFor(size, QSize(3000, 1000), screen),
             onDesktop ? QRect(0, 0, 3000, 1000) : screen);
}

void tst_OverlayGeometry::nearestScreenIsFound_data()
{
    QTest::addColumn<QPoint>("p");
    QTest::addColumn<int>("screen");
    // An L: two side by side, the right one lower, and one below the left one.
    QTest::newRow("first pixel of the first") << QPoint(0, 0) << 0;
    QTest::newRow("last pixel of the first") << QPoint(99, 99) << 0;
    QTest::newRow("first pixel of the right one") << QPoint(100, 40) << 1;
    QTest::newRow("last pixel of the right one") << QPoint(199, 139) << 1;
    QTest::newRow("of the one below") << QPoint(50, 150) << 2;
    QTest::newRow("above the right one, near it") << QPoint(150, 39) << 1;
    QTest::newRow("above the right one, near the first") << QPoint(105, 10) << 0;
    QTest::newRow("as far from both: the first") << QPoint(109, 30) << 0;
    QTest::newRow("one nearer to the right one") << QPoint(110, 30) << 1;
    QTest::newRow("diagonal gap, near the right one") << QPoint(105, 142) << 1;
    QTest::newRow("diagonal gap, as far from both: the first") << QPoint(105, 145) << 1;
    QTest::newRow("diagonal gap, near the one below") << QPoint(101, 147) << 2;
    QTest::newRow("far away") << QPoint(9000, 9000) << 1;
    QTest::newRow("negative") << QPoint(-10, 40) << 0;
}

void tst_OverlayGeometry::nearestScreenIsFound()
{
    QFETCH(QPoint, p);
    QFETCH(int, screen);
    const QVector<QRect> screens{{0, 0, 100, 100}, {100, 40, 100, 100}, {0, 100, 100, 100}};
    QCOMPARE(overlay::nearestScreen(p, screens), screens[screen]);
}

void tst_OverlayGeometry::barIsMovedOntoItsScreen_data()
{
    QTest::addColumn<QRect>("bar");
    QTest::addColumn<QPoint>("pos");
    // On a screen from (100, 40) to (199, 139).
    QTest::newRow("on it") << QRect(120, 50, 30, 10) << QPoint(120, 50);
    QTest::newRow("at its last pixels") << QRect(170, 130, 30, 10) << QPoint(170, 130);
    QTest::newRow("over the right edge") << QRect(171, 50, 30, 10) << QPoint(170, 50);
    QTest::newRow("over the bottom edge") << QRect(120, 131, 30, 10) << QPoint(120, 130);
    QTest::newRow("over the left edge") << QRect(99, 50, 30, 10) << QPoint(100, 50);
    QTest::newRow("over the top edge") << QRect(120, 39, 30, 10) << QPoint(120, 40);
    QTest::newRow("far away") << QRect(900, -900, 30, 10) << QPoint(170, 40);
    QTest::newRow("as large") << QRect(0, 0, 100, 100) << QPoint(100, 40);
    QTest::newRow("larger") << QRect(120, 50, 101, 101) << QPoint(100, 40);
}

void tst_OverlayGeometry::barIsMovedOntoItsScreen()
{
    QFETCH(QRect, bar);
    QFETCH(QPoint, pos);
    QCOMPARE(overlay::posWithin(QRect(100, 40, 100, 100), bar), pos);
}

QTEST_APPLESS_MAIN(tst_OverlayGeometry)
#include "tst_OverlayGeometry.moc"
