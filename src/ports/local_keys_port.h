#pragma once

#include "model/carbon_mods.h"
#include "model/subscription.h"

#include <cstdint>
#include <functional>

namespace tessarel {

/// A key that goes down.
struct KeyDown {
    std::int64_t keyCode = 0;        ///< virtual key code, as in `Binding`
    ModifierFlags modifierFlags = 0; ///< the modifier keys that are held

    bool operator==(const KeyDown&) const = default;
};

/// The keyboard, as far as this program's own windows have it.
class LocalKeysPort {
public:
    /// Answers whether the key has been consumed: then nothing else in the program hears of it.
    using Handler = std::function<bool(const KeyDown&)>;

    virtual ~LocalKeysPort() = default;

    /// Calls `handler`, on the main thread and until the answer ends, with every key that goes down while a
    /// window of this program has the keyboard focus. Combinations that are claimed as hot keys, by whomever,
    /// come to the handler too instead of doing their work, as far as the system lets us have them.
    ///
    /// A key that is held down comes once; if it has been consumed it does nothing else until it is released,
    /// even when its handler has ended. Modifier keys do not come by themselves, nor keys without a virtual
    /// key code: all those are consumed. Of several handlers the one added first is asked first, and the
    /// others only if it has not consumed the key.
    [[nodiscard]] virtual SubscriptionPtr monitorKeyDown(Handler handler) = 0;
};

} // namespace tessarel
