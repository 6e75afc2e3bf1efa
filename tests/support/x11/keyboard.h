// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/keys.h"
#include "support/x11/observer.h"
#include "support/x11/x_server.h"

#include <cstdint>
#include <string>

namespace tessarel::x11test {

/// The keyboard of an X server, used through XTEST.
class Keyboard {
public:
    /// Throws std::runtime_error without the XTEST extension.
    Keyboard(const XServer& server, Observer& observer);

    /// Presses the modifiers and the key and releases them in the reverse order. The server has processed all
    /// events when it returns.
    void press(const Combination& combination);

    /// Presses Num Lock or Caps Lock if its state differs. Returns false if the state does not change.
    [[nodiscard]] bool setNumLock(bool on) { return setLock(key::kNumLock, XCB_MOD_MASK_2, on); }
    [[nodiscard]] bool setCapsLock(bool on) { return setLock(key::kCapsLock, XCB_MOD_MASK_LOCK, on); }

    /// Sets the keyboard layout, for example "us", "de" or "fr".
    void setLayout(const std::string& layout);

    /// Returns true if a client has grabbed the combination with every lock state. Checks under a server
    /// grab, so that it cannot interfere with grabs of other clients.
    [[nodiscard]] bool held(const Combination& combination);

    /// Waits until the combination is not grabbed. The server releases the grabs of a program some time after
    /// the program has exited. Returns false if it stays grabbed.
    [[nodiscard]] bool waitUntilNotHeld(const Combination& combination) {
        return m_observer.waitUntil([&] { return !held(combination); });
    }

    /// Returns true if no client has grabbed the keyboard. Checks under a server grab, so that it cannot
    /// interfere with other clients.
    [[nodiscard]] bool isFree();

private:
    void fake(std::uint8_t type, xcb_keycode_t key);
    [[nodiscard]] bool setLock(xcb_keycode_t key, std::uint16_t mask, bool on);
    [[nodiscard]] std::uint16_t state();

    const XServer& m_server;
    Observer& m_observer;
};

} // namespace tessarel::x11test
