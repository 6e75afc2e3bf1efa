#pragma once

#include "ports/login_item_port.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tessarel::xdg {

/// Start at login by an entry in the user's autostart folder, as every desktop's session reads it.
///
/// Nothing is kept in memory: what the desktop's own settings, or the user by hand, do to the entry shows at
/// once. An entry of the same name for all users counts until the user has one of their own.
class XdgLoginItem : public LoginItemPort {
public:
    /// Where autostart entries stand, and what ours starts.
    struct Setup {
        std::filesystem::path configHome;                 ///< of the user
        std::vector<std::filesystem::path> configFolders; ///< of the system, the most important first
        std::filesystem::path program;                    ///< absolute
        std::string name;                                 ///< of the program, for the user
    };

    explicit XdgLoginItem(Setup setup);

    /// The running program `name`, and the folders that the environment tells.
    [[nodiscard]] static Setup ofThisProgram(std::string name);

    [[nodiscard]] Status status() override;
    [[nodiscard]] std::optional<std::string> registerItem() override;
    /// Where an entry for all users would start the program, the user's own entry is left, saying no.
    [[nodiscard]] std::optional<std::string> unregisterItem() override;

private:
    [[nodiscard]] bool startedForAllUsers() const;
    [[nodiscard]] std::optional<std::string> write(const std::string& content) const;

    Setup m_setup;
    std::filesystem::path m_entry;
};

} // namespace tessarel::xdg
