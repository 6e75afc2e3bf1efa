#include "model/store.h"

#include "model/presets.h"
#include "model/settings_codec.h"

#include <cassert>
#include <memory>
#include <string>
#include <utility>

namespace tessarel {
namespace {

/// The store returned by `Store::shared()`.
Store* sharedStore = nullptr;

/// Shares a store and restores the previously shared one when it is destroyed.
class Sharing : public Subscription {
public:
    explicit Sharing(Store& store) : m_before(std::exchange(sharedStore, &store)) {}
    ~Sharing() override { sharedStore = m_before; }

private:
    Store* m_before;
};

/// Returns the stored settings, or the defaults if they are missing or cannot be decoded.
AppSettings load(PreferencesPort& preferences) {
    const auto bytes = preferences.data(Store::key);
    if (!bytes)
        return {};

    auto settings = decodeSettings(*bytes);
    if (!settings) {
        preferences.keepRejected(Store::key);
        return {};
    }
    settings->zones = Presets::pad(std::move(settings->zones));
    return *std::move(settings);
}

} // namespace

Store::Store(PreferencesPort& preferences) : settings(load(preferences)), m_preferences(preferences) {}

Store& Store::shared() {
    assert(sharedStore != nullptr);
    return *sharedStore;
}

SubscriptionPtr Store::share() {
    return std::make_unique<Sharing>(*this);
}

void Store::save() {
    if (const auto bytes = encodeSettings(settings))
        m_preferences.setData(key, *bytes);
}

void Store::saveAndNotify() {
    save();
    tessarelSettingsChanged.send();
}

std::optional<Binding> Store::binding(ActionID forAction) const {
    const auto entry = settings.bindings.find(forAction.rawValue());
    if (entry == settings.bindings.end())
        return std::nullopt;
    return entry->second;
}

void Store::setBinding(std::optional<Binding> binding, ActionID forAction) {
    std::string rawValue(forAction.rawValue());
    if (binding)
        settings.bindings.insert_or_assign(std::move(rawValue), *binding);
    else
        settings.bindings.erase(rawValue);
}

} // namespace tessarel
