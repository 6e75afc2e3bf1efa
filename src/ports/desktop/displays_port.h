// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/rect.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tessarel {

/// A display. Both rectangles are in screen coordinates: origin at the bottom-left corner of the primary
/// display, y up.
struct Screen {
    std::uint64_t id = 0; ///< stays the same while the display is connected
    Rect frame;           ///< the whole area
    Rect visibleFrame;    ///< the usable area, without panels, bars and docks

    bool operator==(const Screen&) const = default;
};

/// The displays of the desktop.
class DisplaysPort {
public:
    virtual ~DisplaysPort() = default;

    /// Returns the current displays, the primary one first. May be empty.
    [[nodiscard]] virtual std::vector<Screen> screens() = 0;

    /// Returns the display of the active window; without an active window, the display that the system
    /// regards as current, such as that of the pointer. Empty if it cannot be determined.
    [[nodiscard]] virtual std::optional<Screen> mainScreen() = 0;
};

} // namespace tessarel
