// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/test_client.h"
#include "support/x11/window_manager.h"

#include <ostream>
#include <string>
#include <vector>

namespace tessarel::x11test {

/// How a window of some kind responds to a requested size.
enum class SizeRule {
    Exact,   ///< it takes the exact size
    Stepped, ///< the client takes the largest whole number of resize increments that fits
    Minimum, ///< the client takes at least its minimum size
    Fixed,   ///< the client keeps its size
};

/// A kind of window, and the states that it is given before each placement.
struct WindowKind {
    std::string name;
    WindowOptions options = {};
    std::vector<std::string> states = {};
    SizeRule rule = SizeRule::Exact;
};

[[nodiscard]] const std::vector<WindowKind>& windowKinds();

/// Returns the rule under `manager`: some window managers ignore the size hints of a client.
[[nodiscard]] SizeRule effectiveRule(WindowManagerKind manager, SizeRule rule);

/// Returns why `manager` cannot place windows of `kind` exactly; empty if it can.
[[nodiscard]] std::string limitOf(WindowManagerKind manager, const WindowKind& kind);

std::ostream& operator<<(std::ostream& stream, const WindowKind& kind);

} // namespace tessarel::x11test
