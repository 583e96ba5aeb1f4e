// SPDX-License-Identifier: MIT
#include "SizeText.h"

#include <QPainter>
#include <QRawFont>
#include <QRect>
#include <QTextLayout>
#include <algorithm>
#include <charconv>
#include <cmath>

namespace
{

// The glyphs are kept in this order.
const char kCharacters[] = "0123456789 x";
constexpr int kBlank = 10;
constexpr int kTimes = 11;

int glyphNumber(char character)
{
    if (character == ' ')
        return kBlank;
    return character == 'x' ? kTimes : character - '0';
}

// Text is placed in 64ths of a pixel, and rounded towards zero.
constexpr qreal kPlacesPerPx = 64;

qreal placed(qreal position)
{
    return std::trunc(position * kPlacesPerPx) / kPlacesPerPx;
}

// Text from right to left is put into another order.
bool runsLeftToRight(const QPainter& painter)
{
    return painter.layoutDirection() != Qt::RightToLeft;
}

// Whether a pixel of the painter is one of the device.
bool isOnPixels(const QPainter& painter)
{
    const QTransform& transform = painter.deviceTransform();
    const QPointF moved(transform.dx(), transform.dy());
    return transform.type() <= QTransform::TxTranslate && moved == moved.toPoint();
}

bool isDecorated(const QFont& font)
{
    return font.underline() || font.overline() || font.strikeOut();
}

bool areEvenlySpaced(const QVector<QPointF>& positions, qreal advance)
{
    for (int i = 0; i < positions.size(); ++i) {
        if (positions.at(i) != QPointF(i * advance, positions.first().y()))
            return false;
    }
    return true;
}

} // namespace

void SizeText::draw(QPainter& painter, const QRect& area, const QSize& size)
{
    const int dpi = painter.device()->logicalDpiY();
    if (m_font != painter.font() || m_dpi != dpi) {
        m_dpi = dpi;
        layOut(painter.font(), painter.device());
    }
    write(size);
    if (runsLeftToRight(painter) && isOnPixels(painter) && spell())
        drawSpelled(painter, area);
    else
        painter.drawText(area, Qt::AlignCenter, QString::fromLatin1(m_text.data(), m_length));
}

void SizeText::write(const QSize& size)
{
    char* const last = m_text.data() + m_text.size();
    char* end = std::to_chars(m_text.data(), last, size.width()).ptr;
    for (const char character : {' ', 'x', ' '})
        *end++ = character;
    end = std::to_chars(end, last, size.height()).ptr;
    m_length = int(end - m_text.data());
}

void SizeText::layOut(const QFont& font, QPaintDevice* device)
{
    m_font = font;
    m_run.clear();
    const QString characters = QString::fromLatin1(kCharacters);
    QTextLayout layout(characters, font, device);
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    m_cell = QSizeF(line.naturalTextWidth() / characters.size(), line.height());
    const QList<QGlyphRun> runs = layout.glyphRuns();
    if (runs.size() == 1 && !isDecorated(font))
        takeGlyphs(runs.first());
}

// A font whose characters differ in width is left out.
void SizeText::takeGlyphs(const QGlyphRun& run)
{
    const QVector<quint32> glyphs = run.glyphIndexes();
    const QVector<QPointF> positions = run.positions();
    if (glyphs.size() != int(m_glyphs.size()) || !areEvenlySpaced(positions, m_cell.width()))
        return;
    std::copy(glyphs.begin(), glyphs.end(), m_glyphs.begin());
    for (size_t i = 0; i < m_positions.size(); ++i)
        m_positions[i] = QPointF(qreal(i) * m_cell.width(), positions.first().y());
    m_run.setRawFont(run.rawFont());
}

// Fails where there are no glyphs to spell with, or none for a minus.
bool SizeText::spell()
{
    if (!m_run.rawFont().isValid() || std::count(m_text.data(), m_text.data() + m_length, '-') > 0)
        return false;
    std::transform(m_text.data(), m_text.data() + m_length, m_spelled.begin(),
                   [this](char character) { return m_glyphs[size_t(glyphNumber(character))]; });
    m_run.setRawData(m_spelled.data(), m_positions.data(), m_length);
    return true;
}

// What does not fit is cut off, as in laid out text.
void SizeText::drawSpelled(QPainter& painter, const QRect& area) const
{
    const QSizeF needed(m_length * m_cell.width(), m_cell.height());
    const QPointF topLeft(placed(area.x() + (area.width() - needed.width()) / 2),
                          placed(area.y() + (area.height() - needed.height()) / 2));
    if (needed.width() <= area.width() && needed.height() <= area.height()) {
        painter.drawGlyphRun(topLeft, m_run);
        return;
    }
    painter.save();
    painter.setClipRect(area, Qt::IntersectClip);
    painter.drawGlyphRun(topLeft, m_run);
    painter.restore();
}
