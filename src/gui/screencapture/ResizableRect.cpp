// SPDX-License-Identifier: MIT
#include "ResizableRect.h"

#include "PixelGrid.h"
#include "QtVersions.h"

#include <QEvent>
#include <QFont>
#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QWidget>

namespace
{

constexpr int kHandleSidePx = 8;
constexpr int kBorderBandPx = 4;
constexpr int kMinGraphPenWidthPx = 8;
constexpr qreal kBorderWidthPx = 1.0;

constexpr QSize kSizeLabelPx(100, 28);
constexpr int kSizeLabelPointSize = 14;
constexpr int kSizeLabelAlpha = 128;

using R = ResizableRect;

struct Handle {
    Qt::Edges edges;
    Qt::CursorShape cursor;
};

// By section, from SECTION_LEFT to SECTION_BOTTOM_RIGHT.
constexpr Handle kHandles[] = {
    {Qt::LeftEdge, Qt::SizeHorCursor},
    {Qt::RightEdge, Qt::SizeHorCursor},
    {Qt::TopEdge, Qt::SizeVerCursor},
    {Qt::BottomEdge, Qt::SizeVerCursor},
    {Qt::TopEdge | Qt::LeftEdge, Qt::SizeFDiagCursor},
    {Qt::TopEdge | Qt::RightEdge, Qt::SizeBDiagCursor},
    {Qt::BottomEdge | Qt::LeftEdge, Qt::SizeBDiagCursor},
    {Qt::BottomEdge | Qt::RightEdge, Qt::SizeFDiagCursor},
};

// The section that takes the place of another when the rectangle is flipped.
const ArrowMap s_horizontalArrowMap =
    ArrowMap() << ArrowMapValue(R::SECTION_LEFT, R::SECTION_RIGHT)
               << ArrowMapValue(R::SECTION_RIGHT, R::SECTION_LEFT)
               << ArrowMapValue(R::SECTION_TOP_LEFT, R::SECTION_TOP_RIGHT)
               << ArrowMapValue(R::SECTION_TOP_RIGHT, R::SECTION_TOP_LEFT)
               << ArrowMapValue(R::SECTION_BOTTOM_LEFT, R::SECTION_BOTTOM_RIGHT)
               << ArrowMapValue(R::SECTION_BOTTOM_RIGHT, R::SECTION_BOTTOM_LEFT);

const ArrowMap s_verticalArrowMap = ArrowMap()
                                    << ArrowMapValue(R::SECTION_TOP, R::SECTION_BOTTOM)
                                    << ArrowMapValue(R::SECTION_BOTTOM, R::SECTION_TOP)
                                    << ArrowMapValue(R::SECTION_TOP_LEFT, R::SECTION_BOTTOM_LEFT)
                                    << ArrowMapValue(R::SECTION_BOTTOM_LEFT, R::SECTION_TOP_LEFT)
                                    << ArrowMapValue(R::SECTION_TOP_RIGHT, R::SECTION_BOTTOM_RIGHT)
                                    << ArrowMapValue(R::SECTION_BOTTOM_RIGHT, R::SECTION_TOP_RIGHT);

// Intended: the edges pair left with top and right with bottom.
const ArrowMap s_mirrorArrowMap = ArrowMap()
                                  << ArrowMapValue(R::SECTION_LEFT, R::SECTION_TOP)
                                  << ArrowMapValue(R::SECTION_TOP, R::SECTION_LEFT)
                                  << ArrowMapValue(R::SECTION_RIGHT, R::SECTION_BOTTOM)
                                  << ArrowMapValue(R::SECTION_BOTTOM, R::SECTION_RIGHT)
                                  << ArrowMapValue(R::SECTION_TOP_LEFT, R::SECTION_BOTTOM_RIGHT)
                                  << ArrowMapValue(R::SECTION_BOTTOM_RIGHT, R::SECTION_TOP_LEFT)
                                  << ArrowMapValue(R::SECTION_TOP_RIGHT, R::SECTION_BOTTOM_LEFT)
                                  << ArrowMapValue(R::SECTION_BOTTOM_LEFT, R::SECTION_TOP_RIGHT);

// Returns nullptr if nothing is flipped. To QRect, an edge one pixel past its opposite is width 0.
const ArrowMap* flipTable(const QRect& r)
{
    const bool flippedX = r.width() < 0;
    const bool flippedY = r.height() < 0;
    if (flippedX && flippedY)
        return &s_mirrorArrowMap;
    if (flippedX)
        return &s_horizontalArrowMap;
    return flippedY ? &s_verticalArrowMap : nullptr;
}

// An arrow's end is on a corner. Any other section has no edges here.
Qt::Edges cornerEdges(int section)
{
    const Qt::Edges edges = R::edgesOf(section);
    return section >= R::SECTION_TOP_LEFT ? edges : Qt::Edges();
}

void moveEdges(QRect& r, Qt::Edges edges, const QPoint& p)
{
    if (edges & Qt::LeftEdge)
        r.setLeft(p.x());
    if (edges & Qt::RightEdge)
        r.setRight(p.x());
    if (edges & Qt::TopEdge)
        r.setTop(p.y());
    if (edges & Qt::BottomEdge)
        r.setBottom(p.y());
}

QPen borderPen(const QColor& color, Qt::PenStyle style)
{
    return {QBrush(color, Qt::SolidPattern), kBorderWidthPx, style, Qt::RoundCap, Qt::RoundJoin};
}

// In whole pixels. QFontMetrics::tightBoundingRect() of Qt 6 is wider.
int inkWidth(const QFont& font, const QString& text)
{
    QPainterPath outlines;
    outlines.addText(0, 0, font, text);
    return qFloor(outlines.boundingRect().width());
}

// Condenses a text whose ink is wider than the area, so that no digit is lost. A right-to-left
// layout would put the height first.
void drawCondensed(QPainter& painter, const QRect& area, const QString& text)
{
    constexpr int flags = Qt::AlignCenter | Qt::TextForceLeftToRight;
    if (inkWidth(painter.font(), text) <= area.width()) {
        painter.drawText(area, flags, text);
        return;
    }
    const int width = painter.fontMetrics().horizontalAdvance(text);
    painter.save();
    painter.translate(area.topLeft());
    painter.scale(qreal(area.width()) / width, 1);
    painter.drawText(QRect(0, 0, width, area.height()), flags, text);
    painter.restore();
}

// Scaled lines lie half outside of their coordinates.
QRect painted(const QWidget& widget, const QRect& occupied)
{
    const int beyond = pixels::ratioOf(widget) == 1 ? 0 : 1;
    return occupied.adjusted(-beyond, -beyond, beyond, beyond);
}

} // namespace

ResizableRect::ResizableRect(QWidget* widget, const QRect& rect)
    : QObject(widget)
    , m_widget(widget)
    , m_rect(rect)
{
    if (m_widget) {
        m_widget->installEventFilter(this);
        m_widgetCursor = m_widget->cursor();
    }
    init();
    updateSectionRects();
}

void ResizableRect::init()
{
    for (const Handle& handle : kHandles) {
        m_sectionRects.append(QRect(0, 0, kHandleSidePx, kHandleSidePx));
        m_sectionCursors.append(handle.cursor);
    }
}

Qt::Edges ResizableRect::edgesOf(int section)
{
    const bool isHandle = section >= SECTION_LEFT && section <= SECTION_BOTTOM_RIGHT;
    return isHandle ? kHandles[section].edges : Qt::Edges();
}

QPoint ResizableRect::snapped(const QPoint& p, Qt::Edges edges, const QRect& r)
{
    const int x = edges & Qt::LeftEdge ? r.left() : edges & Qt::RightEdge ? r.right() : p.x();
    const int y = edges & Qt::TopEdge ? r.top() : edges & Qt::BottomEdge ? r.bottom() : p.y();
    return {x, y};
}

void ResizableRect::setRect(const QRect& rect)
{
    const QRect old = occupiedRect();
    m_rect = rect;
    ensureSizingRectInWidget(m_rect);
    updateSectionRects();
    emit rectChanged(this->rect(), true);
    if (m_widget)
        m_widget->update(painted(*m_widget, old | occupiedRect()));
}

QRect ResizableRect::rect() const
{
    return qtversions::normalized(m_rect);
}

QPoint ResizableRect::pos() const
{
    return rect().topLeft();
}

QRect ResizableRect::occupiedRect() const
{
    const int half = m_graphPenWidth / 2;
    const QRect area = rect().adjusted(-half, -half, half + 1, half + 1);
    return m_sizeInforVisible ? area | sizeInforPaintRect() : area;
}

bool ResizableRect::contains(const QPoint& p) const
{
    return wherePoint(p) != SECTION_OUTSIDE;
}

int ResizableRect::wherePoint(const QPoint& p) const
{
    for (int id = SECTION_LEFT; id <= SECTION_BOTTOM_RIGHT; ++id) {
        if (m_sectionRects.at(id).contains(p))
            return id;
    }
    constexpr int band = kBorderBandPx;
    if (!m_rect.adjusted(-band, -band, band, band).contains(p))
        return SECTION_OUTSIDE;
    return m_rect.adjusted(band, band, -band, -band).contains(p) ? SECTION_INSIDE : SECTION_BORDER;
}

// Intended: the right and bottom edges may reach the widget's width and height, one pixel beyond
// its last column and row.
QRect ResizableRect::limits() const
{
    Q_ASSERT(m_widget != NULL);
    return m_limits.isNull() ? QRect(QPoint(), m_widget->size() + QSize(1, 1)) : m_limits;
}

void ResizableRect::ensureMovingRectInWidget(QRect& r)
{
    const QRect within = limits();
    int dx = r.left() < within.left() ? within.left() - r.left() : 0;
    if (r.right() > within.right())
        dx = within.right() - r.right();
    r.moveLeft(r.left() + dx);

    int dy = r.top() < within.top() ? within.top() - r.top() : 0;
    if (r.bottom() > within.bottom())
        dy = within.bottom() - r.bottom();
    r.moveTop(r.top() + dy);
}

void ResizableRect::ensureSizingRectInWidget(QRect& r)
{
    const QRect within = limits();
    r.setLeft(qBound(within.left(), r.left(), within.right()));
    r.setRight(qBound(within.left(), r.right(), within.right()));
    r.setTop(qBound(within.top(), r.top(), within.bottom()));
    r.setBottom(qBound(within.top(), r.bottom(), within.bottom()));
}

bool ResizableRect::isRectInWidget(const QRect& r)
{
    const QRect within = limits();
    const QRect n = qtversions::normalized(r);
    return n.top() >= within.top() && n.bottom() <= within.bottom() && n.left() >= within.left() &&
           n.right() <= within.right();
}

// The outset of one pixel on the left and top only is intended. The raw rectangle is used, so that
// each handle stays on its own edge while the rectangle is inverted.
void ResizableRect::updateSectionRects()
{
    const QPoint base = m_rect.topLeft() - QPoint(1, 1);
    const int w = m_rect.width();
    const int h = m_rect.height();
    const QPoint middle = base + QPoint(w / 2, h / 2);
    const QRect anchors(base, base + QPoint(w, h));
    for (int id = SECTION_LEFT; id <= SECTION_BOTTOM_RIGHT; ++id)
        m_sectionRects[id].moveCenter(snapped(middle, edgesOf(id), anchors));
}

void ResizableRect::repaint()
{
    if (m_widget)
        m_widget->update(painted(*m_widget, occupiedRect()));
}

void ResizableRect::setVisible(bool visible)
{
    m_visible = visible;
    repaint();
}

void ResizableRect::setEnabled(bool enabled)
{
    m_enabled = enabled;
    if (!enabled)
        m_widget->setCursor(m_widgetCursor);
}

void ResizableRect::setBorderSolidPaint(bool solid)
{
    m_borderSolidPaint = solid;
    repaint();
}

void ResizableRect::setColor(const QColor& color)
{
    m_color = color;
    repaint();
}

QColor ResizableRect::getColor()
{
    return m_color;
}

// Intended: the repainted area is the one without the label when the label is switched off.
void ResizableRect::setSizeInforVisible(bool visible)
{
    m_sizeInforVisible = visible;
    repaint();
}

void ResizableRect::setGraphPenWidth(int w)
{
    m_graphPenWidth = qMax(w, kMinGraphPenWidthPx);
}

void ResizableRect::initArrow()
{
    m_arrowMap[ARROW_HEAD] = SECTION_TOP_RIGHT;
    m_arrowMap[ARROW_TAIL] = SECTION_BOTTOM_LEFT;
}

void ResizableRect::updateArrowRect(const QRect& r)
{
    const ArrowMap* table = flipTable(r);
    if (!table)
        return;
    m_arrowMap[ARROW_HEAD] = table->value(m_arrowMap[ARROW_HEAD]);
    m_arrowMap[ARROW_TAIL] = table->value(m_arrowMap[ARROW_TAIL]);
}

QPoint ResizableRect::getArrowRectPoint(int corner, const QRect& r)
{
    return snapped(r.topLeft(), cornerEdges(corner), r);
}

void ResizableRect::setArrowRectPoint(int corner, const QPoint& p, QRect& r)
{
    moveEdges(r, cornerEdges(corner), p);
}

QPoint ResizableRect::arrowTail()
{
    return getArrowRectPoint(m_arrowMap[ARROW_TAIL], m_rect);
}

QPoint ResizableRect::arrowHead()
{
    return getArrowRectPoint(m_arrowMap[ARROW_HEAD], m_rect);
}

void ResizableRect::setArrowTail(const QPoint& p)
{
    moveArrowEnd(ARROW_TAIL, p);
}

void ResizableRect::setArrowHead(const QPoint& p)
{
    moveArrowEnd(ARROW_HEAD, p);
}

// Intended: only the corners are reassigned; the moved copy is dropped.
void ResizableRect::moveArrowEnd(ARROW_END end, const QPoint& p)
{
    QRect moved = m_rect;
    setArrowRectPoint(m_arrowMap[end], p, moved);
    updateArrowRect(moved);
}

bool ResizableRect::eventFilter(QObject* watched, QEvent* event)
{
    if (m_visible && m_enabled && watched == m_widget) {
        Q_ASSERT(event != NULL);
        switch (event->type()) {
        case QEvent::MouseButtonPress:
            mousePressEventFilter(static_cast<QMouseEvent*>(event));
            break;
        case QEvent::MouseButtonRelease:
            mouseReleaseEventFilter(static_cast<QMouseEvent*>(event));
            break;
        case QEvent::MouseMove:
            mouseMoveEventFilter(static_cast<QMouseEvent*>(event));
            break;
        default:
            break;
        }
    }
    return QObject::eventFilter(watched, event);
}

void ResizableRect::mousePressEventFilter(QMouseEvent* event)
{
    Q_ASSERT(event != NULL);
    if (event->button() != Qt::LeftButton)
        return;
    const QPoint pos = pixels::coordinatesUnder(*event, *m_widget);
    m_pressSection = wherePoint(pos);
    m_pressOffset = pos - rect().topLeft();
}

void ResizableRect::mouseReleaseEventFilter(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    updateArrowRect(m_rect);
    if (m_pressSection == SECTION_OUTSIDE)
        return;
    m_rect = qtversions::normalized(m_rect);
    updateSectionRects();
    event->accept();
}

void ResizableRect::mouseMoveEventFilter(QMouseEvent* event)
{
    Q_ASSERT(event != NULL);
    Q_ASSERT(m_widget != NULL);
    const QPoint pos = pixels::coordinatesUnder(*event, *m_widget);
    if (!(event->buttons() & Qt::LeftButton))
        showCursorFor(wherePoint(pos));
    else if (m_pressSection != SECTION_OUTSIDE)
        setRect(draggedRect(pos));
}

void ResizableRect::showCursorFor(int section)
{
    if (section == SECTION_OUTSIDE)
        m_widget->setCursor(m_widgetCursor);
    else if (section == SECTION_BORDER || section == SECTION_INSIDE)
        m_widget->setCursor(QCursor(Qt::SizeAllCursor));
    else
        m_widget->setCursor(QCursor(static_cast<Qt::CursorShape>(m_sectionCursors.at(section))));
}

// A moved rectangle is first shifted back inside and then clipped, so one that is larger than the
// widget is cut down to it by the first move.
QRect ResizableRect::draggedRect(const QPoint& pos)
{
    QRect r = m_rect;
    const bool isMoved = m_pressSection == SECTION_INSIDE || m_pressSection == SECTION_BORDER;
    if (isMoved) {
        r.moveTopLeft(pos - m_pressOffset);
        ensureMovingRectInWidget(r);
    } else {
        moveEdges(r, edgesOf(m_pressSection), pos);
    }
    ensureSizingRectInWidget(r);
    return r;
}

void ResizableRect::render(QPainter& painter)
{
    render(painter, rect().size());
}

void ResizableRect::render(QPainter& painter, const QSize& size)
{
    painter.setRenderHint(QPainter::Antialiasing, false);
    renderBorder(painter);
    renderHandles(painter);
    if (m_sizeInforVisible)
        renderSizeInfor(painter, size);
}

// Fills with the brush that the painter has.
void ResizableRect::renderBorder(QPainter& painter) const
{
    painter.setPen(borderPen(m_color, m_borderSolidPaint ? Qt::SolidLine : Qt::DashLine));
    painter.drawRect(m_rect);
}

void ResizableRect::renderHandles(QPainter& painter) const
{
    painter.setPen(borderPen(m_color, Qt::SolidLine));
    painter.setBrush(QBrush(m_borderSolidPaint ? m_color : QColor(Qt::white), Qt::SolidPattern));
    for (const QRect& handle : m_sectionRects)
        painter.drawRect(handle);
}

void ResizableRect::renderSizeInfor(QPainter& painter, const QSize& size) const
{
    const QRect label = sizeInforPaintRect();
    painter.setBrush(QBrush(QColor(0, 0, 0, kSizeLabelAlpha), Qt::SolidPattern));
    painter.setPen(Qt::NoPen);
    painter.drawRect(label);

    painter.setPen(Qt::white);
    painter.setFont(QFont(QObject::tr("Courier New"), kSizeLabelPointSize));
    drawCondensed(painter, label, QStringLiteral("%1 x %2").arg(size.width()).arg(size.height()));
}

QRect ResizableRect::sizeInforPaintRect() const
{
    const QPoint above = pos() - QPoint(0, kSizeLabelPx.height());
    return {above.y() < 0 ? pos() : above, kSizeLabelPx};
}
