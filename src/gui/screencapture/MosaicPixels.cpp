// SPDX-License-Identifier: MIT
#include "MosaicPixels.h"

#if defined(__SSE2__)
#include "MosaicPixelsSse2.h"
#endif

#include <algorithm>
#include <cstring>
#include <vector>

namespace
{

constexpr int kDepthBits = 32;
constexpr QRgb kOpaque = 0xff000000u;
constexpr QRgb kColorMask = 0x00ffffffu;

const QRgb* line(const QImage& image, int y)
{
    return reinterpret_cast<const QRgb*>(image.constScanLine(y));
}

// Bytes of a pixel as they lie in memory.
constexpr size_t kBytesPerPixel = 4;
constexpr bool kLittleEndian = Q_BYTE_ORDER == Q_LITTLE_ENDIAN;
constexpr int kBlueByte = kLittleEndian ? 0 : 3;
constexpr int kGreenByte = kLittleEndian ? 1 : 2;
constexpr int kRedByte = kLittleEndian ? 2 : 1;

// A plain loop over bytes, which compilers turn into vector instructions.
void addRow(quint32* sums, const uchar* bytes, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        sums[i] += bytes[i];
}

QRgb averageOf(const quint32* sums, int columns, int rows)
{
    quint64 red = 0;
    quint64 green = 0;
    quint64 blue = 0;
    for (int i = 0; i < columns; ++i, sums += kBytesPerPixel) {
        red += sums[kRedByte];
        green += sums[kGreenByte];
        blue += sums[kBlueByte];
    }
    const quint64 pixels = quint64(columns) * quint64(rows);
    return kOpaque | QRgb(red / pixels) << 16 | QRgb(green / pixels) << 8 | QRgb(blue / pixels);
}

// One row of blocks: averaged into its first row of pixels, which is then repeated.
void pixelateBand(uchar* to, int toStride, const uchar* from, int fromStride, int width, int rows,
                  int blockSize)
{
    std::vector<quint32> sums(size_t(width) * kBytesPerPixel);
    for (int row = 0; row < rows; ++row)
        addRow(sums.data(), from + qptrdiff(row) * fromStride, sums.size());
    auto* first = reinterpret_cast<QRgb*>(to);
    for (int x = 0; x < width; x += blockSize) {
        const int columns = std::min(blockSize, width - x);
        std::fill_n(first + x, columns,
                    averageOf(sums.data() + size_t(x) * kBytesPerPixel, columns, rows));
    }
    for (int row = 1; row < rows; ++row)
        std::memcpy(to + qptrdiff(row) * toStride, first, size_t(width) * kBytesPerPixel);
}

template <typename Band>
void pixelateBands(QImage& dst, const QImage& src, int blockSize, Band pixelate)
{
    const uchar* from = src.constBits();
    const int fromStride = src.bytesPerLine();
    uchar* to = dst.bits();
    const int toStride = dst.bytesPerLine();
    for (int y = 0; y < src.height(); y += blockSize) {
        pixelate(to + qptrdiff(y) * toStride, toStride, from + qptrdiff(y) * fromStride, fromStride,
                 src.width(), std::min(blockSize, src.height() - y), blockSize);
    }
}

} // namespace

namespace mosaic
{

QRgb makeMosaicColor(const QImage& image, const QRect& rect)
{
    std::vector<quint32> sums(size_t(rect.width()) * kBytesPerPixel);
    for (int y = rect.y(); y < rect.y() + rect.height(); ++y)
        addRow(sums.data(), image.constScanLine(y) + size_t(rect.x()) * kBytesPerPixel,
               sums.size());
    return averageOf(sums.data(), rect.width(), rect.height());
}

void makeMosaicImage(QImage& dst, const QImage& src, int blockSize)
{
    Q_ASSERT(blockSize > 0);
    if (dst.isNull())
        return;
    Q_ASSERT(dst.size() == src.size() && dst.depth() == kDepthBits);
    if (src.depth() != kDepthBits) {
        const QImage deep = src.convertToFormat(QImage::Format_ARGB32);
        // Null without memory for it.
        if (!deep.isNull())
            makeMosaicImage(dst, deep, blockSize);
        return;
    }
    // A block larger than the picture is cut to it, so that no sum outgrows the picture either.
    const int side = std::min(blockSize, std::max({src.width(), src.height(), 1}));
#if defined(__SSE2__)
    if (side <= mosaic::sse2::kMostBlockSide) {
        pixelateBands(dst, src, side, mosaic::sse2::pixelateBand);
        return;
    }
#endif
    pixelateBands(dst, src, side, pixelateBand);
}

void copyWhereWhite(QImage& dst, const QImage& src, const QImage& mask, const QRect& area)
{
    if (dst.depth() != kDepthBits || src.depth() != kDepthBits || mask.depth() != kDepthBits)
        return;
    // Edge by edge, since QRect would turn an inverted area round instead of leaving it empty.
    const QRect common = dst.rect() & src.rect() & mask.rect();
    const int left = std::max(area.left(), common.left());
    const int right = std::min(area.right(), common.right());
    const int bottom = std::min(area.bottom(), common.bottom());
    for (int y = std::max(area.top(), common.top()); y <= bottom; ++y) {
        const QRgb* white = line(mask, y);
        const QRgb* from = line(src, y);
        auto* to = reinterpret_cast<QRgb*>(dst.scanLine(y));
        for (int x = left; x <= right; ++x) {
            if ((white[x] & kColorMask) == kColorMask)
                to[x] = from[x];
        }
    }
}

} // namespace mosaic
