#include "platform/sim/sim_preferences.h"

namespace tessarel::sim {

std::optional<std::string> SimPreferences::data(std::string_view key) {
    const auto found = m_storage.documents.find(key);
    return found == m_storage.documents.end() ? std::nullopt : std::optional(found->second);
}

void SimPreferences::setData(std::string_view key, std::string_view bytes) {
    const std::string name(key);
    if (m_rejected.erase(name) > 0)
        m_storage.rejected[name] = m_storage.documents[name];
    m_storage.documents[name] = bytes;
    ++m_storage.writes;
    if (m_storage.whileWriting)
        m_storage.whileWriting();
}

void SimPreferences::keepRejected(std::string_view key) {
    if (m_storage.documents.contains(key))
        m_rejected.emplace(key);
}

} // namespace tessarel::sim
