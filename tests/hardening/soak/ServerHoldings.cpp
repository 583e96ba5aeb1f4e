// SPDX-License-Identifier: MIT
// Apart from everything of Qt, whose names X's macros would take.
#include "ServerHoldings.h"

#include <X11/Xlib.h>
#include <X11/extensions/XRes.h>

namespace
{

using Counts = std::map<std::string, long>;

void addClient(Display* display, XID client, Counts& counts)
{
    int size = 0;
    XResType* types = nullptr;
    if (XResQueryClientResources(display, client, &size, &types)) {
        for (int i = 0; i < size; ++i) {
            char* const name = XGetAtomName(display, types[i].resource_type);
            counts[name] += long(types[i].count);
            XFree(name);
        }
        XFree(types);
    }
    unsigned long bytes = 0;
    if (XResQueryClientPixmapBytes(display, client, &bytes))
        counts["pixmap bytes"] += long(bytes);
}

} // namespace

Counts serverHoldings()
{
    Counts counts;
    Display* const display = XOpenDisplay(nullptr);
    if (!display)
        return counts;
    int size = 0;
    XResClient* clients = nullptr;
    if (XResQueryClients(display, &size, &clients)) {
        for (int i = 0; i < size; ++i)
            addClient(display, clients[i].resource_base, counts);
        XFree(clients);
    }
    XCloseDisplay(display);
    return counts;
}
