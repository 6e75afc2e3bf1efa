#include "platform/x11/keys_down.h"

namespace tessarel::x11 {

bool KeysDown::press(std::uint8_t keycode) {
    if (m_down.test(keycode))
        return false;
    m_down.set(keycode);
    if (!m_grabbed)
        m_grabbed = keycode;
    return true;
}

void KeysDown::release(std::uint8_t keycode) {
    m_down.reset(keycode);
    if (m_grabbed != keycode)
        return;
    m_down.reset();
    m_grabbed.reset();
}

} // namespace tessarel::x11
