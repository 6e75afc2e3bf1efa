// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/wayland/compositor.h"
#include "platform/wayland/mirror.h"
#include "ports/main_queue_port.h"
#include "ports/rect.h"

#include <chrono>
#include <optional>
#include <set>

namespace tessarel::wayland {

/// The position and size that were written for a window.
struct FrameWish {
    std::optional<Point> origin;
    std::optional<Size> size;
};

/// Collects the writes to a window, sends them as one request, and waits until the window has settled.
///
/// There is at most one request per window under way: of several, compositors lose some.
class Placement {
public:
    /// How long a window may take to settle. Within that time no other program can be waited for.
    static constexpr std::chrono::milliseconds kPatience{250};

    /// All referenced objects must outlive this one.
    Placement(Mirror& mirror, Compositor& compositor, MainQueuePort& queue)
        : m_mirror(mirror), m_compositor(compositor), m_queue(queue) {}
    Placement(const Placement&) = delete;
    Placement& operator=(const Placement&) = delete;
    ~Placement() = default;

    /// Adds to the writes of `window`. Sends them at the latest in the next iteration of the event loop.
    void write(WindowId window, const FrameWish& wish);
    /// Sends the writes of the window and waits until it has settled.
    void finish(WindowId window);
    /// Returns whether the window has not settled in time since the event loop was last entered: then its
    /// frame may be an intermediate one.
    [[nodiscard]] bool isLate(WindowId window) const { return m_late.contains(window); }

private:
    void send();
    void enterLoop();

    Mirror& m_mirror;
    Compositor& m_compositor;
    MainQueuePort& m_queue;
    WindowId m_written = kNoWindow; // the window that `m_wish` is for
    FrameWish m_wish;
    std::set<WindowId> m_late;
    SubscriptionPtr m_nextLoop;
};

} // namespace tessarel::wayland
