// SPDX-License-Identifier: MIT

#include "platform/macos/windows/late_frames.h"

#include <utility>
#include <variant>

namespace tessarel::macos {

LateFrames::LateFrames(Read read, Wait wait) : m_read(std::move(read)), m_wait(std::move(wait)) {}

void LateFrames::willWrite(const Element& window, std::uintptr_t key, const AttributeValue& value) {
    if (!m_written || m_written->key != key) {
        const auto before = m_read(window);
        // Kept without a frame as well: an application that does not reply must not be asked at each write.
        m_written = Written{window, key, before, before.value_or(Rect())};
    }
    Rect& wanted = m_written->wanted;
    if (const auto* const point = std::get_if<Point>(&value))
        wanted = {point->x, point->y, wanted.width, wanted.height};
    else if (const auto* const size = std::get_if<Size>(&value))
        wanted = {wanted.x, wanted.y, size->width, size->height};
}

void LateFrames::willRead(std::uintptr_t key) {
    if (!m_written || m_written->key != key)
        return;
    const auto written = std::exchange(m_written, std::nullopt);
    // An application that is asked for the frame it has already will never change it.
    if (!written->before || written->wanted == *written->before)
        return;
    // A read that fails ends the wait as well: an empty frame differs from every frame.
    for (std::chrono::milliseconds waited{0}; waited < kLongest && m_read(written->window) == written->before;
         waited += kBetweenReads)
        m_wait(kBetweenReads);
}

} // namespace tessarel::macos
