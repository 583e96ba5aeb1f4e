// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>
#include <QGlyphRun>
#include <QPointF>
#include <QSizeF>
#include <array>

class QPaintDevice;
class QPainter;
class QRect;
class QSize;

/// Writes a size, as "640 x 480", in the middle of a rectangle.
///
/// The pixels are those of QPainter::drawText(), which lays the text out anew each time: too slow
/// for a number that changes with each move of the mouse. A font whose characters are all equally
/// wide is laid out once here, and its characters are put side by side.
class SizeText
{
public:
    /// In the painter's font and pen. Pixels of the painter.
    void draw(QPainter& painter, const QRect& area, const QSize& size);

private:
    /// Of the longest size, "-2147483648 x -2147483648".
    static constexpr int kMaxLength = 25;

    void write(const QSize& size);
    void layOut(const QFont& font, QPaintDevice* device);
    void takeGlyphs(const QGlyphRun& run);
    bool spell();
    void drawSpelled(QPainter& painter, const QRect& area) const;

    std::array<char, kMaxLength> m_text = {};
    int m_length = 0;
    /// The font that was laid out, its glyphs, and the room that each takes.
    QFont m_font;
    int m_dpi = 0;
    std::array<quint32, 12> m_glyphs = {};
    QSizeF m_cell;
    /// The text in glyphs; the run only points to the two arrays.
    std::array<quint32, kMaxLength> m_spelled = {};
    std::array<QPointF, kMaxLength> m_positions;
    QGlyphRun m_run;
};
