// SPDX-License-Identifier: MIT

#include "platform/sim/sim_desktop.h"

#include "model/carbon_mods.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace tessarel::sim {

Screen SimDesktop::addScreen(const ScreenOptions& options) {
    const Rect& frame = options.frame;
    const Rect visibleFrame{frame.x + options.leftBar, frame.y + options.dock,
                            frame.width - options.leftBar - options.rightBar,
                            frame.height - options.menuBar - options.dock};
    return m_state.screens.emplace_back(Screen{++m_lastScreen, frame, visibleFrame});
}

void SimDesktop::setMenuBar(double height) {
    Screen& primary = m_state.screens.at(0);
    primary.visibleFrame.height = primary.frame.maxY() - primary.visibleFrame.y - height;
}

void SimDesktop::changeScreen(const Screen& screen) {
    for (Screen& connected : m_state.screens) {
        if (connected.id == screen.id)
            connected = screen;
    }
}

void SimDesktop::removeScreen(std::uint64_t id) {
    std::erase_if(m_state.screens, [&](const Screen& screen) { return screen.id == id; });
}

void SimDesktop::makePrimary(std::uint64_t id) {
    auto& screens = m_state.screens;
    const auto primary =
        std::find_if(screens.begin(), screens.end(), [&](const Screen& screen) { return screen.id == id; });
    if (primary == screens.end())
        return;
    // Screen coordinates start at the bottom-left corner of the primary display.
    const Point origin = primary->frame.origin();
    std::rotate(screens.begin(), primary, primary + 1);
    for (Screen& screen : screens) {
        for (Rect* rect : {&screen.frame, &screen.visibleFrame}) {
            rect->x -= origin.x;
            rect->y -= origin.y;
        }
    }
}

ProcessId SimDesktop::launch(const SimApplication& application) {
    const ProcessId pid = ++m_lastPid;
    m_state.launchApplication(pid, application);
    return pid;
}

WindowId SimDesktop::openWindow(const std::string& bundleIdentifier, const Rect& axFrame) {
    const auto running =
        std::find_if(m_state.applications.begin(), m_state.applications.end(),
                     [&](const auto& entry) { return entry.second.bundleIdentifier == bundleIdentifier; });
    const ProcessId pid = running == m_state.applications.end()
                              ? launch({.bundleIdentifier = bundleIdentifier})
                              : running->first;
    return openWindow(pid, {.axFrame = axFrame});
}

WindowId SimDesktop::openWindow(ProcessId pid, const SimWindow& window) {
    const WindowId id = add(pid, window);
    focus(id);
    m_accessibility.reportCreated(id);
    return id;
}

WindowId SimDesktop::openWindowBehind(ProcessId pid, const SimWindow& window) {
    const WindowId id = add(pid, window);
    // An application without windows takes its first one for the focused one.
    auto& focused = application(pid).focusedWindow;
    focused = focused.value_or(id);
    m_accessibility.reportCreated(id);
    return id;
}

/// Adds a window at the back without calling observers.
WindowId SimDesktop::add(ProcessId pid, const SimWindow& window) {
    SimWindow& added = m_state.windows.emplace_back(window);
    added.id = WindowId{++m_lastWindow};
    added.pid = pid;
    return added.id;
}

WindowId SimDesktop::openOwnWindow(const Rect& axFrame) {
    m_state.applications.try_emplace(SimState::kOwnPid);
    return openWindow(SimState::kOwnPid, {.axFrame = axFrame});
}

SimWindow& SimDesktop::window(WindowId id) {
    SimWindow* window = m_state.window(id);
    if (!window)
        throw std::out_of_range("no such window");
    return *window;
}

Rect SimDesktop::frame(WindowId id) {
    return window(id).shownAxFrame(m_state.clock.now());
}

void SimDesktop::drag(WindowId id, const Rect& axFrame) {
    // Moves the window directly: no write is recorded, and it is seen there at once.
    SimWindow& dragged = window(id);
    dragged.axFrame = axFrame;
    dragged.settledAt = m_state.clock.now();
}

void SimDesktop::focus(WindowId id) {
    auto& windows = m_state.windows;
    const auto focused =
        std::find_if(windows.begin(), windows.end(), [&](const SimWindow& w) { return w.id == id; });
    if (focused == windows.end())
        return;
    std::rotate(windows.begin(), focused, focused + 1);
    const ProcessId pid = windows.front().pid;
    application(pid).focusedWindow = id;
    m_state.activateApplication(pid);
}

void SimDesktop::pressKeys(std::uint32_t keyCode, std::uint32_t mods) {
    if (m_state.frontmost == SimState::kOwnPid && m_localKeys.monitors() > 0)
        m_localKeys.press({keyCode, modifierFlags(mods)});
    else
        m_hotKeys.press(keyCode, mods);
}

std::vector<std::string> SimDesktop::takeRequests() {
    return std::exchange(m_state.requests, {});
}

std::vector<std::string> SimDesktop::takeWrites() {
    auto writes = takeRequests();
    std::erase_if(writes, [](const std::string& request) { return !request.starts_with("write "); });
    return writes;
}

} // namespace tessarel::sim
