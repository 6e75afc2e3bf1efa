// SPDX-License-Identifier: MIT

#pragma once

#include <bitset>
#include <cstdint>
#include <optional>

namespace tessarel::x11 {

/// Distinguishes key presses from auto-repeat, for a client that receives key events only through passive
/// grabs.
///
/// A passive grab is active from the press of a grabbed key to the release of that same key. Other keys may
/// be released after that, and those events go to other clients. When the grab ends, all keys are therefore
/// assumed to be up: no press is lost, but a key that is still held may be reported as pressed once more.
class RepeatFilter {
public:
    /// Records a key press. Returns true when the key was up or is assumed to have been, false for
    /// auto-repeat.
    [[nodiscard]] bool press(std::uint8_t keycode);
    /// Records a key release.
    void release(std::uint8_t keycode);

private:
    std::bitset<256> m_down;
    std::optional<std::uint8_t> m_grabbed; ///< the key whose press activated the grab
};

} // namespace tessarel::x11
