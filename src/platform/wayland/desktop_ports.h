// SPDX-License-Identifier: MIT

#pragma once

#include "platform/wayland/application_watch.h"
#include "platform/wayland/applications.h"
#include "platform/wayland/mirror.h"
#include "ports/desktop/displays_port.h"
#include "ports/desktop/window_list_port.h"
#include "ports/desktop/workspace_port.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::wayland {

/// The displays, in logical pixels.
class Displays : public DisplaysPort {
public:
    /// `mirror` must outlive this object.
    explicit Displays(const Mirror& mirror) : m_mirror(mirror) {}

    /// A display keeps its id for as long as its place and size stay the same.
    [[nodiscard]] std::vector<Screen> screens() override;
    [[nodiscard]] std::optional<Screen> mainScreen() override;

private:
    const Mirror& m_mirror;
};

/// The windows in stacking order.
class WindowList : public WindowListPort {
public:
    /// `mirror` must outlive this object.
    explicit WindowList(const Mirror& mirror) : m_mirror(mirror) {}

    [[nodiscard]] std::vector<ListedWindow> onScreenWindows() override;

private:
    const Mirror& m_mirror;
};

/// The applications on the desktop.
class Workspace : public WorkspacePort {
public:
    /// Both references must outlive this object.
    Workspace(Applications& applications, ApplicationWatch& watch)
        : m_applications(applications), m_watch(watch) {}

    [[nodiscard]] std::optional<RunningApplication> frontmostApplication() override;
    [[nodiscard]] std::optional<RunningApplication> runningApplication(ProcessId pid) override;
    [[nodiscard]] std::vector<RunningApplication> runningApplications() override;
    [[nodiscard]] std::optional<std::string> displayName(const std::string& bundleIdentifier) override;
    [[nodiscard]] SubscriptionPtr
    addObserver(ApplicationEvent event, std::function<void(const RunningApplication&)> handler) override;
    [[nodiscard]] ProcessId ownProcessIdentifier() override;

private:
    Applications& m_applications;
    ApplicationWatch& m_watch;
};

} // namespace tessarel::wayland
