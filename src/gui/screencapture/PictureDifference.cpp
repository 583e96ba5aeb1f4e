// SPDX-License-Identifier: MIT
#include "PictureDifference.h"

#include <QPainter>

namespace difference
{

QImage between(const QImage& before, const QImage& after, const QRect& area)
{
    // QImage takes an empty rectangle for the whole picture.
    QImage pixels = area.isEmpty() ? QImage() : before.copy(area);
    if (pixels.isNull())
        return pixels;
    pixels.setDevicePixelRatio(1);
    QPainter painter(&pixels);
    painter.setCompositionMode(QPainter::RasterOp_SourceXorDestination);
    painter.drawImage(pixels.rect(), after, area);
    return pixels;
}

void apply(QImage& picture, const QPoint& position, const QImage& difference)
{
    if (picture.isNull())
        return;
    // At a ratio of 1, a painter's coordinates are physical pixels.
    const qreal ratio = picture.devicePixelRatio();
    picture.setDevicePixelRatio(1);
    QPainter painter(&picture);
    painter.setCompositionMode(QPainter::RasterOp_SourceXorDestination);
    painter.drawImage(position, difference);
    painter.end();
    picture.setDevicePixelRatio(ratio);
}

} // namespace difference
