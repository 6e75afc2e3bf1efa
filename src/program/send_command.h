// SPDX-License-Identifier: MIT

#pragma once

#include "ports/command_exchange.h"

#include <string>
#include <vector>

namespace tessarel {

/// Sends a command to the copy that runs on this desktop, and waits for its answer at most
/// `kCommandPatience`.
[[nodiscard]] SentCommand sendToRunningCopy(const std::vector<std::string>& words);

} // namespace tessarel
