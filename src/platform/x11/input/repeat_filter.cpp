// SPDX-License-Identifier: MIT

#include "platform/x11/input/repeat_filter.h"

namespace tessarel::x11 {

bool RepeatFilter::press(std::uint8_t keycode) {
    if (m_down.test(keycode))
        return false;
    m_down.set(keycode);
    if (!m_grabbed)
        m_grabbed = keycode;
    return true;
}

void RepeatFilter::release(std::uint8_t keycode) {
    m_down.reset(keycode);
    if (m_grabbed != keycode)
        return;
    m_down.reset(); // the grab has ended; releases of other keys go elsewhere from here on
    m_grabbed.reset();
}

} // namespace tessarel::x11
