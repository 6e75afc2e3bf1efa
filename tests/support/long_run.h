#pragma once

#include <cstdlib>

namespace tessarel {

/// How many rounds a random test makes: `usual` ones, or `many` if TESSAREL_TEST_LONG is set in the
/// environment.
inline int rounds(int usual, int many) {
    return std::getenv("TESSAREL_TEST_LONG") == nullptr ? usual : many;
}

} // namespace tessarel
