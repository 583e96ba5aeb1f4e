// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QWidget>

/// The least that a widget can do in the place of the capture window: asks for the same rectangles
/// and fills each pixel once by an opaque blit from two prepared pictures.
class BareOverlay : public QWidget
{
public:
    enum Kind {
        FirstFrame,  ///< shows the dimmed picture
        Selecting,   ///< a region follows the pointer
        Moving,      ///< a region is dragged out, then moved
        Resizing,    ///< a region is dragged out, then its corner follows the pointer
        Loupe,       ///< a square follows the pointer
        Stroke,      ///< a line is drawn; the changed pixels are asked for
        WholeWindow, ///< a line is drawn; everything is asked for
    };

    explicit BareOverlay(Kind kind);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void setRegion(const QRect& region);
    void drawTo(const QPoint& p);

    Kind m_kind;
    QImage m_bright;
    QImage m_dimmed;
    QRect m_region;
    QRect m_loupe;
    QPoint m_last;
    int m_drags = 0;
};
