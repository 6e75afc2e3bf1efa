// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/plasma/bridge.h"
#include "platform/wayland/mirror.h"
#include "ports/alerts_port.h"
#include "ports/explained_trust.h"
#include "ports/main_queue_port.h"

#include <functional>
#include <utility>

namespace tessarel::plasma {

/// Trust on Plasma, which lets every program of the session move windows: whether KWin runs the script. That
/// it does not may turn out long after the start.
class Trust : public ExplainedTrust {
public:
    /// `mirror` is the one that `bridge` fills. All referenced objects must outlive this one.
    Trust(Bridge& bridge, wayland::Mirror& mirror, MainQueuePort& queue, AlertsPort& alerts)
        : ExplainedTrust(queue, alerts), m_bridge(bridge), m_mirror(mirror) {}

    [[nodiscard]] bool isTrusted() override { return m_bridge.isAccepted(); }
    [[nodiscard]] SubscriptionPtr onLost(std::function<void()> lost) override {
        return m_bridge.onFailed([this, lost = std::move(lost)] {
            if (!hasExplained())
                lost();
        });
    }

protected:
    /// KWin may be starting.
    [[nodiscard]] bool mayComeYet() override { return m_bridge.isRetrying(); }
    [[nodiscard]] Alert explanation() override {
        return {
            "Tessarel cannot move windows",
            "KWin does not run Tessarel's script. Log out and in again; started from a terminal, Tessarel "
            "says why.",
            {"OK"}};
    }
    /// A script that runs reports all windows at once.
    [[nodiscard]] SubscriptionPtr onChange(std::function<void()> changed) override {
        return m_mirror.onReady(std::move(changed));
    }

private:
    Bridge& m_bridge;
    wayland::Mirror& m_mirror;
};

} // namespace tessarel::plasma
