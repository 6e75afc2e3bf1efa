#include "platform/xdg/file_preferences.h"

#include "platform/xdg/document_file.h"

#include <cstdlib>
#include <pwd.h>
#include <unistd.h>
#include <utility>

namespace tessarel::xdg {
namespace {

namespace fs = std::filesystem;

/// Returns the value of an environment variable if it is an absolute path, otherwise an empty path.
fs::path absoluteFromEnvironment(const char* variable) {
    const char* const value = std::getenv(variable);
    if (value == nullptr || *value != '/')
        return {};
    return value;
}

/// Returns the home folder from $HOME or the user database; empty if neither has an absolute path.
fs::path home() {
    auto fromEnvironment = absoluteFromEnvironment("HOME");
    if (!fromEnvironment.empty())
        return fromEnvironment;
    const passwd* const user = ::getpwuid(::getuid());
    if (user == nullptr || user->pw_dir == nullptr || *user->pw_dir != '/')
        return {};
    return user->pw_dir;
}

fs::path configurationFolder() {
    auto fromEnvironment = absoluteFromEnvironment("XDG_CONFIG_HOME");
    if (!fromEnvironment.empty())
        return fromEnvironment;
    const auto folder = home();
    return folder.empty() ? folder : folder / ".config";
}

} // namespace

FilePreferences::FilePreferences(fs::path folder) : m_folder(std::move(folder)) {}

fs::path FilePreferences::userFolder() {
    const auto folder = configurationFolder();
    return folder.empty() ? folder : folder / "tessarel";
}

std::optional<std::string> FilePreferences::data(std::string_view key) {
    if (m_folder.empty())
        return std::nullopt;
    const DocumentFile file(path(key));
    auto bytes = file.read();
    // A file that exists but cannot be read must not be lost in the next save.
    if (!bytes && file.exists())
        keepRejected(key);
    return bytes;
}

void FilePreferences::setData(std::string_view key, std::string_view bytes) {
    if (m_folder.empty())
        return;
    const DocumentFile file(path(key));
    const auto rejected = m_rejected.find(key);
    if (rejected != m_rejected.end() && !file.keepRejected())
        return;
    if (file.replace(bytes) && rejected != m_rejected.end())
        m_rejected.erase(rejected);
}

void FilePreferences::keepRejected(std::string_view key) {
    m_rejected.emplace(key);
}

fs::path FilePreferences::path(std::string_view key) const {
    return m_folder / (std::string(key) + ".json");
}

} // namespace tessarel::xdg
