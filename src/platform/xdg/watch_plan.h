// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <filesystem>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <sys/types.h>
#include <utility>

namespace tessarel::xdg {

/// The folders and links that have to be watched to notice every change of one file, even if the file is a
/// symbolic link, or a folder or a link on the way to it is moved, replaced or missing. The release of its
/// lock is noticed, too, for saves that have to be repeated under the lock.
class WatchPlan {
public:
    /// A folder or a symbolic link.
    struct Place {
        std::filesystem::path path;
        std::uint32_t events = 0;    ///< inotify events to watch for
        std::set<std::string> names; ///< the entries of the folder that matter
        std::set<std::string> locks; ///< the entries of which only the deletion matters

        bool operator==(const Place&) const = default;
    };

    /// Follows the absolute path `file` as it is now.
    explicit WatchPlan(const std::filesystem::path& file);

    /// Returns the places, each only once, even if several paths lead to it.
    [[nodiscard]] const std::list<Place>& places() const { return m_places; }

private:
    using Inode = std::pair<dev_t, ino_t>;

    /// Adds every folder and link on the way to `folder`, and returns its path without links; `std::nullopt`
    /// if it does not exist.
    [[nodiscard]] std::optional<std::filesystem::path> addWay(const std::filesystem::path& folder);
    Place& add(const std::filesystem::path& path, std::uint32_t events);

    std::list<Place> m_places;
    Place m_missing; ///< takes the names for a place that cannot be found
    std::map<Inode, Place*> m_byInode;
    int m_links = 0; ///< followed so far
};

} // namespace tessarel::xdg
