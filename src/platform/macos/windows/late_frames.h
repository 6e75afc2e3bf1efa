// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/accessibility_port.h"

#include <chrono>
#include <functional>
#include <optional>

namespace tessarel::macos {

/// Waits for applications that confirm a new frame before they apply it: the first read of a window's frame
/// after a write blocks until the frame differs from the one before the write, or the time limit passes.
///
/// Tracks one window at a time. Frames are in accessibility coordinates.
class LateFrames {
public:
    /// Blocks the calling thread for the given time.
    using Wait = std::function<void(std::chrono::milliseconds)>;
    /// Returns the current frame of a window; empty when its application does not report one.
    using Read = std::function<std::optional<Rect>(const Element& window)>;

    /// Longest total wait of one read, without the time that reading the frame takes. An application that has
    /// not moved its window by then is taken to have refused the frame.
    static constexpr std::chrono::milliseconds kLongest{100};
    static constexpr std::chrono::milliseconds kBetweenReads{5};

    LateFrames(Read read, Wait wait);

    /// Must be called before the position or the size of `window` is written. Reads the current frame, unless
    /// the same window has been written since its last read. `key` is that of `AccessibilityPort::key`.
    void willWrite(const Element& window, std::uintptr_t key, const AttributeValue& value);
    /// Must be called before the position or the size of the window with this key is read. Blocks only when
    /// the window has been written since the last read, with a frame other than the one that it had.
    void willRead(std::uintptr_t key);

private:
    /// A window that has been written and not read since.
    struct Written {
        Element window;
        std::uintptr_t key = 0;
        std::optional<Rect> before; ///< frame before the first write; empty when it could not be read
        Rect wanted;                ///< `before` with all writes applied
    };

    Read m_read;
    Wait m_wait;
    /// The window written last; empty once it has been read.
    std::optional<Written> m_written;
};

} // namespace tessarel::macos
