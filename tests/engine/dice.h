// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <vector>

namespace tessarel {

/// Random choices that depend on a seed alone, so that a run can be repeated.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : m_random(seed) {}

    /// Returns a whole number from 0 to `count` - 1.
    std::size_t below(std::size_t count) { return static_cast<std::size_t>(m_random() % count); }
    /// Returns a whole number from `from` to `to`, both included.
    int between(int from, int to) {
        return from + static_cast<int>(below(static_cast<std::size_t>(to - from) + 1));
    }
    bool oneIn(std::size_t count) { return below(count) == 0; }

    template <typename T>
    T pick(std::initializer_list<T> values) {
        return values.begin()[below(values.size())];
    }
    template <typename T>
    const T& pick(const std::vector<T>& values) {
        return values[below(values.size())];
    }

private:
    std::mt19937_64 m_random;
};

} // namespace tessarel
