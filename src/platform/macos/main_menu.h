#pragma once

#include "ports/main_menu_port.h"

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

namespace tessarel::macos {

/// The menu bar while the program is in front.
///
/// To be set when the toolkit of the windows has been started, which puts up a menu of its own.
class MacMainMenu : public MainMenuPort {
public:
    /// Carries out a row in the window of the toolkit's that has the keyboard; false when none has it, or
    /// when the row is for the window or the program as a whole, for the system to carry out. The system must
    /// not be asked to edit in such a window: of Qt's it hears that it can, and then it raises an exception.
    using Toolkit = std::function<bool(const MainMenuItem&)>;

    /// Without `toolkit` the system alone looks for who carries out a row.
    explicit MacMainMenu(Toolkit toolkit = nullptr);
    MacMainMenu(const MacMainMenu&) = delete;
    MacMainMenu& operator=(const MacMainMenu&) = delete;
    /// Takes the menu away.
    ~MacMainMenu() override;

    /// The texts that `menus` refers to stay.
    void setMainMenu(const std::vector<MainMenu>& menus) override;

private:
    class Bar;

    std::shared_ptr<const Toolkit> m_toolkit; // shared with rows, which may outlive us
    std::unique_ptr<Bar> m_bar;
};

} // namespace tessarel::macos
