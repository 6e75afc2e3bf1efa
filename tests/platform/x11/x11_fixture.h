#pragma once

#include "platform/x11/displays/displays.h"
#include "platform/x11/displays/monitors.h"
#include "platform/x11/manual_queue.h"
#include "platform/x11/server/connection.h"
#include "platform/x11/windows/accessibility.h"
#include "platform/x11/windows/client_windows.h"
#include "platform/x11/windows/workspace.h"
#include "support/x11/observer.h"
#include "support/x11/test_client.h"
#include "support/x11/window_manager.h"
#include "support/x11/x_server.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string_view>

namespace tessarel::x11 {

/// A frame that no window has before a test sets it, in accessibility coordinates.
inline constexpr Rect kTarget{333, 222, 600, 450};

/// An X server with a window manager that all cases of a program share.
struct SharedDesktop {
    x11test::XServer server{{.width = 1600, .height = 900, .monitors = {}}};
    std::unique_ptr<x11test::WindowManager> manager;
    x11test::Observer observer{server.display()};

    /// Openbox, or what $TESSAREL_TEST_WINDOW_MANAGER names.
    [[nodiscard]] static SharedDesktop& withManager();
    [[nodiscard]] static SharedDesktop& withoutManager();
    /// With a manager, on a server that cannot tell which process a client is.
    [[nodiscard]] static SharedDesktop& withoutProcesses();
};

/// The connection under test, pumped by hand.
class ConnectionDriver {
public:
    explicit ConnectionDriver(const std::string& display);

    [[nodiscard]] Connection& connection() { return *m_connection; }
    [[nodiscard]] ManualQueue& queue() { return m_queue; }

    /// Reads and delivers everything that the server has sent for what has been done so far.
    void hear();

private:
    ManualQueue m_queue;
    std::unique_ptr<Connection> m_connection;
};

/// The back end beside one other program on an otherwise empty desktop.
class X11Test : public ::testing::Test {
protected:
    explicit X11Test(SharedDesktop& shared = SharedDesktop::withManager());
    ~X11Test() override;

    /// Opens a window that has the focus when this returns.
    [[nodiscard]] xcb_window_t open(const x11test::WindowOptions& options = {});
    /// Everybody has heard of everything.
    void settle();

    /// The element of a managed window of the client.
    [[nodiscard]] Element elementOf(xcb_window_t window);
    [[nodiscard]] Rect readFrame(const Element& window);
    void writeFrame(const Element& window, const Rect& axFrame);
    /// Where the window is, seen without the back end.
    [[nodiscard]] Rect actualFrame(xcb_window_t window);

    template <class Value>
    [[nodiscard]] std::optional<Value> read(const Element& element, std::string_view attribute) {
        const auto value = accessibility.copyAttribute(element, attribute);
        const auto* typed = value ? std::get_if<Value>(&*value) : nullptr;
        return typed ? std::optional(*typed) : std::nullopt;
    }

    SharedDesktop& desktop;
    x11test::Observer& observer = desktop.observer;
    x11test::TestClient client{desktop.server};
    ConnectionDriver driver{desktop.server.display()};
    Connection& connection = driver.connection();
    Monitors monitors{connection};
    ClientWindows windows{connection};
    X11Displays displays{connection, monitors, [this] { return windows.activeFrame(); }};
    Applications applications{windows};
    ApplicationWatch watch{connection, windows, applications};
    X11Accessibility accessibility{connection, monitors, windows, watch};
    X11Workspace workspace{applications, watch};
};

} // namespace tessarel::x11
