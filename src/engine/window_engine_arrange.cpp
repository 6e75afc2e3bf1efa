// SPDX-License-Identifier: MIT

#include "engine/window_engine.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <unordered_set>
#include <utility>

namespace tessarel {

namespace {

/// Smaller windows are palettes and the like.
constexpr Size kSmallestArranged{120, 80};
/// Windows with a lower alpha count as invisible.
constexpr double kFaintest = 0.05;
/// Maximum difference per value between the frames that window server and application report for the same
/// window.
constexpr double kMatchTolerance = 4;

/// Returns the process that owns the listed window; empty unless it is an ordinary window that is visible in
/// `axArea`.
std::optional<ProcessId> ownerOfVisible(const ListedWindow& listed, const Rect& axArea) {
    if (listed.layer != 0 || !listed.ownerPid || !listed.axBounds)
        return {};
    using Limits = std::numeric_limits<ProcessId>;
    if (*listed.ownerPid < Limits::min() || *listed.ownerPid > Limits::max())
        return {};
    const Rect& axBounds = *listed.axBounds;
    if (axBounds.absWidth() < kSmallestArranged.width || axBounds.absHeight() < kSmallestArranged.height)
        return {};
    if (listed.alpha && *listed.alpha < kFaintest)
        return {};
    if (!axArea.contains({axBounds.midX(), axBounds.midY()}))
        return {};
    return static_cast<ProcessId>(*listed.ownerPid);
}

} // namespace

std::vector<FoundWindow> WindowEngine::visibleWindows(const Rect& on, std::size_t limit) const {
    std::vector<FoundWindow> found;
    std::unordered_set<WindowKey> seen;
    for (const ListedWindow& listed : m_windowList.onScreenWindows()) {
        if (found.size() == limit)
            break;
        const auto owner = ownerOfVisible(listed, on);
        if (!owner || *owner == m_workspace.ownProcessIdentifier() || isWhollyIgnored(*owner))
            continue;
        auto window = match(listed, *owner, seen);
        if (!window)
            continue;
        seen.insert(key(*window));
        if (!isIgnored(m_ax.owner(*window, *owner)))
            found.push_back({*std::move(window), *owner});
    }
    return found;
}

/// Returns whether all windows of process `pid` belong to an ignored application, so that no request needs to
/// be sent to it.
bool WindowEngine::isWhollyIgnored(ProcessId pid) const {
    const auto app = m_workspace.runningApplication(pid);
    return app && app->ownsWholeProcess && isIgnored(app);
}

/// Returns the first window of process `pid` that may be moved, has the listed frame and is not in `seen`.
/// Where the list has no keys, only the frame identifies the window. Elsewhere the process may have another
/// window with that frame on another virtual desktop.
std::optional<Element> WindowEngine::match(const ListedWindow& listed, ProcessId pid,
                                           const std::unordered_set<WindowKey>& seen) const {
    for (Element& window : m_ax.windows(pid)) {
        const WindowKey windowKey = key(window);
        if (listed.key.value_or(windowKey) != windowKey || !m_ax.isUsable(window))
            continue;
        const auto axFrame = m_ax.frame(window);
        if (axFrame && approx(*axFrame, *listed.axBounds, kMatchTolerance) && !seen.contains(windowKey))
            return std::move(window);
    }
    return {};
}

Outcome WindowEngine::arrangeAll() {
    std::vector<Zone> zones = m_store.settings.zones;
    std::erase_if(zones, [](const Zone& zone) { return !zone.enabled; });
    if (zones.empty())
        return Outcome::ZoneDisabled;
    const auto screen = attendedScreen();
    if (!screen)
        return Outcome::NoWindow;
    const Rect visible = m_geo.axVisible(*screen);
    auto zone = zones.cbegin();
    Outcome result = Outcome::NoWindow;
    const auto windows = visibleWindows(m_geo.axFrame(*screen), zones.size());
    const auto several = m_ax.writeSeveral(); // `follow` reads back what cannot be read before its end
    for (const FoundWindow& found : windows) {
        const bool isPlaced = place(found.element, found.pid, m_geo.zoneFrame(*zone++, visible), visible, {});
        if (result != Outcome::Done)
            result = outcomeOf(isPlaced);
    }
    return result;
}

/// Returns the screen of the focused window, even if that window may not be moved, otherwise the main screen.
std::optional<Screen> WindowEngine::attendedScreen() const {
    if (const auto focused = m_ax.focusedWindow()) {
        if (const auto axFrame = m_ax.frame(focused->window)) {
            if (auto screen = m_geo.screen(*axFrame))
                return screen;
        }
    }
    return m_displays.mainScreen();
}

} // namespace tessarel
