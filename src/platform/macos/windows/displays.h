// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/displays_port.h"

#include <optional>
#include <vector>

namespace tessarel::macos {

/// The connected displays as AppKit reports them. Frames are in points, which may cover several pixels each.
class MacDisplays : public DisplaysPort {
public:
    /// Leaves out a display that is disconnected during the call.
    [[nodiscard]] std::vector<Screen> screens() override;

    /// Returns the display with the window that has the keyboard focus.
    [[nodiscard]] std::optional<Screen> mainScreen() override;
};

} // namespace tessarel::macos
