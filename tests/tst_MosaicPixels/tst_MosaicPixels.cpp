// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "MosaicPixels.h"
#include "Pictures.h"

#include <limits>
#include <numeric>

namespace
{

constexpr int kHuge = std::numeric_limits<int>::max();

QImage pixelated(const QImage& src, int blockSize)
{
    QImage dst(src.size(), QImage::Format_ARGB32);
    mosaic::makeMosaicImage(dst, src, blockSize);
    return dst;
}

QImage filled(const QSize& size, const QColor& color, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(size, format);
    image.fill(color);
    return image;
}

QVector<int> upTo(int last)
{
    QVector<int> numbers(last);
    std::iota(numbers.begin(), numbers.end(), 1);
    return numbers;
}

} // namespace

class tst_MosaicPixels : public BehaviourTest
{
    Q_OBJECT

private slots:
    void averagesTruncate();
    void averagesAreExactNextToAWholeNumber();
    void blocksAreThoseOfPlainSums_data();
    void blocksAreThoseOfPlainSums();
    void blocksFollowTheDevicePixelRatio();
    void picturesInOtherFormatsAreConverted();
    void nothingIsWrittenBesideThePicture();
    void emptyPictureIsHarmless();
    void copiesWhereTheMaskIsWhite_data();
    void copiesWhereTheMaskIsWhite();
    void nothingIsCopiedInOtherFormats();
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
            QImage src = filled(QSize(block, block), QColor(value, value, value));
            QCOMPARE(pixelated(src, block).pixel(0, 0), qRgb(value, value, value));
            src.setPixel(1, 1, qRgb(value - 1, value, value));
            QCOMPARE(pixelated(src, block).pixel(block - 1, block - 1),
                     qRgb(value - 1, value, value));
        }
    }
}

void tst_MosaicPixels::blocksAreThoseOfPlainSums_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QVector<int>>("blocks");
    QTest::newRow("one pixel") << QSize(1, 1) << upTo(64);
    QTest::newRow("one column") << QSize(1, 7) << upTo(64);
    QTest::newRow("one row") << QSize(9, 1) << upTo(64);
    QTest::newRow("last blocks cut") << QSize(101, 67) << upTo(70);
    QTest::newRow("larger than the picture") << QSize(10, 4) << QVector<int>{11, kHuge};
    QTest::newRow("around the largest 16-bit sum")
        << QSize(700, 600) << QVector<int>{256, 257, 258, 300, 1000};
}

void tst_MosaicPixels::blocksAreThoseOfPlainSums()
{
    QFETCH(QSize, size);
    QFETCH(QVector<int>, blocks);
    for (const QImage& src :
         {filled(size, Qt::white), noise(size, 11), noise(size, 11, QImage::Format_ARGB32),
          noise(size, 11, QImage::Format_ARGB32_Premultiplied)}) {
        for (int block : blocks)
            QVERIFY2(pixelated(src, block) == inBlocks(src, block),
                     qPrintable(QString("block %1, format %2").arg(block).arg(src.format())));
        QCOMPARE(mosaic::makeMosaicColor(src, src.rect()), inBlocks(src, kHuge).pixel(0, 0));
    }
}

void tst_MosaicPixels::blocksFollowTheDevicePixelRatio()
{
    for (const qreal ratio : {0.75, 1.25, 1.5, 1.75, 2.0, 2.625, 3.0}) {
        QImage src = noise(QSize(301, 173));
        src.setDevicePixelRatio(ratio);
        for (int block = 1; block <= 20; ++block)
            QVERIFY2(pixelated(src, block) == inBlocks(src, block),
                     qPrintable(QString("block %1 at %2").arg(block).arg(ratio)));
    }
    // 100 blocks of 10 at 1.25 are 1250 pixels wide, in turns of 13 and 12.
    QImage wide = noise(QSize(1250, 1));
    wide.setDevicePixelRatio(1.25);
    const QImage blocks = pixelated(wide, 10);
    for (int edge = 0; edge < wide.width(); edge += 25) {
        QCOMPARE(blocks.pixel(edge, 0), blocks.pixel(edge + 12, 0));
        QVERIFY(blocks.pixel(edge + 12, 0) != blocks.pixel(edge + 13, 0));
        QCOMPARE(blocks.pixel(edge + 13, 0), blocks.pixel(edge + 24, 0));
    }
}

// All of these formats hold the colours of an opaque picture without loss.
void tst_MosaicPixels::picturesInOtherFormatsAreConverted()
{
    const QImage picture = noise(QSize(30, 20));
    for (const QImage::Format format :
         {QImage::Format_RGB30, QImage::Format_BGR30, QImage::Format_A2RGB30_Premultiplied,
          QImage::Format_A2BGR30_Premultiplied, QImage::Format_RGBX8888, QImage::Format_RGBA8888,
          QImage::Format_RGB888, QImage::Format_RGBA64})
        QCOMPARE(pixelated(picture.convertToFormat(format), 4), inBlocks(picture, 4));
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
            QImage all = filled(
                inside.adjusted(-kMarginPx, -kMarginPx, kMarginPx, kMarginPx).size(), Qt::magenta);
            const QImage untouched = all.copy();
            uchar* corner = all.scanLine(inside.top()) + inside.left() * int(sizeof(QRgb));
            QImage dst(corner, width, kHeight, all.bytesPerLine(), all.format());
            mosaic::makeMosaicImage(dst, src, block);
            QCOMPARE(dst, inBlocks(src, block).convertToFormat(dst.format()));
            QPainter(&all).fillRect(inside, Qt::magenta);
            QCOMPARE(all, untouched);
        }
    }
}

void tst_MosaicPixels::emptyPictureIsHarmless()
{
    QVERIFY(pixelated(QImage(), 4).isNull());
    QImage dst = noise(QSize(8, 8));
    mosaic::copyWhereWhite(dst, QImage(), noise(QSize(8, 8)), dst.rect());
    QCOMPARE(dst, noise(QSize(8, 8)));
}

void tst_MosaicPixels::copiesWhereTheMaskIsWhite_data()
{
    QTest::addColumn<QRect>("area");
    QTest::newRow("inside") << QRect(3, 2, 12, 10);
    QTest::newRow("one pixel") << QRect(5, 6, 1, 1);
    QTest::newRow("beyond every edge") << QRect(-50, -50, 500, 500);
    QTest::newRow("inverted") << QRect(QPoint(14, 14), QPoint(-50, -50));
    QTest::newRow("beside the pictures") << QRect(30, 2, 10, 10);
}

void tst_MosaicPixels::copiesWhereTheMaskIsWhite()
{
    QFETCH(QRect, area);
    const QImage old = noise(QSize(24, 24), 1);
    const QImage src = noise(QSize(20, 16), 2);
    // White of any alpha in every third pixel, and nearly white in another third.
    QImage mask = noise(QSize(17, 22), 3, QImage::Format_ARGB32);
    for (int i = 0; i < mask.width() * mask.height(); ++i) {
        auto* pixel = reinterpret_cast<QRgb*>(mask.scanLine(i / 17)) + i % 17;
        *pixel |= i % 3 == 0 ? 0x00ffffffu : i % 3 == 1 ? 0x00fefefeu : 0;
    }
    QImage dst = old;
    mosaic::copyWhereWhite(dst, src, mask, area);
    for (int y = 0; y < dst.height(); ++y) {
        for (int x = 0; x < dst.width(); ++x) {
            const bool inside = x >= area.left() && x <= area.right() && y >= area.top() &&
                                y <= area.bottom() && x < 17 && y < 16;
            const bool copied = inside && (mask.pixel(x, y) & 0xffffffu) == 0xffffffu;
            QCOMPARE(dst.pixel(x, y), (copied ? src : old).pixel(x, y));
        }
    }
}

void tst_MosaicPixels::nothingIsCopiedInOtherFormats()
{
    const QSize size(8, 8);
    for (const QImage::Format other :
         {QImage::Format_Grayscale8, QImage::Format_RGB30, QImage::Format_BGR30,
          QImage::Format_A2RGB30_Premultiplied, QImage::Format_A2BGR30_Premultiplied,
          QImage::Format_RGBX8888, QImage::Format_RGBA8888}) {
        for (int odd = 0; odd < 3; ++odd) {
            const auto format = [&](int which) {
                return which == odd ? other : QImage::Format_ARGB32;
            };
            QImage dst = filled(size, Qt::black, format(0));
            mosaic::copyWhereWhite(dst, filled(size, Qt::gray, format(1)),
                                   filled(size, Qt::white, format(2)), dst.rect());
            QCOMPARE(dst, filled(size, Qt::black, format(0)));
        }
    }
}

QTEST_APPLESS_MAIN(tst_MosaicPixels)
#include "tst_MosaicPixels.moc"
