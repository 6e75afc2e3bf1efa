#pragma once

#include "ports/alerts_port.h"
#include "ports/platform_words.h"

#include <cstddef>

namespace tessarel {

/// Position of the button that leads on to the settings.
inline constexpr std::size_t kWelcomeOpenSettings = 1;

/// What a user reads when the program runs for the first time.
[[nodiscard]] Alert welcomeAlert(const PlatformWords& words);

} // namespace tessarel
