// SPDX-License-Identifier: MIT
#pragma once

#include "Mouse.h"

#include <QColor>
#include <QRect>
#include <QWidget>

inline const QRect kRect(10, 10, 100, 50);

/// A widget of 400 by 300 pixels, and the mouse in front of it.
class Host : public QWidget, public Mouse
{
public:
    using Mouse::move;
    Host()
        : Mouse(this)
    {
        resize(400, 300);
        setMouseTracking(true);
    }
};

inline QRect edges(int left, int top, int right, int bottom)
{
    return {QPoint(left, top), QPoint(right, bottom)};
}

/// Where the handle of kRect is centred.
inline QPoint anchorOf(int id)
{
    const QPoint anchors[] = {{9, 34}, {109, 34}, {59, 9}, {59, 59},
                              {9, 9},  {109, 9},  {9, 59}, {109, 59}};
    return anchors[id];
}
