// SPDX-License-Identifier: MIT
#include "MagnifierWidget.h"

#include <QBrush>
#include <QPainter>
#include <QPen>

namespace
{

constexpr qreal kFrameWidthPx = 1;
constexpr qreal kCrossHairWidthPx = 3;
constexpr int kCrossHairMarginPx = 2;

} // namespace

MagnifierWidget::MagnifierWidget(QWidget* parent)
    : QWidget(parent)
{
    // The pointer can get onto the loupe in one fast move; the host must still see where it goes.
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
    m_marks = QImage();
    update();
}

void MagnifierWidget::paintEvent(QPaintEvent* /*event*/)
{
    updateMarks();
    QPainter painter(this);
    if (!m_origImage.isNull())
        painter.drawImage(rect(), m_origImage);
    if (m_marks.isNull())
        paintMarks(painter);
    else
        painter.drawImage(0, 0, m_marks);
}

void MagnifierWidget::updateMarks()
{
    const qreal scale = devicePixelRatioF();
    if (m_marks.size() == size() * scale && m_marks.devicePixelRatio() == scale)
        return;
    m_marks = QImage(size() * scale, QImage::Format_ARGB32_Premultiplied);
    m_marks.setDevicePixelRatio(scale);
    if (m_marks.isNull())
        return;
    m_marks.fill(Qt::transparent);
    QPainter painter(&m_marks);
    paintMarks(painter);
}

void MagnifierWidget::paintMarks(QPainter& painter) const
{
    paintFrames(painter);
    paintCrossHair(painter);
}

void MagnifierWidget::paintFrames(QPainter& painter) const
{
    painter.setPen(QPen(QBrush(Qt::black), kFrameWidthPx));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    painter.setPen(QPen(QBrush(Qt::white), kFrameWidthPx));
    painter.drawRect(rect().adjusted(1, 1, -2, -2));
}

void MagnifierWidget::paintCrossHair(QPainter& painter) const
{
    constexpr int m = kCrossHairMarginPx;
    painter.setPen(QPen(QBrush(m_crossColor, Qt::SolidPattern), kCrossHairWidthPx, Qt::SolidLine,
                        Qt::RoundCap, Qt::RoundJoin));
    painter.drawLine(m + 1, height() / 2, width() - 2 * m, height() / 2);
    painter.drawLine(width() / 2, m + 1, width() / 2, height() - 2 * m);
}
