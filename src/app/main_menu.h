#pragma once

#include "ports/main_menu_port.h"

#include <vector>

namespace tessarel {

/// The program's main menu: closing and quitting, and the usual editing keys for the text fields of the
/// settings window.
[[nodiscard]] std::vector<MainMenu> mainMenu();

} // namespace tessarel
