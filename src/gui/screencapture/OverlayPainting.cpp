// SPDX-License-Identifier: MIT
#include "OverlayPainting.h"

#include <QPainter>
#include <QPen>
#include <QRegion>

namespace
{

constexpr QColor kDim(0, 0, 0, 100);
constexpr qreal kHighlightLinePx = 4.0;
constexpr QSize kHighlightInsetPx(4, 4);

QRect desktopRect(const overlay::Scene& scene)
{
    return {scene.desktopPos, scene.desktop.size()};
}

// Returns the region if its picture covers it; null if the dimmed desktop shows through.
QRect coveredByRegion(const overlay::Scene& scene)
{
    const QRect picture =
        scene.canvas ? QRect(scene.region.topLeft(), scene.canvas->size()) : desktopRect(scene);
    return picture.contains(scene.region & scene.window) ? scene.region : QRect();
}

void paintDimmed(QPainter& painter, const overlay::Scene& scene, const QRect& area)
{
    const QImage& dimmed = scene.dimmedDesktop;
    if (dimmed.devicePixelRatio() == 1 && desktopRect(scene).contains(area)) {
        painter.drawImage(area.topLeft(), dimmed, area.translated(-scene.desktopPos));
        return;
    }
    painter.save();
    painter.setClipRect(area, Qt::IntersectClip);
    painter.drawImage(scene.desktopPos, scene.desktop);
    painter.fillRect(area, kDim);
    painter.restore();
}

// Draws from the picture itself; a copy is cut only where the window is larger than the picture.
void paintBright(QPainter& painter, const overlay::Scene& scene, const QRect& area)
{
    const QRect shown = area & scene.window;
    if (shown.isEmpty())
        return;
    if (desktopRect(scene).contains(shown))
        painter.drawImage(shown.topLeft(), scene.desktop, shown.translated(-scene.desktopPos));
    else
        painter.drawImage(area.topLeft(), scene.desktop.copy(area.translated(-scene.desktopPos)));
}

} // namespace

namespace overlay
{

QImage dimmed(QImage desktop)
{
    if (!desktop.isNull())
        QPainter(&desktop).fillRect(desktop.rect(), kDim);
    return desktop;
}

void paintSurround(QPainter& painter, const Scene& scene, const QRect& area)
{
    for (const QRect& part : QRegion(area) - coveredByRegion(scene))
        paintDimmed(painter, scene, part);
}

void paintRegion(QPainter& painter, const Scene& scene)
{
    if (scene.canvas)
        painter.drawImage(scene.region.topLeft(), *scene.canvas);
    else
        paintBright(painter, scene, scene.region);
}

QRect highlightFrame(const QRect& window, const QRect& bounds)
{
    QRect frame(QPoint(), window.size() - kHighlightInsetPx);
    frame.moveCenter(window.center());
    return frame & bounds;
}

void paintHighlight(QPainter& painter, const Scene& scene, const QRect& frame, const QColor& color)
{
    paintBright(painter, scene, frame);
    painter.setPen(QPen(color, kHighlightLinePx, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    painter.drawRect(frame);
}

} // namespace overlay
