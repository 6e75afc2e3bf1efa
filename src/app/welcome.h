// SPDX-License-Identifier: MIT

#pragma once

#include "ports/alerts_port.h"
#include "ports/platform_words.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tessarel {

/// Index of the button that also opens the settings window.
inline constexpr std::size_t kWelcomeOpenSettings = 1;

/// What the welcome says about the user's desktop.
struct WelcomeFacts {
    bool hasStatusItem = true;                    ///< the user can open the settings from a status item
    bool showsOutlines = false;                   ///< of the zones, instead of translucent areas
    std::vector<std::string> takenShortcuts = {}; ///< the combinations that other programs have
};

/// Returns the message for the first run of the program.
[[nodiscard]] Alert welcomeAlert(const PlatformWords& words, const WelcomeFacts& facts);

} // namespace tessarel
