// SPDX-License-Identifier: MIT

#pragma once

#include "platform/sim/windows/sim_state.h"
#include "ports/desktop/workspace_port.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tessarel::sim {

/// The workspace port of the simulated desktop.
class SimWorkspace : public WorkspacePort {
public:
    explicit SimWorkspace(SimState& state) : m_state(state) {}

    [[nodiscard]] std::optional<RunningApplication> frontmostApplication() override {
        const SimApplication* front = m_state.frontmost ? m_state.application(*m_state.frontmost) : nullptr;
        if (front && front->focusedWindow)
            return m_state.owner(*front->focusedWindow);
        return front ? runningApplication(*m_state.frontmost) : std::nullopt;
    }
    [[nodiscard]] std::optional<RunningApplication> runningApplication(ProcessId pid) override {
        return m_state.running(pid);
    }
    /// Returns all applications, sorted by process id.
    [[nodiscard]] std::vector<RunningApplication> runningApplications() override {
        std::vector<RunningApplication> all;
        for (const auto& [pid, application] : m_state.applications)
            all.push_back(*m_state.running(pid));
        return all;
    }
    /// Returns the name with which the application was installed, whether it runs or not.
    [[nodiscard]] std::optional<std::string> displayName(const std::string& bundleIdentifier) override {
        const auto found = m_state.installed.find(bundleIdentifier);
        return found == m_state.installed.end() ? std::nullopt : std::optional(found->second);
    }
    [[nodiscard]] SubscriptionPtr
    addObserver(ApplicationEvent event, std::function<void(const RunningApplication&)> handler) override {
        return m_state.applicationObservers.add(event, std::move(handler));
    }
    [[nodiscard]] ProcessId ownProcessIdentifier() override { return SimState::kOwnPid; }

private:
    SimState& m_state;
};

} // namespace tessarel::sim
