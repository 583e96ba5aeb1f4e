// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QRect>
#include <QRgb>

/// Pixel operations of the mosaic brush, independent of widgets. Coordinates are physical pixels.
/// Pictures hold QRgb, that is Format_RGB32, Format_ARGB32 or Format_ARGB32_Premultiplied, and are
/// read as they lie in memory.
namespace mosaic
{

/// Returns whether the pixels of `image` are QRgb.
bool holdsQRgb(const QImage& image);

/// Returns the average colour of `rect`, which must lie inside `image`: opaque, each channel
/// truncated.
QRgb makeMosaicColor(const QImage& image, const QRect& rect);

/// Fills `dst`, a picture of QRgb of the size of `src`, with the averages of square blocks. The
/// blocks start at the top-left corner; the last column and row are cut to the picture. `blockSize`
/// is in widget coordinates, of which the device pixel ratio of `src` makes physical pixels, and
/// must be positive. A `src` of another format is converted first. Does nothing if `dst` is null.
void makeMosaicImage(QImage& dst, const QImage& src, int blockSize);

/// Copies the pixels of `src` to `dst` inside `area` where `mask` is white, whatever its alpha.
/// Clips `area` to all three pictures. Does nothing if one of them does not hold QRgb.
void copyWhereWhite(QImage& dst, const QImage& src, const QImage& mask, const QRect& area);

} // namespace mosaic
