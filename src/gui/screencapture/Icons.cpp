// SPDX-License-Identifier: MIT
#include "Icons.h"

#include <QApplication>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStylePainter>
#include <QtMath>

namespace
{

constexpr int kLargestScale = 3;
// What QPushButton leaves between its icon and its text.
constexpr int kIconSpacingPx = 4;

QIcon emptyIcon(const QSize& size)
{
    QPixmap empty(size);
    empty.fill(Qt::transparent);
    return {empty};
}

// The icon and the text are centred side by side.
QRect iconRect(const QStyleOptionButton& option, const QPushButton& button)
{
    const QRect contents =
        button.style()->subElementRect(QStyle::SE_PushButtonContents, &option, &button);
    QRect all(QPoint(), option.iconSize);
    if (!option.text.isEmpty())
        all.setWidth(all.width() + kIconSpacingPx +
                     option.fontMetrics.size(Qt::TextShowMnemonic, option.text).width());
    const QPoint pos = contents.topLeft() + QPoint((contents.width() - all.width()) / 2,
                                                   (contents.height() - all.height()) / 2);
    const QRect rect = QStyle::visualRect(option.direction, contents, QRect(pos, option.iconSize));
    const bool isPressed = option.state & (QStyle::State_On | QStyle::State_Sunken);
    const auto shift = [&](QStyle::PixelMetric metric) {
        return isPressed ? button.style()->pixelMetric(metric, &option, &button) : 0;
    };
    return rect.translated(shift(QStyle::PM_ButtonShiftHorizontal),
                           shift(QStyle::PM_ButtonShiftVertical));
}

QIcon::Mode modeOf(const QStyleOptionButton& option)
{
    if (!option.state.testFlag(QStyle::State_Enabled))
        return QIcon::Disabled;
    return option.state.testFlag(QStyle::State_HasFocus) ? QIcon::Active : QIcon::Normal;
}

} // namespace

namespace icons
{

QString file(const QString& name)
{
    return QStringLiteral(":/scribble/%1.png").arg(name);
}

QPixmap pixmap(const QString& name, qreal ratio)
{
    const int scale = qBound(1, qCeil(ratio), kLargestScale);
    QPixmap result(file(scale == 1 ? name : QStringLiteral("%1@%2x").arg(name).arg(scale)));
    if (ratio != scale)
        result = result.scaled(result.size() * (ratio / scale), Qt::IgnoreAspectRatio,
                               Qt::SmoothTransformation);
    result.setDevicePixelRatio(ratio);
    return result;
}

QIcon paleWhileDisabled(const QString& name)
{
    QStyleOption option;
    option.palette = QPalette(Qt::white);
    QIcon result(file(name));
    for (const qreal ratio : {1.0, qApp->devicePixelRatio()})
        result.addPixmap(
            qApp->style()->generatedIconPixmap(QIcon::Disabled, pixmap(name, ratio), &option),
            QIcon::Disabled);
    return result;
}

// The style leaves room for the icon, which is then painted there.
void Button::paintEvent(QPaintEvent* event)
{
    const qreal ratio = devicePixelRatioF();
    if (ratio <= 1)
        return QPushButton::paintEvent(event);
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    option.icon = emptyIcon(option.iconSize);
    painter.drawControl(QStyle::CE_PushButton, option);

    const QRect rect = iconRect(option, *this);
    const QSize physical = icon().actualSize(rect.size() * ratio, modeOf(option));
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.translate(rect.topLeft());
    painter.scale(qreal(rect.width()) / physical.width(), qreal(rect.height()) / physical.height());
    icon().paint(&painter, QRect(QPoint(), physical), Qt::AlignCenter, modeOf(option));
}

} // namespace icons
