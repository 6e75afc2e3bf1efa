// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/qt/qt_main_queue.h"

#include <cstdint>
#include <functional>
#include <string>
#include <wayland-client.h>

namespace tessarel::qt {

/// The keymap of the compositor's seat, which every client gets, whatever window has the focus.
class SeatKeymap {
public:
    /// Connects to the compositor of the environment. Calls `changed` with the description of the keymap,
    /// later and after each change. Requires the application object. `queue` must outlive this object.
    SeatKeymap(QtMainQueue& queue, std::function<void(const std::string& description)> changed);
    SeatKeymap(const SeatKeymap&) = delete;
    SeatKeymap& operator=(const SeatKeymap&) = delete;
    ~SeatKeymap();

private:
    void read();
    void bindSeat(std::uint32_t name, const std::string& interface);
    void setHasKeyboard(bool hasKeyboard);
    void take(std::uint32_t format, int fd, std::uint32_t size);

    static const wl_registry_listener kRegistryListener;
    static const wl_seat_listener kSeatListener;
    static const wl_keyboard_listener kKeyboardListener;

    std::function<void(const std::string&)> m_changed;
    wl_display* m_display; ///< null if there is no compositor
    wl_registry* m_registry = nullptr;
    wl_seat* m_seat = nullptr;
    wl_keyboard* m_keyboard = nullptr;
    SubscriptionPtr m_events;
};

} // namespace tessarel::qt
