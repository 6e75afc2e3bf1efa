// SPDX-License-Identifier: MIT

#include "platform/sim/windows/sim_state.h"

#include <algorithm>
#include <utility>

namespace tessarel::sim {

SimApplication* SimState::application(ProcessId pid) {
    const auto found = applications.find(pid);
    return found == applications.end() ? nullptr : &found->second;
}

SimWindow* SimState::window(WindowId id) {
    const auto found =
        std::find_if(windows.begin(), windows.end(), [&](const auto& w) { return w.id == id; });
    return found == windows.end() ? nullptr : &*found;
}

std::uintptr_t SimState::windowKey(WindowId id) const {
    const auto found = windowKeys.find(id);
    return found == windowKeys.end() ? static_cast<std::uintptr_t>(id) : found->second;
}

SimWindow* SimState::windowAt(const Point& axPoint) {
    const auto shows = [&](const SimWindow& window) {
        return !window.minimized && window.shownAxFrame(clock.now()).contains(axPoint);
    };
    const auto found = std::find_if(windows.begin(), windows.end(), shows);
    return found == windows.end() ? nullptr : &*found;
}

Rect SimState::axFrame(const Screen& screen) const {
    const Rect& frame = screen.frame;
    return {frame.minX(), screens.front().frame.absHeight() - frame.maxY(), frame.absWidth(),
            frame.absHeight()};
}

const Screen* SimState::screenAt(const Point& axPoint) const {
    const auto shows = [&](const Screen& screen) { return axFrame(screen).contains(axPoint); };
    const auto found = std::find_if(screens.begin(), screens.end(), shows);
    if (found != screens.end())
        return &*found;
    return screens.empty() ? nullptr : &screens.front();
}

std::optional<RunningApplication> SimState::running(ProcessId pid) {
    const SimApplication* found = application(pid);
    if (!found)
        return {};
    RunningApplication running{pid, found->bundleIdentifier, found->isRegular, found->otherNames};
    const auto isOthers = [pid](const SimWindow& window) {
        return window.pid == pid && window.bundleIdentifier;
    };
    running.ownsWholeProcess = std::none_of(windows.begin(), windows.end(), isOthers);
    return running;
}

std::optional<RunningApplication> SimState::owner(WindowId id) {
    const SimWindow* found = window(id);
    auto owner = found ? running(found->pid) : std::nullopt;
    if (owner && found->bundleIdentifier) {
        owner->bundleIdentifier = found->bundleIdentifier;
        owner->otherNames.clear();
    }
    return owner;
}

void SimState::launchApplication(ProcessId pid, const SimApplication& application) {
    applications.emplace(pid, application);
    applicationObservers.call(ApplicationEvent::Launched, *running(pid));
}

void SimState::activateApplication(ProcessId pid) {
    if (std::exchange(frontmost, pid) == pid) // it was in front already
        return;
    if (const auto app = running(pid))
        applicationObservers.call(ApplicationEvent::Activated, *app);
}

void SimState::closeWindow(WindowId id) {
    std::erase_if(windows, [&](const SimWindow& window) { return window.id == id; });
    // The focus goes to the frontmost remaining window of the application.
    for (auto& [pid, application] : applications) {
        if (application.focusedWindow != id)
            continue;
        const auto next =
            std::find_if(windows.begin(), windows.end(),
                         [owner = pid](const SimWindow& window) { return window.pid == owner; });
        application.focusedWindow = next == windows.end() ? std::nullopt : std::optional(next->id);
    }
    closeObservers.call(id, id);
}

void SimState::endApplication(ProcessId pid) {
    // Observers are called at the end, when neither the process nor its windows exist.
    const auto ended = running(pid);
    applications.erase(pid);
    std::vector<WindowId> closed;
    for (const SimWindow& window : windows) {
        if (window.pid == pid)
            closed.push_back(window.id);
    }
    std::erase_if(windows, [&](const SimWindow& window) { return window.pid == pid; });
    if (frontmost == pid)
        frontmost.reset();
    for (const WindowId id : closed)
        closeObservers.call(id, id);
    if (ended)
        applicationObservers.call(ApplicationEvent::Terminated, *ended);
}

} // namespace tessarel::sim
