#pragma once

#include "model/subscription.h"

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace tessarel {

/// What a hot key is known by when it is pressed.
struct HotKeyId {
    std::uint32_t signature = 0; ///< four-character code of the program
    std::uint32_t id = 0;

    bool operator==(const HotKeyId&) const = default;
};

struct HotKeyRequest {
    std::uint32_t keyCode = 0; ///< virtual key code, a physical key whatever the layout
    std::uint32_t mods = 0;    ///< modifier bits: Cmd 256, Shift 512, Opt 2048, Ctrl 4096
    HotKeyId hotKey;

    bool operator==(const HotKeyRequest&) const = default;
};

/// System-wide keyboard shortcuts.
class HotKeyPort {
public:
    virtual ~HotKeyPort() = default;

    /// Calls `pressed` with the id of every registered hot key when it goes down, on the main thread.
    [[nodiscard]] virtual SubscriptionPtr installHandler(std::function<void(std::uint32_t id)> pressed) = 0;

    /// Claims the combinations in order. The answer has one entry per request: the claim, which ends with it,
    /// or null when the combination cannot be had (another program or an earlier claim holds it, there is no
    /// such key, bits beyond the four modifiers). A combination refused stays refused until asked for again.
    [[nodiscard]] virtual std::vector<SubscriptionPtr>
    registerHotKeys(std::span<const HotKeyRequest> requests) = 0;
};

} // namespace tessarel
