// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "DesktopPicture.h"
#include "Pictures.h"

#include <QtTest>
#include <cmath>

namespace
{

constexpr QSize kDesktop(101, 67);
// Holds all screens of a mixture.
constexpr QSize kMixedDesktop(281, 131);

/// The picture with a window of `ratio` that begins at a pixel of it.
DesktopPicture pictureAt(const QPoint& windowPos, qreal ratio)
{
    return {places(kDesktop), QImage(), windowPos, ratio};
}

/// Whether a pixel, of the window, lies between two edges in window coordinates, each of which is
/// rounded to the nearest: then the pixel's middle lies between them.
bool isBetween(int pixel, int left, int right, qreal ratio)
{
    // A middle on the edge itself belongs to what ends there.
    return pixel + 0.5 > left * ratio && pixel + 0.5 <= (right + 1) * ratio;
}

/// Ratios in eighths, with which edges are whole numbers.
constexpr int kEighths = 8;

int roundedDown(int dividend, int divisor)
{
    const int quotient = dividend / divisor;
    return quotient * divisor > dividend ? quotient - 1 : quotient;
}

/// The pixels between the edges of `area` in a window at `pos`, each edge rounded to the nearest.
QRect pixelsOf(const QRect& area, const QPoint& pos, int eighths)
{
    const auto edge = [eighths](int coordinate) {
        return roundedDown(coordinate * eighths + kEighths / 2, kEighths);
    };
    const QPoint begin(edge(area.left()), edge(area.top()));
    const QPoint end(edge(area.left() + area.width()), edge(area.top() + area.height()));
    return {pos + begin, pos + end - QPoint(1, 1)};
}

/// The coordinates of a window at `pos` that lie wholly within `pixels`.
QRect coordinatesIn(const QRect& pixels, const QPoint& pos, int eighths)
{
    const QRect r = pixels.translated(-pos);
    const auto begin = [eighths](int edge) { return -roundedDown(-edge * kEighths, eighths); };
    const auto end = [eighths](int edge) { return roundedDown(edge * kEighths, eighths); };
    return {QPoint(begin(r.left()), begin(r.top())),
            QPoint(end(r.left() + r.width()) - 1, end(r.top() + r.height()) - 1)};
}

/// Rectangles side by side, in a window at `pos`, that cover all of the desktop.
QVector<QRect> tiles(const QSize& size, const QPoint& pos, int eighths)
{
    const QRect all = coordinatesIn(QRect(QPoint(), kMixedDesktop), pos, eighths);
    QVector<QRect> result;
    for (int y = all.top() - size.height(); y <= all.bottom() + 1; y += size.height()) {
        for (int x = all.left() - size.width(); x <= all.right() + 1; x += size.width())
            result << QRect(QPoint(x, y), size);
    }
    return result;
}

} // namespace

class tst_DesktopPicture : public BehaviourTest
{
    Q_OBJECT

private slots:
    void cutHasThePixelsBetweenTheEdges_data();
    void cutHasThePixelsBetweenTheEdges();
    void denseCutEndsWithTheDesktop();
    void cutBeyondTheDesktopIsFilledAtOne();
    void nothingIsCutFromNothing();
    void pointIsOnThePixelFromWhichItCame();
    void windowRectIsWhollyWithin();
    void mixedScreensGiveEachPixelOnce_data();
    void mixedScreensGiveEachPixelOnce();
    void windowRectOfAMixedScreenIsWithinIt_data() { mixedScreensGiveEachPixelOnce_data(); }
    void windowRectOfAMixedScreenIsWithinIt();
};

void tst_DesktopPicture::cutHasThePixelsBetweenTheEdges_data()
{
    QTest::addColumn<qreal>("ratio");
    QTest::addColumn<QPoint>("windowPos");
    for (const qreal ratio : {0.75, 1.0, 1.25, 1.5, 1.75, 2.0, 2.625, 3.0}) {
        for (const QPoint& pos : {QPoint(0, 0), QPoint(7, 3), QPoint(-5, -9)})
            QTest::addRow("%g at %d, %d", ratio, pos.x(), pos.y()) << ratio << pos;
    }
}

// Every rectangle of the window that lies on the desktop, one axis after the other.
void tst_DesktopPicture::cutHasThePixelsBetweenTheEdges()
{
    QFETCH(qreal, ratio);
    QFETCH(QPoint, windowPos);
    const DesktopPicture picture = pictureAt(windowPos, ratio);
    const int first = std::max(0, int(std::ceil(-std::min(windowPos.x(), windowPos.y()) / ratio)));
    const int last = int((kDesktop.height() - std::max(windowPos.y(), 0)) / ratio) - 1;
    for (int from = first; from <= last; ++from) {
        for (int to = from; to <= last; ++to) {
            QVector<int> expected;
            for (int pixel = 0; pixel < kDesktop.width(); ++pixel) {
                if (isBetween(pixel, from, to, ratio))
                    expected << pixel;
            }
            const QImage image = picture.copy(QRect(QPoint(from, from), QPoint(to, to)));
            QCOMPARE(image.width(), expected.size());
            QCOMPARE(image.height(), expected.size());
            if (image.isNull())
                continue;
            QCOMPARE(image.devicePixelRatio(), ratio);
            const QPoint begin = windowPos + QPoint(expected.first(), expected.first());
            const QPoint end = windowPos + QPoint(expected.last(), expected.last());
            QCOMPARE(image.pixel(0, 0), picture.bright.pixel(begin));
            QCOMPARE(image.pixel(image.width() - 1, image.height() - 1), picture.bright.pixel(end));
        }
    }
}

// The last coordinate of a window reaches beyond a desktop that the ratio does not divide.
void tst_DesktopPicture::denseCutEndsWithTheDesktop()
{
    for (const qreal ratio : {0.75, 1.25, 1.5, 1.75, 2.0, 2.625, 3.0}) {
        const DesktopPicture picture = pictureAt(QPoint(), ratio);
        for (int beyond : {0, 1, 20}) {
            const QSize window(qCeil(kDesktop.width() / ratio), qCeil(kDesktop.height() / ratio));
            QCOMPARE(picture.cut(QRect(QPoint(), window + QSize(beyond, beyond))),
                     QRect(QPoint(), kDesktop));
        }
    }
    QCOMPARE(pictureAt(QPoint(), 2).cut(QRect(50, 33, 1, 1)), QRect(100, 66, 1, 1));
}

// Intended: at a ratio of 1 a region that leaves the desktop keeps its size.
void tst_DesktopPicture::cutBeyondTheDesktopIsFilledAtOne()
{
    const DesktopPicture picture = pictureAt(QPoint(), 1);
    QCOMPARE(picture.copy(QRect(90, 0, 20, 5)), picture.bright.copy(QRect(90, 0, 20, 5)));
    QCOMPARE(picture.cut(QRect(90, 0, 20, 5)), QRect(90, 0, 20, 5));
}

void tst_DesktopPicture::nothingIsCutFromNothing()
{
    QVERIFY(pictureAt(QPoint(), 2).copy(QRect()).isNull());
    QVERIFY(pictureAt(QPoint(), 1).copy(QRect(5, 5, 0, 0)).isNull());
    QVERIFY(pictureAt(QPoint(), 0.5).copy(QRect(2, 2, 1, 1)).size() == QSize(1, 1));
    QVERIFY(pictureAt(QPoint(), 0.5).copy(QRect(1, 1, 1, 1)).isNull());
}

void tst_DesktopPicture::pointIsOnThePixelFromWhichItCame()
{
    for (const qreal ratio : {0.75, 1.0, 1.1, 1.25, 1.5, 1.75, 2.0, 2.625, 3.0}) {
        for (int pixel = -3; pixel < 5000; ++pixel) {
            const QPointF p(pixel / ratio, -pixel / ratio);
            QCOMPARE(pictureAt(QPoint(7, 3), ratio).pixelAt(p), QPoint(7 + pixel, 3 - pixel));
        }
    }
}

void tst_DesktopPicture::windowRectIsWhollyWithin()
{
    const QRect pixels(10, 13, 40, 31);
    QCOMPARE(pictureAt(QPoint(), 1).windowRect(pixels), pixels);
    QCOMPARE(pictureAt(QPoint(2, 3), 1).windowRect(pixels), pixels.translated(-2, -3));
    QCOMPARE(pictureAt(QPoint(), 2).windowRect(pixels), QRect(QPoint(5, 7), QPoint(24, 21)));
    QCOMPARE(pictureAt(QPoint(10, 13), 1.5).windowRect(pixels), QRect(0, 0, 26, 20));
}

// A window with the ratio of each screen, over all screens or from that one on.
void tst_DesktopPicture::mixedScreensGiveEachPixelOnce_data()
{
    struct Screen {
        QRect pixels;
        int eighths;
    };
    const struct {
        const char* name;
        QVector<Screen> screens;
    } mixtures[] = {
        {"1 left of 2", {{{0, 0, 64, 48}, 8}, {{64, 0, 80, 50}, 16}}},
        {"1.5 left of 1", {{{0, 0, 97, 61}, 12}, {{97, 0, 80, 50}, 8}}},
        {"1.25 above 3", {{{0, 0, 71, 43}, 10}, {{0, 43, 90, 60}, 24}}},
        {"2.625 above 1.75, shifted", {{{13, 0, 80, 47}, 21}, {{0, 47, 73, 51}, 14}}},
        {"L", {{{0, 29, 53, 41}, 14}, {{53, 0, 85, 53}, 10}, {{67, 53, 71, 67}, 24}}},
        {"all in a row",
         {{{0, 0, 31, 23}, 8},
          {{31, 5, 37, 29}, 10},
          {{68, 0, 41, 31}, 12},
          {{109, 7, 43, 19}, 14},
          {{152, 0, 29, 37}, 16},
          {{181, 3, 47, 23}, 21},
          {{228, 0, 53, 41}, 24}}},
    };
    QTest::addColumn<QVector<QRect>>("screens");
    QTest::addColumn<QPoint>("windowPos");
    QTest::addColumn<int>("eighths");
    for (const auto& mixture : mixtures) {
        QVector<QRect> screens;
        for (const Screen& screen : mixture.screens)
            screens << screen.pixels;
        for (const Screen& screen : mixture.screens) {
            const qreal ratio = screen.eighths / qreal(kEighths);
            const QPoint pos = screen.pixels.topLeft();
            QTest::addRow("%s, %g over all", mixture.name, ratio)
                << screens << QPoint() << screen.eighths;
            if (!pos.isNull())
                QTest::addRow("%s, %g from its screen on", mixture.name, ratio)
                    << screens << pos << screen.eighths;
        }
    }
}

// Rectangles side by side have neither a seam nor an overlap, on whichever screens they are.
void tst_DesktopPicture::mixedScreensGiveEachPixelOnce()
{
    QFETCH(QPoint, windowPos);
    QFETCH(int, eighths);
    const DesktopPicture picture{places(kMixedDesktop), QImage(), windowPos,
                                 eighths / qreal(kEighths)};
    for (const QSize& tile : {QSize(1, 1), QSize(2, 5), QSize(7, 3)}) {
        QVector<int> times(kMixedDesktop.width() * kMixedDesktop.height());
        for (const QRect& area : tiles(tile, windowPos, eighths)) {
            const QRect pixels = pixelsOf(area, windowPos, eighths);
            QCOMPARE(picture.pixels(area), pixels);
            const QRect inside = pixels & picture.bright.rect();
            if (inside == pixels)
                QVERIFY(picture.copy(area) == picture.bright.copy(pixels));
            for (int y = inside.top(); y <= inside.bottom(); ++y) {
                for (int x = inside.left(); x <= inside.right(); ++x)
                    ++times[y * kMixedDesktop.width() + x];
            }
        }
        QCOMPARE(times.count(1), times.size());
    }
}

void tst_DesktopPicture::windowRectOfAMixedScreenIsWithinIt()
{
    QFETCH(QVector<QRect>, screens);
    QFETCH(QPoint, windowPos);
    QFETCH(int, eighths);
    const DesktopPicture picture{QImage(), QImage(), windowPos, eighths / qreal(kEighths)};
    for (const QRect& screen : screens) {
        const QRect area = picture.windowRect(screen);
        QCOMPARE(area, coordinatesIn(screen, windowPos, eighths));
        QVERIFY(screen.contains(picture.pixels(area)));
    }
}

QTEST_APPLESS_MAIN(tst_DesktopPicture)
#include "tst_DesktopPicture.moc"
