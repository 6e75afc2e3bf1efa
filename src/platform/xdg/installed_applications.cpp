#include "platform/xdg/installed_applications.h"

#include "platform/xdg/ascii.h"
#include "platform/xdg/command_line.h"
#include "platform/xdg/desktop_entry.h"
#include "platform/xdg/home_folder.h"
#include "platform/xdg/small_file.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <system_error>
#include <utility>

namespace tessarel::xdg {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kEnding = ".desktop";

/// Returns when an entry was last added to `folder` or removed from it; `std::nullopt` if it does not exist.
std::optional<fs::file_time_type> changeOf(const fs::path& folder) {
    std::error_code failure;
    const auto time = fs::last_write_time(folder, failure);
    return failure ? std::nullopt : std::optional(time);
}

/// Returns the identifier of the entry `file` in `folder`: its relative path with '-' for every '/', without
/// the suffix.
std::string identifierOf(const fs::path& file, const fs::path& folder) {
    std::string identifier = file.native().substr(folder.native().size());
    identifier.erase(0, identifier.find_first_not_of('/'));
    std::ranges::replace(identifier, '/', '-');
    identifier.resize(identifier.size() - kEnding.size());
    return identifier;
}

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
    const auto entry = file.extension() == kEnding ? entryIn(file) : std::nullopt;
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
    m_changed.clear();
    m_files.clear();
    m_byIdentifier.clear();
    m_byClass.clear();
    m_byProgram.clear();
    m_applications.clear();
    for (const fs::path& folder : m_folders)
        readFolder(folder);
}

void InstalledApplications::readFolder(const fs::path& folder) {
    m_changed[folder] = changeOf(folder); // first, so that a change while it is read is noticed later
    std::error_code failure;
    fs::recursive_directory_iterator file(folder, fs::directory_options::skip_permission_denied, failure);
    for (; !failure && file != fs::recursive_directory_iterator(); file.increment(failure)) {
        std::error_code unreadable;
        if (file->is_directory(unreadable))
            m_changed[file->path()] = changeOf(file->path());
        else if (file->path().extension() == kEnding)
            readEntry(file->path(), identifierOf(file->path(), folder));
    }
}

void InstalledApplications::readEntry(const fs::path& file, const std::string& identifier) {
    const bool isNew = m_files.try_emplace(identifier, file).second;
    if (!isNew) // an entry in a more important folder takes precedence
        return;
    const auto content = readSmallFile(file);
    const auto entry = content ? DesktopEntry::parseUntranslated(*content) : std::nullopt;
    if (entry && entry->isShown())
        add({identifier, entry->windowClass(), entry->programs(), entry->isOffered()});
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
