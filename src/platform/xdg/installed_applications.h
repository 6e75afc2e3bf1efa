#pragma once

#include "platform/xdg/user_languages.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tessarel::xdg {

/// The applications that are installed: by the class that their windows carry, and by name.
///
/// They are looked through when first asked for, and again by `refresh` after a folder has changed.
/// Entries that cannot be read, or are larger than any real one, are passed over.
class InstalledApplications {
public:
    /// Folders of entries, the most important first; they need not exist. Names are told in the first of
    /// `languages` that an entry speaks.
    explicit InstalledApplications(std::vector<std::filesystem::path> folders,
                                   std::vector<std::string> languages = userLanguages());

    /// Those of the user and of the system, as the environment tells.
    [[nodiscard]] static std::vector<std::filesystem::path> folders();

    /// Makes what was installed or removed meanwhile known. Looks at the folders, and at their entries only
    /// if one has changed.
    void refresh();

    /// The identifier of the application whose windows carry `windowClass`: the name of its entry, without
    /// the ending. An entry that names the class comes before one that is called like it; letters match
    /// whatever their case.
    [[nodiscard]] std::optional<std::string> identifier(std::string_view windowClass);

    /// What the application with this identifier is called; none when it is not installed now.
    [[nodiscard]] std::optional<std::string> displayName(const std::string& identifier);

    /// The identifier of the application whose entry is `file`; none when it is not an entry that stands for
    /// one. An entry from elsewhere is called like its file.
    [[nodiscard]] std::optional<std::string> identifierOfEntry(const std::filesystem::path& file) const;

private:
    using Time = std::filesystem::file_time_type;
    using Identifiers = std::unordered_map<std::string, std::string>;

    [[nodiscard]] bool isCurrent() const;
    void read();
    void readFolder(const std::filesystem::path& folder);
    void readEntry(const std::filesystem::path& file, const std::string& identifier);

    std::vector<std::filesystem::path> m_folders;
    std::vector<std::string> m_languages;
    std::map<std::filesystem::path, std::optional<Time>> m_changed; ///< of every folder looked through
    /// The entry that stands for each identifier, whether it is of use or not.
    std::unordered_map<std::string, std::filesystem::path> m_files;
    Identifiers m_byClass;
    Identifiers m_byName;
};

} // namespace tessarel::xdg
