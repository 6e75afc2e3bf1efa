// SPDX-License-Identifier: MIT

#pragma once

#include "model/action_id.h"
#include "model/binding.h"
#include "model/settings/app_settings.h"
#include "model/settings/preferences_port.h"
#include "model/signal.h"
#include "model/subscription.h"

#include <optional>
#include <string>
#include <string_view>

namespace tessarel {

/// Holds the current settings and stores them in the user's preferences as one document.
///
/// Other copies of the program and editors may change the document at any time. A save therefore applies only
/// what has changed here to the newest document (see `merged`); `takeStored` takes up what has changed there.
/// A document that cannot be decoded is not taken up, and it is kept when it has to be replaced.
///
/// If the document is missing or cannot be decoded on startup, the defaults apply. Nothing is written before
/// the first save.
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

    /// Sent when a save has been delayed, because the stored document has gone or cannot be decoded: an
    /// editor may be about to complete it. `takeStored` then saves once it is whole, and `saveOverBroken` in
    /// any case.
    Signal<> saveDelayed;

    /// Stores the settings. On failure the stored document stays as it was and nothing is reported; the next
    /// save includes the change. That includes settings that the document cannot hold: numbers that are not
    /// finite, text that is not UTF-8.
    ///
    /// Does not change `settings`, even if the document contains changes by others.
    void save();
    /// Calls `save()` and then posts `tessarelSettingsChanged`.
    void saveAndNotify();
    /// Completes a delayed save even if the stored document still cannot be decoded; a copy of it is kept.
    /// Does nothing if no save is delayed.
    void saveOverBroken();

    /// Takes up the changes that others have made to the stored document. What has changed here since the
    /// last save stays as it is. Posts `tessarelSettingsChanged` for zones, bindings and layouts, as the
    /// settings window does. Returns false if the settings are the same as before. Writes only to complete an
    /// earlier save.
    bool takeStored();

    /// Returns the hot key of an action, or `std::nullopt` if it is unbound. Does not fall back to the
    /// default.
    [[nodiscard]] std::optional<Binding> binding(ActionID forAction) const;
    /// Binds an action, or unbinds it if `binding` is empty. Does not save, notify, or check for conflicts
    /// with other actions.
    void setBinding(std::optional<Binding> binding, ActionID forAction);

private:
    /// Why a save has to be repeated.
    enum class Due {
        Nothing,
        /// There was no document that could be decoded, and nothing has been written.
        UntilDecodable,
        /// The document has been written without the lock, which another copy held. What that copy writes
        /// once it goes on lacks our change.
        UntilLocked,
    };

    /// Returns the settings in `bytes`, with nine zones; `std::nullopt` if they cannot be decoded.
    [[nodiscard]] static std::optional<AppSettings> decoded(const std::optional<std::string>& bytes);
    /// Applies the changes of this copy to the stored document and writes it.
    void store(bool hasLock);
    /// Returns `stored` with the changes of this copy. It may lack those that have been written without the
    /// lock, so they are applied again.
    [[nodiscard]] AppSettings withOurs(AppSettings stored) const;

    PreferencesPort& m_preferences;
    /// The settings of the document that is the base of our changes: what differs from them is unsaved.
    AppSettings m_base;
    /// The base of the changes that have been written without the lock, which another copy may overwrite.
    AppSettings m_confirmed;
    /// The last document that could be decoded, whose unknown members are kept.
    std::string m_document;
    /// What a save may replace even if it cannot be decoded; empty for a missing document.
    std::optional<std::string> m_replaceable;
    Due m_due = Due::Nothing;
};

} // namespace tessarel
