// SPDX-License-Identifier: MIT

#pragma once

#include "ports/open_panel_port.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tessarel::qt {

/// Lets the user choose among the applications that menus of this desktop offer, and behind a button among
/// those of another panel.
class ApplicationPanel : public OpenPanelPort {
public:
    struct Setup {
        std::vector<std::filesystem::path> folders;     ///< of desktop entries, the most important first
        std::vector<std::string> desktops;              ///< names of the desktop, see `xdg::currentDesktops`
        std::function<std::set<std::string>()> running; ///< identifiers of the applications that are running
    };

    /// `other` must outlive this object.
    ApplicationPanel(Setup setup, OpenPanelPort& other);

    /// Runs a nested event loop until the dialog is closed.
    std::optional<std::string> chooseApplication(const std::string& prompt) override;

private:
    Setup m_setup;
    OpenPanelPort& m_other;
};

} // namespace tessarel::qt
