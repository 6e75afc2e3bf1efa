#pragma once

#include "ports/displays_port.h"

#include <optional>
#include <vector>

namespace tessarel::macos {

/// The displays as AppKit knows them, in points.
class MacDisplays : public DisplaysPort {
public:
    [[nodiscard]] std::vector<Screen> screens() override;

    /// The one with the window that has the keyboard focus.
    [[nodiscard]] std::optional<Screen> mainScreen() override;
};

} // namespace tessarel::macos
