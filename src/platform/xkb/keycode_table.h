// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace tessarel::xkb {

/// A physical key in both code systems.
struct PhysicalKey {
    std::uint8_t virtualKey = 0; ///< virtual key code, as bindings store it
    std::uint8_t keycode = 0;    ///< X11 keycode: the kernel's evdev code plus 8
};

/// All keys that a binding can name. Both codes identify a position on the keyboard, not the character
/// printed on it, so a binding stays on its physical key under every keyboard layout. The comments name the
/// US layout.
///
/// "Delete" (51) deletes backwards (Backspace); forward delete is 117. Keys that exist in only one of the two
/// systems (Fn, Print, Scroll Lock and others) are left out.
inline constexpr std::array kPhysicalKeys = std::to_array<PhysicalKey>({
    // letters
    {0, 38},  // A
    {1, 39},  // S
    {2, 40},  // D
    {3, 41},  // F
    {4, 43},  // H
    {5, 42},  // G
    {6, 52},  // Z
    {7, 53},  // X
    {8, 54},  // C
    {9, 55},  // V
    {11, 56}, // B
    {12, 24}, // Q
    {13, 25}, // W
    {14, 26}, // E
    {15, 27}, // R
    {16, 29}, // Y
    {17, 28}, // T
    {31, 32}, // O
    {32, 30}, // U
    {34, 31}, // I
    {35, 33}, // P
    {37, 46}, // L
    {38, 44}, // J
    {40, 45}, // K
    {45, 57}, // N
    {46, 58}, // M
    // digits above the letters
    {18, 10}, // 1
    {19, 11}, // 2
    {20, 12}, // 3
    {21, 13}, // 4
    {23, 14}, // 5
    {22, 15}, // 6
    {26, 16}, // 7
    {28, 17}, // 8
    {25, 18}, // 9
    {29, 19}, // 0
    // punctuation
    {24, 21}, // =
    {27, 20}, // -
    {30, 35}, // ]
    {33, 34}, // [
    {39, 48}, // '
    {41, 47}, // ;
    {42, 51}, // backslash
    {43, 59}, // ,
    {44, 61}, // /
    {47, 60}, // .
    {50, 49}, // grave accent
    {10, 94}, // the extra key of ISO keyboards, beside the left Shift
    // editing and navigation
    {36, 36},   // Return
    {48, 23},   // Tab
    {49, 65},   // Space
    {51, 22},   // Delete: the Backspace key
    {53, 9},    // Esc
    {117, 119}, // Forward Delete
    {114, 118}, // Help: the Insert key
    {115, 110}, // Home
    {119, 115}, // End
    {116, 112}, // Page Up
    {121, 117}, // Page Down
    {123, 113}, // Left
    {124, 114}, // Right
    {126, 111}, // Up
    {125, 116}, // Down
    {110, 135}, // context menu
    // function keys
    {122, 67},  // F1
    {120, 68},  // F2
    {99, 69},   // F3
    {118, 70},  // F4
    {96, 71},   // F5
    {97, 72},   // F6
    {98, 73},   // F7
    {100, 74},  // F8
    {101, 75},  // F9
    {109, 76},  // F10
    {103, 95},  // F11
    {111, 96},  // F12
    {105, 191}, // F13
    {107, 192}, // F14
    {113, 193}, // F15
    {106, 194}, // F16
    {64, 195},  // F17
    {79, 196},  // F18
    {80, 197},  // F19
    {90, 198},  // F20
    // keypad
    {82, 90},  // 0
    {83, 87},  // 1
    {84, 88},  // 2
    {85, 89},  // 3
    {86, 83},  // 4
    {87, 84},  // 5
    {88, 85},  // 6
    {89, 79},  // 7
    {91, 80},  // 8
    {92, 81},  // 9
    {65, 91},  // .
    {67, 63},  // *
    {69, 86},  // +
    {71, 77},  // Clear: the Num Lock key
    {75, 106}, // /
    {76, 104}, // Enter
    {78, 82},  // -
    {81, 125}, // =
    // Japanese keyboards
    {93, 132},  // Yen
    {94, 97},   // underscore
    {95, 129},  // keypad comma
    {102, 131}, // Eisu
    {104, 130}, // Kana
});

/// Returns the X11 keycode for a virtual key code, or `std::nullopt` when no key in the table has it.
[[nodiscard]] std::optional<std::uint8_t> keycodeOf(std::uint32_t virtualKey);

/// Returns the virtual key code for an X11 keycode, or `std::nullopt` when bindings cannot name that key.
[[nodiscard]] std::optional<std::uint8_t> virtualKeyOf(std::uint8_t keycode);

} // namespace tessarel::xkb
