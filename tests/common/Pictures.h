// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractTextDocumentLayout>
#include <QColor>
#include <QEvent>
#include <QFont>
#include <QImage>
#include <QPaintEvent>
#include <QPainter>
#include <QPolygon>
#include <QRandomGenerator>
#include <QRect>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocument>
#include <QVector>
#include <QWidget>

// Pictures to work on, what a widget paints, and drawings to compare it with.

/// Noise, so that a picture which is off by one pixel anywhere differs. Random alpha where the
/// format has one.
inline QImage noise(const QSize& size, quint32 seed = 1,
                    QImage::Format format = QImage::Format_RGB32)
{
    QImage image(size, format);
    const QRgb opaque = image.hasAlphaChannel() ? 0 : qRgb(0, 0, 0);
    QRandomGenerator random(seed);
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            line[x] = opaque | random.generate();
    }
    return image;
}

/// Each pixel tells its place, up to 4096 pixels each way.
inline QImage places(const QSize& size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            line[x] = qRgb(x % 256, y % 256, x / 256 * 16 + y / 256);
    }
    return image;
}

/// `image` with what `draw` paints on it, in device-independent pixels.
template <typename Draw>
QImage drawnOn(QImage image, Draw draw)
{
    QPainter painter(&image);
    // Qt itself scales a painter only above 1.
    const qreal ratio = qMin(image.devicePixelRatio(), 1.0);
    painter.scale(ratio, ratio);
    draw(painter);
    painter.end();
    return image;
}

/// `image` with an area blacked out, which is not compared.
inline QImage without(QImage image, const QRect& area)
{
    QPainter(&image).fillRect(area, Qt::black);
    return image;
}

/// What the overlay makes of a desktop on which nothing is selected.
inline QImage dimmed(QImage picture)
{
    picture.setDevicePixelRatio(1);
    QPainter(&picture).fillRect(picture.rect(), QColor(0, 0, 0, 100));
    return picture;
}

/// What the widget and its children paint, over magenta, which no widget here uses.
inline QImage painted(QWidget& widget, QWidget::RenderFlags flags = QWidget::DrawChildren)
{
    QImage image(widget.size() * widget.devicePixelRatioF(), QImage::Format_RGB32);
    image.setDevicePixelRatio(widget.devicePixelRatioF());
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

/// Counts how often a widget is painted, and keeps what of it was.
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
            area += static_cast<QPaintEvent*>(event)->region();
        }
        return false;
    }
};

/// A stretch of text in one colour.
struct ColouredText {
    QString text;
    QColor color;
};

/// `image` with the text in `box`, without the help of a text box.
inline QImage withText(const QImage& image, const QRect& box, const QFont& font,
                       const QVector<ColouredText>& parts)
{
    // Glyphs are placed as for the screen.
    QWidget onScreen;
    QTextDocument document;
    document.documentLayout()->setPaintDevice(&onScreen);
    document.setDefaultFont(font);
    QTextCursor cursor(&document);
    for (const ColouredText& part : parts) {
        QTextCharFormat format;
        format.setForeground(part.color);
        cursor.insertText(part.text, format);
    }
    return drawnOn(image, [&](QPainter& painter) {
        painter.setClipRect(box);
        painter.translate(box.topLeft());
        document.drawContents(&painter);
    });
}

/// A filled arrow with an outline of one pixel, from the corners of its shaft and of its point.
inline void drawArrowOf(QPainter& painter, const QColor& color, const QPolygon& shaft,
                        const QPolygon& point)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QBrush(color), 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(color);
    painter.drawPolygon(shaft, Qt::WindingFill);
    painter.drawPolygon(point, Qt::WindingFill);
    painter.restore();
}

inline QPolygon triangle(const QPoint& a, const QPoint& b, const QPoint& c)
{
    return QPolygon({a, b, c});
}

/// `image` in blocks of `side` in device-independent pixels, summed up pixel by pixel.
inline QImage inBlocks(const QImage& image, int side)
{
    QImage blocks(image.size(), QImage::Format_ARGB32);
    QPainter painter(&blocks);
    const auto edge = [&](int number) {
        return qRound(qMin(number * side * image.devicePixelRatio(), 1e6));
    };
    for (int row = 0; edge(row) < image.height(); ++row) {
        for (int column = 0; edge(column) < image.width(); ++column) {
            const QRect cell = QRect(QPoint(edge(column), edge(row)),
                                     QPoint(edge(column + 1), edge(row + 1)) - QPoint(1, 1)) &
                               image.rect();
            if (cell.isEmpty())
                continue;
            int red = 0;
            int green = 0;
            int blue = 0;
            for (int y = cell.top(); y <= cell.bottom(); ++y) {
                const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
                for (int x = cell.left(); x <= cell.right(); ++x) {
                    red += qRed(line[x]);
                    green += qGreen(line[x]);
                    blue += qBlue(line[x]);
                }
            }
            const int count = cell.width() * cell.height();
            painter.fillRect(cell, QColor(red / count, green / count, blue / count));
        }
    }
    return blocks;
}
