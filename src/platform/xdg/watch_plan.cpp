// SPDX-License-Identifier: MIT

#include "platform/xdg/watch_plan.h"

#include "platform/xdg/document_lock.h"

#include <sys/inotify.h>
#include <sys/stat.h>
#include <system_error>

namespace tessarel::xdg {
namespace {

namespace fs = std::filesystem;

/// The limit of the kernel.
constexpr int kMostLinks = 40;

/// A folder or link on the way; the end of every watch reports its deletion. Nothing is said about entries,
/// so other programs that write into the same folders do not wake this one.
constexpr std::uint32_t kItself = IN_MOVE_SELF;
/// The folder in which the next step of the way is missing.
constexpr std::uint32_t kAppears = IN_CREATE | IN_MOVED_TO;
/// The folder of the file. Writers in place are noticed at each write and when they close the file.
constexpr std::uint32_t kChanges =
    kAppears | IN_MOVED_FROM | IN_DELETE | IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB;

/// Returns the target of a symbolic link; empty if `path` is none.
fs::path target(const fs::path& path) {
    std::error_code error;
    return fs::read_symlink(path, error);
}

} // namespace

WatchPlan::WatchPlan(const fs::path& file) {
    fs::path next = file;
    while (!next.empty() && m_links++ <= kMostLinks) {
        const auto folder = addWay(next.parent_path());
        if (!folder)
            return;
        const fs::path reached = *folder / next.filename();
        Place& place = add(*folder, kChanges);
        place.names.insert(reached.filename().string());
        place.locks.insert(DocumentLock::pathFor(reached).filename().string());
        const fs::path link = target(reached);
        next = link.empty() ? link : *folder / link;
    }
}

std::optional<fs::path> WatchPlan::addWay(const fs::path& folder) {
    fs::path reached;
    std::list<fs::path> rest(folder.begin(), folder.end());
    while (!rest.empty()) {
        const fs::path name = rest.front();
        const fs::path next = reached / name;
        rest.pop_front();
        struct stat status {};
        const bool exists = ::lstat(next.c_str(), &status) == 0;
        if (exists && S_ISLNK(status.st_mode) && m_links++ < kMostLinks) {
            add(next, kItself);
            const fs::path link = target(next);
            rest.insert(rest.begin(), link.begin(), link.end());
            if (link.is_absolute())
                reached.clear();
        } else if (exists && S_ISDIR(status.st_mode)) {
            add(next, kItself);
            reached = next;
        } else {
            add(reached, kAppears).names.insert(name.string());
            return std::nullopt;
        }
    }
    return reached;
}

WatchPlan::Place& WatchPlan::add(const fs::path& path, std::uint32_t events) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0)
        return m_missing;
    Place*& place = m_byInode[{status.st_dev, status.st_ino}];
    if (!place)
        place = &m_places.emplace_back(Place{.path = path, .events = kItself, .names = {}, .locks = {}});
    place->events |= events;
    return *place;
}

} // namespace tessarel::xdg
