// SPDX-License-Identifier: MIT

#pragma once

#include "engine/ax.h"
#include "engine/geo.h"
#include "engine/permissions.h"
#include "engine/runtime.h"
#include "engine/window_engine.h"
#include "model/settings/store.h"
#include "model/subscription.h"
#include "ports/deferred_work.h"
#include "ports/desktop/accessibility_port.h"
#include "ports/desktop/mouse_port.h"
#include "ports/main_queue_port.h"
#include "snap/candidate_picker.h"
#include "snap/overlay_controller.h"
#include "snap/snap_offers.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace tessarel {

/// Watches the user drag other programs' windows by their title bars, shows the zones, and places the window
/// in the chosen zone after the release.
///
/// Only observes the drag, which the system carries out. A press picks a candidate. Once the candidate has
/// moved without changing its size, it counts as dragged, and is not read again before the release. If the
/// window closes, its drag ends. All failures are silent: a window that cannot be read or moved is left
/// alone.
class DragSnap {
public:
    /// What this class works with. All of it must outlive this object.
    struct Uses {
        MousePort& mouse;
        MainQueuePort& mainQueue;
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
    /// May be called during a drag. A pending placement is discarded.
    ~DragSnap();

    /// Starts to observe the mouse, or restarts. Events that the system refuses to report are not observed.
    void start();
    /// Stops observing the mouse and abandons a drag in progress.
    void stop();

private:
    void mouseDown(const MouseEvent& event);
    void mouseDragged(const MouseEvent& event);
    void mouseUp(const MouseEvent& event);
    void cancelled(const MouseEvent& event);

    using Handler = void (DragSnap::*)(const MouseEvent&);
    /// A frame to snap to, in accessibility coordinates.
    struct Target {
        Rect axFrame;
        /// The usable area of the screen.
        Rect axBounds;
        /// Index among the user's zones, from 0; empty for a screen edge.
        std::optional<std::size_t> zoneNumber;
    };
    /// State from a press on a title bar until the release.
    struct Drag {
        Candidate candidate;
        /// Ends the drag when the candidate closes.
        SubscriptionPtr candidateClosed;
        /// The press or the latest movement.
        MouseEvent lastEvent;
        /// Where the button was pressed, in screen coordinates.
        Point press;
        /// Where the button was pressed, in accessibility coordinates.
        Point axPress;
        /// The candidate's `kFrameExcess` at the press, if its border was pressed.
        std::optional<Size> frameExcess;
        /// The candidate's last frame, if it had moved or changed its size without its border being dragged.
        std::optional<Rect> movedFrame;
        /// A read for the case that the pointer rests.
        SubscriptionPtr nextRead;
        /// Whether the candidate has been seen to move.
        bool isMoving = false;
        /// Consecutive failures to read the candidate's frame.
        int failedReads = 0;
        /// Where the candidate goes when it is released; empty if it stays.
        std::optional<Target> target;
    };

    void watch(MouseEventKind kind, Handler handler);
    void reset();
    [[nodiscard]] bool candidateMoves();
    [[nodiscard]] bool hasPointerMoved() const;
    [[nodiscard]] bool keepsItsSize(const Rect& axFrame, const std::optional<Size>& frameExcess);
    [[nodiscard]] bool goesOnMoving(const Rect& axFrame);
    void follow(const MouseEvent& event);
    void place(const Candidate& candidate, const Target& target);

    Uses m_uses;
    CandidatePicker m_picker;
    SnapOffers m_offers;
    /// Empty while stopped.
    std::vector<SubscriptionPtr> m_monitors;
    std::optional<Drag> m_drag;
    /// Time of the last read of a candidate's frame, in this drag or an earlier one.
    std::optional<MainQueuePort::TimePoint> m_lastRead;
    /// Pending placements of released windows.
    DeferredWork m_placements;
};

} // namespace tessarel
