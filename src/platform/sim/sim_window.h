#pragma once

#include "ports/accessibility_port.h"
#include "ports/main_queue_port.h"
#include "ports/process_id.h"
#include "ports/window_list_port.h"

#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>

namespace tessarel::sim {

/// Names a window of the simulated desktop for ever.
enum class WindowId : std::uint32_t {};

/// What an application says instead of the truth when asked for an attribute; empty: it does not answer.
using AttributeOverrides = std::map<std::string, std::optional<AttributeValue>, std::less<>>;

/// A window of the simulated desktop, and how it takes to being moved.
struct SimWindow {
    static constexpr double kUnlimited = std::numeric_limits<double>::infinity();

    Rect axFrame = {};                    ///< where it stands, or will stand when it has stopped moving
    Size minimum{1, 1};                   ///< never smaller
    Size maximum{kUnlimited, kUnlimited}; ///< never larger; equal to `minimum`: of fixed size
    Size step = {};                       ///< sizes are whole steps, rounded down; none when empty
    bool cutAtDisplayEdge = false;        ///< no size beyond the right or bottom edge of its display
    bool minimized = false;
    bool fullScreen = false; ///< and then it keeps its frame
    std::optional<std::string> role = "AXWindow";
    std::optional<std::string> subrole = "AXStandardWindow";
    std::optional<std::string> partRole =
        {}; ///< of the part found at any point of it; empty: itself is found
    AttributeOverrides overrides = {};
    std::optional<double> alpha = 1;
    std::optional<ListedWindow> listed = {};   ///< what the window list says instead of the truth
    MainQueuePort::Duration settlingTime = {}; ///< how long it is on its way after a write

    Rect axFrameBefore = {}; ///< where it is seen until `settledAt`
    MainQueuePort::TimePoint settledAt = {};
    WindowId id = {};  ///< given by the desktop
    ProcessId pid = 0; ///< given by the desktop

    /// Where it is seen at `now`.
    [[nodiscard]] const Rect& shownAxFrame(MainQueuePort::TimePoint now) const {
        return now < settledAt ? axFrameBefore : axFrame;
    }
};

} // namespace tessarel::sim
