#pragma once

#include "ports/rect.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tessarel {

/// A window on the screen as the window server lists it. What the server does not tell, or tells in a way
/// that makes no sense, is empty.
struct ListedWindow {
    std::optional<std::int64_t> layer; ///< 0 for the windows of ordinary applications
    std::optional<std::int64_t> ownerPid;
    std::optional<Rect> axBounds; ///< visible outer frame, origin top-left of the primary display, y down
    std::optional<double> alpha;  ///< 0 transparent, 1 opaque

    bool operator==(const ListedWindow&) const = default;
};

/// The windows of all programs in their stacking order.
class WindowListPort {
public:
    virtual ~WindowListPort() = default;

    /// The windows that are on the screen now, front to back, without the desktop's own; empty when the
    /// window server does not answer. Asks no application.
    [[nodiscard]] virtual std::vector<ListedWindow> onScreenWindows() = 0;
};

} // namespace tessarel
