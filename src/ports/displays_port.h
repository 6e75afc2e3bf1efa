#pragma once

#include "ports/rect.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tessarel {

/// One display. Both rectangles are in screen coordinates: origin at the bottom-left corner of the primary
/// display, y up.
struct Screen {
    std::uint64_t id = 0; ///< the same display keeps its id while it is connected
    Rect frame;           ///< the whole area
    Rect visibleFrame;    ///< the area that panels, bars and docks leave to windows

    bool operator==(const Screen&) const = default;
};

/// The displays of the desktop.
class DisplaysPort {
public:
    virtual ~DisplaysPort() = default;

    /// All displays as they are now, the primary one first; may be empty.
    [[nodiscard]] virtual std::vector<Screen> screens() = 0;

    /// The display that has the user's attention (of the active window, else of the pointer), or none.
    [[nodiscard]] virtual std::optional<Screen> mainScreen() = 0;
};

} // namespace tessarel
