// SPDX-License-Identifier: MIT

#pragma once

#include "platform/xkb/keymap.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace tessarel::xkb {

/// What is printed on the keys of a keyboard with one layout, by virtual key code.
///
/// A key with a character has the one that it types, as a capital. A key that types a digit with Shift, as on
/// a French keyboard, has the digit. All other keys, such as "Home", have the same name in every layout.
class PrintedNames {
public:
    /// Reads what the keys type in the layout with this index in `keymap`.
    PrintedNames(const Keymap& keymap, std::uint32_t layout);

    /// Returns the name of the key. One that types nothing has the name that `KeyNames::name` returns.
    [[nodiscard]] std::string name(std::int64_t keyCode) const;

    /// Returns the name of a key that has the same one in every layout; `std::nullopt` for others.
    [[nodiscard]] static std::optional<std::string> fixedName(std::int64_t keyCode);

private:
    std::map<std::int64_t, std::string> m_characters;
};

} // namespace tessarel::xkb
