// SPDX-License-Identifier: MIT
#include "Pointer.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QtMath>

#include <linux/input-event-codes.h>
#include <virtual-pointer.h>
#include <wayland-client.h>

namespace
{

// Finer than any pixel.
constexpr int kStepsPerCoordinate = 256;

std::uint32_t nowMs()
{
    return static_cast<std::uint32_t>(QDeadlineTimer::current(Qt::PreciseTimer).deadline());
}

} // namespace

Pointer::Pointer()
    : m_display(wl_display_connect(nullptr))
{
    if (!m_display)
        return;
    static const wl_registry_listener kListener{&Pointer::onGlobal, &Pointer::onGlobalRemoved};
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &kListener, this);
    wl_display_roundtrip(m_display);
    if (m_manager)
        m_pointer = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(m_manager, m_seat);
}

Pointer::~Pointer()
{
    if (m_display)
        wl_display_disconnect(m_display);
}

void Pointer::onGlobal(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                       std::uint32_t /*version*/)
{
    auto* self = static_cast<Pointer*>(data);
    const auto bind = [&](const wl_interface& wanted) -> void* {
        return qstrcmp(interface, wanted.name) == 0 ? wl_registry_bind(registry, name, &wanted, 1)
                                                    : nullptr;
    };
    if (void* manager = bind(zwlr_virtual_pointer_manager_v1_interface))
        self->m_manager = static_cast<zwlr_virtual_pointer_manager_v1*>(manager);
    if (void* seat = bind(wl_seat_interface))
        self->m_seat = static_cast<wl_seat*>(seat);
}

void Pointer::onGlobalRemoved(void* /*data*/, wl_registry* /*registry*/, std::uint32_t /*name*/) {}

void Pointer::moveTo(const QPointF& p, const QSize& all)
{
    const auto steps = [](qreal coordinate) {
        return static_cast<std::uint32_t>(qRound(coordinate * kStepsPerCoordinate));
    };
    zwlr_virtual_pointer_v1_motion_absolute(m_pointer, nowMs(), steps(p.x()), steps(p.y()),
                                            steps(all.width()), steps(all.height()));
    send();
}

void Pointer::setPressed(Qt::MouseButton button, bool pressed)
{
    zwlr_virtual_pointer_v1_button(
        m_pointer, nowMs(), button == Qt::LeftButton ? BTN_LEFT : BTN_RIGHT,
        pressed ? WL_POINTER_BUTTON_STATE_PRESSED : WL_POINTER_BUTTON_STATE_RELEASED);
    send();
}

// Comes back once the compositor has done it.
void Pointer::send()
{
    zwlr_virtual_pointer_v1_frame(m_pointer);
    wl_display_roundtrip(m_display);
}
