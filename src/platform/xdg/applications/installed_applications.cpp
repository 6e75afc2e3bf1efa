// SPDX-License-Identifier: MIT

#include "platform/xdg/applications/installed_applications.h"

#include "platform/xdg/applications/command_line.h"
#include "platform/xdg/applications/desktop_entry.h"
#include "platform/xdg/ascii.h"
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

/// Makes an index, one folder or file at a time.
class InstalledApplications::Reading {
public:
    /// `former` is the index whose unchanged folders are taken over; null if there is none.
    Reading(const std::vector<fs::path>& folders, const Index* former)
        : m_folders(folders), m_former(former) {
        for (std::size_t number = folders.size(); number-- > 0;)
            m_pending.emplace_back(number, folders[number]);
    }

    /// Returns false if nothing is left to do.
    bool step() {
        if (m_file != fs::directory_iterator())
            readFile();
        else if (m_known && m_added < m_known->entries.size())
            m_index->add(m_known->entries[m_added++]);
        else if (!m_pending.empty())
            enterFolder();
        else
            return false;
        return true;
    }

    [[nodiscard]] const Index& index() const { return *m_index; }
    [[nodiscard]] std::unique_ptr<Index> takeIndex() { return std::move(m_index); }

private:
    void enterFolder() {
        m_place = std::move(m_pending.back());
        m_pending.pop_back();
        m_known.reset();
        if (m_index->folders.contains(m_place)) // the system may list a file twice while a folder changes
            return;
        // Before the folder is read, so that a change while it is read is noticed later.
        const auto change = changeOf(m_place.second);
        m_known = known(change);
        m_added = 0;
        if (m_known) {
            m_index->folders.emplace(m_place, m_known);
            for (const fs::path& folder : m_known->folders)
                m_pending.emplace_back(m_place.first, folder);
            return;
        }
        m_folder = std::make_shared<Folder>(Folder{change, {}, {}});
        m_index->folders.emplace(m_place, m_folder);
        std::error_code failure;
        m_file =
            fs::directory_iterator(m_place.second, fs::directory_options::skip_permission_denied, failure);
    }

    /// Returns the current folder as it was read before; null if it has changed since.
    [[nodiscard]] std::shared_ptr<const Folder> known(const std::optional<fs::file_time_type>& change) const {
        if (!m_former)
            return nullptr;
        const auto found = m_former->folders.find(m_place);
        return found != m_former->folders.end() && found->second->change == change ? found->second : nullptr;
    }

    void readFile() {
        const fs::directory_entry file = *m_file;
        std::error_code failure;
        m_file.increment(failure);
        if (failure)
            m_file = {};
        if (file.is_directory(failure)) {
            if (file.is_symlink(failure)) // may lead back to where it lies
                return;
            m_folder->folders.push_back(file.path());
            m_pending.emplace_back(m_place.first, file.path());
        } else if (isNamedLikeEntry(file.path())) {
            m_index->add(m_folder->entries.emplace_back(
                read({identifierOf(file.path(), m_folders[m_place.first]), file.path()})));
        }
    }

    [[nodiscard]] static Entry read(EntryFile file) {
        const auto content = readSmallFile(file.path);
        const auto entry = content ? DesktopEntry::parseUntranslated(*content) : std::nullopt;
        if (!entry || !entry->isShown())
            return {std::move(file), std::nullopt};
        InstalledApplication application{file.identifier, entry->windowClass(), entry->programs(),
                                         entry->isOffered()};
        return {std::move(file), std::move(application)};
    }

    const std::vector<fs::path>& m_folders;
    const Index* m_former;
    std::unique_ptr<Index> m_index = std::make_unique<Index>();
    std::vector<Place> m_pending;  ///< the next one last
    Place m_place;                 ///< the current folder
    fs::directory_iterator m_file; ///< the next file of the current folder, if that is being read
    std::shared_ptr<Folder> m_folder;
    std::shared_ptr<const Folder> m_known; ///< the current folder, if it is taken over
    std::size_t m_added = 0;               ///< how many of its entries have been taken over
};

InstalledApplications::InstalledApplications(std::vector<fs::path> folders) : m_folders(std::move(folders)) {}

InstalledApplications::~InstalledApplications() = default;

std::vector<fs::path> InstalledApplications::folders() {
    std::vector<fs::path> folders;
    if (const fs::path own = dataFolder(); !own.empty())
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
    if (!m_index)
        refresh();
    const auto found = m_index->entries.find(identifier);
    const auto entry = found == m_index->entries.end() ? std::nullopt : entryIn(found->second->file.path);
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
    if (m_reading || m_unchecked)
        return;
    if (m_index)
        m_unchecked = m_index->folders.begin();
    else
        beginReading();
}

void InstalledApplications::beginReading() {
    m_unchecked.reset();
    m_reading = std::make_unique<Reading>(m_folders, m_index.get());
}

bool InstalledApplications::readSome(std::size_t most) {
    for (std::size_t count = 0; count < most; ++count) {
        if (m_reading) {
            if (m_reading->step())
                continue;
            m_index = m_reading->takeIndex();
            m_reading.reset();
            return false;
        }
        if (!m_unchecked || *m_unchecked == m_index->folders.end()) {
            m_unchecked.reset();
            return false;
        }
        const auto& [place, folder] = *(*m_unchecked)++;
        if (changeOf(place.second) != folder->change)
            beginReading();
    }
    return true;
}

/// Returns what lookups search. Reads all entries if none has been read.
const InstalledApplications::Index& InstalledApplications::index() {
    if (!hasBegun())
        refresh();
    return m_index ? *m_index : m_reading->index();
}

void InstalledApplications::Index::add(const Entry& entry) {
    if (!entries.emplace(entry.file.identifier, &entry).second || !entry.application)
        return;
    const InstalledApplication& added = *entry.application;
    byIdentifier.emplace(lowered(added.identifier), &added);
    if (!added.windowClass.empty())
        byClass.emplace(lowered(added.windowClass), &added);
    for (const std::string& program : added.programs)
        byProgram.emplace(lowered(fileName(program)), &added);
}

} // namespace tessarel::xdg
