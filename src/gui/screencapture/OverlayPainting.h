// SPDX-License-Identifier: MIT
#pragma once

#include "DesktopPicture.h"

#include <QColor>
#include <QImage>
#include <QRect>

#include <optional>

class QPainter;

/// What the capture window paints, layer by layer: functions of pictures and of rectangles in
/// window coordinates. The painter is one on the window, whose clip bounds what they paint.
namespace overlay
{

/// What there is to paint.
struct Scene {
    DesktopPicture desktop;
    /// The window, at (0, 0).
    QRect window;
    /// Where the desktop is bright; null where no region is visible.
    QRect region;
    /// What lies at the region's top-left corner instead of the desktop.
    std::optional<QImage> canvas;
};

/// The picture with a translucent black over it; null for a null picture.
QImage dimmed(QImage desktop);

/// The dimmed desktop in `area`, save for what the region's picture covers: each pixel is painted
/// once.
void paintSurround(QPainter& painter, const Scene& scene, const QRect& area);

/// The canvas, or the bright desktop, in the region.
void paintRegion(QPainter& painter, const Scene& scene);

/// The frame that highlights `window`: a little smaller than it, and within `bounds`.
QRect highlightFrame(const QRect& window, const QRect& bounds);

/// The bright desktop in `frame`, with a thick line around it.
void paintHighlight(QPainter& painter, const Scene& scene, const QRect& frame, const QColor& color);

} // namespace overlay
