// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/accessibility_port.h"
#include "ports/desktop/process_id.h"
#include "ports/desktop/window_list_port.h"
#include "ports/main_queue_port.h"

#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>

namespace tessarel::sim {

/// The id of a window of the simulated desktop, which is never reused.
enum class WindowId : std::uint32_t {};

/// Values that an application returns for attributes instead of the real ones. An empty value makes the read
/// fail.
using AttributeOverrides = std::map<std::string, std::optional<AttributeValue>, std::less<>>;

/// A window of the simulated desktop, and how it reacts to being moved.
struct SimWindow {
    static constexpr double kUnlimited = std::numeric_limits<double>::infinity();

    /// The frame in accessibility coordinates that the window has or, while it moves, will have.
    Rect axFrame = {};
    Size minimum{1, 1};
    Size maximum{kUnlimited, kUnlimited}; ///< equal to `minimum` for a window of fixed size
    Size step = {};                       ///< sizes are multiples of it, rounded down; 0 for any size
    /// Written sizes are cut at the right and bottom edges of the display.
    bool cutAtDisplayEdge = false;
    bool minimized = false;
    bool fullScreen = false; ///< ignores writes of its frame
    bool isTiled = false;    ///< the desktop refuses writes of its frame
    std::optional<std::string> role = "AXWindow";
    std::optional<std::string> subrole = "AXStandardWindow";
    /// Role of the part that is found at every point of the window. If empty, the window itself is found.
    std::optional<std::string> partRole = {};
    AttributeOverrides overrides = {};
    /// The application that the window belongs to, if its process runs several.
    std::optional<std::string> bundleIdentifier = {};
    std::optional<double> alpha = 1;
    std::optional<ListedWindow> listed = {}; ///< replaces the entry in the window list
    /// Time after a write until the window is seen in its new frame.
    MainQueuePort::Duration settlingTime = {};

    // Set by the desktop.
    Rect axFrameBefore = {}; ///< the frame in which the window is seen until `settledAt`
    MainQueuePort::TimePoint settledAt = {};
    WindowId id = {};
    ProcessId pid = 0;

    /// Returns the frame in which the window is seen at `now`.
    [[nodiscard]] const Rect& shownAxFrame(MainQueuePort::TimePoint now) const {
        return now < settledAt ? axFrameBefore : axFrame;
    }
};

} // namespace tessarel::sim
