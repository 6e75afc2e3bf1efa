// SPDX-License-Identifier: MIT

#include "platform/sim/sim_preferences.h"

#include "model/call_on_end.h"

#include <memory>
#include <utility>

namespace tessarel::sim {
namespace {

/// Reports changes of one document from the event loop.
class Watch : public Subscription {
public:
    Watch(SimPreferencesStorage& storage, std::string_view key, std::function<void()> changed)
        : m_changed(std::move(changed)),
          m_observer(storage.changed.connect([this, &storage, name = std::string(key)](std::string_view one) {
              if (one == name)
                  m_pending = storage.clock.schedule(this, {}, m_changed);
          })) {}

private:
    std::function<void()> m_changed;
    SubscriptionPtr m_observer;
    SubscriptionPtr m_pending;
};

} // namespace

void SimPreferencesStorage::edit(std::string_view key, std::string_view bytes) {
    documents.insert_or_assign(std::string(key), std::string(bytes));
    changed.send(key);
}

std::optional<std::string> SimPreferences::data(std::string_view key) {
    const auto found = m_storage.documents.find(key);
    return found == m_storage.documents.end() ? std::nullopt : std::optional(found->second);
}

bool SimPreferences::setData(std::string_view key, std::string_view bytes) {
    if (m_storage.isFull)
        return false;
    const std::string name(key);
    if (m_rejected.erase(name) > 0)
        m_storage.rejected[name] = m_storage.documents[name];
    m_storage.documents[name] = bytes;
    ++m_storage.writes;
    if (m_storage.whileWriting)
        m_storage.whileWriting();
    m_storage.changed.send(key);
    return true;
}

void SimPreferences::keepRejected(std::string_view key) {
    if (m_storage.documents.contains(key))
        m_rejected.emplace(key);
}

SubscriptionPtr SimPreferences::lock(std::string_view key) {
    std::string name(key);
    if (!m_storage.locked.insert(name).second)
        return nullptr;
    return callOnEnd([&locked = m_storage.locked, name = std::move(name)] { locked.erase(name); });
}

SubscriptionPtr SimPreferences::watch(std::string_view key, std::function<void()> changed) {
    return std::make_unique<Watch>(m_storage, key, std::move(changed));
}

} // namespace tessarel::sim
