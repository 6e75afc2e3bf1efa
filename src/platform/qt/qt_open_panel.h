// SPDX-License-Identifier: MIT

#pragma once

#include "ports/open_panel_port.h"

#include <filesystem>
#include <functional>
#include <vector>

namespace tessarel::qt {

/// A file dialog that shows the desktop entries of installed applications.
class QtOpenPanel : public OpenPanelPort {
public:
    /// Returns the identifier of the application that a desktop entry describes, `std::nullopt` if the file
    /// does not describe one.
    using IdentifierOf = std::function<std::optional<std::string>(const std::filesystem::path& entry)>;

    /// The dialog offers all of `folders` that exist and opens in the last one of them.
    QtOpenPanel(std::vector<std::filesystem::path> folders, IdentifierOf identifierOf);

    /// Runs a nested event loop until the dialog is closed.
    std::optional<std::string> chooseApplication(const std::string& prompt) override;

private:
    std::vector<std::filesystem::path> m_folders;
    IdentifierOf m_identifierOf;
};

} // namespace tessarel::qt
