// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/window_manager.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace tessarel::x11test {

/// Returns the window manager for tests that work with any: the one named by $TESSAREL_TEST_WINDOW_MANAGER,
/// or openbox. Throws std::runtime_error if the name is unknown.
[[nodiscard]] inline WindowManagerKind chosenWindowManager() {
    const char* const wanted = std::getenv("TESSAREL_TEST_WINDOW_MANAGER");
    if (wanted == nullptr)
        return WindowManagerKind::Openbox;
    const auto* const chosen = std::find_if(kAllWindowManagers.begin(), kAllWindowManagers.end(),
                                            [&](WindowManagerKind kind) { return name(kind) == wanted; });
    if (chosen == kAllWindowManagers.end())
        throw std::runtime_error(std::string("no window manager is called ") + wanted);
    return *chosen;
}

} // namespace tessarel::x11test
