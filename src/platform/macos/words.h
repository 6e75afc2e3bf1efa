#pragma once

#include "ports/platform_words.h"

namespace tessarel::macos {

/// What is true on macOS: the words that the program was first written with.
[[nodiscard]] inline PlatformWords words() {
    return {};
}

} // namespace tessarel::macos
