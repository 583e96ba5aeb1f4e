// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QRect>
#include <QRgb>

/// The pixel work of the mosaic brush, free of widgets. Coordinates are picture pixels. Pictures
/// hold QRgb, which is Format_RGB32, Format_ARGB32 or Format_ARGB32_Premultiplied, and are read as
/// they lie in memory.
namespace mosaic
{

/// Whether the pixels of `image` are QRgb.
bool holdsQRgb(const QImage& image);

/// The average colour of `rect`, which must lie inside `image`: opaque, each channel truncated.
QRgb makeMosaicColor(const QImage& image, const QRect& rect);

/// Fills `dst`, a picture of QRgb of the size of `src`, with the averages of square blocks that
/// start at the top-left corner; the last column and row of blocks are cut to the picture.
/// `blockSize` must be positive. A `src` of any other format is converted first; nothing happens
/// when `dst` is null.
void makeMosaicImage(QImage& dst, const QImage& src, int blockSize);

/// Copies the pixels of `src` to `dst` inside `area` where `mask` is white, whatever its alpha. The
/// area is cut to what all three have; nothing happens when one of them does not hold QRgb.
void copyWhereWhite(QImage& dst, const QImage& src, const QImage& mask, const QRect& area);

} // namespace mosaic
