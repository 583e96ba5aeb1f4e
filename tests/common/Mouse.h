// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QMouseEvent>
#include <QPointer>
#include <QVector>
#include <QWidget>

/// The mouse in front of a widget, with positions in its coordinates. Events are handled at once
/// and reach the widget whatever lies above it; input through the X server is in Screen.h. To be
/// used as it is, or as a base of what a test drives.
class Mouse
{
public:
    explicit Mouse(QWidget* widget)
        : m_widget(widget)
    {
    }
    void press(const QPoint& p, Qt::MouseButton button = Qt::LeftButton,
               Qt::MouseButtons others = Qt::NoButton) const
    {
        send(QEvent::MouseButtonPress, p, button, others | button);
    }
    void move(const QPoint& p, Qt::MouseButtons held = Qt::LeftButton) const
    {
        send(QEvent::MouseMove, p, Qt::NoButton, held);
    }
    void hover(const QPoint& p) const { move(p, Qt::NoButton); }
    void release(const QPoint& p, Qt::MouseButton button = Qt::LeftButton,
                 Qt::MouseButtons others = Qt::NoButton) const
    {
        send(QEvent::MouseButtonRelease, p, button, others);
    }
    void click(const QPoint& p, Qt::MouseButton button = Qt::LeftButton) const
    {
        press(p, button);
        release(p, button);
    }
    void doubleClick(const QPoint& p, Qt::MouseButton button = Qt::LeftButton) const
    {
        send(QEvent::MouseButtonDblClick, p, button, button);
    }
    /// One move to each point after the first.
    void drag(const QVector<QPoint>& path) const
    {
        press(path.first());
        for (int i = 1; i < path.size(); ++i)
            move(path[i]);
        release(path.last());
    }
    void drag(const QPoint& from, const QPoint& to) const { drag(QVector<QPoint>{from, to}); }
    /// Drags out a rectangle.
    void drag(const QRect& rect) const { drag(rect.topLeft(), rect.bottomRight()); }

private:
    void send(QEvent::Type type, const QPoint& p, Qt::MouseButton button,
              Qt::MouseButtons buttons) const
    {
        QMouseEvent event(type, p, m_widget->mapToGlobal(p), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(m_widget, &event);
    }

    QPointer<QWidget> m_widget;
};
