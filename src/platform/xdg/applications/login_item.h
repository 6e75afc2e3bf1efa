// SPDX-License-Identifier: MIT

#pragma once

#include "ports/login_item_port.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tessarel::xdg {

/// Returns the command that starts the installed program `executable`: the launcher in the folder "bin" of
/// the prefix whose "libexec/tessarel" the executable is in, else the executable itself. Commands are found
/// in "bin" by every version; the folder below "libexec" belongs to this one. The name that the kernel gives
/// to a running executable that has been replaced stands for its replacement.
[[nodiscard]] std::filesystem::path commandOf(const std::filesystem::path& executable);

/// Starts the program at login through an entry in the user's autostart folder, which the session of every
/// desktop reads.
///
/// Nothing is cached, so changes made in the desktop's settings or by hand take effect at once. An entry of
/// the same name for all users applies as long as the user has none.
class XdgLoginItem : public LoginItemPort {
public:
    /// The folders of autostart entries, and the program that the entry starts.
    struct Setup {
        std::filesystem::path configHome;                 ///< the user's configuration folder, or empty
        std::vector<std::filesystem::path> configFolders; ///< the system's, the most important first
        std::filesystem::path program;                    ///< absolute path of the command
        std::string name;                                 ///< shown in the desktop's settings
        std::vector<std::string> desktops;                ///< names of the present desktop
    };

    explicit XdgLoginItem(Setup setup);

    /// Returns a setup for the running executable with the folders that the environment names. `name` is the
    /// program's name for the user.
    [[nodiscard]] static Setup ofThisProgram(std::string name);

    /// Returns `Enabled` or `NotRegistered`. An entry that exists but starts nothing in this session, or
    /// another copy of the program, counts as not registered.
    [[nodiscard]] Status status() override;
    /// Writes the user's entry, replacing one that starts nothing, or another copy.
    [[nodiscard]] std::optional<std::string> registerItem() override;
    /// Removes the user's entry. If an entry for all users would then start the program, writes one that
    /// hides it instead.
    [[nodiscard]] std::optional<std::string> unregisterItem() override;

private:
    [[nodiscard]] bool isStarted(const std::string& content) const;
    [[nodiscard]] bool isOtherCopy(const std::string& started) const;
    [[nodiscard]] bool startedForAllUsers() const;
    [[nodiscard]] std::optional<std::string> write(const std::string& content) const;

    Setup m_setup;
    std::filesystem::path m_entry;
};

} // namespace tessarel::xdg
