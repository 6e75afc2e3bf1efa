#pragma once

#include "ports/accessibility_port.h"

#include <chrono>
#include <functional>
#include <optional>

namespace tessarel::macos {

/// Makes up for programs that say that they have moved a window before they do so: a read of the window's
/// frame that follows a write waits for a moment until the frame is no longer the one from before.
class LateFrames {
public:
    /// Blocks for the time given.
    using Wait = std::function<void(std::chrono::milliseconds)>;
    /// Returns the frame that a window has now; empty when its program does not say.
    using Read = std::function<std::optional<Rect>(const Element& window)>;

    /// A program that has not moved its window by then will not, or not as it was told.
    static constexpr std::chrono::milliseconds kLongest{100};
    static constexpr std::chrono::milliseconds kBetweenReads{5};

    LateFrames(Read read, Wait wait);

    /// To be called before the position or the size of `window` is written.
    void willWrite(const Element& window, std::uintptr_t key, const AttributeValue& value);
    /// To be called before the position or the size of the window is read. Waits only if it has been written
    /// since, and to something else than it was.
    void willRead(std::uintptr_t key);

private:
    struct Written {
        Element window;
        std::uintptr_t key = 0;
        Rect before;
        Rect wanted;
    };

    Read m_read;
    Wait m_wait;
    std::optional<Written> m_written; ///< the last window that was written and has not been read since
};

} // namespace tessarel::macos
