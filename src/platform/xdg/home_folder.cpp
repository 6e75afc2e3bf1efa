// SPDX-License-Identifier: MIT

#include "platform/xdg/home_folder.h"

#include "platform/xdg/environment.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <pwd.h>
#include <unistd.h>

namespace tessarel::xdg {

namespace fs = std::filesystem;

fs::path folderFrom(const char* variable) {
    const char* const value = std::getenv(variable);
    if (value == nullptr || *value != '/')
        return {};
    return value;
}

fs::path homeFolder() {
    auto fromEnvironment = folderFrom("HOME");
    if (!fromEnvironment.empty())
        return fromEnvironment;
    const passwd* const user = ::getpwuid(::getuid());
    if (user == nullptr || user->pw_dir == nullptr || *user->pw_dir != '/')
        return {};
    return user->pw_dir;
}

fs::path configurationFolder() {
    auto fromEnvironment = folderFrom("XDG_CONFIG_HOME");
    if (!fromEnvironment.empty())
        return fromEnvironment;
    const auto home = homeFolder();
    return home.empty() ? home : home / ".config";
}

fs::path dataFolder() {
    auto fromEnvironment = folderFrom("XDG_DATA_HOME");
    if (!fromEnvironment.empty())
        return fromEnvironment;
    const auto home = homeFolder();
    return home.empty() ? home : home / ".local/share";
}

std::vector<fs::path> systemConfigurationFolders() {
    const auto list = listFrom("XDG_CONFIG_DIRS");
    if (list.empty())
        return {"/etc/xdg"};
    std::vector<fs::path> folders;
    std::ranges::copy_if(list, std::back_inserter(folders),
                         [](const fs::path& folder) { return folder.is_absolute(); });
    return folders;
}

void settleHome() {
    const auto home = homeFolder();
    if (home.empty())
        ::unsetenv("HOME"); // a relative path would depend on the working directory
    else
        ::setenv("HOME", home.c_str(), 1);
}

} // namespace tessarel::xdg
