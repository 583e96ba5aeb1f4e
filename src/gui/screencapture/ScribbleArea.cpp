// SPDX-License-Identifier: MIT
#include "ScribbleArea.h"

#include "MosaicPixels.h"
#include "PictureDifference.h"
#include "PixelGrid.h"
#include "QtVersions.h"
#include "ResizableRect.h"
#include "StyleSheets.h"

#include <QBrush>
#include <QCursor>
#include <QImageReader>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QScopeGuard>
#include <QTextEdit>
#include <QTransform>

namespace
{

constexpr int kMosaicRebuildDelayMs = 300;
constexpr int kStrokeMarginPx = 2;
constexpr int kTextInsetPx = 4;
constexpr int kMinDragPx = 4;
constexpr qreal kScribblePenWidthPx = 2.0;
constexpr qreal kShapePenWidthPx = 2.0;
constexpr qreal kArrowPenWidthPx = 6.0;

const QColor kShapeColor(251, 56, 56, 255);

QPen shapePen(qreal width, Qt::PenJoinStyle join)
{
    return {QBrush(kShapeColor, Qt::SolidPattern), width, Qt::SolidLine, Qt::RoundCap, join};
}

QRect strokeArea(const QPoint& from, const QPoint& to, int width)
{
    const int margin = width / 2 + kStrokeMarginPx;
    return qtversions::normalized(QRect(from, to)).adjusted(-margin, -margin, margin, margin);
}

// Intended: a drag counts from 3 pixels to the right or down, but from 5 to the left or up, because
// QRect's width is its right edge minus its left edge plus one.
bool isDrag(const QRect& r)
{
    return qAbs(r.width()) >= kMinDragPx || qAbs(r.height()) >= kMinDragPx;
}

// Does nothing without a picture: a canvas over the empty region of a mere click has none.
template <typename Draw>
void drawOn(QImage& picture, Draw draw)
{
    if (picture.isNull())
        return;
    QPainter painter(&picture);
    // Qt itself scales a painter only above 1.
    const qreal ratio = picture.devicePixelRatio();
    if (ratio < 1)
        painter.scale(ratio, ratio);
    draw(painter);
}

// The canvas may start within a physical pixel, and the picture is shown from the nearest one on.
// So a shape is shown where it will be drawn.
void startAtWholePixel(QPainter& painter)
{
    const QTransform device = painter.deviceTransform();
    const auto distance = [&device](qreal start) {
        return (pixels::nearestEdge(start, 1) - start) / device.m11();
    };
    painter.translate(distance(device.dx()), distance(device.dy()));
}

ArrowAttribute attributeOf(const QPen& pen)
{
    ArrowAttribute attribute;
    attribute.setWidth(pen.width());
    return attribute;
}

QRect arrowPoints(ResizableRect& frame)
{
    return {frame.arrowTail(), frame.arrowHead()};
}

} // namespace

ScribbleArea::ScribbleArea(QWidget* parent)
    : QWidget(parent)
    , m_scribblePen(QBrush(Qt::blue, Qt::SolidPattern), kScribblePenWidthPx, Qt::SolidLine,
                    Qt::RoundCap, Qt::RoundJoin)
{
    setAttribute(Qt::WA_StaticContents);
    setMouseTracking(true);
    setCursor(QCursor(Qt::CrossCursor));

    m_graphPens[GRAPH_RECT] = shapePen(kShapePenWidthPx, Qt::MiterJoin);
    m_graphPens[GRAPH_ELLIPSE] = shapePen(kShapePenWidthPx, Qt::RoundJoin);
    m_graphPens[GRAPH_ARROW] = shapePen(kArrowPenWidthPx, Qt::RoundJoin);

    m_resizableRect = new ResizableRect(this, QRect());
    m_resizableRect->setVisible(false);
    connect(m_resizableRect, SIGNAL(rectChanged(const QRect&)), this,
            SLOT(onResizableRectChanged(const QRect&)));
    connect(m_resizableRect, &ResizableRect::rectChanged, this, &ScribbleArea::updateFrame);

    connect(&m_mosaicTimer, SIGNAL(timeout()), this, SLOT(onupdateMosaicImage()));
    m_mosaicTimer.setSingleShot(true);
    m_mosaicTimer.setInterval(kMosaicRebuildDelayMs);
}

void ScribbleArea::setImage(const QImage& image)
{
    reset();
    m_image = image;
    update();
}

void ScribbleArea::reset()
{
    setPaintTypeToScribble();
    // Discards a shape whose drag has not ended.
    if (m_creatingGraph)
        m_resizableRect->setRect(QRect());
    m_creatingGraph = false;
    m_modified = false;
    clearDiffRect();
}

bool ScribbleArea::openImage(const QString& fileName)
{
    QImageReader reader(fileName);
    reader.setDecideFormatFromContent(true);
    const QImage loaded = reader.read();
    if (loaded.isNull())
        return false;
    setImage(loaded);
    return true;
}

bool ScribbleArea::saveImage(const QString& fileName, const char* fileFormat)
{
    finishResizableRect();
    if (!m_image.save(fileName, fileFormat))
        return false;
    m_modified = false;
    return true;
}

// Intended: adds no history entry.
void ScribbleArea::clearImage()
{
    m_image.fill(qRgb(255, 255, 255));
    m_modified = true;
    update();
}

void ScribbleArea::completeScribble()
{
    finishResizableRect();
}

void ScribbleArea::setPaintType(PAINT_TYPE type)
{
    if (m_resizableRect->isVisible())
        finishResizableRect();
    m_paintType = type;
    m_resizableRect->setGraphPenWidth(type == PAINT_GRAPH ? currentGraphPen().width() : 0);
    update();
}

void ScribbleArea::setPaintTypeToScribble()
{
    setPaintType(PAINT_SCRIBBLE);
    setCursor(QCursor(Qt::CrossCursor));
}

void ScribbleArea::setPaintTypeToText()
{
    setPaintType(PAINT_TEXT);
    setCursor(QCursor(Qt::CrossCursor));
}

void ScribbleArea::setPaintTypeToGraph()
{
    setPaintType(PAINT_GRAPH);
    setCursor(QCursor(Qt::CrossCursor));
}

void ScribbleArea::setPaintTypeToMosaic()
{
    setMosaicCursorRadius(m_mosaicPenWidth);
    setPaintType(PAINT_MOSAIC);
    updateMosaicImage();
    resetMosaicTrack();
}

void ScribbleArea::setGraphState(int state)
{
    m_graphState = state;
    if (m_paintType == PAINT_GRAPH)
        m_resizableRect->setGraphPenWidth(currentGraphPen().width());
}

void ScribbleArea::initArrow()
{
    m_resizableRect->initArrow();
}

QPen ScribbleArea::currentGraphPen() const
{
    return m_graphPens.value(static_cast<GRAPH_STATE>(m_graphState));
}

void ScribbleArea::setScribblePen(const QPen& pen)
{
    m_scribblePen = pen;
}

void ScribbleArea::setRectPen(const QPen& pen)
{
    m_graphPens[GRAPH_RECT] = pen;
    if (m_paintType == PAINT_GRAPH && m_graphState == GRAPH_RECT)
        m_resizableRect->setGraphPenWidth(pen.width());
    update();
}

void ScribbleArea::setEllipsePen(const QPen& pen)
{
    m_graphPens[GRAPH_ELLIPSE] = pen;
    if (m_paintType == PAINT_GRAPH && m_graphState == GRAPH_ELLIPSE)
        m_resizableRect->setGraphPenWidth(pen.width());
    update();
}

// Intended: unlike the other two, the frame does not learn the new width.
void ScribbleArea::setArrowPen(const QPen& pen)
{
    m_graphPens[GRAPH_ARROW] = pen;
    update();
}

void ScribbleArea::setMosaicPen(const QPen& pen)
{
    m_mosaicPenWidth = pen.width();
    setMosaicCursorRadius(m_mosaicPenWidth);
}

QPen ScribbleArea::mosaicPen() const
{
    QPen pen;
    pen.setWidth(m_mosaicPenWidth);
    return pen;
}

void ScribbleArea::mousePressEvent(QMouseEvent* event)
{
    const QPoint pos = pixels::coordinatesUnder(*event, *this);
    if (m_resizableRect->isVisible() && !m_resizableRect->contains(pos))
        finishResizableRect();
    if (event->button() != Qt::LeftButton)
        return;

    m_lastPoint = pos;
    m_moved = false;
    if (m_resizableRect->isVisible()) {
        m_pressOutsideRect = !m_resizableRect->contains(m_lastPoint);
    } else {
        m_pressOutsideRect = false;
        // Intended: whatever the tool.
        if (m_graphState == GRAPH_ARROW) {
            initArrow();
            m_resizableRect->setArrowTail(m_lastPoint);
            m_resizableRect->setArrowHead(m_lastPoint);
            updateFrame();
        }
    }

    if (m_paintType == PAINT_SCRIBBLE) {
        m_scribbling = true;
        initForDiff(m_lastPoint);
    } else if (m_paintType == PAINT_MOSAIC) {
        m_mosaicking = true;
        initForDiff(m_lastPoint);
    }
}

void ScribbleArea::mouseMoveEvent(QMouseEvent* event)
{
    if (!(event->buttons() & Qt::LeftButton))
        return;
    const QPoint pos = pixels::coordinatesUnder(*event, *this);
    if (m_paintType == PAINT_SCRIBBLE && m_scribbling) {
        drawLineTo(pos);
    } else if (m_paintType == PAINT_MOSAIC && m_mosaicking) {
        drawMosaic(m_lastPoint, pos, m_mosaicPenWidth);
        m_lastPoint = pos;
    } else if (m_paintType == PAINT_TEXT || m_paintType == PAINT_GRAPH) {
        dragFrame(pos);
    }
    if (!m_moved)
        updateParent();
    m_moved = true;
}

// The parent paints the picture: all of it at the first move and at the release, and what changed
// at the other moves.
void ScribbleArea::updateParent()
{
    if (parentWidget())
        parentWidget()->update();
}

void ScribbleArea::updateChanged(const QRect& area)
{
    update(area);
    if (parentWidget())
        parentWidget()->update(area.translated(pos()));
}

void ScribbleArea::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const QPoint pos = pixels::coordinatesUnder(*event, *this);
    if (m_paintType == PAINT_SCRIBBLE && m_scribbling) {
        // Intended: m_scribbling stays set.
        drawLineTo(pos);
        saveDiffRect();
    } else if (m_paintType == PAINT_MOSAIC && m_mosaicking) {
        m_mosaicking = false;
        drawMosaic(m_lastPoint, pos, m_mosaicPenWidth);
        m_lastPoint = pos;
        saveDiffRect();
    } else if (m_creatingGraph) {
        m_creatingGraph = false;
        if (m_paintType == PAINT_TEXT)
            startText();
        m_resizableRect->setVisible(true);
    }
    updateParent();
}

// A stroke of one point leaves a dot. Qt draws none for a round-capped line without length.
void ScribbleArea::drawLineTo(const QPoint& endPoint)
{
    const bool isDot =
        !m_moved && endPoint == m_lastPoint && m_scribblePen.capStyle() == Qt::RoundCap;
    drawOn(m_image, [&](QPainter& painter) {
        painter.setPen(m_scribblePen);
        if (isDot)
            painter.drawPoint(endPoint);
        else
            painter.drawLine(m_lastPoint, endPoint);
    });
    m_modified = true;

    const QRect area = strokeArea(m_lastPoint, endPoint, m_scribblePen.width());
    updateChanged(area);
    m_lastPoint = endPoint;
    m_diffRect |= area;
}

void ScribbleArea::dragFrame(const QPoint& pos)
{
    const QRect dragged(m_lastPoint, pos);
    if (m_creatingGraph) {
        if (m_graphState == GRAPH_ARROW)
            m_resizableRect->setArrowHead(pos);
        m_resizableRect->setRect(qtversions::normalized(dragged));
        return;
    }
    const bool frameDragsItself = m_resizableRect->isVisible() && !m_pressOutsideRect;
    if (frameDragsItself || !isDrag(dragged))
        return;
    if (m_resizableRect->isVisible())
        finishResizableRect();
    m_resizableRect->setRect(qtversions::normalized(dragged));
    m_creatingGraph = true;
}

// Intended: in shape mode every call draws the shape and records an entry, shown or not.
void ScribbleArea::finishResizableRect()
{
    initForDiff(QPoint(0, 0));
    if (m_paintType == PAINT_TEXT && m_textEdit) {
        if (drawText())
            saveDiffRect();
        m_textEdit->hide();
    } else if (m_paintType == PAINT_GRAPH) {
        drawGraph();
        saveDiffRect();
    }
    m_resizableRect->setVisible(false);
    m_resizableRect->setRect(QRect());
}

void ScribbleArea::drawGraph()
{
    drawOn(m_image, [this](QPainter& painter) { renderGraph(painter); });
    m_modified = true;
    // Intended: the frame grown by half the pen, even where the shape reaches beyond it. At other
    // ratios than 1 by one more, for the soft edge and for half a pixel of an odd pen.
    const int half = currentGraphPen().width() / 2 + (m_image.devicePixelRatio() == 1 ? 0 : 1);
    m_diffRect = m_resizableRect->rect().adjusted(-half, -half, half + 1, half + 1);
}

void ScribbleArea::renderGraph(QPainter& painter)
{
    painter.setPen(currentGraphPen());
    const QRect r = m_resizableRect->rect();
    switch (m_graphState) {
    case GRAPH_RECT:
        painter.drawRect(r);
        break;
    case GRAPH_ELLIPSE:
        painter.setRenderHint(QPainter::Antialiasing, true);
        painter.drawEllipse(r);
        break;
    case GRAPH_ARROW:
        drawArrow(painter, arrowPoints(*m_resizableRect), attributeOf(currentGraphPen()));
        break;
    default:
        break;
    }
}

void ScribbleArea::drawArrow(QPainter& painter, const QRect& rect, const ArrowAttribute& attribute)
{
    painter.save();
    painter.setBrush(QBrush(painter.pen().color(), Qt::SolidPattern));
    QPen outline = painter.pen();
    outline.setWidth(1);
    painter.setPen(outline);
    painter.setRenderHint(QPainter::Antialiasing, true);

    const ArrowShape arrow(rect, attribute);
    painter.drawPolygon(arrow.shaft.data(), int(arrow.shaft.size()), Qt::WindingFill);
    painter.drawPolygon(arrow.head.data(), int(arrow.head.size()), Qt::WindingFill);
    painter.restore();
}

// Repaints the old place, to clear it, and the new one.
void ScribbleArea::updateFrame()
{
    updateChanged(m_paintedFrame);
    updateChanged(frameArea());
}

// Returns the area that the frame and its shape touch. An arrow's head reaches beyond its frame,
// and so do the miter joins of a rectangle without width or height.
QRect ScribbleArea::frameArea() const
{
    const QRect frame = m_resizableRect->occupiedRect();
    if (m_paintType != PAINT_GRAPH)
        return frame;
    const QPen pen = currentGraphPen();
    QRect shape = m_resizableRect->rect();
    if (m_graphState == GRAPH_ARROW)
        shape = ArrowShape(arrowPoints(*m_resizableRect), attributeOf(pen)).boundingRect();
    const int width = shape.isEmpty() ? int(2 * pen.miterLimit() * pen.width()) : pen.width();
    return frame | strokeArea(shape.topLeft(), shape.bottomRight(), width);
}

void ScribbleArea::onResizableRectChanged(const QRect& /*rect*/)
{
    if (m_paintType == PAINT_TEXT && m_textEdit)
        placeTextEdit();
}

void ScribbleArea::placeTextEdit()
{
    constexpr int inset = kTextInsetPx;
    m_textEdit->setGeometry(m_resizableRect->rect().adjusted(inset, inset, -inset, -inset));
}

void ScribbleArea::initTextEdit()
{
    Q_ASSERT(m_textEdit == NULL);
    m_textEdit = new QTextEdit(this);
    m_textEdit->setWindowFlags(Qt::FramelessWindowHint);
    m_textEdit->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_textEdit->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_textEdit->setLineWrapMode(QTextEdit::NoWrap);
    m_textEdit->setUndoRedoEnabled(false);
    // The context menu would inherit the transparent style sheet and be unreadable.
    m_textEdit->setContextMenuPolicy(Qt::NoContextMenu);
    m_textEdit->setStyleSheet(style::kTransparent);
    connect(m_textEdit, &QTextEdit::textChanged, this, &ScribbleArea::keepTextColor);
    placeTextEdit();
    m_textEdit->hide();
}

// An emptied QTextDocument has lost its character format.
void ScribbleArea::keepTextColor()
{
    if (m_textColor.isValid() && m_textEdit->document()->isEmpty())
        m_textEdit->setTextColor(m_textColor);
}

void ScribbleArea::ensureTextEdit()
{
    if (!m_textEdit)
        initTextEdit();
}

void ScribbleArea::startText()
{
    ensureTextEdit();
    placeTextEdit();
    m_textEdit->setText(QString());
    m_textEdit->show();
    m_textEdit->setFocus();
}

void ScribbleArea::setTextFontSize(int size)
{
    ensureTextEdit();
    QFont font = m_textEdit->currentFont();
    font.setPointSize(size);
    m_textEdit->setFont(font);
    m_textEdit->update();
}

void ScribbleArea::setTextColor(const QColor& color)
{
    ensureTextEdit();
    m_textColor = color;
    m_textEdit->setTextColor(color);
    m_textEdit->update();
}

bool ScribbleArea::drawText()
{
    Q_ASSERT(m_textEdit != NULL);
    if (m_textEdit->toPlainText().trimmed().isEmpty())
        return false;
    const QPoint pos = m_textEdit->mapToParent(QPoint(0, 0));
    // QTextEdit draws no text cursor without focus, save in a graphics scene, which does not tell
    // it.
    m_textEdit->clearFocus();
    const auto restore = qScopeGuard([this, flags = m_textEdit->textInteractionFlags()] {
        m_textEdit->setTextInteractionFlags(flags);
    });
    m_textEdit->setTextInteractionFlags(Qt::NoTextInteraction);
    drawOn(m_image, [&](QPainter& painter) {
        m_textEdit->render(&painter, pos, QRegion(),
                           QWidget::DrawWindowBackground | QWidget::DrawChildren);
    });
    m_modified = true;
    m_diffRect = m_textEdit->rect();
    m_diffRect.moveTopLeft(pos);
    return true;
}

void ScribbleArea::drawMosaic(const QPoint& from, const QPoint& to, int width)
{
    const QRect area = strokeArea(from, to, width);
    drawOn(m_mosaicTrack, [&](QPainter& painter) {
        QPen pen = painter.pen();
        pen.setColor(QColor(255, 255, 255, 255));
        pen.setWidth(width);
        pen.setCapStyle(Qt::RoundCap);
        painter.setPen(pen);
        if (from == to)
            painter.drawPoint(from);
        else
            painter.drawLine(from, to);
    });
    m_mosaicTracked |= inPixels(area);

    // Intended: the bounds are the widget's, and the last column and row of the area are left out.
    const QPoint first(qMax(area.left(), 0), qMax(area.top(), 0));
    const QPoint last(qMin(area.right(), this->width()) - 1, qMin(area.bottom(), height()) - 1);
    mosaic::copyWhereWhite(m_image, m_mosaicImage, m_mosaicTrack, inPixels(QRect(first, last)));
    updateChanged(area);
    m_diffRect |= area;
}

void ScribbleArea::updateMosaicImage()
{
    if (m_mosaicImage.size() != m_image.size())
        m_mosaicImage = QImage(m_image.size(), QImage::Format_ARGB32);
    mosaic::makeMosaicImage(m_mosaicImage, m_image, m_mosaicBlur);
}

void ScribbleArea::onupdateMosaicImage()
{
    updateMosaicImage();
}

void ScribbleArea::resetMosaicTrack()
{
    if (m_mosaicTrack.size() != m_image.size()) {
        m_mosaicTrack = QImage(m_image.size(), QImage::Format_ARGB32);
        m_mosaicTracked = m_mosaicTrack.rect();
    }
    m_mosaicTrack.setDevicePixelRatio(1);
    drawOn(m_mosaicTrack, [this](QPainter& painter) {
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(m_mosaicTracked, Qt::transparent);
    });
    m_mosaicTrack.setDevicePixelRatio(m_image.devicePixelRatio());
    m_mosaicTracked = QRect();
}

void ScribbleArea::setMosaicBlur(int blur)
{
    m_mosaicBlur = blur;
    m_mosaicTimer.start();
}

void ScribbleArea::setMosaicCursorRadius(int diameter)
{
    const int side = pixels::nearestEdge(diameter, devicePixelRatioF());
    QImage circle(side, side, QImage::Format_ARGB32);
    // A brush without width keeps the previous cursor.
    if (circle.isNull())
        return;
    circle.setDevicePixelRatio(devicePixelRatioF());
    circle.fill(QColor(0, 0, 0, 0));
    drawOn(circle, [&](QPainter& painter) {
        painter.drawEllipse(QRect(QPoint(1, 1), QSize(diameter - 2, diameter - 2)));
    });
    // Where Qt shows it, the hot spot is in physical pixels.
    setCursor(QCursor(QPixmap::fromImage(circle), side / 2, side / 2));
}

// Returns all pixels of the picture that an area of the widget touches.
QRect ScribbleArea::inPixels(const QRect& area) const
{
    return pixels::outward(area, m_image.devicePixelRatio());
}

void ScribbleArea::initForDiff(const QPoint& pos)
{
    m_diffImage = m_image;
    m_diffRect = QRect(pos, pos);
}

void ScribbleArea::saveDiffRect()
{
    m_diffRectStack.erase(m_diffRectStack.begin() + m_currentDiffIndex, m_diffRectStack.end());
    const QRect changed = inPixels(m_diffRect);
    m_diffRectStack.append({changed.topLeft(), difference::between(m_diffImage, m_image, changed)});
    ++m_currentDiffIndex;
}

void ScribbleArea::restoreDiffRect()
{
    Q_ASSERT(m_currentDiffIndex >= 0 && m_currentDiffIndex < m_diffRectStack.size());
    const DiffRect& entry = m_diffRectStack.at(m_currentDiffIndex);
    difference::apply(m_image, entry.position, entry.image);
    // A picture on whole physical pixels may reach beyond a widget that is not.
    updateChanged(pixels::outward(m_image.rect(), 1 / m_image.devicePixelRatio()));
}

void ScribbleArea::undo()
{
    if (m_resizableRect->isVisible())
        finishResizableRect();
    if (!canUndo())
        return;
    if (m_textEdit && m_textEdit->isVisible()) {
        m_textEdit->hide();
        m_resizableRect->setVisible(false);
    }
    --m_currentDiffIndex;
    restoreDiffRect();
}

void ScribbleArea::redo()
{
    if (!canRedo())
        return;
    restoreDiffRect();
    ++m_currentDiffIndex;
}

void ScribbleArea::clearDiffRect()
{
    m_diffRectStack.clear();
    m_currentDiffIndex = 0;
}

void ScribbleArea::paintEvent(QPaintEvent* /*event*/)
{
    m_paintedFrame = frameArea();
    QPainter painter(this);
    startAtWholePixel(painter);
    if (m_paintType == PAINT_GRAPH)
        renderGraph(painter);
    if (m_resizableRect->isVisible())
        m_resizableRect->render(painter);
}
