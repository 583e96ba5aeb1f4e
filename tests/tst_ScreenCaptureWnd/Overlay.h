// SPDX-License-Identifier: MIT
#pragma once

#include "Pictures.h"

inline const QColor kSelectionColor(0x00, 0xaa, 0xcc);

inline void paintOutline(QPainter& painter, const QRect& r)
{
    painter.fillRect(r.left(), r.top(), r.width() + 1, 1, kSelectionColor);
    painter.fillRect(r.left(), r.bottom() + 1, r.width() + 1, 1, kSelectionColor);
    painter.fillRect(r.left(), r.top(), 1, r.height() + 1, kSelectionColor);
    painter.fillRect(r.right() + 1, r.top(), 1, r.height() + 1, kSelectionColor);
}

inline void paintHandles(QPainter& painter, const QRect& r)
{
    const int xs[] = {r.left() - 1, r.left() - 1 + r.width() / 2, r.right()};
    const int ys[] = {r.top() - 1, r.top() - 1 + r.height() / 2, r.bottom()};
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            if (i != 1 || j != 1)
                painter.fillRect(xs[i] - 3, ys[j] - 3, 9, 9, kSelectionColor);
        }
    }
}

inline void paintLabel(QPainter& painter, const QRect& r)
{
    const QRect label(r.left(), r.top() - 28, 100, 28);
    painter.fillRect(label, QColor(0, 0, 0, 128));
    painter.setPen(Qt::white);
    painter.setFont(QFont("Courier New", 14));
    painter.drawText(label, Qt::AlignCenter,
                     QString::number(r.width()) + " x " + QString::number(r.height()));
}

/// A window of `size` over a desktop with a region, as a person sees it, composed from its parts.
inline QImage overlayWith(const QImage& desktop, const QRect& region, const QSize& size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.drawImage(0, 0, dimmed(desktop));
    if (!region.isEmpty())
        painter.drawImage(region.topLeft(), desktop.copy(region));
    paintOutline(painter, region);
    paintHandles(painter, region);
    paintLabel(painter, region);
    return image;
}
