// SPDX-License-Identifier: MIT
// A window manager that refuses everything: no window that it manages appears, moves, comes to the
// front or is given the keyboard.
#include <cstdint>
#include <cstdlib>

#include <xcb/xcb.h>

int main()
{
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection))
        return EXIT_FAILURE;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
    xcb_change_window_attributes(connection, root, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(connection);
    while (xcb_generic_event_t* request = xcb_wait_for_event(connection))
        std::free(request);
    return EXIT_SUCCESS;
}
