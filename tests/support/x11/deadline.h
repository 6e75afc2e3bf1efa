// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <chrono>

namespace tessarel::x11test {

/// How long a test waits for a condition by default. Far longer than any condition needs, so that only one
/// that never becomes true reaches the limit.
inline constexpr std::chrono::seconds kPatience{30};

/// A point in time after which a wait fails.
class Deadline {
public:
    explicit Deadline(std::chrono::milliseconds patience = kPatience)
        : m_end(std::chrono::steady_clock::now() + patience) {}

    [[nodiscard]] bool passed() const { return std::chrono::steady_clock::now() >= m_end; }

    /// Returns the milliseconds left, between 0 and `limit`: a timeout for poll().
    [[nodiscard]] int remaining(std::chrono::milliseconds limit = std::chrono::hours(1)) const {
        using std::chrono::milliseconds;
        const auto left = std::chrono::ceil<milliseconds>(m_end - std::chrono::steady_clock::now());
        return static_cast<int>(std::clamp(left, milliseconds::zero(), limit).count());
    }

private:
    std::chrono::steady_clock::time_point m_end;
};

} // namespace tessarel::x11test
