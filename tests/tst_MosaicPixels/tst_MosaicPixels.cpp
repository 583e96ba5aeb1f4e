// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "MosaicPixels.h"

#include <QPainter>
#include <QRandomGenerator>
#include <QtTest>
#include <limits>

namespace
{

QImage noise(const QSize& size, quint32 seed, QImage::Format format = QImage::Format_ARGB32)
{
    QImage image(size, format);
    QRandomGenerator random(seed);
    for (int y = 0; y < size.height(); ++y) {
        auto* pixels = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            pixels[x] = random.generate();
    }
    return image;
}

/// Block by block with a painter, pixel by pixel with plain sums.
QImage reference(const QImage& src, int blockSize)
{
    QImage dst(src.size(), QImage::Format_ARGB32);
    QPainter painter(&dst);
    for (int x = 0; x < src.width(); x += blockSize) {
        for (int y = 0; y < src.height(); y += blockSize) {
            const QRect cell = QRect(x, y, blockSize, blockSize) & src.rect();
            quint32 red = 0;
            quint32 green = 0;
            quint32 blue = 0;
            for (int cy = cell.top(); cy <= cell.bottom(); ++cy) {
                const auto* pixels = reinterpret_cast<const QRgb*>(src.constScanLine(cy));
                for (int cx = cell.left(); cx <= cell.right(); ++cx) {
                    red += quint32(qRed(pixels[cx]));
                    green += quint32(qGreen(pixels[cx]));
                    blue += quint32(qBlue(pixels[cx]));
                }
            }
            const quint32 n = quint32(cell.width() * cell.height());
            painter.fillRect(cell, QColor(int(red / n), int(green / n), int(blue / n), 255));
        }
    }
    return dst;
}

} // namespace

class tst_MosaicPixels : public BehaviourTest
{
    Q_OBJECT

private slots:
    void averagesTruncate();
    void averagesAreExactNextToAWholeNumber();
    void lastBlocksAreCut();
    void pixelateMatchesTheReference_data();
    void pixelateMatchesTheReference();
    void picturesInOtherFormatsAreConverted_data();
    void picturesInOtherFormatsAreConverted();
    void blockLargerThanThePicture();
    void blocksOfMoreThan16BitSums();
    void nothingIsWrittenBesideThePicture();
    void emptyPictureIsHarmless();
    void nothingIsCopiedInOtherFormats_data();
    void nothingIsCopiedInOtherFormats();
    void copiesWhereTheMaskIsWhite();
    void copyNeverLeavesThePictures();
};

void tst_MosaicPixels::averagesTruncate()
{
    QImage image(2, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgba(10, 255, 0, 0));
    image.setPixel(1, 0, qRgba(11, 254, 1, 17));
    QCOMPARE(mosaic::makeMosaicColor(image, QRect(0, 0, 2, 1)), qRgba(10, 254, 0, 255));
    QCOMPARE(mosaic::makeMosaicColor(image, QRect(1, 0, 1, 1)), qRgba(11, 254, 1, 255));
}

// One less in one pixel of a uniform block takes the truncated average down by one.
void tst_MosaicPixels::averagesAreExactNextToAWholeNumber()
{
    for (int block = 2; block <= 80; ++block) {
        for (int value : {1, 77, 128, 200, 255}) {
            QImage src(block, block, QImage::Format_RGB32);
            src.fill(QColor(value, value, value));
            QImage dst(src.size(), QImage::Format_ARGB32);
            mosaic::makeMosaicImage(dst, src, block);
            QCOMPARE(dst.pixel(0, 0), qRgb(value, value, value));
            src.setPixel(1, 1, qRgb(value - 1, value, value));
            mosaic::makeMosaicImage(dst, src, block);
            QCOMPARE(dst.pixel(block - 1, block - 1), qRgb(value - 1, value, value));
        }
    }
}

void tst_MosaicPixels::lastBlocksAreCut()
{
    const QImage src = noise(QSize(5, 5), 3);
    QImage dst(5, 5, QImage::Format_ARGB32);
    mosaic::makeMosaicImage(dst, src, 2);
    QCOMPARE(dst.pixel(4, 4), src.pixel(4, 4) | 0xff000000u);
    QCOMPARE(dst, reference(src, 2));
}

void tst_MosaicPixels::pixelateMatchesTheReference_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize& size :
         {QSize(1, 1), QSize(1, 7), QSize(9, 1), QSize(64, 64), QSize(101, 67), QSize(640, 359)})
        QTest::newRow(qPrintable(QString("%1 x %2").arg(size.width()).arg(size.height()))) << size;
}

void tst_MosaicPixels::pixelateMatchesTheReference()
{
    QFETCH(QSize, size);
    for (const QImage::Format format :
         {QImage::Format_RGB32, QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied}) {
        const QImage src = noise(size, 11, format);
        for (int block = 1; block <= 64; ++block) {
            QImage dst(size, QImage::Format_ARGB32);
            mosaic::makeMosaicImage(dst, src, block);
            QVERIFY2(dst == reference(src, block), qPrintable(QString("block %1").arg(block)));
        }
    }
    const QImage large = noise(QSize(3840, 2160), 5);
    QImage dst(large.size(), QImage::Format_ARGB32);
    mosaic::makeMosaicImage(dst, large, 7);
    QCOMPARE(dst, reference(large, 7));
}

void tst_MosaicPixels::picturesInOtherFormatsAreConverted_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::newRow("RGB30") << QImage::Format_RGB30;
    QTest::newRow("BGR30") << QImage::Format_BGR30;
    QTest::newRow("A2RGB30") << QImage::Format_A2RGB30_Premultiplied;
    QTest::newRow("A2BGR30") << QImage::Format_A2BGR30_Premultiplied;
    QTest::newRow("RGBX8888") << QImage::Format_RGBX8888;
    QTest::newRow("RGBA8888") << QImage::Format_RGBA8888;
    QTest::newRow("RGB888") << QImage::Format_RGB888;
    QTest::newRow("RGBA64") << QImage::Format_RGBA64;
}

// All of these formats hold the colours of an opaque picture without loss.
void tst_MosaicPixels::picturesInOtherFormatsAreConverted()
{
    QFETCH(QImage::Format, format);
    const QImage picture = noise(QSize(30, 20), 6, QImage::Format_RGB32);
    QImage dst(picture.size(), QImage::Format_ARGB32);
    mosaic::makeMosaicImage(dst, picture.convertToFormat(format), 4);
    QCOMPARE(dst, reference(picture, 4));
}

void tst_MosaicPixels::blockLargerThanThePicture()
{
    const QImage src = noise(QSize(10, 4), 2);
    QImage dst(10, 4, QImage::Format_ARGB32);
    mosaic::makeMosaicImage(dst, src, std::numeric_limits<int>::max());
    QCOMPARE(dst, reference(src, 10));
    QCOMPARE(mosaic::makeMosaicColor(src, src.rect()), dst.pixel(9, 3));
}

void tst_MosaicPixels::blocksOfMoreThan16BitSums()
{
    const QImage src = noise(QSize(700, 600), 4);
    for (int block : {256, 257, 258, 300, 1000}) {
        QImage dst(src.size(), QImage::Format_ARGB32);
        mosaic::makeMosaicImage(dst, src, block);
        QCOMPARE(dst, reference(src, block));
    }
    QImage white(600, 600, QImage::Format_RGB32);
    white.fill(Qt::white);
    for (int block : {257, 258, 300}) {
        QImage dst(white.size(), QImage::Format_ARGB32);
        mosaic::makeMosaicImage(dst, white, block);
        QCOMPARE(dst, white.convertToFormat(dst.format()));
    }
}

// The rows of a picture within a larger one.
void tst_MosaicPixels::nothingIsWrittenBesideThePicture()
{
    constexpr int kMarginPx = 4;
    constexpr int kHeight = 5;
    for (int width = 1; width <= 70; ++width) {
        const QImage src = noise(QSize(width, kHeight), quint32(width));
        const QRect inside(kMarginPx, kMarginPx, width, kHeight);
        for (int block : {1, 2, 3, 4, 8, 65}) {
            QImage all(width + 2 * kMarginPx, kHeight + 2 * kMarginPx, QImage::Format_ARGB32);
            all.fill(Qt::magenta);
            const QImage untouched = all.copy();
            uchar* corner = all.scanLine(inside.top()) + inside.left() * int(sizeof(QRgb));
            QImage dst(corner, width, kHeight, all.bytesPerLine(), QImage::Format_ARGB32);
            mosaic::makeMosaicImage(dst, src, block);
            QCOMPARE(dst, reference(src, block));
            QPainter(&all).fillRect(inside, Qt::magenta);
            QVERIFY2(all == untouched,
                     qPrintable(QString("width %1, block %2").arg(width).arg(block)));
        }
    }
}

void tst_MosaicPixels::emptyPictureIsHarmless()
{
    QImage none;
    mosaic::makeMosaicImage(none, QImage(), 4);
    QVERIFY(none.isNull());
}

void tst_MosaicPixels::nothingIsCopiedInOtherFormats_data()
{
    QTest::addColumn<QImage::Format>("to");
    QTest::addColumn<QImage::Format>("from");
    QTest::addColumn<QImage::Format>("mask");
    const QImage::Format argb = QImage::Format_ARGB32;
    for (const QImage::Format other :
         {QImage::Format_Grayscale8, QImage::Format_RGB30, QImage::Format_BGR30,
          QImage::Format_A2RGB30_Premultiplied, QImage::Format_A2BGR30_Premultiplied,
          QImage::Format_RGBX8888, QImage::Format_RGBA8888}) {
        QTest::addRow("picture of format %d", other) << other << argb << argb;
        QTest::addRow("blocks of format %d", other) << argb << other << argb;
        QTest::addRow("mask of format %d", other) << argb << argb << other;
    }
}

void tst_MosaicPixels::nothingIsCopiedInOtherFormats()
{
    QFETCH(QImage::Format, to);
    QFETCH(QImage::Format, from);
    QFETCH(QImage::Format, mask);
    const auto filled = [](QImage::Format format, const QColor& color) {
        QImage image(8, 8, format);
        image.fill(color);
        return image;
    };
    QImage dst = filled(to, Qt::black);
    mosaic::copyWhereWhite(dst, filled(from, Qt::gray), filled(mask, Qt::white), dst.rect());
    QCOMPARE(dst, filled(to, Qt::black));
}

void tst_MosaicPixels::copiesWhereTheMaskIsWhite()
{
    const QImage src = noise(QSize(8, 8), 1);
    const QImage old = noise(QSize(8, 8), 2);
    QImage mask(8, 8, QImage::Format_ARGB32);
    mask.fill(QColor(0, 0, 0, 0));
    mask.setPixel(2, 2, 0xffffffff);
    mask.setPixel(3, 2, 0x00ffffff);
    mask.setPixel(4, 2, 0xfffeffff);
    mask.setPixel(6, 6, 0xffffffff);
    QImage dst = old;
    mosaic::copyWhereWhite(dst, src, mask, QRect(1, 1, 5, 5));
    QImage expected = old;
    reinterpret_cast<QRgb*>(expected.scanLine(2))[2] = src.pixel(2, 2);
    reinterpret_cast<QRgb*>(expected.scanLine(2))[3] = src.pixel(3, 2);
    QCOMPARE(dst, expected);
}

void tst_MosaicPixels::copyNeverLeavesThePictures()
{
    const QImage src = noise(QSize(8, 6), 1);
    QImage mask(7, 9, QImage::Format_ARGB32);
    mask.fill(Qt::white);
    const QImage old = noise(QSize(10, 10), 2);
    QImage dst = old;
    mosaic::copyWhereWhite(dst, src, mask, QRect(-50, -50, 500, 500));
    for (int y = 0; y < 10; ++y) {
        for (int x = 0; x < 10; ++x)
            QCOMPARE(dst.pixel(x, y), x < 7 && y < 6 ? src.pixel(x, y) : old.pixel(x, y));
    }
    dst = old;
    mosaic::copyWhereWhite(dst, src, mask, QRect(QPoint(4, 4), QPoint(-50, -50)));
    mosaic::copyWhereWhite(dst, QImage(), mask, mask.rect());
    QCOMPARE(dst, old);
}

QTEST_MAIN(tst_MosaicPixels)
#include "tst_MosaicPixels.moc"
