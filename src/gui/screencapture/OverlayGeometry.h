// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QSizeF>
#include <QVector>

/// Geometry of the capture window: pure functions of rectangles and points in window coordinates
/// (pixels).
namespace overlay
{

/// Side of the loupe in window coordinates.
constexpr int kLoupeSidePx = 80;
/// Side in pixels of the square of the desktop picture that the loupe shows.
constexpr int kLoupeSourceSidePx = 16;

/// Returns the point that the loupe shows while `section` of `region` is dragged: `pos`, snapped to
/// the dragged edge or corner regardless of its distance.
QPoint pointOfInterest(const QPoint& pos, int section, const QRect& region);

/// Returns the square of the desktop picture around `p` that the loupe shows.
QRect loupeSource(const QPoint& p);

/// Returns the loupe's top-left corner: below and to the right of the cursor, flipped on each axis
/// on which the window has no room.
QPoint loupePos(const QPoint& cursor, const QSize& window);

/// Returns the length, in physical pixels, of a window that covers `pixels`, also after Qt has
/// rounded the length to whole coordinates of any of the `ratios`.
int coveringLength(int pixels, const QVector<qreal>& ratios);

/// Returns what a picture of `size` is shown in the middle of: the desktop where it is as large,
/// but for rounding, and else `screen`.
QRect roomFor(const QSizeF& size, const QSize& desktop, const QRect& screen);

/// Returns the one of `screens` that contains `p`, or the nearest one. There is at least one.
QRect nearestScreen(const QPoint& p, const QVector<QRect>& screens);

/// Returns the main tool bar's top-left corner: under the region, right edges aligned, or above it
/// where the screen has no room for the bar, `extraHeight` and a gap. The bar never goes beyond the
/// left and the top edge of `screen`, the one on which the region's bottom-right corner is.
QPoint mainToolBarPos(const QRect& region, const QSize& bar, int extraHeight, const QRect& screen);

/// Returns the top-left corner of `bar`, moved onto `screen`: to its top-left corner if it is
/// larger.
QPoint posWithin(const QRect& screen, const QRect& bar);

} // namespace overlay
