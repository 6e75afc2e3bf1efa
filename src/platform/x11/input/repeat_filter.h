#pragma once

#include <bitset>
#include <cstdint>
#include <optional>

namespace tessarel::x11 {

/// Tells presses of keys from repetitions, as a client can that hears of keys through grabs only.
///
/// A grab lasts from the press of a grabbed key to the release of that same key. What is released later goes
/// to other clients; so when a grab ends, every key counts as up. A press is then never lost; a key that is
/// still held may count as pressed once more.
class RepeatFilter {
public:
    /// True when the key was up, or may have been.
    [[nodiscard]] bool press(std::uint8_t keycode);
    void release(std::uint8_t keycode);

private:
    std::bitset<256> m_down;
    std::optional<std::uint8_t> m_grabbed; ///< whose press began the grab that lasts
};

} // namespace tessarel::x11
