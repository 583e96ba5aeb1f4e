// SPDX-License-Identifier: MIT
#include "ArrowShape.h"

#include <QVector2D>

ArrowShape::ArrowShape(const QRect& points, const ArrowAttribute& attribute)
{
    const QVector2D from(points.topLeft());
    const QVector2D d = QVector2D(points.bottomRight()) - from;
    const QVector2D u = d.normalized();
    const QVector2D n(-u.y(), u.x());
    const QVector2D b =
        u * static_cast<float>(static_cast<double>(d.length()) - attribute.headLength);

    // The offsets are rounded before the rounded tail is added to them.
    const QPoint origin = from.toPoint();
    const QVector2D shaftSide = n * static_cast<float>(attribute.lineWidth);
    const QVector2D headSide = n * static_cast<float>(attribute.headHalfWidth);
    const QVector2D tip = from + b + b.normalized() * static_cast<float>(attribute.headLength);
    shaft = {origin, (shaftSide + b).toPoint() + origin, (-shaftSide + b).toPoint() + origin};
    head = {tip.toPoint(), (headSide + b).toPoint() + origin, (-headSide + b).toPoint() + origin};
}

QRect ArrowShape::boundingRect() const
{
    QRect bounds;
    for (const auto& triangle : {shaft, head}) {
        for (const QPoint& point : triangle)
            bounds |= QRect(point, QSize(1, 1));
    }
    return bounds;
}
