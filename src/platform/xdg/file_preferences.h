#pragma once

#include "model/preferences_port.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace tessarel::xdg {

/// Preferences in a folder of the user's: one file for each key, "<key>.json".
///
/// Stored bytes that were rejected, or that are there and cannot be read, are kept beside the new ones at the
/// next save, under the same name with ".rejected" (and a number) behind it. If that is not possible, the
/// save fails like any other.
class FilePreferences : public PreferencesPort {
public:
    /// `folder` and what is missing of the way to it are made at the first save. With an empty path nothing
    /// is stored.
    explicit FilePreferences(std::filesystem::path folder);

    /// "tessarel" in the present user's configuration folder: $XDG_CONFIG_HOME if that is an absolute path,
    /// else ".config" in the home folder. Empty for a user without a home.
    [[nodiscard]] static std::filesystem::path userFolder();

    std::optional<std::string> data(std::string_view key) override;
    void setData(std::string_view key, std::string_view bytes) override;
    void keepRejected(std::string_view key) override;

private:
    [[nodiscard]] std::filesystem::path path(std::string_view key) const;

    std::filesystem::path m_folder;
    std::set<std::string, std::less<>> m_rejected;
};

} // namespace tessarel::xdg
