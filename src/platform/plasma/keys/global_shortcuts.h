// SPDX-License-Identifier: MIT

#pragma once

#include "model/lifetime.h"
#include "model/signal.h"
#include "model/subscription.h"
#include "platform/plasma/keys/keyboard_layout.h"
#include "platform/wayland/bus_link.h"
#include "ports/desktop/hot_key_port.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tessarel::plasma {

/// Hot keys as global shortcuts of Plasma (KGlobalAccel).
///
/// Requests are sent without waiting for replies, so a combination counts as granted until Plasma has refused
/// it. When the service for them starts, which it may do after KWin, all are registered again. The desktop
/// lists the shortcuts under the program's name in its settings while the program runs. A combination that
/// the user or another program removes there is taken from then on.
///
/// Plasma knows shortcuts by symbol, bindings by key. So a shortcut is that of the symbol that the key types
/// in the present layout, and changes with it. Two keys that type the same symbol are one shortcut, which
/// only the first of two bindings gets. A key that is held down fires once, however long it repeats.
class GlobalShortcuts : public HotKeyPort {
public:
    /// Both arguments must outlive this object.
    GlobalShortcuts(wayland::BusLink& link, KeyboardLayout& layout);
    GlobalShortcuts(const GlobalShortcuts&) = delete;
    GlobalShortcuts& operator=(const GlobalShortcuts&) = delete;
    /// Gives all combinations back. Claims may outlive this object and then do nothing.
    ~GlobalShortcuts() override;

    /// Takes back what an earlier run has left behind: a block of all shortcuts and, once Plasma has named
    /// them, shortcuts that this run has not registered. Waits, at most for `patience`, until Plasma replies.
    /// It handles one call after another, so by then all hot keys that have been registered work. To be
    /// called after the first registration.
    void releaseLeftovers(std::chrono::milliseconds patience);

    /// Keeps the hot keys that are pressed from now on until `deliver` or `drop`.
    void holdBack() { m_isHoldingBack = true; }
    /// Reports the hot keys that have been held back, and all further ones at once.
    void deliver();
    /// Forgets the hot keys that have been held back. Reports all further ones at once.
    void drop();

    /// Blocks all shortcuts of the desktop, so that the focused window gets the keys, until the returned
    /// subscription is destroyed.
    [[nodiscard]] SubscriptionPtr blockAll();

    [[nodiscard]] SubscriptionPtr installHandler(std::function<void(std::uint32_t id)> pressed) override;
    [[nodiscard]] std::vector<SubscriptionPtr>
    registerHotKeys(std::span<const HotKeyRequest> requests) override;
    [[nodiscard]] std::vector<std::uint32_t> taken() const override;
    void retryTaken() override;
    [[nodiscard]] SubscriptionPtr onTakenChange(std::function<void()> changed) override;

private:
    /// A registered combination.
    struct Shortcut {
        std::size_t serial = 0; ///< identifies the shortcut to its claim; never reused
        HotKeyRequest request;
        std::int32_t key = 0; ///< see `shortcutKey`; 0 while the layout has no such symbol
        bool isTaken = false;
        bool isHeld = false; ///< it has been pressed and not been released
    };

    void review();
    void unregisterOthers(const std::vector<std::string>& names);
    [[nodiscard]] SubscriptionPtr claim(const HotKeyRequest& request);
    [[nodiscard]] Shortcut* withSerial(std::size_t serial);
    [[nodiscard]] Shortcut* withName(const std::string& name);
    void announce(const Shortcut& shortcut);
    void announceAll();
    void send(const Shortcut& shortcut);
    void compare(const Shortcut& shortcut, wayland::BusCall call);
    void followSettings(const wayland::BusMessage& signal);
    void setTaken(std::size_t serial, bool isTaken);
    void release(std::size_t serial);
    void handle(const wayland::BusMessage& signal);
    void setBlocked(bool isBlocked);
    [[nodiscard]] std::optional<std::int32_t> keyOf(const HotKeyRequest& request) const;
    void followLayout();

    wayland::BusLink& m_link;
    KeyboardLayout& m_layout;
    std::list<Shortcut> m_shortcuts;
    std::size_t m_nextSerial = 0;
    int m_blocks = 0;
    bool m_isHoldingBack = false;
    std::vector<std::uint32_t> m_heldBack; ///< ids in the order of the presses
    Signal<std::uint32_t> m_handlers;
    Signal<> m_takenChange;
    Lifetime m_lifetime; // watched by claims and replies
    SubscriptionPtr m_signals;
    SubscriptionPtr m_foreignChanges;
    SubscriptionPtr m_serviceChanges;
    SubscriptionPtr m_layoutChanges;
};

} // namespace tessarel::plasma
