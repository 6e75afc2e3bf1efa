#pragma once

#include "model/binding.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tessarel {

/// How the four modifiers are called on this system.
struct ModifierNames {
    std::string_view ctrl = "Ctrl";
    std::string_view opt = "Opt";
    std::string_view shift = "Shift";
    std::string_view cmd = "Cmd";
};

/// The short names of keys and hot keys that the user sees.
class KeyNames {
public:
    struct Entry {
        std::int64_t keyCode;
        std::string_view name;
    };

    /// Every key that has a name, by virtual key code.
    static const std::array<Entry, 68> names;

    /// Name of the key; "Key" and the number for a code without one, as in "Key57".
    [[nodiscard]] static std::string name(std::int64_t keyCode);

    /// Text for a hot key, as in "Ctrl+Opt+Return"; "None" without one. Modifier bits other than the four are
    /// ignored.
    [[nodiscard]] static std::string describe(const std::optional<Binding>& binding,
                                              const ModifierNames& modifierNames = {});
};

} // namespace tessarel
