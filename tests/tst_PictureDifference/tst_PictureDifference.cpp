// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "PictureDifference.h"

#include <QRandomGenerator>

namespace
{

constexpr QSize kSize(60, 40);
constexpr qreal kRatios[] = {0.75, 1, 1.25, 1.5, 1.75, 2, 2.625, 3};

QImage noise(quint32 seed, QImage::Format format = QImage::Format_RGB32, qreal ratio = 1)
{
    QImage image(kSize, format);
    image.setDevicePixelRatio(ratio);
    QRandomGenerator random(seed);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, 0xff000000u | random.generate());
    }
    return image;
}

/// `before` with the pixels of `after` inside `area`, copied one by one.
QImage edited(QImage before, const QImage& after, const QRect& area)
{
    const QRect inside = area & before.rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        for (int x = inside.left(); x <= inside.right(); ++x)
            before.setPixel(x, y, after.pixel(x, y));
    }
    return before;
}

} // namespace

class tst_PictureDifference : public BehaviourTest
{
    Q_OBJECT

private slots:
    void colorsAreXored_data();
    void colorsAreXored();
    void applyingUndoesAndRedoes_data();
    void applyingUndoesAndRedoes();
    void emptyAreaHoldsNoPixels_data();
    void emptyAreaHoldsNoPixels();
    void picturesWithoutPixelsAreHarmless();
};

void tst_PictureDifference::colorsAreXored_data()
{
    QTest::addColumn<QRect>("area");
    QTest::newRow("one pixel") << QRect(7, 9, 1, 1);
    QTest::newRow("inside") << QRect(10, 5, 30, 20);
    QTest::newRow("whole picture") << QRect(QPoint(), kSize);
    QTest::newRow("beyond the top-left corner") << QRect(-8, -6, 30, 20);
    QTest::newRow("beyond the bottom-right corner") << QRect(45, 30, 30, 20);
    QTest::newRow("beyond every edge") << QRect(-5, -5, 80, 60);
    QTest::newRow("beside the picture") << QRect(70, 5, 10, 10);
}

void tst_PictureDifference::colorsAreXored()
{
    QFETCH(QRect, area);
    for (const qreal ratio : kRatios) {
        const QImage before = noise(1, QImage::Format_RGB32, ratio);
        const QImage after = noise(2, QImage::Format_RGB32, ratio);
        const QImage pixels = difference::between(before, after, area);
        QCOMPARE(pixels.size(), area.size());
        for (int y = 0; y < area.height(); ++y) {
            for (int x = 0; x < area.width(); ++x) {
                const QPoint p = area.topLeft() + QPoint(x, y);
                const bool inside = before.rect().contains(p);
                const QRgb expected = inside ? before.pixel(p) ^ after.pixel(p) : 0;
                QCOMPARE(pixels.pixel(x, y) & RGB_MASK, expected & RGB_MASK);
            }
        }
    }
}

void tst_PictureDifference::applyingUndoesAndRedoes_data()
{
    colorsAreXored_data();
}

void tst_PictureDifference::applyingUndoesAndRedoes()
{
    QFETCH(QRect, area);
    for (const QImage::Format format :
         {QImage::Format_RGB32, QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied}) {
        for (const qreal ratio : kRatios) {
            const QImage before = noise(1, format, ratio);
            const QImage after = edited(before, noise(2, format), area);
            const QImage pixels = difference::between(before, after, area);
            QImage image = after;
            for (int i = 0; i < 2; ++i) {
                difference::apply(image, area.topLeft(), pixels);
                QCOMPARE(image, before);
                difference::apply(image, area.topLeft(), pixels);
                QCOMPARE(image, after);
            }
            QCOMPARE(image.devicePixelRatio(), ratio);
        }
    }
}

void tst_PictureDifference::emptyAreaHoldsNoPixels_data()
{
    QTest::addColumn<QRect>("area");
    QTest::newRow("null") << QRect();
    QTest::newRow("without width") << QRect(5, 5, 0, 10);
    QTest::newRow("inverted") << QRect(QPoint(30, 20), QPoint(10, 5));
}

void tst_PictureDifference::emptyAreaHoldsNoPixels()
{
    QFETCH(QRect, area);
    const QImage before = noise(1);
    const QImage pixels = difference::between(before, noise(2), area);
    QVERIFY(pixels.isNull());
    QImage image = before;
    difference::apply(image, area.topLeft(), pixels);
    QCOMPARE(image, before);
}

void tst_PictureDifference::picturesWithoutPixelsAreHarmless()
{
    QImage none;
    const QImage pixels = difference::between(none, none, QRect(5, 5, 20, 10));
    QVERIFY(pixels.isNull());
    difference::apply(none, QPoint(5, 5), pixels);
    QVERIFY(none.isNull());
}

QTEST_APPLESS_MAIN(tst_PictureDifference)
#include "tst_PictureDifference.moc"
