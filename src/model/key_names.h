// SPDX-License-Identifier: MIT

#pragma once

#include "model/binding.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tessarel {

/// Names of the four modifiers on this system.
struct ModifierNames {
    std::string_view ctrl = "Ctrl";
    std::string_view opt = "Opt";
    std::string_view shift = "Shift";
    std::string_view cmd = "Cmd";
};

/// Short names of keys and hot keys, as shown to the user.
class KeyNames {
public:
    /// Returns the name of the key with a virtual key code.
    using Naming = std::function<std::string(std::int64_t keyCode)>;

    struct Entry {
        std::int64_t keyCode;
        std::string_view name;
    };

    /// All keys that have a name.
    static const std::array<Entry, 68> names;

    /// Returns the name of the key, or "Key" and the code if it has none, as in "Key57".
    [[nodiscard]] static std::string name(std::int64_t keyCode);

    /// Returns the text for a hot key, as in "Ctrl+Opt+Return", or "None" without a binding. Ignores modifier
    /// bits other than the four. `nameOf` names the key.
    [[nodiscard]] static std::string describe(const std::optional<Binding>& binding,
                                              const ModifierNames& modifierNames = {},
                                              const Naming& nameOf = name);
};

} // namespace tessarel
