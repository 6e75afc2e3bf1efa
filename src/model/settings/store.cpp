// SPDX-License-Identifier: MIT

#include "model/settings/store.h"

#include "model/presets.h"
#include "model/settings/settings_codec.h"
#include "model/settings/settings_merge.h"

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

} // namespace

Store::Store(PreferencesPort& preferences) : m_preferences(preferences) {
    const auto bytes = m_preferences.data(key);
    if (auto stored = decoded(bytes)) {
        settings = *std::move(stored);
        m_document = *bytes;
    }
    m_replaceable = bytes;
    m_base = m_confirmed = settings;
}

Store& Store::shared() {
    assert(sharedStore != nullptr);
    return *sharedStore;
}

SubscriptionPtr Store::share() {
    return std::make_unique<Sharing>(*this);
}

std::optional<AppSettings> Store::decoded(const std::optional<std::string>& bytes) {
    auto settings = bytes ? decodeSettings(*bytes) : std::nullopt;
    if (settings)
        settings->zones = Presets::pad(std::move(settings->zones));
    return settings;
}

void Store::save() {
    {
        const auto lock = m_preferences.lock(key);
        store(lock != nullptr);
    }
    if (m_due == Due::UntilDecodable)
        saveDelayed.send();
}

void Store::store(bool hasLock) {
    const auto bytes = m_preferences.data(key);
    const auto stored = decoded(bytes);
    if (!stored && bytes != m_replaceable) {
        m_due = Due::UntilDecodable;
        return;
    }
    if (bytes && !stored)
        m_preferences.keepRejected(key);

    const auto document = encodeSettings(withOurs(stored.value_or(m_base)), stored ? *bytes : m_document);
    if (!document || (document != bytes && !m_preferences.setData(key, *document)))
        return;
    m_document = *document;
    m_replaceable = document;
    // What the document has beyond our settings now differs from the base, so takeStored() finds it.
    m_base = settings;
    if (hasLock)
        m_confirmed = settings;
    m_due = hasLock ? Due::Nothing : Due::UntilLocked;
}

AppSettings Store::withOurs(AppSettings stored) const {
    return merged(m_confirmed, settings, merged(m_base, settings, std::move(stored)));
}

void Store::saveAndNotify() {
    save();
    tessarelSettingsChanged.send();
}

void Store::saveOverBroken() {
    if (m_due != Due::UntilDecodable)
        return;
    m_replaceable = m_preferences.data(key);
    save();
}

bool Store::takeStored() {
    const auto bytes = m_preferences.data(key);
    const auto stored = decoded(bytes);
    if (!stored)
        return false;
    m_document = *bytes;
    m_replaceable = bytes;
    auto taken = withOurs(*stored);
    const bool isNew = !(taken == settings);
    const bool isPosted = !(taken.zones == settings.zones && taken.bindings == settings.bindings &&
                            taken.userLayouts == settings.userLayouts);
    m_confirmed = merged(settings, m_confirmed, *stored); // `taken` without our changes
    m_base = *stored;
    settings = std::move(taken);
    if (const auto lock = m_due == Due::Nothing ? nullptr : m_preferences.lock(key)) {
        // Only with the lock: otherwise two copies could overwrite each other again and again. And only once:
        // the release of the lock is reported as a change, so a full disk would keep the program busy.
        m_due = Due::Nothing;
        store(true);
    }
    if (isPosted)
        tessarelSettingsChanged.send();
    return isNew;
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
