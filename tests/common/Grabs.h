// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <dlfcn.h>
#include <xcb/xcb.h>

// Pictures of the screen on X11, counted and made to fail. To be included once in a program that
// exports its symbols.

inline int s_grabs = 0;
inline bool s_grabsFail = false;

/// Stands before the function with which Qt takes them.
extern "C" xcb_get_image_reply_t* xcb_get_image_reply(xcb_connection_t* connection,
                                                      xcb_get_image_cookie_t cookie,
                                                      xcb_generic_error_t** error)
{
    static const auto next =
        reinterpret_cast<decltype(&xcb_get_image_reply)>(::dlsym(RTLD_NEXT, "xcb_get_image_reply"));
    ++s_grabs;
    xcb_get_image_reply_t* reply = next(connection, cookie, error);
    if (!s_grabsFail)
        return reply;
    std::free(reply);
    return nullptr;
}
