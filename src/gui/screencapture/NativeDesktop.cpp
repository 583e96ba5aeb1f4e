// SPDX-License-Identifier: MIT
#include "NativeDesktop.h"

#include "OverlayGeometry.h"
#include "XcbReply.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <algorithm>

NativeDesktop::NativeDesktop()
{
    m_isWayland = QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return;
    m_connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(m_connection))
        return;
    m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
    m_isWayland = isXwayland();
}

NativeDesktop::~NativeDesktop()
{
    if (m_connection)
        xcb_disconnect(m_connection);
}

// Old servers of this kind do not have the extension, but give their outputs such names.
bool NativeDesktop::isXwayland() const
{
    constexpr char kName[] = "XWAYLAND";
    const auto extension = xcb::owned(xcb_query_extension_reply(
        m_connection, xcb_query_extension(m_connection, sizeof kName - 1, kName), nullptr));
    return (extension && extension->present) ||
           QGuiApplication::primaryScreen()->name().startsWith(QLatin1String(kName));
}

QSize NativeDesktop::coveringSize() const
{
    if (!m_root)
        return {};
    const auto root = xcb::owned(
        xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, m_root), nullptr));
    if (!root)
        return {};
    QVector<qreal> ratios;
    for (const QScreen* screen : QGuiApplication::screens())
        ratios << screen->devicePixelRatio();
    return {overlay::coveringLength(root->width, ratios),
            overlay::coveringLength(root->height, ratios)};
}

// Qt takes a window to the screen that holds its middle, or else to the last one. Coming there from
// another ratio, Qt 6 may leave it with a size of that ratio.
const QScreen* NativeDesktop::middleScreen() const
{
    const QPoint middle = QRect(QPoint(), coveringSize()).center();
    const auto screens = QGuiApplication::primaryScreen()->virtualSiblings();
    const auto found = std::find_if(screens.begin(), screens.end(), [&](const QScreen* screen) {
        return pixelsOf(*screen).contains(middle);
    });
    return found == screens.end() ? screens.last() : *found;
}

QRect NativeDesktop::coveringGeometry() const
{
    const QScreen& screen = *middleScreen();
    const QSize size = coveringSize();
    return size.isEmpty() ? screen.virtualGeometry()
                          : QRect(QPoint(), size / screen.devicePixelRatio());
}

QRect NativeDesktop::primaryScreen() const
{
    const QScreen& primary = *QGuiApplication::primaryScreen();
    if (!m_root)
        return primary.geometry().translated(-primary.virtualGeometry().topLeft());
    const qreal ratio = middleScreen()->devicePixelRatio();
    const QRect area = pixelsOf(primary);
    return {area.topLeft() / ratio, area.size() / ratio};
}

// Unscaled coordinates are exact, and need no answer from the server.
QPoint NativeDesktop::posOf(const QWidget& window) const
{
    const qreal ratio = window.screen()->devicePixelRatio();
    if (m_root && window.internalWinId() && !qFuzzyCompare(ratio, 1)) {
        const auto id = static_cast<xcb_window_t>(window.internalWinId());
        const auto reply = xcb::owned(xcb_translate_coordinates_reply(
            m_connection, xcb_translate_coordinates(m_connection, id, m_root, 0, 0), nullptr));
        if (reply)
            return {reply->dst_x, reply->dst_y};
    }
    return window.mapToGlobal(QPoint()) * ratio;
}

// Qt divides the size of a screen by its ratio, but not its position.
QRect NativeDesktop::pixelsOf(const QScreen& screen)
{
    return {screen.geometry().topLeft(), screen.geometry().size() * screen.devicePixelRatio()};
}

QPoint NativeDesktop::pointerPos() const
{
    if (m_root) {
        const auto reply = xcb::owned(xcb_query_pointer_reply(
            m_connection, xcb_query_pointer(m_connection, m_root), nullptr));
        if (reply)
            return {reply->root_x, reply->root_y};
    }
    return QCursor::pos() * QGuiApplication::primaryScreen()->devicePixelRatio();
}
