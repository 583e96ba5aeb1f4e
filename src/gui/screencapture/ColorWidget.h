// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QList>
#include <QRect>
#include <QWidget>

/// A palette of fixed size: a box with the current colour and two rows of eight colours beside it.
///
/// The widget frames the cell under the pointer; a left click chooses its colour. Coordinates are
/// pixels of the widget. GUI thread only.
class ColorWidget : public QWidget
{
    Q_OBJECT

public:
    explicit ColorWidget(QWidget* parent);

    /// Shows `c`, which need not be in the palette. Emits no signal.
    void setColor(const QColor& c);
    /// Returns the colour in the box. Before setColor(), it is invalid and painted black.
    QColor color() const { return m_currentColor; }
    /// Returns the cell in `row` 0 or 1 and `col` 0 to 7.
    QRect cellRect(int row, int col);

signals:
    /// Emitted when a click chooses another colour than the current one.
    void currentColorChanged(QColor c);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void initColors();
    bool isHovering() const;
    void paintCurrentColor(QPainter& painter) const;
    void paintCells(QPainter& painter);
    void paintHoverFrame(QPainter& painter);

    QColor m_currentColor;
    int m_hoverRow = -1;
    int m_hoverCol = -1;
    QList<QColor> m_colors;
};
