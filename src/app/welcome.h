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

/// Returns the message for the first run of the program. `hasStatusItem` is whether there is a status item
/// from which the user can open the settings; `takenShortcuts` are the combinations that other programs have.
[[nodiscard]] Alert welcomeAlert(const PlatformWords& words, bool hasStatusItem,
                                 const std::vector<std::string>& takenShortcuts);

} // namespace tessarel
