// SPDX-License-Identifier: MIT
#include "MosaicPixels.h"

#include <QVector>
#include <algorithm>
#include <cstring>

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
constexpr int kBytesPerPixel = 4;
constexpr bool kLittleEndian = Q_BYTE_ORDER == Q_LITTLE_ENDIAN;
constexpr int kBlueByte = kLittleEndian ? 0 : 3;
constexpr int kGreenByte = kLittleEndian ? 1 : 2;
constexpr int kRedByte = kLittleEndian ? 2 : 1;

// So many bytes fit into a 16-bit sum, which makes the sums fast.
constexpr int kMostPixelsOf16BitSums = 257;

// Divides sums of at most 255 * `divisor`, truncating, by a multiplication. That is exact as long
// as 255 * divisor * divisor stays below 2^32.
class Divider
{
public:
    explicit Divider(quint32 divisor)
        : m_divisor(divisor)
        , m_factor(divisor <= kMostExact ? quint32(((quint64(1) << 32) + divisor - 1) / divisor)
                                         : 0)
    {
    }
    quint32 operator()(quint32 sum) const
    {
        if (m_divisor == 1)
            return sum;
        return m_factor ? quint32((quint64(sum) * m_factor) >> 32) : sum / m_divisor;
    }

private:
    static constexpr quint32 kMostExact = 4096;
    quint32 m_divisor;
    quint32 m_factor;
};

// Plain loops over bytes, which compilers turn into vector instructions.
template <typename Sum>
void addRow(Sum* sums, const uchar* bytes, int count)
{
    for (int i = 0; i < count; ++i)
        sums[i] = Sum(sums[i] + bytes[i]);
}

template <typename Sum>
QRgb averageOf(const Sum* sums, int columns, const Divider& divide)
{
    quint32 red = 0;
    quint32 green = 0;
    quint32 blue = 0;
    for (int i = 0; i < columns; ++i, sums += kBytesPerPixel) {
        red += sums[kRedByte];
        green += sums[kGreenByte];
        blue += sums[kBlueByte];
    }
    return kOpaque | divide(red) << 16 | divide(green) << 8 | divide(blue);
}

// The same for blocks whose sums fit into 16 bits: the four sums of a pixel are added as one
// number, in which blue is lowest whatever the order of bytes.
QRgb averageOfSmall(const quint16* sums, int columns, const Divider& divide)
{
    quint64 total = 0;
    for (int i = 0; i < columns; ++i, sums += kBytesPerPixel) {
        quint64 pixel = 0;
        std::memcpy(&pixel, sums, sizeof pixel);
        total += pixel;
    }
    return kOpaque | divide((total >> 32) & 0xffffu) << 16 | divide((total >> 16) & 0xffffu) << 8 |
           divide(total & 0xffffu);
}

QRgb averageOfBlock(const quint16* sums, int columns, int rows, const Divider& divide)
{
    return columns * rows <= kMostPixelsOf16BitSums ? averageOfSmall(sums, columns, divide)
                                                    : averageOf(sums, columns, divide);
}

QRgb averageOfBlock(const quint32* sums, int columns, int /*rows*/, const Divider& divide)
{
    return averageOf(sums, columns, divide);
}

// One row of blocks, `rows` high: summed by columns, averaged into its first row, which is then
// repeated.
template <typename Sum>
void pixelateBand(QImage& dst, const QImage& src, int top, int rows, int blockSize,
                  QVector<Sum>& sums)
{
    const int width = src.width();
    std::fill(sums.begin(), sums.end(), Sum(0));
    for (int y = top; y < top + rows; ++y)
        addRow(sums.data(), src.constScanLine(y), sums.size());

    auto* first = reinterpret_cast<QRgb*>(dst.scanLine(top));
    const Sum* sum = sums.constData();
    const Divider whole(quint32(blockSize) * quint32(rows));
    int x = 0;
    for (; x + blockSize <= width; x += blockSize, sum += blockSize * kBytesPerPixel)
        std::fill_n(first + x, blockSize, averageOfBlock(sum, blockSize, rows, whole));
    if (const int rest = width - x)
        std::fill_n(first + x, rest,
                    averageOfBlock(sum, rest, rows, Divider(quint32(rest) * quint32(rows))));
    for (int y = top + 1; y < top + rows; ++y)
        std::memcpy(dst.scanLine(y), first, size_t(width) * sizeof(QRgb));
}

template <typename Sum>
void pixelateBands(QImage& dst, const QImage& src, int blockSize)
{
    QVector<Sum> sums(src.width() * kBytesPerPixel);
    for (int y = 0; y < src.height(); y += blockSize)
        pixelateBand(dst, src, y, std::min(blockSize, src.height() - y), blockSize, sums);
}

} // namespace

namespace mosaic
{

QRgb averageColor(const QImage& image, const QRect& area)
{
    QVector<quint32> sums(area.width() * kBytesPerPixel);
    for (int y = area.y(); y < area.y() + area.height(); ++y)
        addRow(sums.data(), image.constScanLine(y) + size_t(area.x()) * kBytesPerPixel,
               sums.size());
    return averageOf(sums.constData(), area.width(),
                     Divider(quint32(area.width()) * quint32(area.height())));
}

void pixelate(QImage& dst, const QImage& src, int blockSize)
{
    Q_ASSERT(blockSize > 0);
    if (src.depth() != kDepthBits && !src.isNull()) {
        pixelate(dst, src.convertToFormat(QImage::Format_ARGB32), blockSize);
        return;
    }
    // A block larger than the picture is cut to it, so that no sum outgrows the picture either.
    const int side = std::min(blockSize, std::max({src.width(), src.height(), 1}));
    if (side <= kMostPixelsOf16BitSums)
        pixelateBands<quint16>(dst, src, side);
    else
        pixelateBands<quint32>(dst, src, side);
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
