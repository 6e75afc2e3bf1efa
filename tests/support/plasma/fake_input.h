// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/child_process.h"

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <string>

namespace tessarel::plasmatest {

/// Keys by the kernel's codes.
namespace key {
inline constexpr std::uint32_t kEscape = 1;
inline constexpr std::uint32_t kDigit1 = 2;
inline constexpr std::uint32_t kLeftControl = 29;
inline constexpr std::uint32_t kLeftShift = 42;
inline constexpr std::uint32_t kLeftAlt = 56;
inline constexpr std::uint32_t kPageUp = 104;
inline constexpr std::uint32_t kLeft = 105;
inline constexpr std::uint32_t kRight = 106;
inline constexpr std::uint32_t kDown = 108;
inline constexpr std::uint32_t kLeftMeta = 125;
} // namespace key

/// A keyboard, a mouse and a touch screen of the compositor. Every function returns once the compositor has
/// received the input, and throws std::runtime_error if it does not.
class FakeInput {
public:
    /// Connects to the socket with this absolute path, by a program that the compositor has to permit. Throws
    /// std::runtime_error if that fails.
    FakeInput(const std::string& socket, const x11test::Environment& environment);

    /// Returns the program that injects the input.
    [[nodiscard]] static std::filesystem::path program();

    /// Presses the keys in order and releases them in the opposite order.
    void press(std::initializer_list<std::uint32_t> keys);
    void setKey(std::uint32_t key, bool isPressed);
    /// Moves the pointer; coordinates are the compositor's.
    void moveTo(double x, double y);
    void setLeftButton(bool isPressed);
    /// Puts a finger on the screen, moves it, and takes it away. The pointer stays where it is.
    void touch(double x, double y);
    void moveTouchTo(double x, double y);
    void endTouch();

private:
    void inject(const std::string& command);
    void expect(const std::string& reply);

    x11test::ChildProcess m_process;
};

} // namespace tessarel::plasmatest
