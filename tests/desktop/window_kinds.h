#pragma once

#include "support/x11/test_client.h"
#include "support/x11/window_manager.h"

#include <ostream>
#include <string>
#include <vector>

namespace tessarel::x11test {

/// What becomes of the size that a window of some kind is asked to take.
enum class SizeRule {
    Exact,   ///< it is taken to the pixel
    Stepped, ///< the client takes the largest whole number of steps that fits
    Minimum, ///< the client takes no less than its minimum
    Fixed,   ///< the client keeps the one it has
};

/// A kind of window, and the states that it has when its turn comes.
struct WindowKind {
    std::string name;
    WindowOptions options = {};
    std::vector<std::string> states = {};
    SizeRule rule = SizeRule::Exact;
};

[[nodiscard]] const std::vector<WindowKind>& windowKinds();

/// What `manager` makes of the rule: some take no notice of what a client says about its sizes.
[[nodiscard]] SizeRule effectiveRule(WindowManagerKind manager, SizeRule rule);

/// Why `manager` makes it impossible to place windows of `kind` exactly; empty where it does not.
[[nodiscard]] std::string limitOf(WindowManagerKind manager, const WindowKind& kind);

std::ostream& operator<<(std::ostream& stream, const WindowKind& kind);

} // namespace tessarel::x11test
