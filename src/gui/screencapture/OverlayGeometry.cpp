// SPDX-License-Identifier: MIT
#include "OverlayGeometry.h"

#include "ResizableRect.h"

namespace
{

constexpr int kLoupeGapXPx = 6;
constexpr int kLoupeGapYPx = 26;
constexpr int kToolBarGapPx = 6;

} // namespace

namespace overlay
{

QPoint pointOfInterest(const QPoint& pos, int section, const QRect& region)
{
    return ResizableRect::snapped(pos, ResizableRect::edgesOf(section), region);
}

QRect loupeSource(const QPoint& p)
{
    QRect square(0, 0, kLoupeSourceSidePx, kLoupeSourceSidePx);
    square.moveCenter(p);
    return square;
}

QPoint loupePos(const QPoint& cursor, const QSize& window)
{
    int x = cursor.x() + kLoupeGapXPx;
    int y = cursor.y() + kLoupeGapYPx;
    if (x + kLoupeSidePx > window.width())
        x = cursor.x() - kLoupeGapXPx - kLoupeSidePx;
    if (y + kLoupeSidePx > window.height())
        y = cursor.y() - kLoupeGapYPx - kLoupeSidePx;
    return {x, y};
}

QPoint mainToolBarPos(const QRect& region, const QSize& bar, int extraHeight, const QRect& window)
{
    const int needed = bar.height() + extraHeight + kToolBarGapPx;
    const bool roomBelow = region.bottom() + needed <= window.bottom();
    const int y = roomBelow ? region.bottom() + kToolBarGapPx : qMax(0, region.top() - needed);
    return {qMax(0, region.right() - bar.width()), y};
}

} // namespace overlay
