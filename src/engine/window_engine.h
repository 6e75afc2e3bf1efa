// SPDX-License-Identifier: MIT

#pragma once

#include "engine/ax.h"
#include "engine/found_window.h"
#include "engine/geo.h"
#include "engine/outcome.h"
#include "model/settings/store.h"
#include "model/subscription.h"
#include "model/zone.h"
#include "ports/alert_sound_port.h"
#include "ports/desktop/displays_port.h"
#include "ports/desktop/window_list_port.h"
#include "ports/desktop/workspace_port.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace tessarel {

/// Moves windows and remembers their original frames. Rectangles are in accessibility coordinates.
///
/// The actions on the focused window do nothing, without a message, if there is no focused window, if it
/// belongs to this program or an ignored one, or if it cannot be moved or read. The alert sound is played
/// only where stated. Each action returns what became of it.
class WindowEngine {
public:
    using WindowKey = std::uintptr_t;

    /// Maximum difference per value for two frames to count as equal.
    static constexpr double kTolerance = 3;

    /// All arguments must outlive the engine.
    WindowEngine(AX& ax, Geo& geo, DisplaysPort& displays, WorkspacePort& workspace,
                 WindowListPort& windowList, AlertSoundPort& alertSound, Store& store);

    /// Returns the key by which the engine remembers the window. Windows with the same key, which is rare,
    /// cannot be told apart.
    [[nodiscard]] WindowKey key(const Element& window) const;

    /// Returns whether left edge, top edge, width and height each differ by at most `tolerance`.
    [[nodiscard]] static bool approx(const Rect& a, const Rect& b, double tolerance = kTolerance);

    /// Returns whether the user has excluded the application, under any of its names. False without an
    /// application or identifier.
    [[nodiscard]] bool isIgnored(const std::optional<RunningApplication>& app) const;

    /// Moves the window of process `pid` to `axFrame`, within `bounds` if given (see `AX::setFrame`). Every
    /// window move except `restoreFocused` goes through this function.
    ///
    /// Remembers the frame before the move, which is `previous` if given, for restoring. If the window is
    /// still where it was last placed, or where its program has put it shortly after, or has not left its
    /// place yet, keeps the frame remembered earlier: a restore chain leads back to its beginning. A window
    /// whose restore the desktop has not carried out yet counts as restored. Does not check whether the
    /// window may be moved.
    ///
    /// Returns false, and changes nothing about restoring, if the desktop has refused to move the window.
    bool place(const Element& window, ProcessId pid, const Rect& axFrame, const std::optional<Rect>& bounds,
               const std::optional<Rect>& previous);

    /// Stores `zoneIndex`, from 0, as the application's last zone and saves the settings. Does nothing if the
    /// user does not want zones remembered, if there is no identifier, or if nothing changes.
    void remember(const std::optional<std::string>& bundleID, std::size_t zoneIndex);

    /// Places the focused window in `zone` of its screen. If `index` is given and the desktop lets the window
    /// be moved, remembers it as the last zone of the application.
    Outcome snapFocused(const Zone& zone, std::optional<std::size_t> index);

    /// Places the focused window in the middle of its screen, reduced to the usable area if it is larger.
    Outcome centerFocused();

    /// Moves the focused window back to its frame before the last restore chain, and forgets the chain. Plays
    /// the alert sound if no frame is remembered.
    Outcome restoreFocused();

    /// Moves the focused window to the display `offset` steps to the right of its own, wrapping around, with
    /// the same relative position and size. Plays the alert sound if there are fewer than two displays or if
    /// the window's display is not among them.
    Outcome moveFocusedToDisplay(int offset);

    /// Returns the visible windows in the area `on` that may be moved, front to back, at most `limit`. A
    /// window is in the area if its centre is. Excludes small and transparent windows, and those of this
    /// program and of ignored applications. Sends requests only to programs that own a suitable window in the
    /// list of the window server.
    [[nodiscard]] std::vector<FoundWindow> visibleWindows(const Rect& on, std::size_t limit) const;

    /// Places the visible windows of the focused window's screen, or of the main screen without a focused
    /// window, front to back in the enabled zones in their order. Windows beyond the number of zones stay
    /// where they are.
    Outcome arrangeAll();

private:
    struct Target;
    struct TargetOnScreen;
    /// A requested placement or restore.
    struct Request {
        ProcessId pid;
        Rect axFrame;
        std::optional<Rect> bounds;
        std::optional<Rect> before;  ///< the frame until the desktop carries the request out
        std::vector<Point> replaced; ///< the positions of earlier requests that could not be read back either
        bool isRepeated = false;     ///< whether the desktop has carried it out once, with another frame
    };
    /// Where a placement left a window.
    struct Placed {
        Rect placed;  ///< as read back
        Rect current; ///< as the program has corrected it since
    };

    [[nodiscard]] std::optional<FocusedWindow> usableFocusedWindow() const;
    [[nodiscard]] std::optional<Target> target() const;
    [[nodiscard]] std::optional<TargetOnScreen> targetOnScreen() const;
    /// Finds the element of a window that the window server has listed.
    [[nodiscard]] std::optional<Element> match(const ListedWindow& listed, ProcessId pid,
                                               const std::unordered_set<WindowKey>& seen) const;
    void follow(const Element& window, const Rect& axFrame);
    [[nodiscard]] Request newRequest(const Element& window, ProcessId pid, const Rect& axFrame,
                                     const std::optional<Rect>& bounds) const;
    [[nodiscard]] static bool isAwaited(const Request* unread, const Rect& axFrame);
    [[nodiscard]] bool isInChain(WindowKey windowKey, const Request* unread, const Rect& axFrame) const;
    Placed readBack(const Element& window, const Request& request);
    [[nodiscard]] Placed completed(const Element& window, Request request, const Rect& axFrame);
    [[nodiscard]] bool isWhollyIgnored(ProcessId pid) const;
    [[nodiscard]] std::optional<Screen> attendedScreen() const;

    AX& m_ax;
    Geo& m_geo;
    DisplaysPort& m_displays;
    WorkspacePort& m_workspace;
    WindowListPort& m_windowList;
    AlertSoundPort& m_alertSound;
    Store& m_store;
    // The restore chains. They last for the run of the program; entries of closed windows are not removed.
    std::unordered_map<WindowKey, Rect> m_original;      ///< frame before the first placement of a chain
    std::unordered_map<WindowKey, Placed> m_lastSnapped; ///< the last placement
    std::unordered_map<WindowKey, Request> m_unread;     ///< the last request, if it could not be read back
    SubscriptionPtr m_corrections;
};

} // namespace tessarel
