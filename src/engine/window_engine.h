#pragma once

#include "engine/ax.h"
#include "engine/found_window.h"
#include "engine/geo.h"
#include "model/store.h"
#include "model/zone.h"
#include "ports/alert_sound_port.h"
#include "ports/displays_port.h"
#include "ports/window_list_port.h"
#include "ports/workspace_port.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace tessarel {

/// Moves windows, and remembers where they were. Rectangles are in accessibility coordinates.
///
/// The actions on the focused window end silently when there is none, its program is this one or one of the
/// ignored ones, or the window cannot be moved or read. The alert sound is heard only where stated.
class WindowEngine {
public:
    using WindowKey = std::uintptr_t;

    /// By how much two frames may differ and still be taken for the same one.
    static constexpr double kTolerance = 3;

    WindowEngine(AX& ax, Geo& geo, DisplaysPort& displays, WorkspacePort& workspace,
                 WindowListPort& windowList, AlertSoundPort& alertSound, Store& store);

    /// What the memory knows the window by. Equal elements have equal keys; windows whose keys happen to be
    /// equal cannot be told apart.
    [[nodiscard]] WindowKey key(const Element& window) const;

    /// Whether left edge, top edge, width and height each differ by at most `tolerance`.
    [[nodiscard]] static bool approx(const Rect& a, const Rect& b, double tolerance = kTolerance);

    /// Whether the user wants the program's windows left alone.
    [[nodiscard]] bool isIgnored(const std::optional<RunningApplication>& app) const;

    /// The one way in which windows are moved, but for `restoreFocused`.
    ///
    /// Puts the window of process `pid` at `axFrame`, within `bounds` when given (see `AX::setFrame`).
    /// Remembers for restoring the frame it had before, which is `previous` when given: not when the window
    /// still stands where it was last put, so that a chain of placements leads back to its beginning. Tests
    /// nothing about the window or its program.
    void place(const Element& window, ProcessId pid, const Rect& axFrame, const std::optional<Rect>& bounds,
               const std::optional<Rect>& previous);

    /// Records zone number `zoneIndex`, from 0, as the program's own and saves the settings, when zones are
    /// remembered at all and this is news.
    void remember(const std::optional<std::string>& bundleID, std::size_t zoneIndex);

    /// Puts the focused window into `zone` of its screen, and remembers its program for zone number `index`
    /// when there is one.
    void snapFocused(const Zone& zone, std::optional<std::size_t> index);

    /// Puts the focused window into the middle of its screen, no larger than the visible area.
    void centerFocused();

    /// Puts the focused window back to where it was before the last chain of placements, once. Nothing
    /// remembered: alert sound.
    void restoreFocused();

    /// Moves the focused window to the display that comes `offset` after its own from left to right, round
    /// about, keeping its relative place and size. Fewer than two displays, or its own not among them: alert
    /// sound.
    void moveFocusedToDisplay(int offset);

    /// The windows that can be seen in the area `on` and may be moved, front to back, at most `limit`. A
    /// window counts where its middle lies; small or transparent ones, those of this program and of ignored
    /// programs do not count. A program is asked for its windows only when one of them may be among them.
    [[nodiscard]] std::vector<FoundWindow> visibleWindows(const Rect& on, std::size_t limit) const;

    /// Puts the visible windows of the focused window's screen, else of the main screen, front to back into
    /// the enabled zones in their order. What there is no zone for stays where it is.
    void arrangeAll();

private:
    struct Target;
    struct TargetOnScreen;

    [[nodiscard]] std::optional<FocusedWindow> usableFocusedWindow() const;
    [[nodiscard]] std::optional<Target> target() const;
    [[nodiscard]] std::optional<TargetOnScreen> targetOnScreen() const;
    [[nodiscard]] std::optional<Element> match(const Rect& axBounds, ProcessId pid,
                                               const std::unordered_set<WindowKey>& seen) const;
    [[nodiscard]] std::optional<Screen> attendedScreen() const;

    AX& m_ax;
    Geo& m_geo;
    DisplaysPort& m_displays;
    WorkspacePort& m_workspace;
    WindowListPort& m_windowList;
    AlertSoundPort& m_alertSound;
    Store& m_store;
    // The restore memory lasts for the run of the program; entries of windows that have closed simply stay.
    std::unordered_map<WindowKey, Rect> m_original;    ///< frame before the first of a chain of placements
    std::unordered_map<WindowKey, Rect> m_lastSnapped; ///< frame that the last placement really led to
};

} // namespace tessarel
