// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
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

/// A keyboard and a mouse of the compositor. Every function returns once the compositor has received the
/// input.
class FakeInput {
public:
    /// Connects to the socket with this absolute path. Throws std::runtime_error if that fails.
    explicit FakeInput(const std::string& socket);
    FakeInput(const FakeInput&) = delete;
    FakeInput& operator=(const FakeInput&) = delete;
    ~FakeInput();

    /// Presses the keys in order and releases them in the opposite order.
    void press(std::initializer_list<std::uint32_t> keys);
    void setKey(std::uint32_t key, bool isPressed);
    /// Moves the pointer; coordinates are the compositor's.
    void moveTo(double x, double y);
    void setLeftButton(bool isPressed);

private:
    class Connection;
    std::unique_ptr<Connection> m_connection;
};

} // namespace tessarel::plasmatest
