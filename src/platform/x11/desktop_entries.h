#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace tessarel::x11 {

/// The applications that are installed, by the class that their windows carry.
///
/// They are looked through when first asked for, and again when one is asked for after a folder has changed.
/// Entries that cannot be read, or are larger than any real one, are passed over.
class DesktopEntries {
public:
    /// Folders of entries, the most important first; they need not exist.
    explicit DesktopEntries(std::vector<std::filesystem::path> folders);

    /// Those of the user and of the system, as the environment tells.
    [[nodiscard]] static std::vector<std::filesystem::path> installed();

    /// The identifier of the application whose windows carry `windowClass`: the name of its entry, without
    /// the ending. An entry that names the class comes before one that is called like it; letters match
    /// whatever their case.
    [[nodiscard]] std::optional<std::string> identifier(std::string_view windowClass);

private:
    using Time = std::filesystem::file_time_type;
    using Identifiers = std::unordered_map<std::string, std::string>;

    [[nodiscard]] bool isCurrent() const;
    void read();
    void readFolder(const std::filesystem::path& folder);
    void readEntry(const std::filesystem::path& file, const std::string& identifier);

    std::vector<std::filesystem::path> m_folders;
    std::map<std::filesystem::path, std::optional<Time>> m_changed; ///< of every folder looked through
    std::unordered_set<std::string> m_seen;                         ///< identifiers, in any folder
    Identifiers m_byClass;
    Identifiers m_byName;
};

} // namespace tessarel::x11
