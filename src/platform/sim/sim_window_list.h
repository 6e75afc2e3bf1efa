#pragma once

#include "platform/sim/sim_state.h"
#include "ports/window_list_port.h"

#include <vector>

namespace tessarel::sim {

/// The windows of the simulated desktop in their stacking order.
class SimWindowList : public WindowListPort {
public:
    explicit SimWindowList(SimState& state) : m_state(state) {}

    /// Says what `listed` of a window says, and of all others the truth. Minimised windows are not on screen.
    [[nodiscard]] std::vector<ListedWindow> onScreenWindows() override;

private:
    SimState& m_state;
};

} // namespace tessarel::sim
