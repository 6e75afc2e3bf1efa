#pragma once

#include "ports/open_panel_port.h"

#include <filesystem>
#include <functional>
#include <vector>

namespace tessarel::qt {

/// A file dialog on the entries of the installed applications.
class QtOpenPanel : public OpenPanelPort {
public:
    using IdentifierOf = std::function<std::optional<std::string>(const std::filesystem::path& entry)>;

    /// The dialog opens in the last of `folders` that exists and offers all of them; `identifierOf` answers
    /// the identifier of the application whose entry was chosen.
    QtOpenPanel(std::vector<std::filesystem::path> folders, IdentifierOf identifierOf);

    std::optional<std::string> chooseApplication(const std::string& prompt) override;

private:
    std::vector<std::filesystem::path> m_folders;
    IdentifierOf m_identifierOf;
};

} // namespace tessarel::qt
