// SPDX-License-Identifier: MIT

#pragma once

#include "model/lifetime.h"
#include "model/signal.h"
#include "model/subscription.h"
#include "platform/x11/input/repeat_filter.h"
#include "platform/x11/input/xkb_keyboard.h"
#include "platform/x11/server/connection.h"
#include "ports/desktop/hot_key_port.h"

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace tessarel::x11 {

/// Hot keys as passive grabs of keycodes on the root window.
///
/// Ctrl maps to the Control modifier, Opt to Mod1 (Alt) and Cmd to Mod4 (Super). A passive grab matches one
/// exact modifier state, so each combination is grabbed once for every state of Caps Lock, Num Lock and
/// Scroll Lock. If one of these grabs is refused, because another client has it, the others are released as
/// well, and the combination is taken.
///
/// A key that is held down fires once, however long it repeats. While another client holds an active keyboard
/// grab, for an open menu or a screen locker for instance, the server delivers no hot keys.
class X11HotKeys : public HotKeyPort {
public:
    /// `connection` must outlive this object.
    explicit X11HotKeys(Connection& connection);
    X11HotKeys(const X11HotKeys&) = delete;
    X11HotKeys& operator=(const X11HotKeys&) = delete;
    /// Releases all grabs. Claims may outlive this object and then do nothing.
    ~X11HotKeys() override;

    [[nodiscard]] SubscriptionPtr installHandler(std::function<void(std::uint32_t id)> pressed) override;

    /// Grabs the combinations in one round trip. An entry is null when the combination is registered already,
    /// or when it has no keycode or unknown modifier bits.
    [[nodiscard]] std::vector<SubscriptionPtr>
    registerHotKeys(std::span<const HotKeyRequest> requests) override;

    [[nodiscard]] std::vector<std::uint32_t> taken() const override;
    /// Tries the grabs again, in one round trip; in none if no combination is taken.
    ///
    /// Not called for events that might be a reason, such as the start of a window manager: it may be about
    /// to grab the combination that its predecessor has released.
    void retryTaken() override;
    [[nodiscard]] SubscriptionPtr onTakenChange(std::function<void()> changed) override;

private:
    /// A key with the modifiers that have to be held, without the lock modifiers.
    struct Combination {
        xcb_keycode_t keycode = 0;
        std::uint16_t modifiers = 0;

        bool operator==(const Combination&) const = default;
    };

    /// A registered combination.
    struct Grab {
        std::size_t serial = 0; ///< identifies the grab to its claim; never reused
        Combination combination;
        std::uint32_t id = 0;   ///< passed to the handlers
        bool isGranted = false; ///< otherwise it is taken
    };

    [[nodiscard]] static std::optional<Combination> combination(const HotKeyRequest& request);
    [[nodiscard]] bool isRegistered(const Combination& combination) const;

    [[nodiscard]] SubscriptionPtr claim(std::size_t serial);
    void acquire(std::span<Grab* const> wanted);
    void send(const Grab& grab, std::vector<xcb_void_cookie_t>& cookies);
    void release(const Grab& grab);
    void releaseClaim(std::size_t serial);

    void handle(const Connection::Event& event);
    void handlePress(const xcb_key_press_event_t& press);
    void handleMappingChange();

    Connection& m_connection;
    XkbKeyboard m_keyboard;
    std::uint16_t m_locks; ///< the lock modifiers that hot keys ignore
    std::vector<Grab> m_grabs;
    std::size_t m_nextSerial = 0;
    RepeatFilter m_keysDown;
    Signal<std::uint32_t> m_handlers;
    Signal<> m_takenChange;
    Lifetime m_lifetime; // watched by claims, which may outlive this object
    SubscriptionPtr m_events;
};

} // namespace tessarel::x11
