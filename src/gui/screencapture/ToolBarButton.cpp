// SPDX-License-Identifier: MIT
#include "ToolBarButton.h"

#include <QPaintEvent>
#include <QPainter>
#include <QPen>
#include <QStyleOptionButton>
#include <QStylePainter>

namespace
{

int dotsPerMeter(int dotsPerInch)
{
    constexpr qreal kMetersPerInch = 0.0254;
    return qRound(dotsPerInch / kMetersPerInch);
}

} // namespace

void ToolBarButton::paintEvent(QPaintEvent* event)
{
    if (!isPictureUsable(event->region()))
        takePicture();
    if (m_picture.isNull()) {
        QPushButton::paintEvent(event);
        return;
    }
    QPainter painter(this);
    for (const QRect& area : event->region())
        painter.drawImage(area.topLeft(), m_picture, area);
}

// A button that looks different from now on asks for all of itself, as every step of an animation
// does. What is asked for in parts has only been uncovered.
bool ToolBarButton::isPictureUsable(const QRegion& asked) const
{
    return m_picture.size() == size() && !(visibleRegion() - asked).isEmpty();
}

// In the format of the window, so that the style draws the same pixels. There is none on a dense
// screen, where the button may begin between two pixels.
void ToolBarButton::takePicture()
{
    const QSize wanted = devicePixelRatioF() == 1 ? size() : QSize();
    if (m_picture.size() != wanted)
        m_picture = QImage(wanted, QImage::Format_ARGB32_Premultiplied);
    if (m_picture.isNull())
        return;
    // Fonts are as large as the screen has them.
    m_picture.setDotsPerMeterX(dotsPerMeter(logicalDpiX()));
    m_picture.setDotsPerMeterY(dotsPerMeter(logicalDpiY()));
    m_picture.fill(Qt::white);
    QStylePainter painter(&m_picture, this);
    // What painting on a widget begins with.
    painter.setFont(font());
    painter.setPen(QPen(palette().brush(foregroundRole()), 1));
    painter.setBackground(palette().brush(backgroundRole()));
    QStyleOptionButton option;
    initStyleOption(&option);
    painter.drawControl(QStyle::CE_PushButton, option);
}

// Nothing is asked for while hidden, whatever changes.
void ToolBarButton::hideEvent(QHideEvent* event)
{
    m_picture = QImage();
    QPushButton::hideEvent(event);
}
