#pragma once

#include "engine/ax.h"
#include "engine/geo.h"
#include "engine/permissions.h"
#include "engine/runtime.h"
#include "engine/window_engine.h"
#include "model/store.h"
#include "model/subscription.h"
#include "ports/accessibility_port.h"
#include "ports/displays_port.h"
#include "ports/main_queue_port.h"
#include "ports/mouse_port.h"
#include "ports/workspace_port.h"
#include "snap/candidate_picker.h"
#include "snap/overlay_controller.h"
#include "snap/snap_offers.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace tessarel {

/// Watches the user drag other programs' windows by their title bars, shows the zones that they could go to
/// and puts them there after the button has been released.
///
/// The drag itself is never touched. A press picks a candidate; once that has been seen to move without
/// changing its size it is being dragged, and from then on until the release only the pointer is looked at.
/// Every failure is silent: what cannot be read or moved is left alone. A window that closes in the middle of
/// it all ends its drag.
class DragSnap {
public:
    /// What it works with; all of it outlives it.
    struct Uses {
        MousePort& mouse;
        MainQueuePort& mainQueue;
        AccessibilityPort& accessibility;
        DisplaysPort& displays;
        WorkspacePort& workspace;
        const Store& store;
        const Runtime& runtime;
        const Permissions& permissions;
        const Geo& geo;
        const AX& ax;
        WindowEngine& engine;
        OverlayController& overlay;
    };

    explicit DragSnap(const Uses& uses);
    DragSnap(const DragSnap&) = delete;
    DragSnap& operator=(const DragSnap&) = delete;
    /// Safe at any moment, in the middle of a drag too; a placement that waits does not happen any more.
    ~DragSnap();

    /// Begins to watch the mouse, afresh when it does so already. What the system refuses to tell is not
    /// watched.
    void start();
    /// Watches no longer and gives up the drag under way.
    void stop();

private:
    void mouseDown(const MouseEvent& event);
    void mouseDragged(const MouseEvent& event);
    void mouseUp(const MouseEvent& event);

    using Handler = void (DragSnap::*)(const MouseEvent&);
    struct Target {
        Rect axFrame;
        Rect axBounds;                         ///< the visible area around it
        std::optional<std::size_t> zoneNumber; ///< among the user's zones, from 0; none at an edge
    };
    /// From a press on a title bar until the release.
    struct Drag {
        Candidate candidate;
        SubscriptionPtr candidateClosed;
        bool isMoving = false;        ///< the candidate has been seen to move
        int failedReads = 0;          ///< of the candidate's frame, in a row
        std::optional<Target> target; ///< where the candidate goes when released
    };

    void watch(MouseEventKind kind, Handler handler);
    void reset();
    [[nodiscard]] bool candidateMoves();
    [[nodiscard]] std::optional<Screen> screenAt(const Point& screenPoint) const;
    void follow(const MouseEvent& event);
    void place(const Candidate& candidate, const Target& target);

    Uses m_uses;
    CandidatePicker m_picker;
    SnapOffers m_offers;
    std::vector<SubscriptionPtr> m_monitors; ///< none while stopped
    std::optional<Drag> m_drag;
    std::optional<MainQueuePort::TimePoint>
        m_lastRead;                    ///< of a candidate's frame, in this drag or an earlier one
    std::shared_ptr<DragSnap*> m_self; // shared with work on the main queue, which may outlive us
};

} // namespace tessarel
