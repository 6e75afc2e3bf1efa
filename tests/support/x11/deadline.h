#pragma once

#include <algorithm>
#include <chrono>

namespace tessarel::x11test {

/// How long a condition may take before a test gives up: far beyond what any of them needs, so that only a
/// condition that never holds runs into it.
inline constexpr std::chrono::seconds kPatience{30};

/// A moment after which waiting has failed.
class Deadline {
public:
    explicit Deadline(std::chrono::milliseconds patience = kPatience)
        : m_end(std::chrono::steady_clock::now() + patience) {}

    [[nodiscard]] bool passed() const { return std::chrono::steady_clock::now() >= m_end; }

    /// Milliseconds left, at most `limit`, never negative: a time-out for poll().
    [[nodiscard]] int remaining(std::chrono::milliseconds limit = std::chrono::hours(1)) const {
        using std::chrono::milliseconds;
        const auto left = std::chrono::ceil<milliseconds>(m_end - std::chrono::steady_clock::now());
        return static_cast<int>(std::clamp(left, milliseconds::zero(), limit).count());
    }

private:
    std::chrono::steady_clock::time_point m_end;
};

} // namespace tessarel::x11test
