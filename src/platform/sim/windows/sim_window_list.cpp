// SPDX-License-Identifier: MIT

#include "platform/sim/windows/sim_window_list.h"

namespace tessarel::sim {

std::vector<ListedWindow> SimWindowList::onScreenWindows() {
    std::vector<ListedWindow> listed;
    for (const SimWindow& window : m_state.windows) {
        if (window.minimized)
            continue;
        if (window.listed)
            listed.push_back(*window.listed);
        else
            listed.push_back({0, window.pid, window.shownAxFrame(m_state.clock.now()), window.alpha});
    }
    return listed;
}

} // namespace tessarel::sim
