// SPDX-License-Identifier: MIT

#pragma once

#include "platform/macos/input/local_keys.h"
#include "ports/desktop/hot_key_port.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace tessarel::macos {

/// System-wide hot keys, registered with Carbon. A combination that another application has registered can be
/// registered as well; a press then reaches both applications.
class MacHotKeys : public HotKeyPort {
public:
    /// While one of our windows has the keyboard focus, a pressed hot key goes to `localKeys` first.
    /// `localKeys` must outlive this object.
    explicit MacHotKeys(MacLocalKeys& localKeys);
    MacHotKeys(const MacHotKeys&) = delete;
    MacHotKeys& operator=(const MacHotKeys&) = delete;
    /// Stops all handlers. A combination stays registered until its own subscription is destroyed.
    ~MacHotKeys() override;

    /// Never returns null.
    [[nodiscard]] SubscriptionPtr installHandler(std::function<void(std::uint32_t id)> pressed) override;
    /// Returns null in place of a combination that the system refuses or that no keyboard can produce.
    [[nodiscard]] std::vector<SubscriptionPtr>
    registerHotKeys(std::span<const HotKeyRequest> requests) override;

    // The system lets other applications have the same combinations, so that none is ever taken.
    [[nodiscard]] std::vector<std::uint32_t> taken() const override { return {}; }
    void retryTaken() override {}
    [[nodiscard]] SubscriptionPtr onTakenChange(std::function<void()> /*changed*/) override {
        return nullptr;
    }

private:
    class Keyboard;

    std::shared_ptr<Keyboard> m_keyboard; // shared with the subscriptions, which may outlive this object
};

} // namespace tessarel::macos
