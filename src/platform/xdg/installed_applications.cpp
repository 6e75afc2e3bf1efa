#include "platform/xdg/installed_applications.h"

#include "platform/xdg/ascii.h"
#include "platform/xdg/command_line.h"
#include "platform/xdg/desktop_entry.h"
#include "platform/xdg/home_folder.h"
#include "platform/xdg/small_file.h"

#include <algorithm>
#include <cstdlib>
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
    if (m_changed.empty())
        read();
    Found found;
    append(m_byIdentifier, lowered(identifier), found);
    const auto exact = std::ranges::find(found, identifier, &InstalledApplication::identifier);
    if (exact != found.end())
        return *exact;
    return found.size() == 1 ? found.front() : nullptr;
}

Found InstalledApplications::ofClass(std::string_view windowClass) {
    if (m_changed.empty())
        read();
    const std::string wanted = lowered(windowClass);
    Found found;
    append(m_byClass, wanted, found);
    append(m_byIdentifier, wanted, found);
    return found;
}

Found InstalledApplications::startedBy(std::string_view program) {
    if (m_changed.empty())
        read();
    Found found;
    append(m_byProgram, lowered(program), found);
    return found;
}

std::optional<std::string> InstalledApplications::displayName(const std::string& identifier) {
    refresh();
    const auto file = m_files.find(identifier);
    const auto entry = file == m_files.end() ? std::nullopt : entryIn(file->second);
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
    if (m_changed.empty() || !isCurrent())
        read();
}

bool InstalledApplications::isCurrent() const {
    return std::ranges::all_of(m_changed,
                               [](const auto& folder) { return changeOf(folder.first) == folder.second; });
}

void InstalledApplications::read() {
    m_files.clear();
    m_byIdentifier.clear();
    m_byClass.clear();
    m_byProgram.clear();
    m_applications.clear();
    EntryWalk walk(m_folders);
    while (const auto file = walk.next()) {
        m_files.emplace(file->identifier, file->path);
        readEntry(*file);
    }
    m_changed = walk.changes();
}

void InstalledApplications::readEntry(const EntryFile& file) {
    const auto content = readSmallFile(file.path);
    const auto entry = content ? DesktopEntry::parseUntranslated(*content) : std::nullopt;
    if (entry && entry->isShown())
        add({file.identifier, entry->windowClass(), entry->programs(), entry->isOffered()});
}

void InstalledApplications::add(InstalledApplication application) {
    const InstalledApplication& added = m_applications.emplace_back(std::move(application));
    m_byIdentifier.emplace(lowered(added.identifier), &added);
    if (!added.windowClass.empty())
        m_byClass.emplace(lowered(added.windowClass), &added);
    for (const std::string& program : added.programs)
        m_byProgram.emplace(lowered(fileName(program)), &added);
}

} // namespace tessarel::xdg
