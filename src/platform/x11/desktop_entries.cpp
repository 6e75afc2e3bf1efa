#include "platform/x11/desktop_entries.h"

#include "platform/x11/desktop_entry.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <fcntl.h>
#include <sstream>
#include <sys/stat.h>
#include <sys/types.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tessarel::x11 {

namespace fs = std::filesystem;

namespace {

constexpr off_t kLargestEntry = off_t{256} * 1024;
constexpr std::string_view kEnding = ".desktop";

std::optional<fs::file_time_type> changeOf(const fs::path& folder) {
    std::error_code failure;
    const auto time = fs::last_write_time(folder, failure);
    return failure ? std::nullopt : std::optional(time);
}

std::string lowered(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), [](char character) {
        const bool isUpper = character >= 'A' && character <= 'Z';
        return isUpper ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return result;
}

/// The entry's name for ever: its place below the folder of entries, without the ending.
std::string identifierOf(const fs::path& file, const fs::path& folder) {
    std::string identifier = file.native().substr(folder.native().size());
    identifier.erase(0, identifier.find_first_not_of('/'));
    std::ranges::replace(identifier, '/', '-');
    identifier.resize(identifier.size() - kEnding.size());
    return identifier;
}

/// An open file that closes itself.
class File {
public:
    /// Does not wait for the other end of a pipe.
    explicit File(const fs::path& path)
        : m_descriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {}
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }

    [[nodiscard]] int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

/// None unless it is a file of a sensible size. One that changes meanwhile will be read again.
std::optional<std::string> contentOf(const fs::path& path) {
    const File file(path);
    struct stat status {};
    const bool isFile = ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
    if (!isFile || status.st_size > kLargestEntry)
        return std::nullopt;
    std::string content(static_cast<std::size_t>(status.st_size), '\0');
    const ssize_t length = ::read(file.get(), content.data(), content.size());
    content.resize(static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    return content;
}

std::string valueOf(const char* variable, const std::string& otherwise) {
    const char* const value = std::getenv(variable);
    return value && *value ? value : otherwise;
}

} // namespace

DesktopEntries::DesktopEntries(std::vector<fs::path> folders, std::vector<std::string> languages)
    : m_folders(std::move(folders)), m_languages(std::move(languages)) {}

std::vector<fs::path> DesktopEntries::installed() {
    const std::string home = valueOf("HOME", "/");
    std::istringstream list(valueOf("XDG_DATA_HOME", home + "/.local/share") + ":" +
                            valueOf("XDG_DATA_DIRS", "/usr/local/share:/usr/share"));
    std::vector<fs::path> folders;
    for (std::string folder; std::getline(list, folder, ':');) {
        if (fs::path(folder).is_absolute())
            folders.push_back(fs::path(folder) / "applications");
    }
    return folders;
}

std::optional<std::string> DesktopEntries::identifier(std::string_view windowClass) {
    if (m_changed.empty())
        read();
    const std::string wanted = lowered(windowClass);
    for (const Identifiers* identifiers : {&m_byClass, &m_byName}) {
        if (const auto found = identifiers->find(wanted); found != identifiers->end())
            return found->second;
    }
    return std::nullopt;
}

std::optional<std::string> DesktopEntries::displayName(const std::string& identifier) {
    refresh();
    const auto file = m_files.find(identifier);
    const auto content = file == m_files.end() ? std::nullopt : contentOf(file->second);
    if (!content || !desktop_entry::isShown(*content))
        return std::nullopt;
    return desktop_entry::name(*content, m_languages);
}

std::optional<std::string> DesktopEntries::identifierOfEntry(const fs::path& file) const {
    const auto content = file.extension() == kEnding ? contentOf(file) : std::nullopt;
    if (!content || !desktop_entry::isShown(*content) || !desktop_entry::name(*content, m_languages))
        return std::nullopt;
    const auto folder = std::ranges::find_if(m_folders, [&file](const fs::path& candidate) {
        const fs::path place = file.lexically_relative(candidate);
        return !place.empty() && *place.begin() != "..";
    });
    return identifierOf(file, folder == m_folders.end() ? file.parent_path() : *folder);
}

void DesktopEntries::refresh() {
    if (m_changed.empty() || !isCurrent())
        read();
}

bool DesktopEntries::isCurrent() const {
    return std::ranges::all_of(m_changed,
                               [](const auto& folder) { return changeOf(folder.first) == folder.second; });
}

void DesktopEntries::read() {
    m_changed.clear();
    m_files.clear();
    m_byClass.clear();
    m_byName.clear();
    for (const fs::path& folder : m_folders)
        readFolder(folder);
}

void DesktopEntries::readFolder(const fs::path& folder) {
    m_changed[folder] = changeOf(folder); // before it is read: what comes later is a change
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

void DesktopEntries::readEntry(const fs::path& file, const std::string& identifier) {
    const bool isNew = m_files.try_emplace(identifier, file).second;
    if (!isNew) // a more important one stands for it
        return;
    const auto content = contentOf(file);
    if (!content || !desktop_entry::isShown(*content))
        return;
    m_byName.try_emplace(lowered(identifier), identifier);
    if (const std::string windowClass = desktop_entry::windowClass(*content); !windowClass.empty())
        m_byClass.try_emplace(lowered(windowClass), identifier);
}

} // namespace tessarel::x11
