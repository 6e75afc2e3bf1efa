#pragma once

#include "ports/main_menu_port.h"

#include <vector>

namespace tessarel::x11 {

/// An X11 desktop shows no menu for the program in front, and text fields have the editing keys by
/// themselves.
class X11MainMenu : public MainMenuPort {
public:
    void setMainMenu(const std::vector<MainMenu>&) override {}
};

} // namespace tessarel::x11
