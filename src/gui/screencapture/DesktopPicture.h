// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QPoint>
#include <QPointF>
#include <QRect>

/// The frozen picture of the desktop, one pixel for each physical pixel, and the place in it of a
/// window, of whose coordinates each is `ratio` physical pixels wide and high.
///
/// All cutting and painting goes through this mapping, so that what is shown is what is delivered:
/// each pixel of a result is a pixel of the screen, and nothing is resampled.
struct DesktopPicture {
    /// Of ratio 1, whatever the ratio of the window.
    QImage bright;
    /// dimmed(bright), made once so that painting only copies.
    QImage dimmed;
    /// The pixel at the window's top-left corner.
    QPoint windowPos;
    qreal ratio = 1;

    /// Returns the pixels that the edges of `area`, in window coordinates, enclose, each edge
    /// rounded to the nearest.
    QRect pixels(const QRect& area) const;

    /// Returns the pixels that copy() returns. A window's last coordinate may reach beyond a
    /// desktop that the ratio does not divide: there the cut ends where the desktop does.
    QRect cut(const QRect& area) const;

    /// Returns the pixel at a point in window coordinates.
    QPoint pixelAt(const QPointF& p) const;

    /// Returns the window coordinates that lie wholly within `area`, which is in pixels.
    QRect windowRect(const QRect& area) const;

    /// Returns `area`, in window coordinates, with the ratio set; null where it has no pixels.
    QImage copy(const QRect& area) const;
};
