// SPDX-License-Identifier: MIT
#pragma once

#include "Access.h"
#include "Mouse.h"
#include "Pictures.h"
#include "ResizableRect.h"
#include "ScribbleArea.h"

#include <QScreen>
#include <QTemporaryDir>
#include <QTextEdit>
#include <QtMath>

using DiffRect = ScribbleArea::DiffRect;

constexpr QSize kSize(200, 150);
const QColor kRed(251, 56, 56);

/// The device pixel ratio that a test runs at; QT_SCALE_FACTOR sets it.
inline qreal ratio()
{
    return qApp->primaryScreen()->devicePixelRatio();
}

/// All physical pixels that an area of the canvas touches.
inline QRect inPixels(const QRect& area)
{
    if (area.isEmpty())
        return {};
    const QPoint end(qCeil((area.right() + 1) * ratio()), qCeil((area.bottom() + 1) * ratio()));
    return {QPoint(qFloor(area.left() * ratio()), qFloor(area.top() * ratio())),
            end - QPoint(1, 1)};
}

inline QImage picture()
{
    QImage image = noise(inPixels(QRect(QPoint(), kSize)).size(), 42);
    image.setDevicePixelRatio(ratio());
    return image;
}

/// A canvas with a picture on it, and the mouse in front of it.
class Canvas : public ScribbleArea, public Mouse
{
public:
    using Mouse::move;
    explicit Canvas(const QImage& image = picture())
        : Mouse(this)
    {
        resize(image.isNull() ? kSize : image.size() / image.devicePixelRatio());
        setImage(image);
    }
    ResizableRect* frame() const { return findChild<ResizableRect*>(); }
    QTextEdit* textBox() const { return findChild<QTextEdit*>(); }
    int entries() const { return ScribbleAreaAccess::history(*this).size(); }
    /// The area that an entry of the history holds, in physical pixels.
    QRect areaOf(int entry) const
    {
        const DiffRect diff = ScribbleAreaAccess::history(*this).at(entry);
        return {diff.position, diff.image.size()};
    }
    bool modified() const { return ScribbleAreaAccess::modified(*this); }
    void setGraphTool(int state)
    {
        setPaintTypeToGraph();
        setGraphState(state);
    }
};

inline QPen roundPen(const QColor& color = Qt::blue, int width = 2)
{
    return {QBrush(color), qreal(width), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

/// `image` with a line from each point to the next.
inline QImage withLines(const QImage& image, const QPen& pen, const QVector<QPoint>& path)
{
    return drawnOn(image, [&](QPainter& painter) {
        painter.setPen(pen);
        for (int i = 1; i < path.size(); ++i)
            painter.drawLine(path[i - 1], path[i]);
    });
}

inline QRect edges(int left, int top, int right, int bottom)
{
    return {QPoint(left, top), QPoint(right, bottom)};
}
