#pragma once

#include "model/subscription.h"
#include "platform/x11/input/repeat_filter.h"
#include "platform/x11/input/xkb_keyboard.h"
#include "platform/x11/server/callback_list.h"
#include "platform/x11/server/connection.h"
#include "ports/hot_key_port.h"

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace tessarel::x11 {

/// Hot keys as passive grabs of physical keys on the root window.
///
/// Ctrl is the Control modifier, Opt Mod1 (Alt), Cmd Mod4 (Super). A grab stands for one exact modifier
/// state, so each combination is grabbed once for every state of the locking keys (Caps Lock, Num Lock,
/// Scroll Lock), and all of them or none are held.
///
/// A key that is held down fires once, however long it repeats.
class X11HotKeys : public HotKeyPort {
public:
    /// `connection` outlives the hot keys.
    explicit X11HotKeys(Connection& connection);
    X11HotKeys(const X11HotKeys&) = delete;
    X11HotKeys& operator=(const X11HotKeys&) = delete;
    /// Lets go of every combination; claims that are still around stand for nothing any more.
    ~X11HotKeys() override;

    [[nodiscard]] SubscriptionPtr installHandler(std::function<void(std::uint32_t id)> pressed) override;

    /// Waits once, for the server's answers to all the requests together.
    [[nodiscard]] std::vector<SubscriptionPtr>
    registerHotKeys(std::span<const HotKeyRequest> requests) override;

private:
    class Claim;

    struct Combination {
        xcb_keycode_t keycode = 0;
        std::uint16_t modifiers = 0;

        bool operator==(const Combination&) const = default;
    };

    struct Grab {
        std::size_t serial = 0; ///< what its claim knows it by
        Combination combination;
        std::uint32_t id = 0;
    };

    [[nodiscard]] static std::optional<Combination> combination(const HotKeyRequest& request);
    [[nodiscard]] bool holds(const Combination& combination) const;
    [[nodiscard]] bool holds(std::size_t serial) const;

    void acquire(std::size_t first);
    void send(const Grab& grab, std::vector<xcb_void_cookie_t>& cookies);
    void release(const Grab& grab);
    void releaseClaim(std::size_t serial);

    void handle(const Connection::Event& event);
    void handlePress(const xcb_key_press_event_t& press);
    void handleMappingChange();

    Connection& m_connection;
    XkbKeyboard m_keyboard;
    std::uint16_t m_locks; ///< the modifiers of the locking keys
    std::vector<Grab> m_grabs;
    std::size_t m_nextSerial = 0;
    RepeatFilter m_keysDown;
    CallbackList<std::uint32_t> m_handlers;
    std::shared_ptr<X11HotKeys*> m_self; // shared with claims, which may outlive us
    SubscriptionPtr m_events;
};

} // namespace tessarel::x11
