// SPDX-License-Identifier: MIT
#pragma once

#include "MagnifierWidget.h"
#include "ResizableRect.h"
#include "ScreenCaptureWnd.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPointer>
#include <QtTest>

/// A host's receiver: counts the results and keeps the last one.
class Receiver : public QObject
{
    Q_OBJECT

public:
    int count = 0;
    QImage image;
    bool finished = false;

public slots:
    void onCaptured(const QImage& picture, bool done)
    {
        ++count;
        image = picture;
        finished = done;
    }
    void onOther(const QImage& /*picture*/, bool /*done*/) { count += 100; }
};

/// One capture and the mouse in front of it. The window is gone when the probe is.
class CaptureProbe
{
public:
    CaptureProbe()
        : m_window(ScreenCaptureWnd::screenCaptureWnd())
    {
    }
    ~CaptureProbe() { delete m_window; }
    CaptureProbe(const CaptureProbe&) = delete;
    CaptureProbe& operator=(const CaptureProbe&) = delete;

    ScreenCaptureWnd* window() const { return m_window; }
    bool isGone() const { return m_window.isNull(); }
    ResizableRect* region() const { return m_window->findChild<ResizableRect*>(); }
    MagnifierWidget* loupe() const { return m_window->findChild<MagnifierWidget*>(); }
    QWidget* toolBar() const { return m_window->findChild<QWidget*>("mainToolBar"); }

    void press(const QPoint& p, Qt::MouseButton button = Qt::LeftButton) const
    {
        send(QEvent::MouseButtonPress, p, button, button);
    }
    void move(const QPoint& p, Qt::MouseButtons buttons = Qt::LeftButton) const
    {
        send(QEvent::MouseMove, p, Qt::NoButton, buttons);
    }
    void release(const QPoint& p, Qt::MouseButton button = Qt::LeftButton) const
    {
        send(QEvent::MouseButtonRelease, p, button, Qt::NoButton);
    }
    void doubleClick(const QPoint& p, Qt::MouseButton button = Qt::LeftButton) const
    {
        send(QEvent::MouseButtonDblClick, p, button, button);
    }
    void click(const QPoint& p, Qt::MouseButton button) const
    {
        press(p, button);
        release(p, button);
    }
    void drag(const QPoint& from, const QPoint& to) const
    {
        press(from);
        move(to);
        release(to);
    }

private:
    void send(QEvent::Type type, const QPoint& p, Qt::MouseButton button,
              Qt::MouseButtons buttons) const
    {
        QMouseEvent event(type, p, m_window->mapToGlobal(p), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(m_window, &event);
    }

    QPointer<ScreenCaptureWnd> m_window;
};

/// Brings the queued result to its receiver and deletes the window of an ended capture.
inline void deliver()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
