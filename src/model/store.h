#pragma once

#include "model/action_id.h"
#include "model/app_settings.h"
#include "model/binding.h"
#include "model/notification.h"
#include "model/preferences_port.h"
#include "model/subscription.h"

#include <optional>
#include <string_view>

namespace tessarel {

/// Holds the current settings and keeps them in the user's preferences, as one document.
///
/// The document is read once, when the store is made; what another process writes later is not seen. A
/// document that is missing or cannot be decoded gives the defaults. Nothing is written before the first
/// save.
class Store {
public:
    /// Under which the preferences keep the document.
    static constexpr std::string_view key = "tessarel.settings.v1";

    /// `preferences` must outlive the store.
    explicit Store(PreferencesPort& preferences);
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;
    ~Store() = default;

    /// The store of the running application. One must have been shared.
    [[nodiscard]] static Store& shared();
    /// Makes this store the one that `shared()` answers, until the subscription ends. The store must outlive
    /// the subscription.
    [[nodiscard]] SubscriptionPtr share();

    /// Read and written directly; a change lasts beyond this run once it is saved.
    AppSettings settings;

    /// Posted when hot keys, menu and windows should follow changed settings.
    Notification tessarelSettingsChanged;

    /// Stores the settings. A failure is not reported and leaves the stored document as it was, as do
    /// settings that a document cannot hold: numbers that are not finite, text that is not UTF-8.
    void save();
    /// `save()`, then tells the observers of `tessarelSettingsChanged`, before it returns.
    void saveAndNotify();

    /// The hot key of an action; none if it is unbound. There is no fall-back to the default.
    [[nodiscard]] std::optional<Binding> binding(ActionID forAction) const;
    /// Binds or, without a binding, unbinds an action. Neither saves nor tells, nor looks at other actions.
    void setBinding(std::optional<Binding> binding, ActionID forAction);

private:
    PreferencesPort& m_preferences;
};

} // namespace tessarel
