// SPDX-License-Identifier: MIT
#pragma once

#include <QEvent>
#include <QImage>
#include <QPaintEvent>
#include <QRect>
#include <QWidget>

/// What the widget and its children paint, over magenta, which no widget here uses.
inline QImage painted(QWidget& widget, QWidget::RenderFlags flags = QWidget::DrawChildren)
{
    QImage image(widget.size(), QImage::Format_RGB32);
    image.fill(Qt::magenta);
    widget.render(&image, QPoint(), QRegion(), flags);
    return image;
}

/// A picture made pixel by pixel, without a painter.
class PixelDrawing
{
public:
    explicit PixelDrawing(const QSize& size)
        : m_image(size, QImage::Format_RGB32)
    {
        m_image.fill(Qt::magenta);
    }
    void fill(int left, int top, int width, int height, const QColor& color)
    {
        for (int y = top; y < top + height; ++y) {
            for (int x = left; x < left + width; ++x)
                m_image.setPixelColor(x, y, color);
        }
    }
    /// A line of one pixel's width through the four corners.
    void frame(int left, int top, int right, int bottom, const QColor& color)
    {
        fill(left, top, right - left + 1, 1, color);
        fill(left, bottom, right - left + 1, 1, color);
        fill(left, top, 1, bottom - top + 1, color);
        fill(right, top, 1, bottom - top + 1, color);
    }
    const QImage& image() const { return m_image; }

private:
    QImage m_image;
};

/// Counts how often a widget is painted, and keeps what of it was painted last.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget& widget) { widget.installEventFilter(this); }
    int count = 0;
    QRegion area;
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            ++count;
            area = static_cast<QPaintEvent*>(event)->region();
        }
        return false;
    }
};
