#include "placer/app_placer.h"

#include <chrono>
#include <cstdint>
#include <iterator>
#include <utility>

namespace tessarel {

namespace {

using namespace std::chrono_literals;

/// A new window takes a while until it can be moved and has the size that its program wants.
constexpr MainQueuePort::Duration kWindowDelay = 400ms;
/// A new application takes a while until it has opened its windows.
constexpr MainQueuePort::Duration kLaunchDelay = 1s;
/// How long a program that does not answer may hold us up.
constexpr std::chrono::milliseconds kMessagingTimeout = 250ms;
/// Beyond this the memory of placed windows starts afresh, so that it does not grow for ever.
constexpr std::size_t kMostPlaced = 500;

} // namespace

AppPlacer::AppPlacer(const Uses& uses) : m_uses(uses), m_self(std::make_shared<AppPlacer*>(this)) {}

AppPlacer::~AppPlacer() {
    *m_self = nullptr;
}

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
    m_events.push_back(m_uses.store.tessarelSettingsChanged.addObserver([this] { watchAll(); }));
    watchAll();
}

void AppPlacer::watchAll() {
    for (const RunningApplication& app : m_uses.workspace.runningApplications())
        watch(app);
}

void AppPlacer::watch(const RunningApplication& app) {
    const ProcessId pid = app.processIdentifier;
    if (!app.isRegular || pid == m_uses.workspace.ownProcessIdentifier())
        return;
    if (m_observers.contains(pid) || !m_uses.permissions.isTrusted())
        return;
    AccessibilityPort& accessibility = m_uses.accessibility;
    const Element application = accessibility.application(pid);
    accessibility.setMessagingTimeout(application, kMessagingTimeout);
    auto observer =
        accessibility.onWindowCreated(application, [this](const Element& window) { windowCreated(window); });
    if (observer)
        m_observers.emplace(pid, std::move(observer));
}

void AppPlacer::windowCreated(const Element& window) {
    const auto pid = m_uses.accessibility.pid(window);
    const auto app = pid ? m_uses.workspace.runningApplication(*pid) : std::nullopt;
    const auto index = app ? zoneIndex(*app) : std::nullopt;
    if (!index)
        return;
    later(kWindowDelay,
          [window, app = *app, index = *index](AppPlacer& self) { self.place(window, app, index); });
}

void AppPlacer::placeExisting(const RunningApplication& app) {
    if (zoneIndex(app))
        later(kLaunchDelay, [app](AppPlacer& self) { self.placeWindows(app); });
}

void AppPlacer::placeWindows(const RunningApplication& app) {
    const auto index = zoneIndex(app);
    if (!index)
        return;
    for (const Element& window : m_uses.ax.windows(app.processIdentifier))
        place(window, app, *index);
}

/// The remembered zone of the application; none when its windows are not to be placed. A zone that has been
/// disabled meanwhile stays remembered.
std::optional<std::size_t> AppPlacer::zoneIndex(const RunningApplication& app) const {
    const AppSettings& settings = m_uses.store.settings;
    if (!settings.rememberApps || !app.bundleIdentifier)
        return {};
    const auto remembered = settings.appZones.find(*app.bundleIdentifier);
    if (remembered == settings.appZones.end())
        return {};
    const std::int64_t number = remembered->second;
    if (number < 0 || number >= std::ssize(settings.zones))
        return {};
    const auto index = static_cast<std::size_t>(number);
    const bool isWanted = settings.zones[index].enabled && !m_uses.runtime.paused;
    if (!isWanted || !m_uses.permissions.isTrusted() || m_uses.engine.isIgnored(app))
        return {};
    return index;
}

/// Places the window unless something has changed since `index` was found.
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

/// Dialogs, panels and the like open where they belong.
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

void AppPlacer::later(MainQueuePort::Duration delay, std::function<void(AppPlacer&)> work) {
    m_uses.mainQueue.asyncAfter(delay, [self = m_self, work = std::move(work)] {
        if (AppPlacer* const placer = *self)
            work(*placer);
    });
}

} // namespace tessarel
