// SPDX-License-Identifier: MIT
#pragma once

#include <QPointF>
#include <QSize>
#include <Qt>

#include <cstdint>

struct wl_display;
struct wl_registry;
struct wl_seat;
struct zwlr_virtual_pointer_manager_v1;
struct zwlr_virtual_pointer_v1;

/// A pointer of the compositor that also drags across outputs, which that of the X server beneath
/// it does not.
class Pointer
{
public:
    Pointer();
    ~Pointer();
    Pointer(const Pointer&) = delete;
    Pointer& operator=(const Pointer&) = delete;

    bool isThere() const { return m_pointer; }
    /// Moves to `p` in the compositor's coordinates, from the corner of all outputs, which together
    /// have that size.
    void moveTo(const QPointF& p, const QSize& all);
    void setPressed(Qt::MouseButton button, bool pressed);

private:
    static void onGlobal(void* data, wl_registry* registry, std::uint32_t name,
                         const char* interface, std::uint32_t version);
    static void onGlobalRemoved(void* data, wl_registry* registry, std::uint32_t name);
    void send();

    wl_display* m_display;
    wl_registry* m_registry = nullptr;
    wl_seat* m_seat = nullptr;
    zwlr_virtual_pointer_manager_v1* m_manager = nullptr;
    zwlr_virtual_pointer_v1* m_pointer = nullptr;
};
