// SPDX-License-Identifier: MIT

#pragma once

#include <cstdlib>

namespace tessarel {

/// Returns the number of rounds of a random test: `many` if TESSAREL_TEST_LONG is set in the environment,
/// else `usual`.
inline int rounds(int usual, int many) {
    return std::getenv("TESSAREL_TEST_LONG") == nullptr ? usual : many;
}

} // namespace tessarel
