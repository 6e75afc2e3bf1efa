#pragma once

#include "platform/sim/sim_state.h"
#include "ports/displays_port.h"

namespace tessarel::sim {

/// The displays of the simulated desktop. The main one is that of the focused window, else the primary one.
class SimDisplays : public DisplaysPort {
public:
    explicit SimDisplays(SimState& state) : m_state(state) {}

    [[nodiscard]] std::vector<Screen> screens() override { return m_state.screens; }
    [[nodiscard]] std::optional<Screen> mainScreen() override;

private:
    SimState& m_state;
};

} // namespace tessarel::sim
