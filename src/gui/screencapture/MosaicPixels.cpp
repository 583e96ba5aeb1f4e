// SPDX-License-Identifier: MIT
#include "MosaicPixels.h"

#include "PixelGrid.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace
{

constexpr QRgb kOpaque = 0xff000000u;
constexpr QRgb kColorMask = 0x00ffffffu;
constexpr int kColors = 3;
constexpr size_t kBytesPerPixel = 4;
// A 16-bit sum holds so many bytes.
constexpr int kMostRowsOf16BitSums = 257;

// Sums up the rows of `rect` byte by byte: compilers vectorize such a loop.
template <typename Sum>
std::vector<Sum> sumsOf(const QImage& image, const QRect& rect)
{
    std::vector<Sum> sums(size_t(rect.width()) * kBytesPerPixel);
    for (int y = rect.y(); y < rect.y() + rect.height(); ++y) {
        const uchar* bytes = image.constScanLine(y) + size_t(rect.x()) * kBytesPerPixel;
        for (size_t i = 0; i < sums.size(); ++i)
            sums[i] = Sum(sums[i] + bytes[i]);
    }
    return sums;
}

double shareOfAPixel(int columns, int rows)
{
    return 1.0 / (double(columns) * rows);
}

// Totals start at one half, so that rounding takes no whole average below itself.
template <typename Sum>
QRgb averageOf(const Sum* sums, int columns, double share)
{
    double totals[kBytesPerPixel] = {0.5, 0.5, 0.5, 0.5};
    for (int x = 0; x < columns; ++x, sums += kBytesPerPixel) {
        for (size_t i = 0; i < kBytesPerPixel; ++i)
            totals[i] += double(sums[i]);
    }
    QRgb average = kOpaque;
    for (int i = 0; i < kColors; ++i) {
        const int byte = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? i : kColors - i;
        average |= QRgb(int(totals[byte] * share)) << (8 * i);
    }
    return average;
}

// The widths or heights of the blocks that `length` pixels are cut into.
std::vector<int> blocksOf(int length, double blockSize)
{
    std::vector<int> blocks;
    int end = 0;
    for (int i = 1; end < length; ++i) {
        const int start = end;
        end = pixels::nearestEdge(std::min(i * blockSize, double(length)), 1);
        if (end > start)
            blocks.push_back(end - start);
    }
    return blocks;
}

// Averages a row of blocks into a row of pixels.
template <typename Sum>
void averageBlocks(QRgb* pixel, const Sum* sum, const std::vector<int>& widths, int rows)
{
    int shared = 0;
    double share = 0;
    for (const int width : widths) {
        // Nearly all blocks are of the same width.
        if (width != shared) {
            shared = width;
            share = shareOfAPixel(width, rows);
        }
        pixel = std::fill_n(pixel, width, averageOf(sum, width, share));
        sum += size_t(width) * kBytesPerPixel;
    }
}

// Averages one row of blocks at a time into its first row of pixels, which is then repeated.
template <typename Sum>
void pixelate(QImage& dst, const QImage& src, double blockSize)
{
    const std::vector<int> widths = blocksOf(src.width(), blockSize);
    int y = 0;
    for (const int rows : blocksOf(src.height(), blockSize)) {
        const std::vector<Sum> sums = sumsOf<Sum>(src, QRect(0, y, src.width(), rows));
        auto* first = reinterpret_cast<QRgb*>(dst.scanLine(y));
        averageBlocks(first, sums.data(), widths, rows);
        for (int row = 1; row < rows; ++row)
            std::memcpy(dst.scanLine(y + row), first, size_t(src.width()) * kBytesPerPixel);
        y += rows;
    }
}

} // namespace

namespace mosaic
{

bool holdsQRgb(const QImage& image)
{
    return image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32 ||
           image.format() == QImage::Format_ARGB32_Premultiplied;
}

QRgb makeMosaicColor(const QImage& image, const QRect& rect)
{
    return averageOf(sumsOf<quint64>(image, rect).data(), rect.width(),
                     shareOfAPixel(rect.width(), rect.height()));
}

void makeMosaicImage(QImage& dst, const QImage& src, int blockSize)
{
    Q_ASSERT(blockSize > 0);
    if (dst.isNull())
        return;
    Q_ASSERT(dst.size() == src.size() && holdsQRgb(dst));
    const QImage pixels = holdsQRgb(src) ? src : src.convertToFormat(QImage::Format_ARGB32);
    const double physicalSize = blockSize * src.devicePixelRatio();
    if (physicalSize <= kMostRowsOf16BitSums)
        pixelate<quint16>(dst, pixels, physicalSize);
    else
        pixelate<quint64>(dst, pixels, physicalSize);
}

void copyWhereWhite(QImage& dst, const QImage& src, const QImage& mask, const QRect& area)
{
    if (!holdsQRgb(dst) || !holdsQRgb(src) || !holdsQRgb(mask))
        return;
    // Clips edge by edge, because QRect::intersected() normalizes an inverted area.
    const QRect common = dst.rect() & src.rect() & mask.rect();
    const int left = std::max(area.left(), common.left());
    const int right = std::min(area.right(), common.right());
    const int bottom = std::min(area.bottom(), common.bottom());
    for (int y = std::max(area.top(), common.top()); y <= bottom; ++y) {
        const auto* white = reinterpret_cast<const QRgb*>(mask.constScanLine(y));
        const auto* from = reinterpret_cast<const QRgb*>(src.constScanLine(y));
        auto* to = reinterpret_cast<QRgb*>(dst.scanLine(y));
        for (int x = left; x <= right; ++x) {
            if ((white[x] & kColorMask) == kColorMask)
                to[x] = from[x];
        }
    }
}

} // namespace mosaic
