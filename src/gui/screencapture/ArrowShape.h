// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QRect>
#include <array>

/// The measures of an arrow in pixels.
struct ArrowAttribute {
    /// Sets all three from a pen's width.
    void setWidth(int w)
    {
        lineWidth = w;
        headHalfWidth = 2 * w;
        headLength = 2 * w;
    }

    /// Half the width of the shaft where it meets the head.
    int lineWidth = 5;
    int headHalfWidth = 10;
    int headLength = 10;
};

/// The two triangles of an arrow from `points.topLeft()` to `points.bottomRight()`; the rectangle
/// only carries the two points. An arrow shorter than its head points backwards.
struct ArrowShape {
    ArrowShape(const QRect& points, const ArrowAttribute& attribute);
    QRect boundingRect() const;

    /// From the tail to the base of the head.
    std::array<QPoint, 3> shaft;
    /// The tip first.
    std::array<QPoint, 3> head;
};
