// SPDX-License-Identifier: MIT

#pragma once

#include "platform/sim/windows/sim_state.h"
#include "ports/desktop/displays_port.h"

namespace tessarel::sim {

/// The displays of the simulated desktop. The main screen is the one with the centre of the focused window;
/// without such a window or display it is the primary one.
class SimDisplays : public DisplaysPort {
public:
    explicit SimDisplays(SimState& state) : m_state(state) {}

    /// Returns the displays in the order of `SimState::screens`, so that the primary one is the first.
    [[nodiscard]] std::vector<Screen> screens() override { return m_state.screens; }
    [[nodiscard]] std::optional<Screen> mainScreen() override;

private:
    SimState& m_state;
};

} // namespace tessarel::sim
