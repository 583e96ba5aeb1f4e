// SPDX-License-Identifier: MIT
#pragma once

#include <QEvent>
#include <QHash>
#include <QObject>
#include <QTimer>

#include <xcb/xcb.h>

class NativeDesktop;
class QWindow;

/// Keeps a window that no X11 window manager manages above all others, lets it cover every screen,
/// and gives it the keyboard until the keeper is destroyed.
///
/// A window manager does both for the windows that it manages, but lets none of them cover every
/// screen. The keeper also looks after the dialogs that the application opens in the meantime:
/// these are not managed either, stand above the overlay and have the keyboard until they are
/// hidden. Those that are still open at the end are managed from then on. All other windows stay
/// below. Nothing is grabbed, so nothing outlives a process that is killed.
///
/// GUI thread only. Does nothing on other platforms than X11.
class OverlayKeeper : public QObject
{
    Q_OBJECT

public:
    /// To be created before `overlay` is shown, while another window still has the keyboard. The
    /// overlay and the desktop are not owned, and must outlive the keeper.
    OverlayKeeper(QWindow* overlay, const NativeDesktop& desktop);

    /// Gives the keyboard back to the window that had it.
    ~OverlayKeeper() override;

    /// Whether a window is one that has to be above the overlay.
    static bool isDialog(const QWindow* window);

    /// \cond
    bool eventFilter(QObject* watched, QEvent* event) override;
    /// \endcond

private:
    void keepInSession(QWindow& opened, QEvent::Type change);
    void readEvents();
    void handle(const xcb_generic_event_t& event);
    void windowAppeared(const xcb_map_notify_event_t& event);
    void windowMoved(const xcb_configure_notify_event_t& event);
    void askForKeyboard();
    xcb_atom_t atom(const char* name) const;
    void coverDesktop();
    void keepAbove(xcb_window_t managed);
    void keepKeyboard();
    xcb_window_t heir() const;
    bool mayHaveKeyboard(const QWindow* window) const;
    xcb_window_t focus() const;
    void giveFocus(xcb_window_t id);
    void announceFocus(xcb_window_t id);
    void letBeManaged(xcb_window_t id);
    void putAbove(xcb_window_t id, xcb_window_t other);

    xcb_window_t overlay() const;
    xcb_window_t root() const;

    QWindow* m_overlay;
    const NativeDesktop& m_desktop;
    xcb_connection_t* m_connection = nullptr;
    xcb_window_t m_formerFocus = XCB_NONE;
    /// Those of the open dialogs that are not managed meanwhile.
    QHash<QWindow*, Qt::WindowFlags> m_flags;
    QTimer m_pause;

    Q_DISABLE_COPY(OverlayKeeper)
};
