// SPDX-License-Identifier: MIT

#include "platform/wayland/desktop_ports.h"

#include "platform/wayland/coordinates.h"

#include <algorithm>
#include <unistd.h>
#include <utility>

namespace tessarel::wayland {

namespace {

/// Returns an id that only a display at the same place and of the same size has.
std::uint64_t idOf(const Rect& frame) {
    const auto bits = [](double value) {
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(value)) & 0xffff;
    };
    return bits(frame.x) << 48 | bits(frame.y) << 32 | bits(frame.width) << 16 | bits(frame.height);
}

} // namespace

std::vector<Screen> Displays::screens() {
    std::vector<Screen> screens;
    for (const DisplayState& display : m_mirror.displays())
        screens.push_back({idOf(display.frame), screenFromCompositor(display.frame, m_mirror.primary()),
                           screenFromCompositor(display.usable, m_mirror.primary())});
    return screens;
}

std::optional<Screen> Displays::mainScreen() {
    const std::vector<Screen> all = screens();
    if (all.empty())
        return std::nullopt;
    const WindowState* const active = m_mirror.find(m_mirror.active());
    if (active == nullptr)
        return all.front();
    const Rect frame = screenFromCompositor(active->frame, m_mirror.primary());
    const auto area = [&](const Screen& screen) {
        const Rect common = screen.frame.intersection(frame);
        return common.isNull() ? 0 : common.width * common.height;
    };
    return *std::max_element(all.begin(), all.end(), [&](const Screen& first, const Screen& second) {
        return area(first) < area(second);
    });
}

std::vector<ListedWindow> WindowList::onScreenWindows() {
    std::vector<ListedWindow> listed;
    for (const WindowId id : m_mirror.frontToBack()) {
        const WindowState& window = *m_mirror.find(id);
        if (window.isMinimized || !window.isOnCurrentDesktop || window.kind == WindowKind::Other)
            continue;
        listed.push_back({.layer = 0,
                          .ownerPid = window.pid,
                          .axBounds = axFromCompositor(window.frame, m_mirror.primary()),
                          .alpha = window.opacity,
                          .key = elementKey(id)});
    }
    return listed;
}

std::optional<RunningApplication> Workspace::frontmostApplication() {
    return m_applications.frontmost();
}

std::optional<RunningApplication> Workspace::runningApplication(ProcessId pid) {
    return m_applications.ofProcess(pid);
}

std::vector<RunningApplication> Workspace::runningApplications() {
    return m_applications.all();
}

std::optional<std::string> Workspace::displayName(const std::string& bundleIdentifier) {
    return m_applications.displayName(bundleIdentifier);
}

SubscriptionPtr Workspace::addObserver(ApplicationEvent event,
                                       std::function<void(const RunningApplication&)> handler) {
    return m_watch.onApplication(event, std::move(handler));
}

ProcessId Workspace::ownProcessIdentifier() {
    return ::getpid();
}

} // namespace tessarel::wayland
