// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/hot_key_port.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace tessarel::sim {

/// The hot keys of the simulated desktop. Its keyboard has the key codes 0 to 127.
class SimHotKeys : public HotKeyPort {
public:
    SimHotKeys();

    [[nodiscard]] SubscriptionPtr installHandler(std::function<void(std::uint32_t id)> pressed) override;
    [[nodiscard]] std::vector<SubscriptionPtr>
    registerHotKeys(std::span<const HotKeyRequest> requests) override;
    [[nodiscard]] std::vector<std::uint32_t> taken() const override;
    void retryTaken() override;
    [[nodiscard]] SubscriptionPtr onTakenChange(std::function<void()> changed) override;

    /// Presses a combination. Returns false if it is not a hot key of this program.
    bool press(std::uint32_t keyCode, std::uint32_t mods);
    /// Claims a combination for another program until the returned subscription is destroyed. Returns null if
    /// it is a hot key of this program, if another program has it, or if it does not exist on the keyboard.
    [[nodiscard]] SubscriptionPtr holdByAnotherProgram(std::uint32_t keyCode, std::uint32_t mods);

    /// Returns the current hot keys of this program without the taken ones, sorted by key code and modifiers.
    [[nodiscard]] std::vector<HotKeyRequest> registered() const;
    /// Returns the number of handlers that have ever been installed.
    [[nodiscard]] int handlersInstalled() const { return m_handlersInstalled; }

private:
    struct Keyboard;

    [[nodiscard]] SubscriptionPtr claim(const HotKeyRequest& request);

    std::shared_ptr<Keyboard> m_keyboard; ///< shared with subscriptions, which may outlive this port
    int m_handlersInstalled = 0;
};

} // namespace tessarel::sim
