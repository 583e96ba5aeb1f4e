// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "DesktopPicture.h"
#include "Pictures.h"

#include <QtTest>
#include <cmath>

namespace
{

constexpr QSize kDesktop(101, 67);

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

QTEST_APPLESS_MAIN(tst_DesktopPicture)
#include "tst_DesktopPicture.moc"
