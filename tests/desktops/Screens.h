// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QPoint>
#include <QRect>
#include <QStringList>
#include <QVector>

// The screens, and drags over them.

/// An output of the dummy driver that no arrangement of screens uses.
constexpr const char* kSpareOutput = "DUMMY3";

/// The screens as they are at the start, the primary one first.
const QList<QRect>& screens();

/// The screen on which `p` is, or the nearest one.
QRect screenOf(const QPoint& p);

/// The words for xrandr that make the screens as they are.
QStringList arrangement();

QRect between(const QPoint& a, const QPoint& b);

struct Drag {
    QPoint from;
    QPoint to;
};

/// From each screen to another, also over what no screen shows and with corners there.
QVector<Drag> dragsAcross();

/// In the middle of each screen and at its edges, over all of it, and across screens.
QVector<Drag> dragsEverywhere();
