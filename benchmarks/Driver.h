// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>

/// The hand at the mouse and the eye on the screen: a connection to the X server of its own, to be
/// used from one thread, which is not the one that paints.
class Driver
{
public:
    Driver();
    ~Driver();
    Driver(const Driver&) = delete;
    Driver& operator=(const Driver&) = delete;

    void moveTo(const QPoint& p);
    void press();
    void release();
    /// With some moves between, each seen by the application.
    void drag(const QPoint& from, const QPoint& to);

    /// Waits until the screen is dimmed and comes to rest.
    void waitForWindow();
    void waitForDimmedCorners();
    /// Waits until a white screen is another colour in its corners.
    void waitForCoveredCorners();
    /// Waits until the main thread of the application has nothing to do.
    void settle();
    /// The milliseconds from moving to `p` until the pixel at `watched` is another.
    double moveAndWait(const QPoint& p, const QPoint& watched);

private:
    void waitForCorners(bool (*arrived)(unsigned long color));
    unsigned long pixel(const QPoint& p);

    struct Connection;
    Connection* m_connection;
};
