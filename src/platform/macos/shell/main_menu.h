// SPDX-License-Identifier: MIT

#pragma once

#include "ports/main_menu_port.h"

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

namespace tessarel::macos {

/// The menu bar while this application is active.
///
/// Set it only after the toolkit has started, because its start installs a menu of its own.
class MacMainMenu : public MainMenuPort {
public:
    /// Performs the action of a menu row in the toolkit's window that has the keyboard focus. Returns false
    /// when no such window has it, or when the action concerns the window or the application as a whole; then
    /// the action is sent along the responder chain. An editing action must not be sent there: Qt's windows
    /// claim to respond to `copy:` and its like, and raise an exception when they receive it.
    using Toolkit = std::function<bool(const MainMenuItem&)>;

    /// Without `toolkit` every action is sent along the responder chain.
    explicit MacMainMenu(Toolkit toolkit = nullptr);
    MacMainMenu(const MacMainMenu&) = delete;
    MacMainMenu& operator=(const MacMainMenu&) = delete;
    /// Removes the menu, unless another one has been set meanwhile.
    ~MacMainMenu() override;

    /// Replaces the main menu. The texts that `menus` refers to must outlive the menu.
    void setMainMenu(const std::vector<MainMenu>& menus) override;

private:
    class Bar;

    std::shared_ptr<const Toolkit> m_toolkit; // the rows, which may outlive this object, refer to it weakly
    std::unique_ptr<Bar> m_bar;
};

} // namespace tessarel::macos
