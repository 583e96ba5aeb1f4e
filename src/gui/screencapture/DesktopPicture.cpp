// SPDX-License-Identifier: MIT
#include "DesktopPicture.h"

#include "PixelGrid.h"

namespace
{

int withinDesktop(int edge, int end, qreal ratio)
{
    return ratio == 1 ? edge : qMin(edge, end);
}

} // namespace

QRect DesktopPicture::pixels(const QRect& area) const
{
    return pixels::nearest(area, ratio).translated(windowPos);
}

QRect DesktopPicture::cut(const QRect& area) const
{
    QRect r = pixels(area);
    r.setRight(withinDesktop(r.right() + 1, bright.width(), ratio) - 1);
    r.setBottom(withinDesktop(r.bottom() + 1, bright.height(), ratio) - 1);
    return r;
}

QPoint DesktopPicture::pixelAt(const QPointF& p) const
{
    return windowPos + QPoint(pixels::nearestEdge(p.x(), ratio), pixels::nearestEdge(p.y(), ratio));
}

QRect DesktopPicture::windowRect(const QRect& area) const
{
    const QRect r = area.translated(-windowPos);
    return {QPoint(qCeil(r.left() / ratio), qCeil(r.top() / ratio)),
            QPoint(qFloor((r.right() + 1) / ratio) - 1, qFloor((r.bottom() + 1) / ratio) - 1)};
}

// A null rectangle has no pixels, but QImage::copy() of one copies the whole picture.
QImage DesktopPicture::copy(const QRect& area) const
{
    const QRect r = cut(area);
    if (r.isEmpty())
        return {};
    QImage image = bright.copy(r);
    image.setDevicePixelRatio(ratio);
    return image;
}
