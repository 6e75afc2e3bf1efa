// SPDX-License-Identifier: MIT

#pragma once

#include "ports/main_menu_port.h"

#include <vector>

namespace tessarel {

/// Returns the program's main menu: closing, quitting, and the usual editing keys for the text fields of the
/// settings window.
[[nodiscard]] std::vector<MainMenu> mainMenu();

} // namespace tessarel
