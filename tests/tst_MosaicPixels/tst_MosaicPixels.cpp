// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "MosaicPixels.h"

#include <QPainter>
#include <QRandomGenerator>
#include <QtTest>

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
    void blockLargerThanThePicture();
    void blocksOfMoreThan16BitSums();
    void nothingIsWrittenBesideThePicture();
    void emptyAndShallowPicturesAreHarmless();
    void nothingIsCopiedBetweenDifferentDepths_data();
    void nothingIsCopiedBetweenDifferentDepths();
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

// One less in one pixel of a uniform block takes the truncated average down by one, also where
// several blocks are averaged at once.
void tst_MosaicPixels::averagesAreExactNextToAWholeNumber()
{
    constexpr int kBlocks = 7;
    for (int block = 2; block <= 80; ++block) {
        for (int value : {1, 77, 128, 200, 255}) {
            QImage src(kBlocks * block, block, QImage::Format_RGB32);
            src.fill(QColor(value, value, value));
            QImage dst(src.size(), QImage::Format_ARGB32);
            mosaic::makeMosaicImage(dst, src, block);
            for (int i = 0; i < kBlocks; ++i)
                QCOMPARE(dst.pixel(i * block, 0), qRgb(value, value, value));
            for (int i = 0; i < kBlocks; ++i)
                src.setPixel(i * block + 1, 1, qRgb(value - 1, value, value));
            mosaic::makeMosaicImage(dst, src, block);
            for (int i = 0; i < kBlocks; ++i)
                QCOMPARE(dst.pixel(i * block + block - 1, block - 1),
                         qRgb(value - 1, value, value));
        }
    }
}

void tst_MosaicPixels::lastBlocksAreCut()
{
    const QImage src = noise(QSize(5, 5), 3);
    QImage dst(5, 5, QImage::Format_ARGB32);
    mosaic::makeMosaicImage(dst, src, 2);
    QCOMPARE(dst.pixel(4, 4), src.pixel(4, 4) | 0xff000000u);
    QCOMPARE(dst.pixel(4, 0), mosaic::makeMosaicColor(src, QRect(4, 0, 1, 2)));
    QCOMPARE(dst.pixel(1, 4), mosaic::makeMosaicColor(src, QRect(0, 4, 2, 1)));
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

void tst_MosaicPixels::blockLargerThanThePicture()
{
    const QImage src = noise(QSize(10, 4), 2);
    QImage dst(10, 4, QImage::Format_ARGB32);
    mosaic::makeMosaicImage(dst, src, 1000000);
    QCOMPARE(dst.pixel(9, 3), mosaic::makeMosaicColor(src, src.rect()));
    QCOMPARE(dst.pixel(0, 0), mosaic::makeMosaicColor(src, src.rect()));
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
    QImage dst(white.size(), QImage::Format_ARGB32);
    mosaic::makeMosaicImage(dst, white, 300);
    QCOMPARE(dst.pixel(299, 299), qRgb(255, 255, 255));
}

// The rows of a picture within a larger one, at the places in memory that suit the processor.
void tst_MosaicPixels::nothingIsWrittenBesideThePicture()
{
    constexpr int kMarginPx = 4;
    constexpr int kHeight = 5;
    for (int width = 1; width <= 70; ++width) {
        const QImage src = noise(QSize(width, kHeight), quint32(width));
        const int roundedUp = (width + 3) / 4 * 4;
        const QRect inside(kMarginPx, kMarginPx, width, kHeight);
        for (int block : {1, 2, 3, 4, 8, 65}) {
            QImage all(roundedUp + 2 * kMarginPx, kHeight + 2 * kMarginPx, QImage::Format_ARGB32);
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

void tst_MosaicPixels::emptyAndShallowPicturesAreHarmless()
{
    QImage none;
    mosaic::makeMosaicImage(none, QImage(), 4);
    QVERIFY(none.isNull());
    QImage grey(6, 6, QImage::Format_Grayscale8);
    grey.fill(QColor(90, 90, 90));
    QImage dst(6, 6, QImage::Format_ARGB32);
    mosaic::makeMosaicImage(dst, grey, 4);
    QCOMPARE(dst.pixel(5, 5), qRgb(90, 90, 90));
    const QImage before = grey;
    mosaic::copyWhereWhite(grey, dst, dst, dst.rect());
    QCOMPARE(grey, before);
}

void tst_MosaicPixels::nothingIsCopiedBetweenDifferentDepths_data()
{
    QTest::addColumn<QImage::Format>("to");
    QTest::addColumn<QImage::Format>("from");
    QTest::addColumn<QImage::Format>("mask");
    const QImage::Format deep = QImage::Format_ARGB32;
    const QImage::Format shallow = QImage::Format_Grayscale8;
    QTest::newRow("shallow picture") << shallow << deep << deep;
    QTest::newRow("shallow blocks") << deep << shallow << deep;
    QTest::newRow("shallow mask") << deep << deep << shallow;
}

void tst_MosaicPixels::nothingIsCopiedBetweenDifferentDepths()
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
