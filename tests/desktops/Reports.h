// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>

// What a failing test says.

QString text(const QPoint& p);
QString text(const QRect& r);

/// The place that places() wrote into a pixel.
QString placeIn(QRgb pixel);

/// Where two pictures differ first; empty where they are equal.
QString difference(const QImage& actual, const QImage& expected);
