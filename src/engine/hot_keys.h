#pragma once

#include "engine/action_runner.h"
#include "model/action_id.h"
#include "model/store.h"
#include "model/subscription.h"
#include "ports/hot_key_port.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tessarel {

/// The system-wide hot keys: one per bound action, known by the action's position in `ActionID::allCases`.
///
/// A combination that cannot be had, for whatever reason, is left out until the next registration: the action
/// simply has no hot key.
class HotKeys {
public:
    /// Four-character code under which all hot keys of the program are registered: "GWWD".
    static constexpr std::uint32_t kSignature = 0x47575744;

    HotKeys(HotKeyPort& port, ActionRunner& runner, const Store& store);

    /// Lets go of all hot keys and claims those of the present settings. Disabled zones have none.
    void registerAll();

    /// Runs the action known by `id`; does nothing when there is none.
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
    std::vector<SubscriptionPtr> m_refs; ///< null for a combination that could not be had
};

} // namespace tessarel
