// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <qwindowdefs.h>

#include <xcb/xcb.h>

class QScreen;

/// The desktop in physical pixels, as the X server knows it. Qt tells places in coordinates that it
/// has scaled and rounded, on several screens differently for each.
///
/// GUI thread only. Falls back on Qt's rounded places on other platforms than X11.
class NativeDesktop
{
public:
    NativeDesktop();
    ~NativeDesktop();

    /// The window of which QScreen::grabWindow() grabs the whole desktop; 0 on other platforms.
    WId root() const { return m_root; }

    /// Returns whether the screens belong to a Wayland compositor, on which the platform is
    /// "wayland", or X11 that a server within the session (Xwayland) offers.
    bool isWayland() const { return m_isWayland; }

    /// Returns the size with which a window at (0, 0) covers all screens, in the coordinates of any
    /// of them; invalid on other platforms.
    QSize coveringSize() const;

    /// Returns the geometry of such a window, in coordinates of the screen on which Qt finds it.
    QRect coveringGeometry() const;

    /// Returns what such a window covers of the primary screen, in its own coordinates.
    QRect primaryScreen() const;

    /// Returns where the top-left corner of `window` is.
    QPoint posOf(const QWidget& window) const;

    /// Returns what a screen shows.
    static QRect pixelsOf(const QScreen& screen);

    /// Returns where the pointer is.
    QPoint pointerPos() const;

private:
    bool isXwayland() const;
    const QScreen* middleScreen() const;

    xcb_connection_t* m_connection = nullptr;
    xcb_window_t m_root = XCB_NONE;
    bool m_isWayland = false;

    Q_DISABLE_COPY(NativeDesktop)
};
