#pragma once

#include "support/x11/window_manager.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace tessarel::x11test {

/// The window manager that a suite runs under when any will do: the one that $TESSAREL_TEST_WINDOW_MANAGER
/// names, else openbox. Throws std::runtime_error when there is none of that name.
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
