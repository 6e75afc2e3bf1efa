// SPDX-License-Identifier: MIT

#pragma once

#include "platform/xkb/keymap.h"

#include <cstdint>
#include <optional>

namespace tessarel::plasma {

/// Returns the number by which Plasma's global shortcuts know a combination: a key of Qt with its modifiers.
///
/// Bindings name physical keys and Plasma symbols, so the number is that of the symbol that the key types in
/// the layout with index `layout`. Where Shift leads to another symbol, as to "$" on a US keyboard, Plasma
/// expects that symbol without Shift. Returns 0 if the key types nothing in this layout, and `std::nullopt`
/// if there is no such key, or if `mods`, the bits of a binding, has others than the four modifiers.
[[nodiscard]] std::optional<std::int32_t> shortcutKey(const xkb::Keymap& keymap, std::uint32_t layout,
                                                      std::uint32_t keyCode, std::uint32_t mods);

} // namespace tessarel::plasma
