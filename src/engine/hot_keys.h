#pragma once

#include "engine/action_runner.h"
#include "model/action_id.h"
#include "model/settings/store.h"
#include "model/subscription.h"
#include "ports/hot_key_port.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tessarel {

/// The system-wide hot keys: one per bound action. The id of a hot key is the action's index in
/// `ActionID::allCases`.
///
/// If a combination is unavailable, its action has no hot key until the next registration.
class HotKeys {
public:
    /// Four-character code of all hot keys of the program: "GWWD".
    static constexpr std::uint32_t kSignature = 0x47575744;

    /// All arguments must outlive the hot keys.
    HotKeys(HotKeyPort& port, ActionRunner& runner, const Store& store);

    /// Releases all hot keys and registers those of the current settings. Actions of disabled zones get none.
    void registerAll();

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
    /// One per request of the last registration; null if the combination was unavailable.
    std::vector<SubscriptionPtr> m_refs;
};

} // namespace tessarel
