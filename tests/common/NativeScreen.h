// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QRect>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <xcb/xcb.h>

/// The screen in its physical pixels, past all of Qt's scaling.
class NativeScreen
{
public:
    NativeScreen()
        : m_connection(xcb_connect(nullptr, nullptr))
        , m_screen(xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data)
    {
    }
    ~NativeScreen() { xcb_disconnect(m_connection); }
    NativeScreen(const NativeScreen&) = delete;
    NativeScreen& operator=(const NativeScreen&) = delete;

    QSize size() const { return {m_screen->width_in_pixels, m_screen->height_in_pixels}; }

    /// Shows `picture`, which is as large as the screen, below all windows that come later.
    void show(const QImage& picture)
    {
        const xcb_window_t window = xcb_generate_id(m_connection);
        const std::uint32_t unmanaged = 1;
        xcb_create_window(m_connection, m_screen->root_depth, window, m_screen->root, 0, 0,
                          std::uint16_t(size().width()), std::uint16_t(size().height()), 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, m_screen->root_visual,
                          XCB_CW_OVERRIDE_REDIRECT, &unmanaged);
        const xcb_pixmap_t pixmap = pixmapOf(picture);
        xcb_change_window_attributes(m_connection, window, XCB_CW_BACK_PIXMAP, &pixmap);
        xcb_map_window(m_connection, window);
        const std::uint32_t below = XCB_STACK_MODE_BELOW;
        xcb_configure_window(m_connection, window, XCB_CONFIG_WINDOW_STACK_MODE, &below);
        shot();
    }

    /// What is on the screen now.
    QImage shot() const
    {
        const auto cookie =
            xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_screen->root, 0, 0,
                          m_screen->width_in_pixels, m_screen->height_in_pixels, ~0U);
        const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply(
            xcb_get_image_reply(m_connection, cookie, nullptr), &std::free);
        QImage image(size(), QImage::Format_RGB32);
        std::memcpy(image.bits(), xcb_get_image_data(reply.get()),
                    std::size_t(image.sizeInBytes()));
        // The server leaves the fourth byte of a pixel open.
        return image.convertToFormat(QImage::Format_ARGB32).convertToFormat(QImage::Format_RGB32);
    }

private:
    xcb_pixmap_t pixmapOf(const QImage& picture) const
    {
        const xcb_pixmap_t pixmap = xcb_generate_id(m_connection);
        const auto width = std::uint16_t(picture.width());
        xcb_create_pixmap(m_connection, m_screen->root_depth, pixmap, m_screen->root, width,
                          std::uint16_t(picture.height()));
        const xcb_gcontext_t context = xcb_generate_id(m_connection);
        xcb_create_gc(m_connection, context, pixmap, 0, nullptr);
        // A request has a greatest length.
        for (int y = 0; y < picture.height(); ++y)
            xcb_put_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, context, width, 1, 0,
                          std::int16_t(y), 0, m_screen->root_depth,
                          std::uint32_t(picture.bytesPerLine()), picture.constScanLine(y));
        return pixmap;
    }

    xcb_connection_t* m_connection;
    const xcb_screen_t* m_screen;
};
