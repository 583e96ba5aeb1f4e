// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QRect>
#include <QRgb>

/// The pixel work of the mosaic brush, free of widgets. Coordinates are picture pixels; pictures
/// are 32 bits deep and are read as they lie in memory.
namespace mosaic
{

/// The average colour of `rect`, which must lie inside `image`: opaque, each channel truncated.
QRgb makeMosaicColor(const QImage& image, const QRect& rect);

/// Fills `dst`, a 32-bit picture of the size of `src`, with the averages of square blocks that
/// start at the top-left corner; the last column and row of blocks are cut to the picture.
/// `blockSize` must be positive. A `src` of another depth is converted first; nothing happens when
/// `dst` is null.
void makeMosaicImage(QImage& dst, const QImage& src, int blockSize);

/// Copies the pixels of `src` to `dst` inside `area` where `mask` is white, whatever its alpha. The
/// area is cut to what all three have; nothing happens where one of them is not 32 bits deep.
void copyWhereWhite(QImage& dst, const QImage& src, const QImage& mask, const QRect& area);

} // namespace mosaic
