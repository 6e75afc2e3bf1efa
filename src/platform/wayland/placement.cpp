// SPDX-License-Identifier: MIT

#include "platform/wayland/placement.h"

#include <algorithm>
#include <utility>

namespace tessarel::wayland {

void Placement::write(WindowId window, const FrameWish& wish) {
    if (m_written != window)
        send();
    m_written = window;
    if (wish.origin)
        m_wish.origin = wish.origin;
    if (wish.size)
        m_wish.size = wish.size;
    if (!m_nextLoop)
        m_nextLoop = m_queue.async([this] { enterLoop(); });
}

void Placement::finish(WindowId window) {
    if (m_written == window)
        send();
    if (!m_late.contains(window) && !isPostponed(window))
        await(window);
}

std::vector<WindowId> Placement::endSeveral() {
    send();
    auto sent = std::exchange(m_several, std::nullopt).value_or(std::vector<WindowId>());
    for (const WindowId window : sent)
        await(window);
    return sent;
}

bool Placement::isPostponed(WindowId window) const {
    return m_several && std::ranges::find(*m_several, window) != m_several->end();
}

void Placement::await(WindowId window) {
    if (m_overdue.contains(window) || m_compositor.waitUntilSettled(window, kPatience))
        return;
    m_late.insert(window);
    m_overdue.insert(window);
}

void Placement::send() {
    const WindowId window = std::exchange(m_written, kNoWindow);
    const FrameWish wish = std::exchange(m_wish, {});
    const WindowState* const state = m_mirror.find(window);
    if (state == nullptr)
        return;
    const Point origin = wish.origin.value_or(state->frame.origin());
    const Size size = wish.size.value_or(state->frame.size());
    await(window);
    std::erase_if(m_overdue, [&](WindowId one) { return one == window || m_mirror.find(one) == nullptr; });
    m_compositor.place(window, {origin.x, origin.y, size.width, size.height});
    if (m_several && !isPostponed(window))
        m_several->push_back(window);
}

void Placement::enterLoop() {
    m_nextLoop.reset();
    send();
    m_late.clear();
}

} // namespace tessarel::wayland
