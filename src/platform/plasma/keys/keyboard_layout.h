// SPDX-License-Identifier: MIT

#pragma once

#include "model/lifetime.h"
#include "model/signal.h"
#include "model/subscription.h"
#include "platform/wayland/bus_link.h"
#include "platform/xkb/keymap.h"

#include <cstdint>
#include <functional>

namespace tessarel::plasma {

/// The keymap of the keyboard and which of its layouts is in use.
class KeyboardLayout {
public:
    /// Starts with `keymap`. `link` must outlive this object.
    KeyboardLayout(wayland::BusLink& link, xkb::Keymap keymap);
    KeyboardLayout(const KeyboardLayout&) = delete;
    KeyboardLayout& operator=(const KeyboardLayout&) = delete;
    ~KeyboardLayout() = default;

    /// Uses the keymap of the seat from now on.
    void setKeymap(xkb::Keymap keymap);

    [[nodiscard]] const xkb::Keymap& keymap() const { return m_keymap; }
    /// Returns the index of the layout in the keymap.
    [[nodiscard]] std::uint32_t index() const { return m_index; }

    /// Calls `changed` after each change of the keymap or the layout, until the subscription is destroyed.
    [[nodiscard]] SubscriptionPtr onChange(std::function<void()> changed) {
        return m_changed.connect(std::move(changed));
    }

private:
    void read();
    void setIndex(std::uint32_t index);

    wayland::BusLink& m_link;
    xkb::Keymap m_keymap;
    std::uint32_t m_index = 0;
    Signal<> m_changed;
    Lifetime m_lifetime; // watched by replies
    SubscriptionPtr m_signals;
};

} // namespace tessarel::plasma
