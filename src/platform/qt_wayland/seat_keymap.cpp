// SPDX-License-Identifier: MIT

#include "platform/qt_wayland/seat_keymap.h"

#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace tessarel::qt {

namespace {

constexpr std::uint32_t kSeatVersion = 1;

/// Far larger than any keymap.
constexpr std::uint32_t kLargestKeymap = 1U << 24U;

} // namespace

const wl_registry_listener SeatKeymap::kRegistryListener{
    [](void* data, wl_registry*, std::uint32_t name, const char* interface, std::uint32_t) {
        static_cast<SeatKeymap*>(data)->bindSeat(name, interface);
    },
    [](void*, wl_registry*, std::uint32_t) {}};

const wl_seat_listener SeatKeymap::kSeatListener{
    .capabilities =
        [](void* data, wl_seat*, std::uint32_t capabilities) {
            static_cast<SeatKeymap*>(data)->setHasKeyboard((capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0);
        },
    .name = [](void*, wl_seat*, const char*) {}};

const wl_keyboard_listener SeatKeymap::kKeyboardListener{
    .keymap = [](void* data, wl_keyboard*, std::uint32_t format, int fd,
                 std::uint32_t size) { static_cast<SeatKeymap*>(data)->take(format, fd, size); },
    .enter = [](void*, wl_keyboard*, std::uint32_t, wl_surface*, wl_array*) {},
    .leave = [](void*, wl_keyboard*, std::uint32_t, wl_surface*) {},
    .key = [](void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {},
    .modifiers = [](void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t,
                    std::uint32_t) {},
    .repeat_info = [](void*, wl_keyboard*, std::int32_t, std::int32_t) {}};

SeatKeymap::SeatKeymap(QtMainQueue& queue, std::function<void(const std::string& description)> changed)
    : m_changed(std::move(changed)), m_display(wl_display_connect(nullptr)) {
    if (m_display == nullptr)
        return;
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &kRegistryListener, this);
    m_events = queue.onReadable(wl_display_get_fd(m_display), [this] { read(); });
    wl_display_flush(m_display);
}

SeatKeymap::~SeatKeymap() {
    m_events.reset();
    if (m_keyboard != nullptr)
        wl_keyboard_destroy(m_keyboard);
    if (m_seat != nullptr)
        wl_seat_destroy(m_seat);
    if (m_registry != nullptr)
        wl_registry_destroy(m_registry);
    if (m_display != nullptr)
        wl_display_disconnect(m_display);
}

void SeatKeymap::read() {
    while (wl_display_prepare_read(m_display) != 0)
        wl_display_dispatch_pending(m_display);
    if (wl_display_read_events(m_display) < 0 || wl_display_dispatch_pending(m_display) < 0)
        m_events.reset();
    else
        wl_display_flush(m_display);
}

void SeatKeymap::bindSeat(std::uint32_t name, const std::string& interface) {
    if (m_seat != nullptr || interface != wl_seat_interface.name)
        return;
    m_seat = static_cast<wl_seat*>(wl_registry_bind(m_registry, name, &wl_seat_interface, kSeatVersion));
    wl_seat_add_listener(m_seat, &kSeatListener, this);
}

void SeatKeymap::setHasKeyboard(bool hasKeyboard) {
    if (hasKeyboard == (m_keyboard != nullptr))
        return;
    if (hasKeyboard) {
        m_keyboard = wl_seat_get_keyboard(m_seat);
        wl_keyboard_add_listener(m_keyboard, &kKeyboardListener, this);
    } else {
        wl_keyboard_destroy(std::exchange(m_keyboard, nullptr));
    }
}

void SeatKeymap::take(std::uint32_t format, int fd, std::uint32_t size) {
    const bool isText = format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1 && size > 0 && size <= kLargestKeymap;
    void* const mapped = isText ? mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd, 0) : MAP_FAILED;
    ::close(fd);
    if (mapped == MAP_FAILED)
        return;
    // Ends with a NUL character.
    const std::string description(static_cast<const char*>(mapped), size - 1);
    munmap(mapped, size);
    m_changed(description);
}

} // namespace tessarel::qt
