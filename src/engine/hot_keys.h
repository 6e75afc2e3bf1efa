// SPDX-License-Identifier: MIT

#pragma once

#include "engine/action_runner.h"
#include "model/action_id.h"
#include "model/settings/store.h"
#include "model/signal.h"
#include "model/subscription.h"
#include "ports/desktop/hot_key_port.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace tessarel {

/// The system-wide hot keys: one per bound action. The id of a hot key is the action's index in
/// `ActionID::allCases`.
///
/// If another program has a combination, it stays taken until `retryTaken` finds it free.
class HotKeys {
public:
    /// Four-character code of all hot keys of the program: "GWWD".
    static constexpr std::uint32_t kSignature = 0x47575744;

    /// All arguments must outlive the hot keys.
    HotKeys(HotKeyPort& port, ActionRunner& runner, const Store& store);

    /// Releases all hot keys and registers those of the current settings. Actions of disabled zones get none.
    void registerAll();

    /// Returns whether another program has the combination that `action` is bound to. False if the action has
    /// no hot key.
    [[nodiscard]] bool isTaken(ActionID action) const;

    /// Takes over the combinations that other programs have released.
    void retryTaken() { m_port.retryTaken(); }

    /// Calls `changed` when `isTaken` may have changed for any action, until the returned subscription is
    /// destroyed.
    [[nodiscard]] SubscriptionPtr onTakenChange(std::function<void()> changed) {
        return m_takenChange.connect(std::move(changed));
    }

    /// Runs the action with hot key id `id`; does nothing if there is no such action.
    void handle(std::uint32_t id);

private:
    void installHandler();
    [[nodiscard]] std::vector<HotKeyRequest> requests() const;
    [[nodiscard]] std::optional<HotKeyRequest> request(std::uint32_t id, ActionID action) const;
    [[nodiscard]] bool isOfDisabledZone(ActionID action) const;

    HotKeyPort& m_port;
    ActionRunner& m_runner;
    const Store& m_store;
    bool m_installed = false;
    SubscriptionPtr m_handlerRef;
    /// One per request of the last registration; null if the combination could not be registered.
    std::vector<SubscriptionPtr> m_refs;
    Signal<> m_takenChange;
    SubscriptionPtr m_takenObserver;
};

} // namespace tessarel
