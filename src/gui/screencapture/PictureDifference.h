// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>

/// What an edit changed in a picture, free of widgets: the pixels before it XOR those after it, so
/// that applying the same difference undoes the edit and redoes it. Coordinates are physical
/// pixels, whatever the pictures' device pixel ratio.
namespace difference
{

/// The difference inside `area`, of the size of `area`, which may reach beyond the pictures. An
/// empty area holds no pixels.
QImage between(const QImage& before, const QImage& after, const QRect& area);

/// Turns `picture` at `position` from one state into the other.
void apply(QImage& picture, const QPoint& position, const QImage& difference);

} // namespace difference
