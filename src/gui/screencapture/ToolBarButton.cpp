// SPDX-License-Identifier: MIT
#include "ToolBarButton.h"

#include <QBackingStore>
#include <QImage>
#include <QPaintEngine>
#include <QPaintEvent>
#include <QPainter>

void ToolBarButton::paintEvent(QPaintEvent* event)
{
    const QRegion& asked = event->region();
    if (isOnlyUncovered(asked) && copyPicture(asked))
        return;
    QPushButton::paintEvent(event);
    m_picture = (QRegion(rect()) - asked).isEmpty() ? takePicture() : QImage();
}

// A button that looks different from now on asks for all of itself, as every step of an animation
// does. What is asked for in parts has only been uncovered.
bool ToolBarButton::isOnlyUncovered(const QRegion& asked) const
{
    return !(visibleRegion() - asked).isEmpty();
}

bool ToolBarButton::copyPicture(const QRegion& asked)
{
    if (m_picture.size() != size())
        return false;
    QPainter painter(this);
    if (!pixelsOfWindow(painter))
        return false;
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (const QRect& area : asked)
        painter.drawImage(area.topLeft(), m_picture, area);
    return true;
}

QImage ToolBarButton::takePicture()
{
    const QPainter painter(this);
    const QImage* const pixels = pixelsOfWindow(painter);
    if (!pixels)
        return {};
    const QPoint origin = painter.deviceTransform().map(QPoint());
    return pixels->copy(QRect(origin, size()));
}

// Null when something else is painted into, as by grab(), and on a dense screen, where the button
// may begin between two pixels.
const QImage* ToolBarButton::pixelsOfWindow(const QPainter& painter) const
{
    QBackingStore* const store = backingStore();
    if (!store || !painter.isActive() || devicePixelRatioF() != 1)
        return nullptr;
    const QPaintDevice* const device = painter.paintEngine()->paintDevice();
    return device == store->paintDevice() ? dynamic_cast<const QImage*>(device) : nullptr;
}
