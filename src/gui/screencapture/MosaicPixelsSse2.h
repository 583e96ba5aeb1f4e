// SPDX-License-Identifier: MIT
#pragma once

#include <QRgb>
#include <QtGlobal>
#include <algorithm>
#include <cstring>
#include <emmintrin.h>

/// Pixelation for processors with SSE2, which is every 64-bit one of its family: pixels stay groups
/// of four side by side sums throughout, and the result is written past the caches, because a
/// picture is larger than they are.
namespace mosaic::sse2
{

constexpr qptrdiff kPixelBytes = 4;
constexpr int kVectorPx = 4;

/// Up to here the quotients of averageOf() are exact: a sum plus one half comes no nearer to a
/// whole number of averages than 0.5 / 4096, which is four times the error of the two roundings.
constexpr int kMostBlockSide = 64;
/// So many bytes fit into a 16-bit sum.
constexpr int kMostPixelsOf16BitSums = 257;
/// Up to here ReciprocalDivision is exact.
constexpr int kMostPixelsOfReciprocal = 129;

/// A row of blocks is worked on in pieces whose sums stay in the first cache. They hold whole
/// blocks and whole vectors.
inline int tileWidth(int blockSize)
{
    constexpr int kTileVectors = 256;
    return kVectorPx * blockSize * std::max(1, kTileVectors / blockSize);
}
constexpr int kMostTileWidthPx = kVectorPx * 320;

inline __m128i load(const void* from)
{
    return _mm_loadu_si128(static_cast<const __m128i*>(from));
}

inline void store(void* to, __m128i value)
{
    _mm_storeu_si128(static_cast<__m128i*>(to), value);
}

enum class Sums { Fresh, Continued };

/// Sums the columns of `rows` rows of pixels, 16 bits to a channel. A number of rows that the
/// compiler knows makes a loop without counting.
template <int Rows, Sums Kind>
void addRows(quint16* sums, const uchar* bytes, int stride, int rows, int columns)
{
    const __m128i zero = _mm_setzero_si128();
    const int count = Rows > 0 ? Rows : rows;
    int x = 0;
    for (; x + 2 * kVectorPx <= columns; x += 2 * kVectorPx) {
        const uchar* from = bytes + x * kPixelBytes;
        quint16* to = sums + x * kPixelBytes;
        __m128i sum0 = Kind == Sums::Fresh ? zero : load(to);
        __m128i sum1 = Kind == Sums::Fresh ? zero : load(to + 8);
        __m128i sum2 = Kind == Sums::Fresh ? zero : load(to + 16);
        __m128i sum3 = Kind == Sums::Fresh ? zero : load(to + 24);
        for (int row = 0; row < count; ++row, from += stride) {
            const __m128i left = load(from);
            const __m128i right = load(from + sizeof(__m128i));
            sum0 = _mm_add_epi16(sum0, _mm_unpacklo_epi8(left, zero));
            sum1 = _mm_add_epi16(sum1, _mm_unpackhi_epi8(left, zero));
            sum2 = _mm_add_epi16(sum2, _mm_unpacklo_epi8(right, zero));
            sum3 = _mm_add_epi16(sum3, _mm_unpackhi_epi8(right, zero));
        }
        store(to, sum0);
        store(to + 8, sum1);
        store(to + 16, sum2);
        store(to + 24, sum3);
    }
    for (int row = 0; row < count; ++row) {
        for (qptrdiff i = x * kPixelBytes; i < columns * kPixelBytes; ++i)
            sums[i] = quint16((row == 0 && Kind == Sums::Fresh ? 0 : sums[i]) +
                              bytes[i + qptrdiff(row) * stride]);
    }
}

/// Sums of each column of pixels over `rows` rows. A few rows at a time, because processors fetch
/// only so many streams ahead.
inline void sumColumns(quint16* sums, const uchar* bytes, int stride, int rows, int columns)
{
    constexpr int kMostRowsAtOnce = 10;
    switch (rows) {
    case 2:
        addRows<2, Sums::Fresh>(sums, bytes, stride, rows, columns);
        return;
    case 3:
        addRows<3, Sums::Fresh>(sums, bytes, stride, rows, columns);
        return;
    case 4:
        addRows<4, Sums::Fresh>(sums, bytes, stride, rows, columns);
        return;
    default:
        addRows<0, Sums::Fresh>(sums, bytes, stride, std::min(kMostRowsAtOnce, rows), columns);
        for (int row = kMostRowsAtOnce; row < rows; row += kMostRowsAtOnce)
            addRows<0, Sums::Continued>(sums, bytes + qptrdiff(row) * stride, stride,
                                        std::min(kMostRowsAtOnce, rows - row), columns);
    }
}

/// The average of one block of any width.
inline QRgb averageOf(const quint16* sums, int columns, int rows)
{
    const __m128i zero = _mm_setzero_si128();
    __m128i total = zero;
    for (int x = 0; x < columns; ++x, sums += kPixelBytes) {
        const __m128i pixel = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(sums));
        total = _mm_add_epi32(total, _mm_unpacklo_epi16(pixel, zero));
    }
    const __m128 sum = _mm_add_ps(_mm_cvtepi32_ps(total), _mm_set1_ps(0.5F));
    const __m128 share = _mm_set1_ps(1.0F / float(columns * rows));
    const __m128i words = _mm_cvttps_epi32(_mm_mul_ps(sum, share));
    const __m128i bytes = _mm_packus_epi16(_mm_packs_epi32(words, words), words);
    return 0xff000000u | QRgb(_mm_cvtsi128_si32(bytes));
}

/// Divides eight 16-bit sums of `pixels` bytes each at once, truncating.
class ReciprocalDivision
{
public:
    explicit ReciprocalDivision(int pixels)
    {
        while ((2 << m_shift) < pixels)
            ++m_shift;
        m_factor = _mm_set1_epi16(short((qint64(65536 << m_shift) + pixels - 1) / pixels));
    }
    __m128i operator()(__m128i sums) const
    {
        return _mm_srl_epi16(_mm_mulhi_epu16(sums, m_factor), _mm_cvtsi32_si128(m_shift));
    }

private:
    int m_shift = 0;
    __m128i m_factor;
};

/// The sums of two blocks that stand side by side.
inline __m128i sumOfTwo(const quint16* sums, int blockSize)
{
    const quint16* next = sums + blockSize * kPixelBytes;
    __m128i a = _mm_setzero_si128();
    __m128i b = a;
    int x = 0;
    for (; x + 2 <= blockSize; x += 2) {
        a = _mm_add_epi16(a, load(sums + x * kPixelBytes));
        b = _mm_add_epi16(b, load(next + x * kPixelBytes));
    }
    const __m128i both = _mm_add_epi16(_mm_unpacklo_epi64(a, b), _mm_unpackhi_epi64(a, b));
    if (x == blockSize)
        return both;
    const auto pixel = [x](const quint16* s) {
        return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(s + x * kPixelBytes));
    };
    return _mm_add_epi16(both, _mm_unpacklo_epi64(pixel(sums), pixel(next)));
}

/// Averages of the blocks of a tile, four at a time where their sums are small.
inline void averageBlocks(QRgb* averages, const quint16* sums, int columns, int rows, int blockSize)
{
    const int pixels = blockSize * rows;
    int x = 0;
    if (pixels >= 2 && pixels <= kMostPixelsOfReciprocal) {
        const ReciprocalDivision divide(pixels);
        const __m128i opaque = _mm_set1_epi32(int(0xff000000u));
        for (; x + 4 * blockSize <= columns; x += 4 * blockSize, averages += 4) {
            const quint16* four = sums + x * kPixelBytes;
            const __m128i low = divide(sumOfTwo(four, blockSize));
            const __m128i high = divide(sumOfTwo(four + 2 * kPixelBytes * blockSize, blockSize));
            store(averages, _mm_or_si128(_mm_packus_epi16(low, high), opaque));
        }
    }
    for (; x < columns; x += blockSize)
        *averages++ = averageOf(sums + x * kPixelBytes, std::min(blockSize, columns - x), rows);
}

/// A row of pixels from a row of blocks. Writes up to three pixels more than there are.
inline void widen(QRgb* pixels, const QRgb* averages, int columns, int blockSize)
{
    int x = 0;
    if (blockSize == 2) {
        for (; x < columns; x += 2 * kVectorPx, averages += kVectorPx) {
            const __m128i four = load(averages);
            store(pixels + x, _mm_unpacklo_epi32(four, four));
            store(pixels + x + kVectorPx, _mm_unpackhi_epi32(four, four));
        }
        return;
    }
    for (; x < columns; x += blockSize) {
        const __m128i color = _mm_set1_epi32(int(*averages++));
        for (int i = 0; i < blockSize; i += kVectorPx)
            store(pixels + x + i, color);
    }
}

/// Copies a row of pixels to memory that is not read again soon.
inline void writePast(uchar* to, const QRgb* pixels, int columns)
{
    if ((quintptr(to) | quintptr(columns * kPixelBytes)) % sizeof(__m128i) != 0) {
        std::memcpy(to, pixels, size_t(columns) * kPixelBytes);
        return;
    }
    for (int x = 0; x < columns; x += kVectorPx)
        _mm_stream_si128(reinterpret_cast<__m128i*>(to + x * kPixelBytes), load(pixels + x));
}

/// One row of blocks of at most kMostBlockSide pixels: `rows` rows of `width` pixels.
inline void pixelateBand(uchar* to, int toStride, const uchar* from, int fromStride, int width,
                         int rows, int blockSize)
{
    quint16 sums[kMostTileWidthPx * kPixelBytes];
    QRgb averages[kMostTileWidthPx + 2 * kVectorPx];
    QRgb pixels[kMostTileWidthPx + kMostBlockSide + 2 * kVectorPx];
    const int tile = tileWidth(blockSize);
    for (int left = 0; left < width; left += tile) {
        const int columns = std::min(tile, width - left);
        const qptrdiff offset = left * kPixelBytes;
        sumColumns(sums, from + offset, fromStride, rows, columns);
        averageBlocks(averages, sums, columns, rows, blockSize);
        widen(pixels, averages, columns, blockSize);
        for (int row = 0; row < rows; ++row)
            writePast(to + offset + qptrdiff(row) * toStride, pixels, columns);
    }
    _mm_sfence();
}

} // namespace mosaic::sse2
