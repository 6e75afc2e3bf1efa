// SPDX-License-Identifier: MIT

#pragma once

#include "ports/main_menu_port.h"

#include <vector>

namespace tessarel::x11 {

/// A main menu port that does nothing. X11 desktops have no system-wide menu bar, and Qt's text fields handle
/// the editing keys without a menu.
class X11MainMenu : public MainMenuPort {
public:
    void setMainMenu(const std::vector<MainMenu>&) override {}
};

} // namespace tessarel::x11
