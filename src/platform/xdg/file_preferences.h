#pragma once

#include "model/preferences_port.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace tessarel::xdg {

/// Preferences in a folder of the user: one file per key, "<key>.json".
///
/// A stored document that was rejected or cannot be read is kept at the next save, under its name with the
/// suffix ".rejected" and, if necessary, a number. If it cannot be kept, nothing is saved.
class FilePreferences : public PreferencesPort {
public:
    /// The first save creates `folder` and its missing parents. With an empty path nothing is read or stored.
    explicit FilePreferences(std::filesystem::path folder);

    /// Returns the folder "tessarel" in the user's configuration folder: $XDG_CONFIG_HOME if that is an
    /// absolute path, otherwise ".config" in the home folder. Empty if the user has no home folder.
    [[nodiscard]] static std::filesystem::path userFolder();

    std::optional<std::string> data(std::string_view key) override;
    /// Failures are not reported and leave the stored bytes as they were.
    void setData(std::string_view key, std::string_view bytes) override;
    void keepRejected(std::string_view key) override;

private:
    [[nodiscard]] std::filesystem::path path(std::string_view key) const;

    std::filesystem::path m_folder;
    /// Keys whose stored bytes must be kept at the next save.
    std::set<std::string, std::less<>> m_rejected;
};

} // namespace tessarel::xdg
