// SPDX-License-Identifier: MIT
#include "OverlayGeometry.h"

#include "ResizableRect.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

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

int coveringLength(int pixels, const QVector<qreal>& ratios)
{
    const bool isWhole = std::all_of(ratios.begin(), ratios.end(),
                                     [=](qreal ratio) { return std::fmod(pixels, ratio) == 0; });
    const qreal largest = *std::max_element(ratios.begin(), ratios.end());
    return isWhole ? pixels : pixels + qCeil(largest / 2);
}

QRect roomFor(const QSizeF& size, const QSize& desktop, const QRect& screen)
{
    constexpr qreal kRounding = 2;
    const QSizeF beside = size - desktop;
    const bool isDesktop = qAbs(beside.width()) < kRounding && qAbs(beside.height()) < kRounding;
    return isDesktop ? QRect(QPoint(), desktop) : screen;
}

QRect nearestScreen(const QPoint& p, const QVector<QRect>& screens)
{
    const auto distance = [&p](const QRect& screen) {
        const int x = qBound(screen.left(), p.x(), screen.right());
        const int y = qBound(screen.top(), p.y(), screen.bottom());
        return (p - QPoint(x, y)).manhattanLength();
    };
    return *std::min_element(
        screens.begin(), screens.end(),
        [&distance](const QRect& a, const QRect& b) { return distance(a) < distance(b); });
}

QPoint mainToolBarPos(const QRect& region, const QSize& bar, int extraHeight, const QRect& screen)
{
    const int needed = bar.height() + extraHeight + kToolBarGapPx;
    const bool roomBelow = region.bottom() + needed <= screen.bottom();
    const int y =
        roomBelow ? region.bottom() + kToolBarGapPx : qMax(screen.top(), region.top() - needed);
    return {qMax(screen.left(), region.right() - bar.width()), y};
}

QPoint posWithin(const QRect& screen, const QRect& bar)
{
    // A bar that is larger than its screen begins with it.
    return {qMax(screen.left(), qMin(bar.left(), screen.right() + 1 - bar.width())),
            qMax(screen.top(), qMin(bar.top(), screen.bottom() + 1 - bar.height()))};
}

} // namespace overlay
