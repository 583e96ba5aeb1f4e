// SPDX-License-Identifier: MIT
#include "ColorWidget.h"

#include <QMouseEvent>
#include <QPainter>

namespace
{

constexpr int ROWS = 2;
constexpr int COLS = 8;

constexpr QSize kSizePx(174, 38);
constexpr QRect kCurrentColorBox(QPoint(4, 4), QSize(30, 30));
constexpr QPoint kGridOriginPx(38, 4);
constexpr int kCellPitchPx = 17;
constexpr QSize kCellSizePx(13, 13);

// An outline stands one pixel up and to the left of what it frames.
QRect outlineOf(const QRect& r)
{
    return r.adjusted(-1, -1, -1, -1);
}

} // namespace

ColorWidget::ColorWidget(QWidget* parent)
    : QWidget(parent)
{
    setMouseTracking(true);
    setFixedSize(kSizePx);
    initColors();
}

void ColorWidget::initColors()
{
    m_colors << QColor(0, 0, 0) << QColor(128, 128, 128) << QColor(128, 0, 0)
             << QColor(247, 136, 58) << QColor(48, 132, 48) << QColor(56, 90, 211)
             << QColor(128, 0, 128) << QColor(0, 153, 153);
    m_colors << QColor(255, 255, 255) << QColor(192, 192, 192) << QColor(251, 56, 56)
             << QColor(255, 255, 0) << QColor(153, 204, 0) << QColor(56, 148, 228)
             << QColor(243, 27, 243) << QColor(22, 220, 220);
}

void ColorWidget::setColor(const QColor& c)
{
    m_currentColor = c;
    update();
}

QRect ColorWidget::cellRect(int row, int col)
{
    Q_ASSERT(row < ROWS);
    Q_ASSERT(col < COLS);
    return {kGridOriginPx + QPoint(col, row) * kCellPitchPx, kCellSizePx};
}

bool ColorWidget::isHovering() const
{
    return m_hoverRow >= 0 && m_hoverCol >= 0;
}

// Integer division truncates toward zero: pixels just left of and above the grid get its first
// column and row. QRect::contains() rejects them.
void ColorWidget::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint p = event->pos() - kGridOriginPx;
    m_hoverRow = p.y() / kCellPitchPx;
    m_hoverCol = p.x() / kCellPitchPx;
    const bool inGrid =
        m_hoverRow >= 0 && m_hoverRow < ROWS && m_hoverCol >= 0 && m_hoverCol < COLS;
    if (!inGrid || !cellRect(m_hoverRow, m_hoverCol).contains(event->pos())) {
        m_hoverRow = -1;
        m_hoverCol = -1;
    }
    update();
}

void ColorWidget::leaveEvent(QEvent* /*event*/)
{
    m_hoverRow = -1;
    m_hoverCol = -1;
    update();
}

// Intended: a press chooses the cell that the last move hovered, wherever the press is.
void ColorWidget::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !isHovering())
        return;
    const QColor chosen = m_colors.at(m_hoverRow * COLS + m_hoverCol);
    if (chosen != m_currentColor) {
        m_currentColor = chosen;
        emit currentColorChanged(m_currentColor);
    }
    update();
}

void ColorWidget::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setPen(Qt::gray);
    paintCurrentColor(painter);
    paintCells(painter);
    if (isHovering())
        paintHoverFrame(painter);
}

void ColorWidget::paintCurrentColor(QPainter& painter) const
{
    painter.fillRect(kCurrentColorBox, m_currentColor);
    painter.drawRect(outlineOf(kCurrentColorBox));
}

void ColorWidget::paintCells(QPainter& painter)
{
    for (int row = 0; row < ROWS; ++row) {
        for (int col = 0; col < COLS; ++col) {
            const QRect cell = cellRect(row, col);
            painter.fillRect(cell, m_colors.at(row * COLS + col));
            painter.drawRect(outlineOf(cell));
        }
    }
}

void ColorWidget::paintHoverFrame(QPainter& painter)
{
    const QRect inner = outlineOf(cellRect(m_hoverRow, m_hoverCol));
    painter.setPen(Qt::white);
    painter.drawRect(inner);
    painter.setPen(Qt::gray);
    painter.drawRect(inner.adjusted(-1, -1, 1, 1));
}
