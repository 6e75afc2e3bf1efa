#include "platform/xdg/file_preferences.h"

#include "model/call_on_end.h"
#include "platform/xdg/document_file.h"
#include "platform/xdg/home_folder.h"

#include <memory>
#include <utility>

namespace tessarel::xdg {

namespace fs = std::filesystem;

FilePreferences::FilePreferences(fs::path folder, OnReadable onReadable)
    : m_folder(std::move(folder)), m_onReadable(std::move(onReadable)) {}

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
    if (m_folder.empty())
        return false;
    const DocumentFile file(path(key));
    const std::string name(key);
    const bool mustKeep = m_rejected.contains(name) || m_unreadable.contains(name);
    if ((mustKeep && !file.keepRejected()) || !file.replace(bytes))
        return false;
    m_rejected.erase(name);
    m_unreadable.erase(name);
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
