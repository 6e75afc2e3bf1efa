// SPDX-License-Identifier: MIT

#pragma once

#include <vector>

namespace tessarel::bench {

/// Returns the smallest of `values` that at least `percent` percent of them do not exceed; NaN if `values` is
/// empty.
[[nodiscard]] double percentile(std::vector<double> values, double percent);

[[nodiscard]] inline double median(const std::vector<double>& values) {
    return percentile(values, 50);
}

} // namespace tessarel::bench
