// SPDX-License-Identifier: MIT
#include "OverlayGeometry.h"

#include "ResizableRect.h"

namespace
{

constexpr int kLoupeGapXPx = 6;
constexpr int kLoupeGapYPx = 26;
constexpr int kToolBarGapPx = 6;

// Intended: a result below 1 becomes 0, so the bar never stands at 1 to the left of its place.
int clampedToEdge(int position)
{
    return position < 1 ? 0 : position;
}

} // namespace

namespace overlay
{

QPoint pointOfInterest(const QPoint& pos, int section, const QRect& region)
{
    switch (section) {
    case ResizableRect::SECTION_LEFT:
        return {region.left(), pos.y()};
    case ResizableRect::SECTION_RIGHT:
        return {region.right(), pos.y()};
    case ResizableRect::SECTION_TOP:
        return {pos.x(), region.top()};
    case ResizableRect::SECTION_BOTTOM:
        return {pos.x(), region.bottom()};
    case ResizableRect::SECTION_TOP_LEFT:
        return region.topLeft();
    case ResizableRect::SECTION_TOP_RIGHT:
        return region.topRight();
    case ResizableRect::SECTION_BOTTOM_LEFT:
        return region.bottomLeft();
    case ResizableRect::SECTION_BOTTOM_RIGHT:
        return region.bottomRight();
    default:
        return pos;
    }
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
    const int y =
        roomBelow ? region.bottom() + kToolBarGapPx : clampedToEdge(region.top() - needed);
    return {clampedToEdge(region.right() - bar.width()), y};
}

} // namespace overlay
