// SPDX-License-Identifier: MIT

#include "platform/sim/windows/sim_displays.h"

namespace tessarel::sim {

std::optional<Screen> SimDisplays::mainScreen() {
    if (m_state.mainScreen)
        return m_state.mainScreen;
    // Without a focused window the origin, which is the corner of the primary display.
    Point middle;
    const SimApplication* frontmost = m_state.frontmost ? m_state.application(*m_state.frontmost) : nullptr;
    const SimWindow* focused =
        frontmost && frontmost->focusedWindow ? m_state.window(*frontmost->focusedWindow) : nullptr;
    if (focused)
        middle = {focused->axFrame.midX(), focused->axFrame.midY()};
    const Screen* screen = m_state.screenAt(middle);
    return screen ? std::optional(*screen) : std::nullopt;
}

} // namespace tessarel::sim
