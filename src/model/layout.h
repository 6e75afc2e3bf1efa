// SPDX-License-Identifier: MIT

#pragma once

#include "model/zone.h"

#include <string>
#include <vector>

namespace tessarel {

/// A named list of zones; the element at index k is zone k + 1. The list may have any length.
struct Layout {
    std::string name;
    std::vector<Zone> zones;

    bool operator==(const Layout&) const = default;
};

} // namespace tessarel
