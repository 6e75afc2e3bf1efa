#pragma once

#include <vector>

namespace tessarel::bench {

/// Smallest value that at least `percent` of `values` do not exceed; not a number when there is none.
[[nodiscard]] double percentile(std::vector<double> values, double percent);

[[nodiscard]] inline double median(const std::vector<double>& values) {
    return percentile(values, 50);
}

} // namespace tessarel::bench
