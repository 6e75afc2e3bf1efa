#pragma once

#include <string_view>
#include <vector>

namespace tessarel {

/// A row of the program's main menu, carried out by whatever has the keyboard focus.
struct MainMenuItem {
    std::string_view title;  ///< empty for a separator
    std::string_view action; ///< name of the system's own operation, as in "copy:"
    char key = 0;            ///< pressed with the system's menu modifier
    bool withShift = false;

    bool operator==(const MainMenuItem&) const = default;
};

struct MainMenu {
    std::string_view title;
    std::vector<MainMenuItem> items;

    bool operator==(const MainMenu&) const = default;
};

/// The menu that some systems show for the program in front. Where there is none, text fields have the usual
/// editing keys by themselves.
class MainMenuPort {
public:
    virtual ~MainMenuPort() = default;

    /// Makes `menus` the program's main menu, the application's own first; does nothing where there is none.
    virtual void setMainMenu(const std::vector<MainMenu>& menus) = 0;
};

} // namespace tessarel
