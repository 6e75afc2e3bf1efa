// SPDX-License-Identifier: MIT

#pragma once

#include "platform/xdg/applications/entry_walk.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::xdg {

/// An application as a menu shows it.
struct OfferedApplication {
    std::string identifier;  ///< as `InstalledApplications::identifierOfEntry` returns it
    std::string name;        ///< in the user's language
    std::string genericName; ///< what kind of application it is, in the user's language; may be empty
    std::string icon;        ///< absolute path of a file, or a name in the icon theme; may be empty
};

/// Reads the installed applications that the menus of this desktop offer, some at a time, so that a window
/// can be used meanwhile.
class OfferedApplications {
public:
    /// `folders` contain the desktop entries, the most important folder first. `desktops` are the names of
    /// the current desktop, as in $XDG_CURRENT_DESKTOP.
    OfferedApplications(std::vector<std::filesystem::path> folders, std::vector<std::string> desktops);

    /// Looks at the next files and folders, at most `looks` of them, and returns the applications among them,
    /// in no particular order.
    [[nodiscard]] std::vector<OfferedApplication> read(std::size_t looks);

    /// Returns whether all entries have been read.
    [[nodiscard]] bool isAtEnd() const { return m_walk.isAtEnd(); }

private:
    [[nodiscard]] std::optional<OfferedApplication> readEntry(const EntryFile& file) const;

    EntryWalk m_walk;
    std::vector<std::string> m_desktops;
};

} // namespace tessarel::xdg
