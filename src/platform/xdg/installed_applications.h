#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tessarel::xdg {

/// The installed applications, as their desktop entries describe them.
///
/// The entries are read on first use, and again by `refresh` after a folder has changed. Entries that cannot
/// be read or are larger than 256 KiB are ignored.
class InstalledApplications {
public:
    /// `folders` contain the desktop entries, the most important folder first; they need not exist.
    explicit InstalledApplications(std::vector<std::filesystem::path> folders);

    /// Returns the folders of the user and of the system that the environment names, the most important
    /// first.
    [[nodiscard]] static std::vector<std::filesystem::path> folders();

    /// Reads the entries again if a folder has changed since they were read. Otherwise costs only a look at
    /// each folder's time stamp.
    void refresh();

    /// Returns the identifier of the application whose windows have the class `windowClass`; `std::nullopt`
    /// if none is known. The identifier is the name of the entry without its suffix. An entry that names the
    /// class takes precedence over one whose identifier equals it. The case of ASCII letters is ignored.
    [[nodiscard]] std::optional<std::string> identifier(std::string_view windowClass);

    /// Returns the name of an application in the user's language. Returns `std::nullopt` if it is not
    /// installed now.
    [[nodiscard]] std::optional<std::string> displayName(const std::string& identifier);

    /// Returns the identifier of the application that the desktop entry `file` describes; `std::nullopt` if
    /// it describes none or has no name. A file outside the folders is identified by its name alone.
    [[nodiscard]] std::optional<std::string> identifierOfEntry(const std::filesystem::path& file) const;

private:
    using Time = std::filesystem::file_time_type;
    using Identifiers = std::unordered_map<std::string, std::string>;

    [[nodiscard]] bool isCurrent() const;
    void read();
    void readFolder(const std::filesystem::path& folder);
    void readEntry(const std::filesystem::path& file, const std::string& identifier);

    std::vector<std::filesystem::path> m_folders;
    /// Time stamp of every folder when it was read, empty for a missing one.
    std::map<std::filesystem::path, std::optional<Time>> m_changed;
    /// The most important entry of each identifier, even if it is hidden or unreadable.
    std::unordered_map<std::string, std::filesystem::path> m_files;
    Identifiers m_byClass; ///< identifiers by window class, in lower case
    Identifiers m_byName;  ///< identifiers by their lower-case form
};

} // namespace tessarel::xdg
