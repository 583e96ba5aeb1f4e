// SPDX-License-Identifier: MIT
#include "Driver.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

// X11's macros come last.
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

namespace
{

constexpr int kPatienceMs = 10000;
constexpr int kDragSteps = 8;
/// The desktop, and what it is below black of alpha 100.
constexpr unsigned long kWhite = 0xffffffUL;
constexpr unsigned long kDimmedWhite = 0x9b9b9bUL;
constexpr unsigned long kColorMask = 0xffffffUL;

} // namespace

struct Driver::Connection {
    Display* display = XOpenDisplay(nullptr);
    Window root = DefaultRootWindow(display);
};

Driver::Driver()
    : m_connection(new Connection)
{
}

Driver::~Driver()
{
    XCloseDisplay(m_connection->display);
    delete m_connection;
}

void Driver::moveTo(const QPoint& p)
{
    XTestFakeMotionEvent(m_connection->display, -1, p.x(), p.y(), CurrentTime);
    XFlush(m_connection->display);
}

void Driver::press()
{
    XTestFakeButtonEvent(m_connection->display, 1, True, CurrentTime);
    XFlush(m_connection->display);
    settle();
}

void Driver::release()
{
    XTestFakeButtonEvent(m_connection->display, 1, False, CurrentTime);
    XFlush(m_connection->display);
    settle();
}

void Driver::drag(const QPoint& from, const QPoint& to)
{
    moveTo(from);
    settle();
    press();
    for (int step = 1; step <= kDragSteps; ++step) {
        moveTo(from + (to - from) * (double(step) / kDragSteps));
        settle();
    }
    release();
}

unsigned long Driver::pixel(const QPoint& p)
{
    XImage* image = XGetImage(m_connection->display, m_connection->root, p.x(), p.y(), 1, 1,
                              AllPlanes, ZPixmap);
    const unsigned long value = XGetPixel(image, 0, 0) & kColorMask;
    XDestroyImage(image);
    return value;
}

void Driver::waitForDimmedCorners()
{
    waitForCorners([](unsigned long color) { return color == kDimmedWhite; });
}

void Driver::waitForCoveredCorners()
{
    waitForCorners([](unsigned long color) { return color != kWhite; });
}

void Driver::waitForCorners(bool (*arrived)(unsigned long color))
{
    const int right = DisplayWidth(m_connection->display, 0) - 1;
    const int bottom = DisplayHeight(m_connection->display, 0) - 1;
    QElapsedTimer timer;
    timer.start();
    for (const QPoint& corner :
         {QPoint(0, 0), QPoint(right, 0), QPoint(0, bottom), QPoint(right, bottom)}) {
        while (!arrived(pixel(corner))) {
            if (timer.elapsed() > kPatienceMs)
                qFatal("the screen was not covered");
        }
    }
}

void Driver::waitForWindow()
{
    waitForDimmedCorners();
    settle();
}

// Twice, since handling what came in the first time may have asked for more.
void Driver::settle()
{
    XSync(m_connection->display, False);
    for (int i = 0; i < 3; ++i) {
        QThread::msleep(15);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [] {}, Qt::BlockingQueuedConnection);
    }
}

double Driver::moveAndWait(const QPoint& p, const QPoint& watched)
{
    const unsigned long before = pixel(watched);
    QElapsedTimer timer;
    timer.start();
    moveTo(p);
    while (pixel(watched) == before) {
        if (timer.elapsed() > kPatienceMs)
            qFatal("nothing came of a move");
    }
    return double(timer.nsecsElapsed()) / 1e6;
}
