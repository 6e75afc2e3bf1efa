// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "ports/alerts_port.h"
#include "ports/main_queue_port.h"
#include "ports/trust_port.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>

namespace tessarel {

/// Trust on a desktop that knows no permission: an alert explains what else is missing. There is no system
/// setting to change, because the alert says all there is to know.
class ExplainedTrust : public TrustPort {
public:
    /// All referenced objects must outlive this one.
    ExplainedTrust(MainQueuePort& queue, AlertsPort& alerts)
        : m_queue(queue), m_alerts(alerts), m_startedAt(queue.now()) {}
    ExplainedTrust(const ExplainedTrust&) = delete;
    ExplainedTrust& operator=(const ExplainedTrust&) = delete;

    /// How long after the start of the program an alert waits for what may be about to start, too.
    static constexpr std::chrono::seconds kPatience{10};

    /// Shows an alert that explains what is missing, in the next iteration of the main queue; if it may come
    /// by itself, not before `kPatience` has passed since the start. By then the program may be trusted; an
    /// open alert is closed as soon as it is. An alert that is open already is shown anew, in front of other
    /// windows. Does nothing when trusted, nor while an alert is pending.
    void prompt() override {
        if (m_prompt || isTrusted())
            return;
        const auto left =
            mayComeYet() ? m_startedAt + kPatience - m_queue.now() : MainQueuePort::Duration::zero();
        m_prompt = m_queue.asyncAfter(left, [this] { explain(); }); // at once if nothing is left
    }

    [[nodiscard]] SubscriptionPtr onLost(std::function<void()> /*lost*/) override { return nullptr; }
    [[nodiscard]] bool hasSettings() const override { return false; }
    void openSettings() override {}

protected:
    /// Returns whether an alert has been shown.
    [[nodiscard]] bool hasExplained() const { return m_hasExplained; }
    /// Returns whether what is missing may come without the user. Called only when not trusted.
    [[nodiscard]] virtual bool mayComeYet() = 0;
    /// Returns the alert. Called only when not trusted.
    [[nodiscard]] virtual Alert explanation() = 0;
    /// Calls `changed` whenever the trust may have been gained.
    [[nodiscard]] virtual SubscriptionPtr onChange(std::function<void()> changed) = 0;

private:
    void explain() {
        m_prompt.reset();
        close();
        if (isTrusted())
            return;
        m_changes = onChange([this] {
            if (isTrusted())
                close();
        });
        m_hasExplained = true;
        m_alert = m_alerts.show(explanation(), [this](std::optional<std::size_t>) { close(); });
    }
    void close() {
        m_alert.reset();
        m_changes.reset();
    }

    MainQueuePort& m_queue;
    AlertsPort& m_alerts;
    MainQueuePort::TimePoint m_startedAt;
    bool m_hasExplained = false;
    SubscriptionPtr m_prompt;  // null unless an alert is pending
    SubscriptionPtr m_alert;   // null unless one is open
    SubscriptionPtr m_changes; // while an alert is open
};

} // namespace tessarel
