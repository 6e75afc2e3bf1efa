#pragma once

#include "ports/alerts_port.h"
#include "ports/platform_words.h"

#include <cstddef>

namespace tessarel {

/// Index of the button that also opens the settings window.
inline constexpr std::size_t kWelcomeOpenSettings = 1;

/// Returns the message for the first run of the program. `hasStatusItem` is whether there is a status item
/// from which the user can open the settings.
[[nodiscard]] Alert welcomeAlert(const PlatformWords& words, bool hasStatusItem);

} // namespace tessarel
