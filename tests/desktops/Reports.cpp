// SPDX-License-Identifier: MIT
#include "Reports.h"

QString text(const QPoint& p)
{
    return QStringLiteral("%1,%2").arg(p.x()).arg(p.y());
}

QString text(const QRect& r)
{
    return QStringLiteral("%1x%2+%3+%4").arg(r.width()).arg(r.height()).arg(r.x()).arg(r.y());
}

QString placeIn(QRgb pixel)
{
    const QPoint tile(qBlue(pixel) / 16, qBlue(pixel) % 16);
    return text(tile * 256 + QPoint(qRed(pixel), qGreen(pixel)));
}

QString difference(const QImage& actual, const QImage& expected)
{
    if (actual == expected)
        return {};
    if (actual.size() != expected.size())
        return QStringLiteral("%1x%2 instead of %3x%4 pixels")
            .arg(actual.width())
            .arg(actual.height())
            .arg(expected.width())
            .arg(expected.height());
    for (int y = 0; y < actual.height(); ++y) {
        for (int x = 0; x < actual.width(); ++x) {
            const QRgb a = actual.pixel(x, y);
            const QRgb e = expected.pixel(x, y);
            if (qRed(a) != qRed(e) || qGreen(a) != qGreen(e) || qBlue(a) != qBlue(e))
                return QStringLiteral("pixel %1 is #%2 instead of #%3 (as at %4 instead of %5)")
                    .arg(text(QPoint(x, y)))
                    .arg(a & 0xffffff, 6, 16, QChar('0'))
                    .arg(e & 0xffffff, 6, 16, QChar('0'))
                    .arg(placeIn(a), placeIn(e));
        }
    }
    return {};
}
