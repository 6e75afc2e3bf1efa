// SPDX-License-Identifier: MIT

#pragma once

#include "model/signal.h"
#include "model/subscription.h"
#include "platform/x11/input/xkb_keyboard.h"
#include "platform/x11/server/connection.h"
#include "platform/xkb/printed_names.h"
#include "ports/desktop/key_names_port.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tessarel::x11 {

/// The names that are printed on the keys of the active keyboard layout (`xkb::PrintedNames`).
class X11KeyNames : public KeyNamesPort {
public:
    /// `connection` must outlive this object. Sends nothing before the first use.
    explicit X11KeyNames(Connection& connection) : m_connection(connection) {}
    X11KeyNames(const X11KeyNames&) = delete;
    X11KeyNames& operator=(const X11KeyNames&) = delete;
    ~X11KeyNames() override = default;

    /// Takes several round trips for the first key with a character, and after each change of the layout.
    [[nodiscard]] std::string name(std::int64_t keyCode) override;

    /// Reports a new keyboard mapping, and a switch to another of its layouts. There may be several reports
    /// for one change.
    [[nodiscard]] SubscriptionPtr onChange(std::function<void()> changed) override;

private:
    void watch();
    void handle(const Connection::Event& event);

    Connection& m_connection;
    std::optional<XkbKeyboard> m_keyboard;    ///< set at the first use
    std::optional<xkb::PrintedNames> m_names; ///< of the active layout; empty until they are read
    Signal<> m_changed;
    SubscriptionPtr m_events;
};

} // namespace tessarel::x11
