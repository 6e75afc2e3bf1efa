// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

namespace tessarel::fuzz {

/// Takes values from the bytes of a fuzzer. When all bytes have been taken, all values are zero or empty.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : m_next(data), m_end(data + size) {}

    [[nodiscard]] bool isAtEnd() const { return m_next == m_end; }

    std::uint8_t byte() { return isAtEnd() ? std::uint8_t{0} : *m_next++; }
    /// Takes a byte and returns a number below `limit`, which must be at most 256.
    std::size_t below(std::size_t limit) { return byte() % limit; }
    /// Takes two bytes, the less significant one first.
    std::uint16_t word() {
        const unsigned low = byte();
        return static_cast<std::uint16_t>(low | static_cast<unsigned>(byte()) << 8U);
    }
    /// Takes everything up to the next `end`, and `end` itself, which is not part of the result.
    std::string until(char end) {
        const std::uint8_t* const stop = std::find(m_next, m_end, static_cast<std::uint8_t>(end));
        std::string text(m_next, stop);
        m_next = stop == m_end ? m_end : stop + 1;
        return text;
    }
    /// Takes at most `count` bytes.
    std::string bytes(std::size_t count) {
        const std::uint8_t* const stop = m_next + std::min(count, static_cast<std::size_t>(m_end - m_next));
        std::string text(m_next, stop);
        m_next = stop;
        return text;
    }
    std::string rest() { return {std::exchange(m_next, m_end), m_end}; }

private:
    const std::uint8_t* m_next;
    const std::uint8_t* m_end;
};

/// Ends the fuzzer, which then reports its input, unless `rule` holds.
inline void require(bool holds, const char* rule) {
    if (holds)
        return;
    std::fprintf(stderr, "Broken rule: %s\n", rule);
    std::abort();
}

} // namespace tessarel::fuzz
