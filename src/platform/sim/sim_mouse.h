// SPDX-License-Identifier: MIT

#pragma once

#include "model/signal.h"
#include "model/subscription.h"
#include "platform/sim/windows/sim_state.h"
#include "ports/desktop/mouse_port.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace tessarel::sim {

/// The mouse of the simulated desktop. Points are in accessibility coordinates.
///
/// A press on the title bar of a window starts a move: the window follows the pointer until the release. A
/// press on its top edge starts a resize that moves only this edge. Full-screen windows do neither. From a
/// press on a window of the program under test to its release, no event is reported.
class SimMouse : public MousePort {
public:
    /// Height of the title bar of every window.
    static constexpr double kTitleBar = 60;
    /// Height of the top edge, which is the upper part of the title bar.
    static constexpr double kTopEdge = 4;

    explicit SimMouse(SimState& state) : m_state(state) {}

    [[nodiscard]] SubscriptionPtr addGlobalMonitor(MouseEventKind kind,
                                                   std::function<void(const MouseEvent&)> handler) override;

    /// Makes the system refuse subscriptions to events of this kind from now on.
    void refuse(MouseEventKind kind) { m_refused.insert(kind); }
    /// Returns the kinds of the current subscriptions, sorted by kind, one entry for each subscription.
    [[nodiscard]] std::vector<MouseEventKind> monitored() const;

    /// Sets the modifier keys that are held. While the button is down, a change is reported as a movement.
    void hold(std::uint64_t modifierFlags);

    /// Moves the pointer, and the window that it drags.
    void moveTo(const Point& axPoint);
    /// Presses the button. If it is down already, the release of the first press is never reported.
    void press();
    /// Releases the button.
    void release();
    /// The user presses Escape: a held window returns to where it was grabbed, and is let go.
    void cancel();
    /// Releases the button while another program has grabbed the mouse: the release is reported with the next
    /// movement.
    void loseRelease();

private:
    struct Held {
        WindowId window;
        Rect start; ///< its frame when it was grabbed, in accessibility coordinates
        Point grip; ///< position of the pointer in the window when the button was pressed
    };

    void moveHeldWindow();
    /// Calls the subscriptions to `kind` with the current pointer and modifiers.
    void report(MouseEventKind kind);

    SimState& m_state;
    std::map<MouseEventKind, Signal<const MouseEvent&>> m_monitors;
    std::set<MouseEventKind> m_refused;
    std::uint64_t m_modifierFlags = 0;
    Point m_pointer;
    bool m_isDown = false;
    bool m_isReported = false;  ///< the press has been reported, and its release has not
    std::optional<Held> m_held; ///< the window that follows the pointer
};

} // namespace tessarel::sim
