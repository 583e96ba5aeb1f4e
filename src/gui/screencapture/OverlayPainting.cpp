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

// Draws with each pixel of the picture on a physical pixel of the window.
template <typename Draw>
void inPixels(QPainter& painter, const DesktopPicture& desktop, Draw draw)
{
    painter.save();
    painter.scale(1 / desktop.ratio, 1 / desktop.ratio);
    painter.translate(-desktop.windowPos);
    draw();
    painter.restore();
}

// Of another ratio only if the window has come to another screen in the meantime.
QRect canvasPixels(const overlay::Scene& scene)
{
    const qreal scale = scene.desktop.ratio / scene.canvas->devicePixelRatio();
    return {scene.desktop.pixels(scene.region).topLeft(), scene.canvas->size() * scale};
}

// Returns the region if its picture covers it; null if the dimmed desktop shows through.
QRect coveredByRegion(const overlay::Scene& scene)
{
    const DesktopPicture& desktop = scene.desktop;
    const QRect picture = scene.canvas ? canvasPixels(scene) : desktop.bright.rect();
    const bool covered = picture.contains(desktop.pixels(scene.region & scene.window));
    return covered ? desktop.pixels(scene.region) : QRect();
}

void paintDimmed(QPainter& painter, const QImage& dimmed, const QRect& area)
{
    const QRect inside = area & dimmed.rect();
    painter.drawImage(inside.topLeft(), dimmed, inside);
    for (const QRect& beside : QRegion(area) - inside)
        painter.fillRect(beside, kDim);
}

// Draws from the picture itself; a copy is cut only where the window is larger than the picture.
void paintBright(QPainter& painter, const overlay::Scene& scene, const QRect& area)
{
    const QImage& bright = scene.desktop.bright;
    const QRect shown = scene.desktop.pixels(area & scene.window);
    if (shown.isEmpty())
        return;
    if (bright.rect().contains(shown))
        painter.drawImage(shown.topLeft(), bright, shown);
    else
        painter.drawImage(shown.topLeft(), bright.copy(shown));
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
    inPixels(painter, scene.desktop, [&] {
        for (const QRect& part : QRegion(scene.desktop.pixels(area)) - coveredByRegion(scene))
            paintDimmed(painter, scene.desktop.dimmed, part);
    });
}

void paintRegion(QPainter& painter, const Scene& scene)
{
    inPixels(painter, scene.desktop, [&] {
        if (scene.canvas)
            painter.drawImage(canvasPixels(scene), *scene.canvas);
        else
            paintBright(painter, scene, scene.region);
    });
}

QRect highlightFrame(const QRect& window, const QRect& bounds)
{
    QRect frame(QPoint(), window.size() - kHighlightInsetPx);
    frame.moveCenter(window.center());
    return frame & bounds;
}

void paintHighlight(QPainter& painter, const Scene& scene, const QRect& frame, const QColor& color)
{
    inPixels(painter, scene.desktop, [&] { paintBright(painter, scene, frame); });
    painter.setPen(QPen(color, kHighlightLinePx, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    painter.drawRect(frame);
}

} // namespace overlay
