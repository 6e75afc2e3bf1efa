// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace tessarel::xdg {

/// Returns the identifier of the desktop entry `file` in `folder`: its relative path with '-' for every '/',
/// without the suffix.
[[nodiscard]] std::string identifierOf(const std::filesystem::path& file,
                                       const std::filesystem::path& folder);

/// Returns whether `file` is named like a desktop entry.
[[nodiscard]] bool isNamedLikeEntry(const std::filesystem::path& file);

/// Returns when a file was last added to `folder` or removed from it; `std::nullopt` if it does not exist.
[[nodiscard]] std::optional<std::filesystem::file_time_type> changeOf(const std::filesystem::path& folder);

/// The file of a desktop entry.
struct EntryFile {
    std::string identifier;
    std::filesystem::path path;
};

/// Finds the desktop entries in folders and their subfolders, one look at a time. Reads the folders, but none
/// of the entries.
class EntryWalk {
public:
    /// `folders` contain the entries, the most important folder first; they need not exist.
    explicit EntryWalk(std::vector<std::filesystem::path> folders);

    /// Looks at the next file or folder. Returns it if it is an entry, and none in a more important folder
    /// replaces it.
    [[nodiscard]] std::optional<EntryFile> look();
    /// Returns whether nothing is left to look at.
    [[nodiscard]] bool isAtEnd() const;

private:
    void enterFolder();
    void advance();

    std::vector<std::filesystem::path> m_folders;
    std::size_t m_entered = 0; // the current folder is the one before
    std::filesystem::recursive_directory_iterator m_file;
    std::unordered_set<std::string> m_identifiers;
};

} // namespace tessarel::xdg
