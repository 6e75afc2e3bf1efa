// SPDX-License-Identifier: MIT

#pragma once

#include "ports/platform_words.h"

namespace tessarel::macos {

/// Returns the texts for macOS, which are the defaults of `PlatformWords`.
[[nodiscard]] inline PlatformWords words() {
    return {};
}

} // namespace tessarel::macos
