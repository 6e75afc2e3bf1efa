// SPDX-License-Identifier: MIT

#pragma once

#include "platform/sim/windows/sim_state.h"
#include "ports/desktop/window_list_port.h"

#include <vector>

namespace tessarel::sim {

/// The window list of the simulated desktop.
class SimWindowList : public WindowListPort {
public:
    explicit SimWindowList(SimState& state) : m_state(state) {}

    /// Returns all windows but minimised ones, front to back. `SimWindow::listed` replaces a window's entry.
    [[nodiscard]] std::vector<ListedWindow> onScreenWindows() override;

private:
    SimState& m_state;
};

} // namespace tessarel::sim
