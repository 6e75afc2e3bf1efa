// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/child_process.h"
#include "support/x11/mouse.h"
#include "support/x11/observer.h"
#include "support/x11/x_server.h"

#include <xcb/xcb.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarel::x11test {

/// A session bus that can start the services installed on the system.
class DesktopBus {
public:
    explicit DesktopBus(const Environment& environment);

    /// Returns the address, which stays the same when the bus is restarted.
    [[nodiscard]] const std::string& address() const { return m_address; }
    /// Returns the environment of programs on `server` that use this bus.
    [[nodiscard]] Environment environmentOn(const XServer& server) const;
    void kill() { m_process.reset(); }
    void signal(int signal) const { m_process->signal(signal); }
    void start();

private:
    Environment m_environment;
    std::string m_address;
    std::optional<ChildProcess> m_process;
};

/// Background of a panel at the bottom of the screen that contains nothing but status icons.
enum class PanelColour { Light, Dark };
/// Starts a panel that embeds icons as windows (XEmbed).
[[nodiscard]] std::unique_ptr<ChildProcess> startTint2(const XServer& server, const Environment& environment,
                                                       PanelColour colour = PanelColour::Dark);
/// Starts a panel that gets items over the session bus and draws icons and menus itself.
[[nodiscard]] std::unique_ptr<ChildProcess> startXfce4Panel(const XServer& server,
                                                            const Environment& environment);

/// What an X server shows of a program's status item.
class ShownStatusItem {
public:
    /// `windowClass` must occur in the WM_CLASS of every window of the program, and in no other program's.
    ShownStatusItem(Observer& observer, std::string windowClass)
        : m_observer(observer), m_windowClass(std::move(windowClass)) {}

    /// Returns the frame of the icon's window; empty if there is none.
    [[nodiscard]] std::optional<Frame> icon();
    /// Waits until the icon has its place in the panel and returns its frame. Throws if it does not get
    /// there.
    Frame waitForIcon();
    /// Returns the contrast between the icon and the panel, from 0 to 255; 0 if there is no icon.
    [[nodiscard]] int contrast();
    /// Returns the brightness of most of an area of the screen, from 0 to 255.
    [[nodiscard]] int brightness(const Frame& area);
    /// Returns the frames of the open menus, in the order in which they opened.
    [[nodiscard]] std::vector<Frame> menus();
    /// Returns the frame of row `position` of `count` rows of equal height.
    [[nodiscard]] static Frame row(const Frame& menu, int position, int count);

private:
    [[nodiscard]] bool isOfProgram(xcb_window_t window);

    Observer& m_observer;
    std::string m_windowClass;
};

/// The running status_item_probe and its status item.
class StatusItemProbe : public ShownStatusItem {
public:
    StatusItemProbe(const Environment& environment, Observer& observer);

    [[nodiscard]] ChildProcess& process() { return m_process; }

    /// Sends the command `line` and waits until the program has executed it.
    void tell(std::string_view line);
    /// Returns what the program has written since the last call, up to and including `line`; empty if it does
    /// not write `line`.
    [[nodiscard]] std::vector<std::string> heardUpTo(std::string_view line);

private:
    ChildProcess m_process;
};

} // namespace tessarel::x11test
