// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QCursor>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPoint>
#include <QRect>

class QMouseEvent;
class QPainter;
class QWidget;

/// One row of an ArrowMap.
struct ArrowMapValue {
    ArrowMapValue(int k, int v)
        : key(k)
        , value(v)
    {
    }

    int key;
    int value;
};

/// A table from int to int that is built by chaining `<<`.
class ArrowMap : public QMap<int, int>
{
public:
    ArrowMap& operator<<(const ArrowMapValue& row)
    {
        insert(row.key, row.value);
        return *this;
    }
};

/// A movable, resizable rectangle with eight square handles.
///
/// It is not a widget: it lives on a host widget, keeps its geometry in that widget's coordinates
/// (pixels), follows the widget's mouse events as an event filter that consumes none of them, and
/// is painted by the widget, which calls render() from its own paint handler while isVisible().
///
/// The rectangle is kept as its raw edges: while a handle is dragged past the opposite edge the raw
/// rectangle is inverted, and it is normalized when the left button is released. Callers only ever
/// see rect(), which is normalized.
///
/// The host widget is the parent and owns the rectangle. GUI thread only.
class ResizableRect : public QObject
{
    Q_OBJECT

public:
    /// The sections of the rectangle. 0 to 7 are the handles; the numbers are part of the
    /// interface.
    enum SECTION {
        SECTION_INSIDE = -3,
        SECTION_OUTSIDE = -2,
        SECTION_BORDER = -1,
        SECTION_LEFT = 0,
        SECTION_RIGHT = 1,
        SECTION_TOP = 2,
        SECTION_BOTTOM = 3,
        SECTION_TOP_LEFT = 4,
        SECTION_TOP_RIGHT = 5,
        SECTION_BOTTOM_LEFT = 6,
        SECTION_BOTTOM_RIGHT = 7
    };

    /// The ends of an arrow whose frame this rectangle is; each sits on a corner section.
    enum ARROW_END { ARROW_TAIL = 1, ARROW_HEAD = 2 };

    /// Returns the edges that dragging `section` moves: one or two for a handle, otherwise none.
    static Qt::Edges edgesOf(int section);
    /// Returns `p` moved onto the given `edges` of `r`; an axis without an edge stays as it is.
    static QPoint snapped(const QPoint& p, Qt::Edges edges, const QRect& r);

    /// Constructs a hidden, enabled rectangle from `rect`, which is neither clamped nor normalized.
    ResizableRect(QWidget* widget, const QRect& rect);

    /// Clamps each edge to the widget independently, emits rectChanged() and repaints the old and
    /// the new area. Requires a host widget.
    void setRect(const QRect& rect);
    /// Returns the normalized rectangle, even in the middle of a drag.
    QRect rect() const;
    QPoint pos() const;
    /// Returns the area that painting the rectangle, its label and the shape inside can touch.
    QRect occupiedRect() const;

    /// Returns true up to 4 pixels outside every edge.
    bool contains(const QPoint& p) const;
    /// Returns the section under `p`. Where handles overlap, the one with the lower id wins.
    int wherePoint(const QPoint& p) const;

    /// Keeps the rectangle within `limits` from now on, instead of within the widget; a null
    /// rectangle undoes that.
    void setLimits(const QRect& limits) { m_limits = limits; }
    /// Moves `r` back inside the widget without resizing it.
    void ensureMovingRectInWidget(QRect& r);
    /// Clamps each edge of `r` to the widget independently; an inverted rectangle stays inverted.
    void ensureSizingRectInWidget(QRect& r);
    bool isRectInWidget(const QRect& r);
    void updateSectionRects();

    void setVisible(bool visible);
    bool isVisible() const { return m_visible; }
    /// Disabling restores the cursor that the host widget had at construction.
    void setEnabled(bool enabled);
    /// Paints a solid border and filled handles instead of a dashed border and white handles.
    void setBorderSolidPaint(bool solid);
    void setColor(const QColor& color);
    QColor getColor();
    /// Shows the "width x height" label above the rectangle.
    void setSizeInforVisible(bool visible);
    bool isSizeInforVisible() const { return m_sizeInforVisible; }
    /// Sets the pen width, in pixels, of the shape inside. At least 8, which covers the handles.
    void setGraphPenWidth(int w);
    /// Returns the section of the last left press, until the next one.
    int mousePressSection() const { return m_pressSection; }

    /// Puts the arrow's head on the top-right and its tail on the bottom-left corner.
    void initArrow();
    /// Moves the arrow's ends to the corners that take their place when `r` is flipped.
    void updateArrowRect(const QRect& r);
    QPoint getArrowRectPoint(int corner, const QRect& r);
    void setArrowRectPoint(int corner, const QPoint& p, QRect& r);
    /// Return the arrow's ends on the raw rectangle, or its top-left corner if there is no arrow.
    QPoint arrowTail();
    QPoint arrowHead();
    /// Reassign the corners so that the end is on the side of `p`. The rectangle does not change:
    /// the caller sets it afterwards.
    void setArrowTail(const QPoint& p);
    void setArrowHead(const QPoint& p);

    /// Paints border, handles and label. Changes the painter's state and does not restore it.
    void render(QPainter& painter);
    /// The same with a label that tells `size`.
    void render(QPainter& painter, const QSize& size);
    /// Returns the size label's rectangle in the host widget's coordinates.
    QRect sizeInforPaintRect() const;

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    /// Emitted by every setRect(), and so by each step of a drag. `rect` is normalized.
    void rectChanged(const QRect& rect, bool sizeChanged = true);

private:
    void init();
    QRect limits() const;
    void mousePressEventFilter(QMouseEvent* event);
    void mouseMoveEventFilter(QMouseEvent* event);
    void mouseReleaseEventFilter(QMouseEvent* event);
    void showCursorFor(int section);
    QRect draggedRect(const QPoint& pos);
    void moveArrowEnd(ARROW_END end, const QPoint& p);
    void repaint();
    void renderBorder(QPainter& painter) const;
    void renderHandles(QPainter& painter) const;
    void renderSizeInfor(QPainter& painter, const QSize& size) const;

    QWidget* m_widget;
    QCursor m_widgetCursor;
    QRect m_rect;
    QRect m_limits;
    ArrowMap m_arrowMap;
    QList<QRect> m_sectionRects;
    QList<int> m_sectionCursors;
    bool m_visible = false;
    bool m_enabled = true;
    int m_pressSection = SECTION_OUTSIDE;
    QPoint m_pressOffset;
    bool m_borderSolidPaint = false;
    QColor m_color = QColor("#8888ff");
    bool m_sizeInforVisible = false;
    int m_graphPenWidth = 8;
};
