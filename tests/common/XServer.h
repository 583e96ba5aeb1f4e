// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QImage>
#include <QPoint>
#include <QRect>
#include <QVector>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

/// The X server as another program than the tested one sees and uses it.
class XServer
{
public:
    /// That of the environment variable DISPLAY where none is named.
    explicit XServer(const QByteArray& display = qgetenv("DISPLAY"))
        : m_connection(xcb_connect(display.constData(), nullptr))
        , m_root(xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root)
    {
    }
    ~XServer() { xcb_disconnect(m_connection); }
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;

    /// What has the keyboard: a window, or one of the values of xcb_input_focus_t.
    xcb_window_t focus() const
    {
        const auto reply = owned(
            xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
        return reply ? reply->focus : XCB_NONE;
    }

    /// What gets the keyboard when the window that has it goes away: a value of xcb_input_focus_t.
    std::uint8_t focusReverts() const
    {
        const auto reply = owned(
            xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
        return reply ? reply->revert_to : std::uint8_t(XCB_INPUT_FOCUS_NONE);
    }

    void setFocus(xcb_window_t window, std::uint8_t revertTo = XCB_INPUT_FOCUS_POINTER_ROOT) const
    {
        xcb_set_input_focus(m_connection, revertTo, window, XCB_CURRENT_TIME);
        focus(); // Comes back once the server has done it.
    }

    /// Whether a click at `p` would go to that window.
    bool isTopmost(xcb_window_t window, const QPoint& p) const
    {
        for (xcb_window_t at = m_root; at != XCB_NONE;) {
            const auto reply = owned(xcb_translate_coordinates_reply(
                m_connection,
                xcb_translate_coordinates(m_connection, m_root, at, static_cast<qint16>(p.x()),
                                          static_cast<qint16>(p.y())),
                nullptr));
            at = reply ? reply->child : XCB_NONE;
            if (at == window)
                return true;
        }
        return false;
    }

    /// Shows a window above all others.
    xcb_window_t showWindow(const QRect& r, bool isManaged) const
    {
        const xcb_window_t window = xcb_generate_id(m_connection);
        const std::uint32_t overrideRedirect = isManaged ? 0 : 1;
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, m_root,
                          static_cast<qint16>(r.x()), static_cast<qint16>(r.y()),
                          static_cast<quint16>(r.width()), static_cast<quint16>(r.height()), 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_OVERRIDE_REDIRECT, &overrideRedirect);
        xcb_map_window(m_connection, window);
        focus();
        return window;
    }

    /// Puts a window above or below all others.
    void restack(xcb_window_t window, std::uint32_t mode) const
    {
        xcb_configure_window(m_connection, window, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
        focus();
    }

    void destroy(xcb_window_t window) const
    {
        xcb_destroy_window(m_connection, window);
        focus();
    }

    /// All that the server shows, also where no screen is.
    QImage picture() const
    {
        const QSize size = geometry(m_root).size();
        const auto reply =
            owned(xcb_get_image_reply(m_connection,
                                      xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_root,
                                                    0, 0, static_cast<quint16>(size.width()),
                                                    static_cast<quint16>(size.height()), ~0U),
                                      nullptr));
        if (!reply)
            return {};
        return QImage(xcb_get_image_data(reply.get()), size.width(), size.height(),
                      QImage::Format_RGB32)
            .copy();
    }

    void setGeometry(xcb_window_t window, const QRect& place) const
    {
        const std::uint32_t values[] = {std::uint32_t(place.x()), std::uint32_t(place.y()),
                                        std::uint32_t(place.width()),
                                        std::uint32_t(place.height())};
        xcb_configure_window(m_connection, window,
                             XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                                 XCB_CONFIG_WINDOW_HEIGHT,
                             values);
        focus();
    }

    /// Where a window stands on the root window; null where there is none.
    QRect geometry(xcb_window_t window) const
    {
        const auto size = owned(
            xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr));
        const auto place = owned(xcb_translate_coordinates_reply(
            m_connection, xcb_translate_coordinates(m_connection, window, m_root, 0, 0), nullptr));
        if (!size || !place)
            return {};
        return {place->dst_x, place->dst_y, size->width, size->height};
    }

    /// The root window, which is as large as all screens together.
    QRect desktop() const { return geometry(m_root); }

    bool isViewable(xcb_window_t window) const
    {
        const auto reply = owned(xcb_get_window_attributes_reply(
            m_connection, xcb_get_window_attributes(m_connection, window), nullptr));
        return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    }

    /// The windows on the root window, in the order in which they were made.
    QVector<xcb_window_t> windows() const
    {
        const auto tree = owned(
            xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, m_root), nullptr));
        if (!tree)
            return {};
        const xcb_window_t* first = xcb_query_tree_children(tree.get());
        QVector<xcb_window_t> windows(first, first + xcb_query_tree_children_length(tree.get()));
        std::sort(windows.begin(), windows.end());
        return windows;
    }

    /// As a window manager does it.
    void askToClose(xcb_window_t window) const
    {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = atom("WM_PROTOCOLS");
        message.data.data32[0] = atom("WM_DELETE_WINDOW");
        xcb_send_event(m_connection, 0, window, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&message));
        focus();
    }

    /// From now on no window appears that a window manager would manage.
    void refuseWindows() const
    {
        const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
        xcb_change_window_attributes(m_connection, m_root, XCB_CW_EVENT_MASK, &mask);
        focus();
    }

    bool grabPointer() const
    {
        const auto reply = owned(xcb_grab_pointer_reply(
            m_connection,
            xcb_grab_pointer(m_connection, 0, m_root, 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                             XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
            nullptr));
        return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    }

    bool grabKeyboard() const
    {
        const auto reply = owned(
            xcb_grab_keyboard_reply(m_connection,
                                    xcb_grab_keyboard(m_connection, 0, m_root, XCB_CURRENT_TIME,
                                                      XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                    nullptr));
        return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    }

    void ungrab() const
    {
        xcb_ungrab_pointer(m_connection, XCB_CURRENT_TIME);
        xcb_ungrab_keyboard(m_connection, XCB_CURRENT_TIME);
        xcb_flush(m_connection);
    }

private:
    template <typename Reply>
    static std::unique_ptr<Reply, decltype(&std::free)> owned(Reply* reply)
    {
        return {reply, &std::free};
    }

    xcb_atom_t atom(const QByteArray& name) const
    {
        const auto reply = owned(xcb_intern_atom_reply(
            m_connection,
            xcb_intern_atom(m_connection, 0, static_cast<quint16>(name.size()), name.constData()),
            nullptr));
        return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    }

    xcb_connection_t* m_connection;
    xcb_window_t m_root;
};
