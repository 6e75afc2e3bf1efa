// SPDX-License-Identifier: MIT

#include "platform/xdg/file_preferences.h"

#include "model/call_on_end.h"
#include "platform/xdg/document_file.h"
#include "platform/xdg/home_folder.h"

#include <memory>
#include <utility>

namespace tessarel::xdg {

namespace fs = std::filesystem;

FilePreferences::FilePreferences(fs::path folder, OnReadable onReadable, Report report)
    : m_folder(std::move(folder)), m_onReadable(std::move(onReadable)), m_report(std::move(report)) {}

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
        m_unreadable.emplace(key);
    else
        m_unreadable.erase(std::string(key));
    return bytes;
}

bool FilePreferences::setData(std::string_view key, std::string_view bytes) {
    const bool isSaved = replace(std::string(key), bytes);
    if (!isSaved && !m_isFailing)
        m_report(m_folder.empty() ? "cannot save the settings: the user has no home folder"
                                  : "cannot save the settings in " + path(key).string());
    m_isFailing = !isSaved;
    return isSaved;
}

bool FilePreferences::replace(const std::string& key, std::string_view bytes) {
    if (m_folder.empty())
        return false;
    const DocumentFile file(path(key));
    const bool mustKeep = m_rejected.contains(key) || m_unreadable.contains(key);
    const auto copy = mustKeep ? file.keepRejected() : fs::path();
    if (!copy || !file.replace(bytes))
        return false;
    m_rejected.erase(key);
    m_unreadable.erase(key);
    if (!copy->empty())
        m_report("the settings could not be read; a copy of them is in " + copy->string());
    return true;
}

void FilePreferences::keepRejected(std::string_view key) {
    m_rejected.emplace(key);
}

SubscriptionPtr FilePreferences::lock(std::string_view key) {
    if (m_folder.empty())
        return callOnEnd([] {});
    return DocumentFile(path(key)).lock();
}

SubscriptionPtr FilePreferences::watch(std::string_view key, std::function<void()> changed) {
    if (m_folder.empty() || !m_onReadable)
        return nullptr;
    return std::make_unique<DocumentWatch>(path(key), m_onReadable, std::move(changed));
}

fs::path FilePreferences::path(std::string_view key) const {
    return m_folder / (std::string(key) + ".json");
}

} // namespace tessarel::xdg
