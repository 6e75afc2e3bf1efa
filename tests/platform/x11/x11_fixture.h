// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/applications/accessibility.h"
#include "platform/x11/applications/workspace.h"
#include "platform/x11/displays/displays.h"
#include "platform/x11/displays/monitors.h"
#include "platform/x11/manual_queue.h"
#include "platform/x11/server/connection.h"
#include "platform/x11/windows/client_windows.h"
#include "support/x11/chosen_window_manager.h"
#include "support/x11/observer.h"
#include "support/x11/test_client.h"
#include "support/x11/window_manager.h"
#include "support/x11/x_server.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string_view>

namespace tessarel::x11 {

/// A frame that no window has initially, in accessibility coordinates.
inline constexpr Rect kTarget{333, 222, 600, 450};

/// An X server, with or without a window manager, shared by all tests of a test program.
struct SharedDesktop {
    x11test::XServer server{x11test::serverFor(x11test::chosenWindowManager())};
    std::unique_ptr<x11test::WindowManager> manager;
    x11test::Observer observer{server.display()};

    /// Returns a desktop with openbox, or with the window manager named by $TESSAREL_TEST_WINDOW_MANAGER.
    [[nodiscard]] static SharedDesktop& withManager();
    [[nodiscard]] static SharedDesktop& withoutManager();
    /// Returns a desktop with a window manager, on a server that cannot resolve the process of a client.
    [[nodiscard]] static SharedDesktop& withoutProcesses();
};

/// Runs the connection under test by hand.
class ConnectionDriver {
public:
    explicit ConnectionDriver(const std::string& display);

    [[nodiscard]] Connection& connection() { return *m_connection; }
    [[nodiscard]] ManualQueue& queue() { return m_queue; }

    /// Reads and delivers all events that the server has sent up to now.
    void hear();

private:
    ManualQueue m_queue;
    std::unique_ptr<Connection> m_connection;
};

/// The back end with one test client on an otherwise empty desktop.
class X11Test : public ::testing::Test {
protected:
    explicit X11Test(SharedDesktop& shared = SharedDesktop::withManager());
    ~X11Test() override;

    /// Opens a window and waits until it is active.
    [[nodiscard]] xcb_window_t open(const x11test::WindowOptions& options = {});
    /// Waits until the window manager, the server and the back end have processed everything.
    void settle();

    /// Returns the element of a managed window of the client.
    [[nodiscard]] Element elementOf(xcb_window_t window);
    [[nodiscard]] Rect readFrame(const Element& window);
    void writeFrame(const Element& window, const Rect& axFrame);
    /// Returns the outer frame of the window as the observer reads it, without the back end.
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
    X11Accessibility accessibility{connection, monitors, windows, applications, watch, driver.queue()};
    X11Workspace workspace{applications, watch};
};

} // namespace tessarel::x11
