#pragma once

#include "model/action_id.h"
#include "model/app_settings.h"
#include "model/binding.h"
#include "model/preferences_port.h"
#include "model/signal.h"
#include "model/subscription.h"

#include <optional>
#include <string_view>

namespace tessarel {

/// Holds the current settings and stores them in the user's preferences as one document.
///
/// The document is read once, in the constructor; later changes by another process are not noticed. If it is
/// missing or cannot be decoded, the defaults apply. Nothing is written before the first save.
class Store {
public:
    /// Key of the document in the preferences.
    static constexpr std::string_view key = "tessarel.settings.v1";

    /// `preferences` must outlive the store.
    explicit Store(PreferencesPort& preferences);
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;
    ~Store() = default;

    /// Returns the store of the running application. Requires that a store is shared.
    [[nodiscard]] static Store& shared();
    /// Makes `shared()` return this store until the returned subscription is destroyed. The store must
    /// outlive the subscription.
    [[nodiscard]] SubscriptionPtr share();

    /// Read and modified directly. A change lasts beyond this run only once it is saved.
    AppSettings settings;

    /// Sent when hot keys, menu and windows should follow changed settings.
    Signal<> tessarelSettingsChanged;

    /// Stores the settings. On failure the stored document stays as it was and nothing is reported. That
    /// includes settings that the document cannot hold: numbers that are not finite, text that is not UTF-8.
    void save();
    /// Calls `save()` and then posts `tessarelSettingsChanged`.
    void saveAndNotify();

    /// Returns the hot key of an action, or `std::nullopt` if it is unbound. Does not fall back to the
    /// default.
    [[nodiscard]] std::optional<Binding> binding(ActionID forAction) const;
    /// Binds an action, or unbinds it if `binding` is empty. Does not save, notify, or check for conflicts
    /// with other actions.
    void setBinding(std::optional<Binding> binding, ActionID forAction);

private:
    PreferencesPort& m_preferences;
};

} // namespace tessarel
