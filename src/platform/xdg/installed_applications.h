#pragma once

#include "platform/xdg/entry_walk.h"

#include <cstddef>
#include <deque>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tessarel::xdg {

/// What the desktop entry of an application says about its windows.
struct InstalledApplication {
    std::string identifier;            ///< name of the entry without its suffix
    std::string windowClass;           ///< StartupWMClass; empty if the entry does not name it
    std::vector<std::string> programs; ///< see `DesktopEntry::programs`
    bool isOffered = true;             ///< see `DesktopEntry::isOffered`
};

/// The installed applications, as their desktop entries describe them. Returned pointers are valid until the
/// entries are read again.
///
/// The entries are read on first use, and again by `refresh` after a folder has changed; or in pieces, by
/// `beginRefresh` and `readSome`. Entries that cannot be read or are larger than 256 KiB are ignored.
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

    /// Begins to read the entries, unless they have been read and no folder has changed since, or they are
    /// being read. Until `readSome` has read the last one, lookups find what was found before, and the first
    /// time the applications that have been read so far.
    void beginRefresh();

    /// Reads the next entries, at most `most`. Returns whether there are more to be read.
    bool readSome(std::size_t most);

    /// Returns whether the reading of entries has begun at least once.
    [[nodiscard]] bool hasBegun() const { return m_index || m_reading; }

    /// Returns the application with the identifier `identifier`, or null. The case of ASCII letters is
    /// ignored, unless identifiers differ by nothing else.
    [[nodiscard]] const InstalledApplication* named(std::string_view identifier);

    /// Returns the applications whose entry names the class `windowClass` or whose identifier equals it. The
    /// case of ASCII letters is ignored.
    [[nodiscard]] std::vector<const InstalledApplication*> ofClass(std::string_view windowClass);

    /// Returns the applications whose entry starts a program with the file name `program`. The case of ASCII
    /// letters is ignored.
    [[nodiscard]] std::vector<const InstalledApplication*> startedBy(std::string_view program);

    /// Returns the name of an application in the user's language. Returns `std::nullopt` if it is not
    /// installed now.
    [[nodiscard]] std::optional<std::string> displayName(const std::string& identifier);

    /// Returns the identifier of the application that the desktop entry `file` describes; `std::nullopt` if
    /// it describes none or has no name. A file outside the folders is identified by its name alone.
    [[nodiscard]] std::optional<std::string> identifierOfEntry(const std::filesystem::path& file) const;

private:
    using ByName = std::unordered_multimap<std::string, const InstalledApplication*>;

    /// What a walk through the folders has found.
    struct Index {
        EntryWalk::Changes changes; ///< of all folders, when they were read
        /// The most important entry of each identifier, even if it is hidden or unreadable.
        std::unordered_map<std::string, std::filesystem::path> files;
        std::deque<InstalledApplication> applications;
        // The applications by lower-case name.
        ByName byIdentifier;
        ByName byClass;
        ByName byProgram;

        void read(const EntryFile& file);
        void add(InstalledApplication application);
    };

    /// An index that is being made.
    struct Reading {
        EntryWalk walk;
        std::unique_ptr<Index> index;
    };

    [[nodiscard]] const Index& index();
    [[nodiscard]] bool isCurrent() const;

    std::vector<std::filesystem::path> m_folders;
    std::unique_ptr<Index> m_index; ///< null until all entries have been read for the first time
    std::optional<Reading> m_reading;
};

} // namespace tessarel::xdg
