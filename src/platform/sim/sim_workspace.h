#pragma once

#include "platform/sim/sim_state.h"
#include "ports/workspace_port.h"

namespace tessarel::sim {

/// The programs of the simulated desktop.
class SimWorkspace : public WorkspacePort {
public:
    explicit SimWorkspace(SimState& state) : m_state(state) {}

    [[nodiscard]] std::optional<RunningApplication> frontmostApplication() override {
        return m_state.frontmost ? runningApplication(*m_state.frontmost) : std::nullopt;
    }
    [[nodiscard]] std::optional<RunningApplication> runningApplication(ProcessId pid) override {
        const SimApplication* application = m_state.application(pid);
        if (!application)
            return {};
        return RunningApplication{pid, application->bundleIdentifier};
    }
    [[nodiscard]] ProcessId ownProcessIdentifier() override { return SimState::kOwnPid; }

private:
    SimState& m_state;
};

} // namespace tessarel::sim
