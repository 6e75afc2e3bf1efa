#pragma once

#include "platform/macos/local_keys.h"
#include "ports/hot_key_port.h"

#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace tessarel::macos {

/// Carbon's hot keys. Another program's claim does not keep us from ours: then both are pressed.
class MacHotKeys : public HotKeyPort {
public:
    /// `localKeys`, which are asked first while a window of ours has the keyboard, outlive the hot keys.
    explicit MacHotKeys(MacLocalKeys& localKeys);
    MacHotKeys(const MacHotKeys&) = delete;
    MacHotKeys& operator=(const MacHotKeys&) = delete;
    ~MacHotKeys() override;

    [[nodiscard]] SubscriptionPtr installHandler(std::function<void(std::uint32_t id)> pressed) override;
    [[nodiscard]] std::vector<SubscriptionPtr>
    registerHotKeys(std::span<const HotKeyRequest> requests) override;

private:
    class Keyboard;

    std::shared_ptr<Keyboard> m_keyboard; // shared with claims, which may outlive us
};

} // namespace tessarel::macos
