// SPDX-License-Identifier: MIT

#include "placer/app_placer.h"

#include <chrono>
#include <cstdint>
#include <iterator>
#include <utility>

namespace tessarel {

namespace {

using namespace std::chrono_literals;

/// Time for a new window to become movable and reach the size that its program wants.
constexpr MainQueuePort::Duration kWindowDelay = 400ms;
/// Time for a new application to open its first windows.
constexpr MainQueuePort::Duration kLaunchDelay = 1s;
/// Limits how long a program that hangs can block the main thread.
constexpr std::chrono::milliseconds kMessagingTimeout = 250ms;
/// When more windows are remembered than this, all are forgotten, so that the set cannot grow without limit.
constexpr std::size_t kMostPlaced = 500;

} // namespace

AppPlacer::AppPlacer(const Uses& uses) : m_uses(uses), m_placements(uses.mainQueue) {}

void AppPlacer::start() {
    WorkspacePort& workspace = m_uses.workspace;
    m_events.push_back(workspace.addObserver(ApplicationEvent::Launched, [this](const auto& app) {
        watch(app);
        placeExisting(app);
    }));
    m_events.push_back(
        workspace.addObserver(ApplicationEvent::Activated, [this](const auto& app) { watch(app); }));
    m_events.push_back(workspace.addObserver(
        ApplicationEvent::Terminated, [this](const auto& app) { m_observers.erase(app.processIdentifier); }));
    m_events.push_back(m_uses.store.tessarelSettingsChanged.connect([this] { watchAll(); }));
    watchAll();
}

void AppPlacer::watchAll() {
    for (const RunningApplication& app : m_uses.workspace.runningApplications())
        watch(app);
}

/// Observes the application's new windows, unless it is already observed, is not a regular application, is
/// this program, or access is missing.
void AppPlacer::watch(const RunningApplication& app) {
    const ProcessId pid = app.processIdentifier;
    if (!app.isRegular || pid == m_uses.workspace.ownProcessIdentifier())
        return;
    if (m_observers.contains(pid) || !m_uses.permissions.isTrusted())
        return;
    auto observer = m_uses.ax.onWindowCreated(pid, kMessagingTimeout,
                                              [this](const Element& window) { windowCreated(window); });
    if (observer)
        m_observers.emplace(pid, std::move(observer));
}

/// Schedules the placement of a new window. Whether its application has a remembered zone may only turn out
/// when the placement is due: some programs name their windows a moment after they have opened them.
void AppPlacer::windowCreated(const Element& window) {
    const auto pid = m_uses.store.settings.rememberApps ? m_uses.ax.pid(window) : std::nullopt;
    const auto app = pid ? m_uses.ax.owner(window, *pid) : std::nullopt;
    if (!app)
        return;
    m_placements.asyncAfter(kWindowDelay, [this, window, app = *app, index = zoneIndex(*app)] {
        placeIdentified(window, app, index);
    });
}

/// Schedules the placement of the windows that a new application opens before its windows can be observed.
void AppPlacer::placeExisting(const RunningApplication& app) {
    if (!m_uses.store.settings.rememberApps)
        return;
    const bool isWanted = zoneIndex(app).has_value();
    m_placements.asyncAfter(kLaunchDelay, [this, app, isWanted] { placeWindows(app, isWanted); });
}

void AppPlacer::placeWindows(const RunningApplication& app, bool isWanted) {
    const auto index = isWanted ? zoneIndex(app) : std::nullopt;
    const auto now = m_uses.workspace.runningApplication(app.processIdentifier).value_or(app);
    const bool isCertain = now.ownsWholeProcess && now.bundleIdentifier == app.bundleIdentifier;
    if (isCertain && !index) // does not ask the program for its windows
        return;
    for (const Element& window : m_uses.ax.windows(app.processIdentifier))
        placeIdentified(window, app, index);
}

/// Places a window that was expected to belong to `app` and to be placed in zone `index`, if any. If it turns
/// out to belong to another application, places it in the zone of that one.
void AppPlacer::placeIdentified(const Element& window, const RunningApplication& app,
                                std::optional<std::size_t> index) {
    const RunningApplication owner = m_uses.ax.owner(window, app.processIdentifier).value_or(app);
    const auto due = owner.bundleIdentifier == app.bundleIdentifier ? index : zoneIndex(owner);
    if (due)
        place(window, owner, *due);
}

/// Returns the index of the application's remembered zone; empty if its windows are not to be placed. A zone
/// that has been disabled meanwhile stays remembered.
std::optional<std::size_t> AppPlacer::zoneIndex(const RunningApplication& app) const {
    const AppSettings& settings = m_uses.store.settings;
    const auto number = settings.rememberApps ? rememberedZone(app) : std::nullopt;
    if (!number || *number < 0 || *number >= std::ssize(settings.zones))
        return {};
    const auto index = static_cast<std::size_t>(*number);
    const bool isWanted = settings.zones[index].enabled && !m_uses.runtime.paused;
    if (!isWanted || !m_uses.permissions.isTrusted() || m_uses.engine.isIgnored(app))
        return {};
    return index;
}

/// Returns the zone that is stored under the application's identifier, else under the first of its other
/// names that has one.
std::optional<std::int64_t> AppPlacer::rememberedZone(const RunningApplication& app) const {
    if (!app.bundleIdentifier)
        return {};
    const auto& zones = m_uses.store.settings.appZones;
    auto stored = zones.find(*app.bundleIdentifier);
    for (auto name = app.otherNames.begin(); stored == zones.end() && name != app.otherNames.end(); ++name)
        stored = zones.find(*name);
    return stored == zones.end() ? std::nullopt : std::optional(stored->second);
}

/// Places the window unless it has been placed before, may not be placed, or settings or pause have changed
/// since `index` was determined.
void AppPlacer::place(const Element& window, const RunningApplication& app, std::size_t index) {
    if (zoneIndex(app) != index)
        return;
    const auto windowKey = m_uses.engine.key(window);
    if (m_placed.contains(windowKey) || !isPlaceable(window))
        return;
    const auto axFrame = m_uses.ax.frame(window);
    const auto screen = axFrame ? m_uses.geo.screen(*axFrame) : std::nullopt;
    if (!screen)
        return;
    notePlaced(windowKey);
    const Rect visible = m_uses.geo.axVisible(*screen);
    const Rect target = m_uses.geo.zoneFrame(m_uses.store.settings.zones[index], visible);
    m_uses.engine.place(window, app.processIdentifier, target, visible, {});
}

/// Returns whether the window is a standard window or reports no subrole. Dialogs and panels stay where they
/// open.
bool AppPlacer::isPlaceable(const Element& window) const {
    if (!m_uses.ax.isUsable(window))
        return false;
    return m_uses.ax.string(window, attribute::kSubrole).value_or("AXStandardWindow") == "AXStandardWindow";
}

void AppPlacer::notePlaced(WindowEngine::WindowKey window) {
    if (m_placed.size() > kMostPlaced)
        m_placed.clear();
    m_placed.insert(window);
}

} // namespace tessarel
