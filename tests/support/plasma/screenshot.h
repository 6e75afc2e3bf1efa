// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/rect.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tessarel::plasmatest {

/// What a compositor shows, in pixels of the display.
struct Screenshot {
    std::size_t width = 0;
    std::size_t height = 0;
    std::vector<std::uint32_t> pixels = {}; ///< 0xAARRGGBB, row by row

    [[nodiscard]] std::uint32_t at(std::size_t x, std::size_t y) const { return pixels.at(y * width + x); }
};

/// Takes a picture, without the pointer, of an area in the compositor's coordinates. Throws
/// std::runtime_error if KWin gives none.
[[nodiscard]] Screenshot takeScreenshot(const std::string& busAddress, const Rect& area);

} // namespace tessarel::plasmatest
