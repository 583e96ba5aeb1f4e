// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractTextDocumentLayout>
#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPolygon>
#include <QRect>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocument>
#include <QVector>
#include <QWidget>

// Drawings with which tests compare what the canvas draws.

/// A stretch of text in one colour.
struct ColouredText {
    QString text;
    QColor color;
};

/// `image` with the text in `box`, without the help of a text box.
inline QImage withText(QImage image, const QRect& box, const QFont& font,
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
    QPainter painter(&image);
    painter.setClipRect(box);
    painter.translate(box.topLeft());
    document.drawContents(&painter);
    return image;
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

/// `image` in blocks of `side` pixels, summed up pixel by pixel.
inline QImage inBlocks(const QImage& image, int side)
{
    QImage blocks(image.size(), QImage::Format_ARGB32);
    QPainter painter(&blocks);
    for (int y = 0; y < image.height(); y += side) {
        for (int x = 0; x < image.width(); x += side) {
            const QRect cell = QRect(x, y, side, side) & image.rect();
            int red = 0;
            int green = 0;
            int blue = 0;
            for (int row = cell.top(); row <= cell.bottom(); ++row) {
                const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(row));
                for (int column = cell.left(); column <= cell.right(); ++column) {
                    red += qRed(line[column]);
                    green += qGreen(line[column]);
                    blue += qBlue(line[column]);
                }
            }
            const int count = cell.width() * cell.height();
            painter.fillRect(cell, QColor(red / count, green / count, blue / count));
        }
    }
    return blocks;
}
