// SPDX-License-Identifier: MIT
#pragma once

#include "MagnifierWidget.h"
#include "Mouse.h"
#include "ResizableRect.h"
#include "ScreenCaptureWnd.h"

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
class CaptureProbe : public Mouse
{
public:
    CaptureProbe()
        : Mouse(ScreenCaptureWnd::screenCaptureWnd())
        , m_window(ScreenCaptureWnd::screenCaptureWnd())
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

private:
    QPointer<ScreenCaptureWnd> m_window;
};

/// Brings the queued result to its receiver and deletes the window of an ended capture.
inline void deliver()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
