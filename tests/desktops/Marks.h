// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QImage>
#include <QString>

// What an annotation leaves in a picture.

bool holdsColor(const QImage& picture, const QColor& color);

/// The first pixel that is neither as before, nor the pen's colour, nor a mixture of both; empty
/// where there is none.
QString notBetween(const QImage& before, const QImage& after, const QColor& pen);
