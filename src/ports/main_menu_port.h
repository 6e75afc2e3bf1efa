// SPDX-License-Identifier: MIT

#pragma once

#include <string_view>
#include <vector>

namespace tessarel {

/// A row of the program's main menu. It goes to the control with the keyboard focus first, then to the
/// program.
struct MainMenuItem {
    std::string_view title;  ///< empty for a separator
    std::string_view action; ///< selector of the system's own operation, such as "copy:"
    char key = 0;            ///< pressed with the system's menu modifier
    bool withShift = false;

    bool operator==(const MainMenuItem&) const = default;
};

/// One menu of the main menu.
struct MainMenu {
    std::string_view title;
    std::vector<MainMenuItem> items;

    bool operator==(const MainMenu&) const = default;
};

/// The menu that some systems show for the program in front. On other systems, text fields handle the usual
/// editing keys themselves.
class MainMenuPort {
public:
    virtual ~MainMenuPort() = default;

    /// Replaces the program's main menu with `menus`, the application's own menu first. Does nothing on
    /// systems without a main menu.
    virtual void setMainMenu(const std::vector<MainMenu>& menus) = 0;
};

} // namespace tessarel
