// SPDX-License-Identifier: MIT
#include "Marks.h"

#include "Reports.h"

namespace
{

// Qt blends in whole levels.
constexpr int kRounding = 1;

bool isBetween(int before, int after, int end)
{
    return qMin(before, end) - kRounding <= after && after <= qMax(before, end) + kRounding;
}

} // namespace

bool holdsColor(const QImage& picture, const QColor& color)
{
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixelColor(x, y) == color)
                return true;
        }
    }
    return false;
}

QString notBetween(const QImage& before, const QImage& after, const QColor& pen)
{
    for (int y = 0; y < after.height(); ++y) {
        for (int x = 0; x < after.width(); ++x) {
            const QColor a = before.pixelColor(x, y);
            const QColor b = after.pixelColor(x, y);
            if (!isBetween(a.red(), b.red(), pen.red()) ||
                !isBetween(a.green(), b.green(), pen.green()) ||
                !isBetween(a.blue(), b.blue(), pen.blue()))
                return text(QPoint(x, y)) + " became " + b.name() + " from " + a.name();
        }
    }
    return {};
}
