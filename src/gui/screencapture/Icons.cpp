// SPDX-License-Identifier: MIT
#include "Icons.h"

#include "QtVersions.h"

#include <QApplication>
#include <QStyle>
#include <QStyleOption>
#include <QtMath>

#include <set>

namespace
{

constexpr int kLargestScale = 3;

} // namespace

namespace icons
{

QPixmap pixmap(const QString& name, qreal ratio)
{
    const int scale = qBound(1, qCeil(ratio), kLargestScale);
    const QString suffix = scale == 1 ? QString() : QStringLiteral("@%1x").arg(scale);
    QPixmap result(QStringLiteral(":/scribble/%1%2.png").arg(name, suffix));
    if (ratio != scale)
        result = result.scaled(result.size() * (ratio / scale), Qt::IgnoreAspectRatio,
                               Qt::SmoothTransformation);
    result.setDevicePixelRatio(ratio);
    return result;
}

QIcon icon(const QString& name)
{
    QStyleOption option;
    option.palette = QPalette(Qt::white);
    QIcon result;
    for (const qreal ratio : std::set<qreal>{1, qApp->devicePixelRatio()}) {
        const QPixmap enabled = pixmap(name, ratio);
        result.addPixmap(enabled);
        result.addPixmap(qApp->style()->generatedIconPixmap(QIcon::Disabled, enabled, &option),
                         QIcon::Disabled);
    }
    return result;
}

void Button::paintEvent(QPaintEvent* event)
{
    qtversions::withDenseIcons([&] { QPushButton::paintEvent(event); });
}

} // namespace icons
