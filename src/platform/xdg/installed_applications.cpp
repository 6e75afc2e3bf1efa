#include "platform/xdg/installed_applications.h"

#include "platform/xdg/ascii.h"
#include "platform/xdg/command_line.h"
#include "platform/xdg/desktop_entry.h"
#include "platform/xdg/home_folder.h"
#include "platform/xdg/small_file.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <sstream>
#include <utility>

namespace tessarel::xdg {

namespace fs = std::filesystem;

namespace {

std::string valueOf(const char* variable, const std::string& otherwise) {
    const char* const value = std::getenv(variable);
    return value && *value ? value : otherwise;
}

/// Returns the desktop entry in `file`; `std::nullopt` if it cannot be read or parsed.
std::optional<DesktopEntry> entryIn(const fs::path& file) {
    const auto content = readSmallFile(file);
    return content ? DesktopEntry::parse(*content) : std::nullopt;
}

using Found = std::vector<const InstalledApplication*>;

/// Appends the applications that `index` has under `name`, each only once.
void append(const std::unordered_multimap<std::string, const InstalledApplication*>& index,
            const std::string& name, Found& found) {
    const auto [first, last] = index.equal_range(name);
    for (auto entry = first; entry != last; ++entry) {
        if (std::ranges::find(found, entry->second) == found.end())
            found.push_back(entry->second);
    }
}

} // namespace

InstalledApplications::InstalledApplications(std::vector<fs::path> folders) : m_folders(std::move(folders)) {}

std::vector<fs::path> InstalledApplications::folders() {
    std::vector<fs::path> folders;
    fs::path own = folderFrom("XDG_DATA_HOME");
    if (const auto home = homeFolder(); own.empty() && !home.empty())
        own = home / ".local/share";
    if (!own.empty())
        folders.push_back(own / "applications");
    std::istringstream list(valueOf("XDG_DATA_DIRS", "/usr/local/share:/usr/share"));
    for (std::string folder; std::getline(list, folder, ':');) {
        if (fs::path(folder).is_absolute())
            folders.push_back(fs::path(folder) / "applications");
    }
    return folders;
}

const InstalledApplication* InstalledApplications::named(std::string_view identifier) {
    Found found;
    append(index().byIdentifier, lowered(identifier), found);
    const auto exact = std::ranges::find(found, identifier, &InstalledApplication::identifier);
    if (exact != found.end())
        return *exact;
    return found.size() == 1 ? found.front() : nullptr;
}

Found InstalledApplications::ofClass(std::string_view windowClass) {
    const std::string wanted = lowered(windowClass);
    Found found;
    append(index().byClass, wanted, found);
    append(index().byIdentifier, wanted, found);
    return found;
}

Found InstalledApplications::startedBy(std::string_view program) {
    Found found;
    append(index().byProgram, lowered(program), found);
    return found;
}

std::optional<std::string> InstalledApplications::displayName(const std::string& identifier) {
    refresh();
    const auto& files = index().files;
    const auto file = files.find(identifier);
    const auto entry = file == files.end() ? std::nullopt : entryIn(file->second);
    return entry && entry->isShown() ? entry->name() : std::nullopt;
}

std::optional<std::string> InstalledApplications::identifierOfEntry(const fs::path& file) const {
    const auto entry = isNamedLikeEntry(file) ? entryIn(file) : std::nullopt;
    if (!entry || !entry->isShown() || !entry->name())
        return std::nullopt;
    const auto folder = std::ranges::find_if(m_folders, [&file](const fs::path& candidate) {
        const fs::path place = file.lexically_relative(candidate);
        return !place.empty() && *place.begin() != "..";
    });
    return identifierOf(file, folder == m_folders.end() ? file.parent_path() : *folder);
}

void InstalledApplications::refresh() {
    constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();
    readSome(kAll); // the rest of what is being read; a folder may have changed since that was begun
    beginRefresh();
    readSome(kAll);
}

void InstalledApplications::beginRefresh() {
    if (!m_reading && !isCurrent())
        m_reading.emplace(Reading{EntryWalk(m_folders), std::make_unique<Index>()});
}

bool InstalledApplications::readSome(std::size_t most) {
    if (!m_reading)
        return false;
    for (std::size_t count = 0; count < most; ++count) {
        const auto file = m_reading->walk.next();
        if (!file) {
            m_index = std::move(m_reading->index);
            m_index->changes = m_reading->walk.changes();
            m_reading.reset();
            return false;
        }
        m_reading->index->read(*file);
    }
    return true;
}

/// Returns what lookups search. Reads all entries if none has been read.
const InstalledApplications::Index& InstalledApplications::index() {
    if (!hasBegun())
        refresh();
    return m_index ? *m_index : *m_reading->index;
}

bool InstalledApplications::isCurrent() const {
    return m_index && std::ranges::all_of(m_index->changes, [](const auto& folder) {
               return changeOf(folder.first) == folder.second;
           });
}

void InstalledApplications::Index::read(const EntryFile& file) {
    files.emplace(file.identifier, file.path);
    const auto content = readSmallFile(file.path);
    const auto entry = content ? DesktopEntry::parseUntranslated(*content) : std::nullopt;
    if (entry && entry->isShown())
        add({file.identifier, entry->windowClass(), entry->programs(), entry->isOffered()});
}

void InstalledApplications::Index::add(InstalledApplication application) {
    const InstalledApplication& added = applications.emplace_back(std::move(application));
    byIdentifier.emplace(lowered(added.identifier), &added);
    if (!added.windowClass.empty())
        byClass.emplace(lowered(added.windowClass), &added);
    for (const std::string& program : added.programs)
        byProgram.emplace(lowered(fileName(program)), &added);
}

} // namespace tessarel::xdg
