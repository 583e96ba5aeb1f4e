// SPDX-License-Identifier: MIT
#pragma once

#include "Pictures.h"
#include "ResizableRect.h"
#include "ScribbleArea.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTextEdit>
#include <QtTest>

using DiffRect = ScribbleArea::DiffRect;

struct ScribbleAreaAccess {
    static QList<DiffRect> history(const ScribbleArea& area) { return area.m_diffRectStack; }
    static int applied(const ScribbleArea& area) { return area.m_currentDiffIndex; }
    static bool modified(const ScribbleArea& area) { return area.m_modified; }
    static bool scribbling(const ScribbleArea& area) { return area.m_scribbling; }
    static bool rebuildPending(const ScribbleArea& area) { return area.m_mosaicTimer.isActive(); }
    static int rebuildDelay(const ScribbleArea& area) { return area.m_mosaicTimer.interval(); }
    static int rebuildRemaining(const ScribbleArea& area)
    {
        return area.m_mosaicTimer.remainingTime();
    }
    static void restore(ScribbleArea& area) { area.restoreDiffRect(); }
    static void drawText(ScribbleArea& area) { area.drawText(); }
    static void initTextEdit(ScribbleArea& area) { area.initTextEdit(); }
    static QImage pixelated(const ScribbleArea& area) { return area.m_mosaicImage; }
};

constexpr QSize kSize(200, 150);
const QColor kRed(251, 56, 56);

inline QImage picture(const QSize& size = kSize)
{
    QImage image(size, QImage::Format_RGB32);
    QRandomGenerator random(42);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, 0xff000000u | random.generate());
    }
    return image;
}

/// A canvas with a picture on it, and the mouse in front of it.
class Canvas : public ScribbleArea
{
public:
    explicit Canvas(const QImage& image = picture())
    {
        resize(image.isNull() ? kSize : image.size());
        setImage(image);
    }
    ResizableRect* frame() const { return findChild<ResizableRect*>(); }
    QTextEdit* textBox() const { return findChild<QTextEdit*>(); }
    QList<DiffRect> history() const { return ScribbleAreaAccess::history(*this); }
    bool modified() const { return ScribbleAreaAccess::modified(*this); }

    void press(const QPoint& p, Qt::MouseButton button = Qt::LeftButton,
               Qt::MouseButtons others = Qt::NoButton)
    {
        send(QEvent::MouseButtonPress, p, button, others | button);
    }
    void move(const QPoint& p, Qt::MouseButtons buttons = Qt::LeftButton)
    {
        send(QEvent::MouseMove, p, Qt::NoButton, buttons);
    }
    void release(const QPoint& p, Qt::MouseButton button = Qt::LeftButton,
                 Qt::MouseButtons others = Qt::NoButton)
    {
        send(QEvent::MouseButtonRelease, p, button, others);
    }
    void drag(const QPoint& from, const QPoint& to)
    {
        press(from);
        move(to);
        release(to);
    }

private:
    void send(QEvent::Type type, const QPoint& p, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, p, button, buttons, Qt::NoModifier);
        QApplication::sendEvent(this, &event);
    }
};

inline QPen scribblePen(const QColor& color = Qt::blue, int width = 2)
{
    return {QBrush(color), qreal(width), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

inline QRect edges(int left, int top, int right, int bottom)
{
    return {QPoint(left, top), QPoint(right, bottom)};
}
