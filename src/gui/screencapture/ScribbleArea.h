// SPDX-License-Identifier: MIT
#pragma once

#include "ArrowShape.h"

#include <QColor>
#include <QImage>
#include <QList>
#include <QMap>
#include <QPen>
#include <QPoint>
#include <QRect>
#include <QTimer>
#include <QWidget>

class ResizableRect;
class QTextEdit;

/// The annotation canvas: a transparent widget that owns the picture being annotated and turns
/// mouse input into drawing on it, with a pen, text boxes, shapes and a mosaic brush.
///
/// The parent widget paints image() beneath; the canvas itself paints only the shape being edited
/// and its frame. It must have the picture's size. Coordinates are those of the widget; the picture
/// has as many physical pixels for each as its device pixel ratio says. Shapes and texts
/// stay editable in their frame until they are committed: by a press outside the frame, a change of
/// tool, undo(), saveImage() or completeScribble(). Every committed edit can be undone.
///
/// Pictures are opaque and hold QRgb pixels. Undo restores these exactly; the mosaic does not
/// change pictures of other formats. GUI thread only.
class ScribbleArea : public QWidget
{
    Q_OBJECT

public:
    enum PAINT_TYPE : int { PAINT_SCRIBBLE = 0, PAINT_TEXT = 1, PAINT_GRAPH = 2, PAINT_MOSAIC = 3 };
    enum GRAPH_STATE : int { GRAPH_RECT = 0, GRAPH_ELLIPSE = 1, GRAPH_ARROW = 2 };

    /// An entry of the history: the changed rectangle's top-left corner in physical pixels, and its
    /// pixels before the edit XOR those after it.
    struct DiffRect {
        QPoint position;
        QImage image;
    };

    explicit ScribbleArea(QWidget* parent = nullptr);

    /// Starts over with `image`: pen tool, not modified, no history.
    void setImage(const QImage& image);
    void reset();
    /// Loads a picture. Returns false and changes nothing if the file holds no readable picture.
    bool openImage(const QString& fileName);
    /// Commits the shape or text being edited and writes the picture. Returns false if writing
    /// fails.
    bool saveImage(const QString& fileName, const char* fileFormat);
    /// Fills the picture with white. Adds no history entry, so it cannot be undone.
    void clearImage();
    QImage image() const { return m_image; }
    /// Commits the shape or text being edited.
    void completeScribble();

    void setPaintType(PAINT_TYPE type);
    void setPaintTypeToScribble();
    void setPaintTypeToText();
    void setPaintTypeToGraph();
    /// Also pixelates the current picture and clears the brush's track.
    void setPaintTypeToMosaic();
    void setGraphState(int state);
    /// Puts the frame into its initial arrow layout, bottom-left to top-right.
    void initArrow();

    void setScribblePen(const QPen& pen);
    void setRectPen(const QPen& pen);
    void setEllipsePen(const QPen& pen);
    void setArrowPen(const QPen& pen);
    /// Keeps only the width, the brush's diameter.
    void setMosaicPen(const QPen& pen);
    QPen scribblePen() const { return m_scribblePen; }
    QPen rectPen() const { return m_graphPens.value(GRAPH_RECT); }
    QPen ellipsePen() const { return m_graphPens.value(GRAPH_ELLIPSE); }
    QPen arrowPen() const { return m_graphPens.value(GRAPH_ARROW); }
    QPen mosaicPen() const;
    /// Sets the edge of a mosaic block, which must be positive. Takes effect 300 ms after
    /// the last call.
    void setMosaicBlur(int blur);
    /// Sets the point size of the whole text box.
    void setTextFontSize(int size);
    /// Sets the colour of what is typed next.
    void setTextColor(const QColor& color);

    /// Takes back the last edit. A shape or text being edited is committed first and is that edit.
    void undo();
    void redo();
    bool canUndo() const { return m_currentDiffIndex >= 1; }
    bool canRedo() const { return m_currentDiffIndex < m_diffRectStack.size(); }

    /// Draws an arrow from `rect.topLeft()` to `rect.bottomRight()`; the rectangle only carries the
    /// two points.
    static void drawArrow(QPainter& painter, const QRect& rect, const ArrowAttribute& attribute);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private slots:
    void onResizableRectChanged(const QRect& rect);
    void onupdateMosaicImage();

private:
    /// Gives tests access to the history.
    friend struct ScribbleAreaAccess;

    void drawLineTo(const QPoint& endPoint);
    void drawMosaic(const QPoint& from, const QPoint& to, int width);
    void updateParent();
    void updateChanged(const QRect& area);
    void updateMosaicImage();
    void resetMosaicTrack();
    /// Shows the brush as the cursor.
    void setMosaicCursorRadius(int diameter);

    void dragFrame(const QPoint& pos);
    void updateFrame();
    QRect frameArea() const;
    void finishResizableRect();
    void renderGraph(QPainter& painter);
    void drawGraph();
    QPen currentGraphPen() const;

    void initTextEdit();
    void ensureTextEdit();
    void placeTextEdit();
    void keepTextColor();
    void startText();
    bool drawText();

    QRect inPixels(const QRect& area) const;
    void initForDiff(const QPoint& pos);
    void saveDiffRect();
    void restoreDiffRect();
    void clearDiffRect();

    QImage m_image;
    bool m_modified = false;
    PAINT_TYPE m_paintType = PAINT_SCRIBBLE;
    QPen m_scribblePen;
    bool m_scribbling = false;
    bool m_mosaicking = false;
    int m_mosaicBlur = 2;
    int m_mosaicPenWidth = 16;
    QImage m_mosaicImage;
    QImage m_mosaicTrack;
    /// Bounds of what was drawn into the track, in physical pixels.
    QRect m_mosaicTracked;
    QTimer m_mosaicTimer;
    QPoint m_lastPoint;
    /// The mouse has moved since the left press.
    bool m_moved = false;
    bool m_creatingGraph = false;
    bool m_pressOutsideRect = false;
    ResizableRect* m_resizableRect = nullptr;
    /// frameArea() at the last paint event.
    QRect m_paintedFrame;
    QTextEdit* m_textEdit = nullptr;
    QColor m_textColor;
    int m_graphState = GRAPH_ELLIPSE;
    QMap<GRAPH_STATE, QPen> m_graphPens;
    QImage m_diffImage;
    QList<DiffRect> m_diffRectStack;
    QRect m_diffRect;
    int m_currentDiffIndex = 0;
};
