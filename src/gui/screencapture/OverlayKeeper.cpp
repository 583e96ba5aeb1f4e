// SPDX-License-Identifier: MIT
#include "OverlayKeeper.h"

#include "NativeDesktop.h"
#include "XcbReply.h"

#include <QEvent>
#include <QGuiApplication>
#include <QSocketNotifier>
#include <QWindow>

#include <algorithm>
#include <cstring>
#include <vector>

namespace
{

// Another program that takes the keyboard back each time is answered no more often than that.
constexpr int kPauseMs = 20;

QWindow* ownWindow(xcb_window_t id)
{
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (window->handle() && window->winId() == id)
            return window;
    }
    return nullptr;
}

// One that was open before is managed, and stays below.
bool isUnmanagedDialog(const QWindow* window)
{
    return OverlayKeeper::isDialog(window) && window->flags() & Qt::BypassWindowManagerHint;
}

// Menus, lists and tool tips are never managed.
bool standsAboveOverlay(const QWindow* window)
{
    return isUnmanagedDialog(window) ||
           (window && (window->type() == Qt::Popup || window->type() == Qt::ToolTip));
}

/// The windows of a display, from the lowest to the highest.
std::vector<xcb_window_t> windowsFromBelow(xcb_connection_t* connection, xcb_window_t root)
{
    const auto tree =
        xcb::owned(xcb_query_tree_reply(connection, xcb_query_tree(connection, root), nullptr));
    if (!tree)
        return {};
    const xcb_window_t* const first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

} // namespace

// A connection of its own: another that waits for a reply would take its events without notice.
OverlayKeeper::OverlayKeeper(QWindow* overlay, const NativeDesktop& desktop)
    : m_overlay(overlay)
    , m_desktop(desktop)
{
    if (!desktop.root())
        return;
    m_connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(m_connection))
        return;
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection, root(), XCB_CW_EVENT_MASK, &mask);
    if (desktop.isWayland()) {
        askForKeyboard();
        connect(qApp, &QGuiApplication::focusWindowChanged, this, [this](const QWindow* focused) {
            if (!focused)
                giveFocus(heir());
        });
    }
    // Comes back once the server has set the mask, so that the overlay does not appear unnoticed.
    m_formerFocus = focus();

    auto* notifier =
        new QSocketNotifier(xcb_get_file_descriptor(m_connection), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &OverlayKeeper::readEvents);
    m_pause.setSingleShot(true);
    m_pause.setInterval(kPauseMs);
    connect(&m_pause, &QTimer::timeout, this, [this] {
        keepKeyboard();
        readEvents();
    });
    qApp->installEventFilter(this);
}

bool OverlayKeeper::isDialog(const QWindow* window)
{
    return window && (window->type() == Qt::Dialog || window->modality() != Qt::NonModal);
}

OverlayKeeper::~OverlayKeeper()
{
    if (!m_connection)
        return;
    for (auto dialog = m_flags.cbegin(); dialog != m_flags.cend(); ++dialog) {
        letBeManaged(static_cast<xcb_window_t>(dialog.key()->winId()));
        dialog.key()->setFlags(dialog.value());
    }
    // In a Wayland session that is the compositor's, and the grab ends with the overlay.
    if (m_formerFocus && !m_desktop.isWayland())
        giveFocus(m_formerFocus);
    // The server drops what it has not read yet when a client goes away: wait until it has.
    focus();
    xcb_disconnect(m_connection);
}

// The X server has a window manager manage a window or not when the window appears. Qt asks for the
// keyboard, too, for a modal dialog, but so that it reverts to the root window; by the time that a
// window learns that it has the keyboard, Qt has done so.
bool OverlayKeeper::eventFilter(QObject* watched, QEvent* event)
{
    auto* window = qobject_cast<QWindow*>(watched);
    if (standsAboveOverlay(window) && m_desktop.isWayland())
        keepInSession(*window, event->type());
    if (event->type() == QEvent::Show && isDialog(window) && !isUnmanagedDialog(window)) {
        m_flags.insert(window, window->flags());
        window->setFlags(window->flags() | Qt::BypassWindowManagerHint);
    } else if (event->type() == QEvent::Hide && m_flags.contains(window)) {
        window->setFlags(m_flags.take(window));
    } else if (event->type() == QEvent::FocusIn && mayHaveKeyboard(window)) {
        if (window->winId() == focus())
            giveFocus(static_cast<xcb_window_t>(window->winId()));
        // Those that came before the reply are not announced any more.
        readEvents();
    }
    return QObject::eventFilter(watched, event);
}

// When a window disappears, the compositor gives the keyboard to the window that it belongs to, if
// any, and Qt has ended the grab of a list.
void OverlayKeeper::keepInSession(QWindow& opened, QEvent::Type change)
{
    if (change == QEvent::Show && !opened.transientParent())
        opened.setTransientParent(m_overlay);
    if (change == QEvent::Hide)
        giveFocus(heir());
}

void OverlayKeeper::readEvents()
{
    while (const auto event = xcb::owned(xcb_poll_for_event(m_connection)))
        handle(*event);
}

void OverlayKeeper::handle(const xcb_generic_event_t& event)
{
    switch (event.response_type) {
    case XCB_MAP_NOTIFY:
        windowAppeared(reinterpret_cast<const xcb_map_notify_event_t&>(event));
        break;
    case XCB_CONFIGURE_NOTIFY:
        windowMoved(reinterpret_cast<const xcb_configure_notify_event_t&>(event));
        break;
    case XCB_FOCUS_OUT:
        if (!m_desktop.isWayland())
            keepKeyboard();
        break;
    default:
        break;
    }
}

void OverlayKeeper::windowAppeared(const xcb_map_notify_event_t& event)
{
    const QWindow* window = ownWindow(event.window);
    if (mayHaveKeyboard(window)) {
        const std::uint32_t mask = XCB_EVENT_MASK_FOCUS_CHANGE;
        xcb_change_window_attributes(m_connection, event.window, XCB_CW_EVENT_MASK, &mask);
        // A window that is shown again appears where it was in the stack.
        const std::uint32_t above = XCB_STACK_MODE_ABOVE;
        xcb_configure_window(m_connection, event.window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
        giveFocus(event.window);
        if (window == m_overlay)
            coverDesktop();
    } else if (!event.override_redirect) {
        keepAbove(event.window);
    }
}

// A Wayland compositor gives the keyboard to unmanaged windows when they appear, but not to those
// of the type that Qt::Tool has.
void OverlayKeeper::askForKeyboard()
{
    const xcb_atom_t type = atom("_NET_WM_WINDOW_TYPE_DIALOG");
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, overlay(), atom("_NET_WM_WINDOW_TYPE"),
                        XCB_ATOM_ATOM, 32, 1, &type);
}

xcb_atom_t OverlayKeeper::atom(const char* name) const
{
    const auto reply = xcb::owned(xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, 0, quint16(std::strlen(name)), name), nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

// Qt places a window in coordinates that it scales and rounds.
void OverlayKeeper::coverDesktop()
{
    const QSize size = m_desktop.coveringSize();
    const std::uint32_t place[] = {0, 0, static_cast<std::uint32_t>(size.width()),
                                   static_cast<std::uint32_t>(size.height())};
    xcb_configure_window(m_connection, overlay(),
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         place);
    xcb_flush(m_connection);
}

// A window manager may raise a window only after it has appeared.
void OverlayKeeper::windowMoved(const xcb_configure_notify_event_t& event)
{
    if (!event.override_redirect)
        keepAbove(event.window);
}

// Unmanaged windows may stand above: the candidates of an input method have to be seen.
void OverlayKeeper::keepAbove(xcb_window_t managed)
{
    const auto stack = windowsFromBelow(m_connection, root());
    const auto lowest = std::find(stack.begin(), stack.end(), overlay());
    const auto covering = std::find(lowest, stack.end(), managed);
    if (covering == stack.end())
        return;
    // From above, because each of them comes to stand under those before it.
    for (auto own = covering; own != lowest;) {
        --own;
        if (own == lowest || standsAboveOverlay(ownWindow(*own)))
            putAbove(*own, managed);
    }
    xcb_flush(m_connection);
}

void OverlayKeeper::keepKeyboard()
{
    if (m_pause.isActive() || mayHaveKeyboard(ownWindow(focus())))
        return;
    giveFocus(heir());
    m_pause.start();
}

// The overlay has the keyboard, or what is open above it; the highest, where another program has
// it.
xcb_window_t OverlayKeeper::heir() const
{
    auto heir = overlay();
    for (const xcb_window_t id : windowsFromBelow(m_connection, root())) {
        const QWindow* window = ownWindow(id);
        if (window && window->isVisible() &&
            (isUnmanagedDialog(window) || (m_desktop.isWayland() && window->type() == Qt::Popup)))
            heir = id;
    }
    return heir;
}

bool OverlayKeeper::mayHaveKeyboard(const QWindow* window) const
{
    return window == m_overlay || isUnmanagedDialog(window);
}

xcb_window_t OverlayKeeper::focus() const
{
    const auto reply = xcb::owned(
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    return reply ? reply->focus : XCB_NONE;
}

// If the process is killed, keys go to the window under the pointer. A Wayland compositor takes the
// focus back, but not a grab.
void OverlayKeeper::giveFocus(xcb_window_t id)
{
    if (m_desktop.isWayland()) {
        QWindow* window = ownWindow(id);
        if (window && window->setKeyboardGrabEnabled(true))
            announceFocus(id);
        return;
    }
    xcb_set_input_focus(m_connection, XCB_INPUT_FOCUS_POINTER_ROOT, id, XCB_CURRENT_TIME);
    xcb_flush(m_connection);
}

// A grab where no window has the focus is announced by no event, and Qt shows tool tips in a window
// with the focus only.
void OverlayKeeper::announceFocus(xcb_window_t id)
{
    xcb_focus_in_event_t event{};
    event.response_type = XCB_FOCUS_IN;
    event.detail = XCB_NOTIFY_DETAIL_NONLINEAR;
    event.event = id;
    event.mode = XCB_NOTIFY_MODE_GRAB;
    xcb_send_event(m_connection, 0, id, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(m_connection);
}

xcb_window_t OverlayKeeper::overlay() const
{
    return static_cast<xcb_window_t>(m_overlay->winId());
}

xcb_window_t OverlayKeeper::root() const
{
    return static_cast<xcb_window_t>(m_desktop.root());
}

// It appears anew, without Qt: a dialog that Qt hides ends its event loop.
void OverlayKeeper::letBeManaged(xcb_window_t id)
{
    const std::uint32_t overrideRedirect = 0;
    xcb_unmap_window(m_connection, id);
    xcb_change_window_attributes(m_connection, id, XCB_CW_OVERRIDE_REDIRECT, &overrideRedirect);
    xcb_map_window(m_connection, id);
}

void OverlayKeeper::putAbove(xcb_window_t id, xcb_window_t other)
{
    const std::uint32_t siblingAndMode[] = {other, XCB_STACK_MODE_ABOVE};
    xcb_configure_window(m_connection, id, XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE,
                         siblingAndMode);
}
