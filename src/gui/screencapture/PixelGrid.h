// SPDX-License-Identifier: MIT
#pragma once

#include "QtVersions.h"

#include <QMouseEvent>
#include <QPoint>
#include <QRect>
#include <QVariant>
#include <QWidget>
#include <QtMath>

/// The physical pixels under rectangles in widget coordinates, of which each is `ratio` pixels wide
/// and high. At a ratio of 1 every rectangle stays as it is.
namespace pixels
{

/// The property of a window whose picture has another ratio than the window itself.
constexpr char kPictureRatio[] = "pictureRatio";

/// How many pixels of the picture that a window shows are in each coordinate of it and of its
/// children.
inline qreal ratioOf(const QWidget& widget)
{
    const QVariant ratio = widget.window()->property(kPictureRatio);
    return ratio.isValid() ? ratio.toReal() : widget.devicePixelRatioF();
}

/// The edge between two physical pixels that is nearest to an edge in widget coordinates.
inline int nearestEdge(qreal edge, qreal ratio)
{
    return qFloor(edge * ratio + 0.5);
}

/// The physical pixels that the edges of `rect` enclose, each edge rounded to the nearest.
/// Rectangles that touch each other do so here, too: without a seam, and without an overlap.
inline QRect nearest(const QRect& rect, qreal ratio)
{
    const QPoint topLeft(nearestEdge(rect.left(), ratio), nearestEdge(rect.top(), ratio));
    const QPoint end(nearestEdge(rect.right() + 1.0, ratio),
                     nearestEdge(rect.bottom() + 1.0, ratio));
    return {topLeft, end - QPoint(1, 1)};
}

/// All physical pixels that `rect` touches. None where it is empty.
inline QRect outward(const QRect& rect, qreal ratio)
{
    if (rect.isEmpty())
        return nearest(rect, ratio);
    const QPoint topLeft(qFloor(rect.left() * ratio), qFloor(rect.top() * ratio));
    const QPoint end(qCeil((rect.right() + 1.0) * ratio), qCeil((rect.bottom() + 1.0) * ratio));
    return {topLeft, end - QPoint(1, 1)};
}

/// The widget's coordinates of which nearest() makes pixels that hold the one under the pointer.
/// QMouseEvent::pos() is rounded to other ones, which may even lie beyond the widget.
inline QPoint coordinatesUnder(const QMouseEvent& event, const QWidget& widget)
{
    const qreal ratio = ratioOf(widget);
    // Just short of the pixel's centre: an edge there is rounded to the next pixel.
    constexpr qreal centre = 0.499;
    const QPointF inWindow = qtversions::posInWindow(event);
    // Rounded, because Qt 5 rounds the position in the widget.
    const QPointF widgetPos = inWindow - qtversions::posInWidget(event);
    const QPoint under(qFloor(inWindow.x() + centre / ratio),
                       qFloor(inWindow.y() + centre / ratio));
    return under - QPoint(nearestEdge(widgetPos.x(), 1), nearestEdge(widgetPos.y(), 1));
}

} // namespace pixels
