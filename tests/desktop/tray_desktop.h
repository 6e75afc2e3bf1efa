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

/// A session bus on which services of the machine may be started.
class DesktopBus {
public:
    explicit DesktopBus(const Environment& environment);

    /// Stays the same when the bus starts again, as in a session.
    [[nodiscard]] const std::string& address() const { return m_address; }
    void kill() { m_process.reset(); }
    void start();

private:
    Environment m_environment;
    std::string m_address;
    std::optional<ChildProcess> m_process;
};

/// A panel at the bottom of the screen with nothing in it but status icons.
enum class PanelColour { Light, Dark };
/// One that takes in icons as windows.
[[nodiscard]] std::unique_ptr<ChildProcess> startTint2(const XServer& server, const Environment& environment,
                                                       PanelColour colour = PanelColour::Dark);
/// One that is told on the session bus what to draw, and draws menus itself.
[[nodiscard]] std::unique_ptr<ChildProcess> startXfce4Panel(const XServer& server,
                                                            const Environment& environment);

/// What an X desktop shows of a program's status item.
class ShownStatusItem {
public:
    /// `windowClass` is found in the class of every window of the program, and of no other's.
    ShownStatusItem(Observer& observer, std::string windowClass)
        : m_observer(observer), m_windowClass(std::move(windowClass)) {}

    /// The window in which the icon stands; none while it does not.
    [[nodiscard]] std::optional<Frame> icon();
    /// The icon in its place in the panel, waited for; throws when it does not get there.
    Frame waitForIcon();
    /// How far the icon stands out from the panel, from 0 to 255; 0 while there is none.
    [[nodiscard]] int contrast();
    /// The menus that are open, the first opened first.
    [[nodiscard]] std::vector<Frame> menus();
    /// The frame of row `position` of `count` rows of equal height.
    [[nodiscard]] static Frame row(const Frame& menu, int position, int count);

private:
    [[nodiscard]] bool isOfProgram(xcb_window_t window);

    Observer& m_observer;
    std::string m_windowClass;
};

/// The program with a status item that does as it is told.
class StatusItemProbe : public ShownStatusItem {
public:
    StatusItemProbe(const Environment& environment, Observer& observer);

    [[nodiscard]] ChildProcess& process() { return m_process; }

    /// Has the program do to its item what `line` says.
    void tell(std::string_view line);
    /// What the program has told since, up to and with `line`; empty when it does not tell that.
    [[nodiscard]] std::vector<std::string> heardUpTo(std::string_view line);

private:
    ChildProcess m_process;
};

} // namespace tessarel::x11test
