// SPDX-License-Identifier: MIT

#pragma once

#include "platform/xdg/applications/entry_walk.h"

#include <cstddef>
#include <deque>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
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
/// `beginRefresh` and `readSome`. Of a folder that has not changed nothing is read again. Entries that cannot
/// be read or are larger than 256 KiB are ignored.
class InstalledApplications {
public:
    /// `folders` contain the desktop entries, the most important folder first; they need not exist.
    explicit InstalledApplications(std::vector<std::filesystem::path> folders);
    InstalledApplications(const InstalledApplications&) = delete;
    InstalledApplications& operator=(const InstalledApplications&) = delete;
    ~InstalledApplications();

    /// Returns the folders of the user and of the system that the environment names, the most important
    /// first.
    [[nodiscard]] static std::vector<std::filesystem::path> folders();

    /// Reads the entries again if a folder has changed since they were read. Otherwise costs only a look at
    /// each folder's time stamp.
    void refresh();

    /// Like `refresh`, but leaves the work to `readSome`. Until that has read the last entry, lookups find
    /// what was found before, and the first time the applications that have been read so far. Does nothing
    /// while entries are being read.
    void beginRefresh();

    /// Goes on with what `beginRefresh` has begun, with at most `most` looks at a folder or file. Returns
    /// whether there may be more to be read.
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

    /// Returns the name of an application in the user's language. Returns `std::nullopt` if it was not
    /// installed when the entries were read, or is not any more. Reads all entries if they are being read for
    /// the first time.
    [[nodiscard]] std::optional<std::string> displayName(const std::string& identifier);

    /// Returns the identifier of the application that the desktop entry `file` describes; `std::nullopt` if
    /// it describes none or has no name. A file outside the folders is identified by its name alone.
    [[nodiscard]] std::optional<std::string> identifierOfEntry(const std::filesystem::path& file) const;

private:
    using ByName = std::unordered_multimap<std::string, const InstalledApplication*>;

    /// An entry that has been read.
    struct Entry {
        EntryFile file;
        std::optional<InstalledApplication> application; ///< empty if the entry is hidden or unreadable
    };

    /// A folder as it was when it was read.
    struct Folder {
        std::optional<std::filesystem::file_time_type> change; ///< see `changeOf`
        std::deque<Entry> entries;
        std::vector<std::filesystem::path> folders; ///< those in it
    };

    /// A folder, after the position in `m_folders` of the one that it is or lies in.
    using Place = std::pair<std::size_t, std::filesystem::path>;

    /// What the folders contain. Refers to entries in `folders`.
    struct Index {
        std::map<Place, std::shared_ptr<const Folder>> folders;
        /// The most important entry of each identifier, even if it is hidden or unreadable.
        std::unordered_map<std::string_view, const Entry*> entries;
        // The applications by lower-case name.
        ByName byIdentifier;
        ByName byClass;
        ByName byProgram;

        void add(const Entry& entry);
    };

    class Reading;

    [[nodiscard]] const Index& index();
    void beginReading();

    std::vector<std::filesystem::path> m_folders;
    std::unique_ptr<Index> m_index; ///< null until all entries have been read for the first time
    /// The next folder of `m_index` whose time stamp is to be looked at; empty unless that is being done.
    std::optional<std::map<Place, std::shared_ptr<const Folder>>::const_iterator> m_unchecked;
    std::unique_ptr<Reading> m_reading; ///< null unless a new index is being made
};

} // namespace tessarel::xdg
