// SPDX-License-Identifier: MIT

#pragma once

#include "model/settings/preferences_port.h"
#include "platform/xdg/document_watch.h"

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
/// suffix ".rejected" and, if necessary, a number. If it cannot be kept, nothing is saved. A kept document is
/// reported, and so is the first of the saves that fail in a row.
///
/// All copies of the program and all editors of the user share the files. A file beside a document locks it,
/// under the name of the document with a dot in front and the suffix ".lock"; it is deleted at once.
class FilePreferences : public PreferencesPort {
public:
    /// Shows the user a line of text.
    using Report = std::function<void(const std::string&)>;

    /// The first save creates `folder` and its missing parents. With an empty path nothing is read or stored.
    /// Without `onReadable`, changes are not reported.
    explicit FilePreferences(
        std::filesystem::path folder, OnReadable onReadable = nullptr,
        Report report = [](const std::string&) {});

    /// Returns the folder "tessarel" in the user's configuration folder: $XDG_CONFIG_HOME if that is an
    /// absolute path, otherwise ".config" in the home folder. Empty if the user has no home folder.
    [[nodiscard]] static std::filesystem::path userFolder();

    std::optional<std::string> data(std::string_view key) override;
    bool setData(std::string_view key, std::string_view bytes) override;
    void keepRejected(std::string_view key) override;
    SubscriptionPtr lock(std::string_view key) override;
    SubscriptionPtr watch(std::string_view key, std::function<void()> changed) override;

private:
    [[nodiscard]] std::filesystem::path path(std::string_view key) const;
    [[nodiscard]] bool replace(const std::string& key, std::string_view bytes);

    std::filesystem::path m_folder;
    OnReadable m_onReadable;
    Report m_report;
    bool m_isFailing = false; // the last save has failed
    // Keys whose stored bytes must be kept at the next save.
    std::set<std::string, std::less<>> m_rejected;
    std::set<std::string, std::less<>> m_unreadable;
};

} // namespace tessarel::xdg
