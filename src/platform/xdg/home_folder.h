// SPDX-License-Identifier: MIT

#pragma once

#include <filesystem>
#include <vector>

namespace tessarel::xdg {

/// Returns the value of an environment variable if it is an absolute path, otherwise an empty path.
[[nodiscard]] std::filesystem::path folderFrom(const char* variable);

/// Returns the user's home folder: $HOME if that is an absolute path, otherwise the folder in the password
/// database. Empty if neither has an absolute path.
[[nodiscard]] std::filesystem::path homeFolder();

/// Returns $XDG_CONFIG_HOME if that is an absolute path, otherwise ".config" in the home folder. Empty if the
/// user has no home folder.
[[nodiscard]] std::filesystem::path configurationFolder();

/// Returns $XDG_DATA_HOME if that is an absolute path, otherwise ".local/share" in the home folder. Empty if
/// the user has no home folder.
[[nodiscard]] std::filesystem::path dataFolder();

/// Returns the system's configuration folders ($XDG_CONFIG_DIRS), the most important first. Relative ones are
/// ignored.
[[nodiscard]] std::vector<std::filesystem::path> systemConfigurationFolders();

/// Sets $HOME to `homeFolder`, so that libraries and started programs use the same folder. Call before the
/// first thread starts.
void settleHome();

} // namespace tessarel::xdg
