// SPDX-License-Identifier: MIT

#pragma once

#include "ports/main_menu_port.h"

#include <vector>

namespace tessarel::plasma {

/// A main menu that is not shown: Plasma's menu bars belong to windows.
class NoMainMenu : public MainMenuPort {
public:
    void setMainMenu(const std::vector<MainMenu>&) override {}
};

} // namespace tessarel::plasma
