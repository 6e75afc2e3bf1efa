#pragma once

#include "platform/sim/sim_state.h"
#include "ports/mouse_port.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace tessarel::sim {

/// The mouse of the simulated desktop, and the user's hand on it. Places are in accessibility coordinates.
///
/// A press near the top of a window takes hold of it, and from then on it follows the pointer; one at its
/// very top resizes it, so that only its top edge follows. Nothing that begins over a window of the program
/// under test is reported.
class SimMouse : public MousePort {
public:
    /// Height of the part of a window that it can be taken by.
    static constexpr double kTitleBar = 60;
    /// Height of the part that resizes it.
    static constexpr double kTopEdge = 4;

    explicit SimMouse(SimState& state);

    [[nodiscard]] SubscriptionPtr addGlobalMonitor(MouseEventKind kind,
                                                   std::function<void(const MouseEvent&)> handler) override;

    /// The system refuses to report events of this kind from now on.
    void refuse(MouseEventKind kind) { m_refused.insert(kind); }
    /// The kinds being reported, in the order of asking.
    [[nodiscard]] std::vector<MouseEventKind> monitored() const;

    /// The modifier keys that the user holds from now on.
    void hold(std::uint64_t modifierFlags);

    void moveTo(const Point& axPoint);
    /// The button goes down, also when it is down already: its release has been lost for good.
    void press();
    void release();
    /// The button goes up while another program has the mouse: the release is heard with the next movement.
    void loseRelease();

private:
    struct Monitors;
    struct Held {
        WindowId window;
        Point grip; ///< of the pointer within the window
    };

    void moveHeldWindow();
    void report(MouseEventKind kind);

    SimState& m_state;
    std::shared_ptr<Monitors> m_monitors; // shared with registrations, which may outlive this port
    std::set<MouseEventKind> m_refused;
    std::uint64_t m_modifierFlags = 0;
    Point m_pointer;
    bool m_isDown = false;
    bool m_isReported = false; ///< the press has been, and its release has not
    std::optional<Held> m_held;
};

} // namespace tessarel::sim
