// SPDX-License-Identifier: MIT
#include "MagnifierWidget.h"

#include <QPainter>
#include <QPen>

namespace
{

constexpr qreal kCrossHairWidthPx = 3;
constexpr int kCrossHairMarginPx = 2;

} // namespace

MagnifierWidget::MagnifierWidget(QWidget* parent)
    : QWidget(parent)
{
    // A fast move can put the pointer on the loupe; its mouse events are the parent's all the same.
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void MagnifierWidget::setSize(int size)
{
    resize(size, size);
    update();
}

void MagnifierWidget::setOrigImage(const QImage& image)
{
    m_origImage = image;
    update();
}

void MagnifierWidget::setCrossColor(const QColor& color)
{
    m_crossColor = color;
    update();
}

void MagnifierWidget::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    if (!m_origImage.isNull())
        painter.drawImage(rect(), m_origImage);
    paintFrames(painter);
    paintCrossHair(painter);
}

void MagnifierWidget::paintFrames(QPainter& painter) const
{
    painter.setPen(Qt::black);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    painter.setPen(Qt::white);
    painter.drawRect(rect().adjusted(1, 1, -2, -2));
}

void MagnifierWidget::paintCrossHair(QPainter& painter) const
{
    constexpr int m = kCrossHairMarginPx;
    painter.setPen(
        QPen(m_crossColor, kCrossHairWidthPx, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawLine(m + 1, height() / 2, width() - 2 * m, height() / 2);
    painter.drawLine(width() / 2, m + 1, width() / 2, height() - 2 * m);
}
