// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/wayland/compositor.h"
#include "platform/wayland/mirror.h"
#include "ports/desktop/rect.h"
#include "ports/main_queue_port.h"

#include <chrono>
#include <optional>
#include <set>
#include <vector>

namespace tessarel::wayland {

/// The position and size that were written for a window.
struct FrameWish {
    std::optional<Point> origin;
    std::optional<Size> size;
};

/// Collects the writes to a window, sends them as one request, and waits until the window has settled.
///
/// There is at most one request per window under way: of several, compositors lose some. Requests to several
/// windows may be under way at the same time.
class Placement {
public:
    /// How long a window may take to settle. Within that time no other program can be waited for. A request
    /// that has taken longer is not waited for again, so that no later hot key is lost to it.
    static constexpr std::chrono::milliseconds kPatience{250};

    /// All referenced objects must outlive this one.
    Placement(Mirror& mirror, Compositor& compositor, MainQueuePort& queue)
        : m_mirror(mirror), m_compositor(compositor), m_queue(queue),
          m_turns(mirror.onDelivered([this] { m_late.clear(); })) {}
    Placement(const Placement&) = delete;
    Placement& operator=(const Placement&) = delete;
    ~Placement() = default;

    /// Adds to the writes of `window`. Sends them at the latest in the next iteration of the event loop.
    void write(WindowId window, const FrameWish& wish);
    /// Sends the writes of the window and waits until it has settled, unless `beginSeveral` has postponed
    /// that.
    void finish(WindowId window);
    /// From now on, `finish` does not wait for windows that have been written since.
    void beginSeveral() { m_several.emplace(); }
    /// Waits until all windows written since `beginSeveral` have settled, and returns them.
    std::vector<WindowId> endSeveral();
    /// Returns whether the window has been written and not waited for since `beginSeveral`.
    [[nodiscard]] bool isPostponed(WindowId window) const;
    /// Returns whether the window has not settled in time, in this iteration of the event loop and since the
    /// mirror last delivered its reports: then its frame may be an intermediate one.
    [[nodiscard]] bool isLate(WindowId window) const { return m_late.contains(window); }

private:
    void send();
    void await(WindowId window);
    void enterLoop();

    Mirror& m_mirror;
    Compositor& m_compositor;
    MainQueuePort& m_queue;
    WindowId m_written = kNoWindow; // the window that `m_wish` is for
    FrameWish m_wish;
    std::set<WindowId> m_late;
    std::set<WindowId> m_overdue;                   ///< whose last request has been waited for in vain
    std::optional<std::vector<WindowId>> m_several; ///< sent since `beginSeveral`; empty without it
    SubscriptionPtr m_nextLoop;
    SubscriptionPtr m_turns;
};

} // namespace tessarel::wayland
