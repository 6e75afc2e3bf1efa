// SPDX-License-Identifier: MIT

#include "support/statistics.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tessarel::bench {

double percentile(std::vector<double> values, double percent) {
    if (values.empty())
        return std::numeric_limits<double>::quiet_NaN();
    std::ranges::sort(values);
    const auto rank = std::ceil(percent / 100 * static_cast<double>(values.size()));
    return values[static_cast<std::size_t>(std::max(rank, 1.0)) - 1];
}

} // namespace tessarel::bench
