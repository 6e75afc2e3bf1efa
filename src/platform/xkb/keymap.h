// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

struct xkb_keymap;

namespace tessarel::xkb {

/// What the keys of a keyboard type.
class Keymap {
public:
    /// Returns the keymap of a US keyboard, with the keys that a hot key can be on, and without modifiers.
    [[nodiscard]] static Keymap us();
    /// Returns the keymap with this description, as a Wayland compositor sends it. Its keys type nothing if
    /// the description is malformed.
    [[nodiscard]] static Keymap parsed(const std::string& description);

    /// Takes over a reference to `keymap`, which may be null: then no key types anything.
    [[nodiscard]] static Keymap owning(xkb_keymap* keymap);

    /// Returns the key symbol that a key types in the layout with index `layout`, without Shift (`level` 0)
    /// or with it (1); 0 if it types nothing.
    [[nodiscard]] std::uint32_t symbol(std::uint32_t keycode, std::uint32_t layout,
                                       std::uint32_t level) const;

private:
    explicit Keymap(std::shared_ptr<xkb_keymap> keymap) : m_keymap(std::move(keymap)) {}

    std::shared_ptr<xkb_keymap> m_keymap; ///< null if there is none
};

} // namespace tessarel::xkb
