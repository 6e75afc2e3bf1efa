#pragma once

#include "ports/alerts_port.h"
#include "ports/platform_words.h"

#include <cstddef>

namespace tessarel {

/// Index of the button that also opens the settings window.
inline constexpr std::size_t kWelcomeOpenSettings = 1;

/// Returns the message for the first run of the program.
[[nodiscard]] Alert welcomeAlert(const PlatformWords& words);

} // namespace tessarel
