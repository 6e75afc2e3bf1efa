// SPDX-License-Identifier: MIT

#pragma once

#include "platform/qt/qt_main_queue.h"
#include "platform/x11/server/connection.h"
#include "support/x11/chosen_window_manager.h"
#include "support/x11/keyboard.h"
#include "support/x11/mouse.h"
#include "support/x11/observer.h"
#include "support/x11/qt_barrier.h"
#include "support/x11/test_client.h"
#include "support/x11/window_manager.h"
#include "support/x11/x_server.h"

#include <QGuiApplication>
#include <QRasterWindow>

#include <array>
#include <memory>
#include <optional>
#include <string>

namespace tessarel::contract {

/// Throws std::runtime_error with `what` in its text unless `holds` is true.
void require(bool holds, const char* what);

/// A private X server with two monitors and a window manager, shared by all tests.
class Stage {
public:
    [[nodiscard]] static Stage& shared();

    /// Connects all displays again.
    void reset();
    void disconnectSecondDisplay();

    x11test::XServer server{x11test::serverFor(
        x11test::chosenWindowManager(), {.width = 2560, .height = 1024, .monitors = x11test::twoMonitors()})};
    x11test::WindowManager manager;
    x11test::Observer observer{server.display()};
    x11test::Keyboard keyboard{server, observer};
    x11test::Mouse mouse{observer};
    // Frame extents that the window manager adds to a resizable window and to one of fixed size; some window
    // managers draw no resize borders for the latter.
    const x11test::Extents decoration;
    const x11test::Extents fixedDecoration;

private:
    Stage();
    /// Opens a window with these options, returns its frame extents and closes it again.
    [[nodiscard]] x11test::Extents measureDecoration(const x11test::WindowOptions& options);

    bool m_complete = true; ///< all displays are connected
};

/// The Qt application under test on the shared X server: its window and its event loop.
class Program {
public:
    [[nodiscard]] static Program& shared();

    /// Opens a new window and waits until it has the focus.
    void focusOwnWindow();
    /// Waits until no window of this application has the focus, and Qt has processed that.
    void waitUntilWithoutFocus();
    void closeWindow();
    /// Waits until Qt has processed all events that the server has sent.
    void settle();

private:
    explicit Program(Stage& stage);

    int m_argumentCount = 1;
    std::array<char, 5> m_programName{"test"};
    std::array<char*, 2> m_arguments{m_programName.data(), nullptr};
    std::optional<QGuiApplication> m_application;
    std::optional<x11test::QtBarrier> m_barrier;
    std::optional<QRasterWindow> m_window;
};

/// A connection of the back end to the X server, whose events the Qt event loop delivers.
class Line {
public:
    explicit Line(const std::string& display);

    [[nodiscard]] x11::Connection& connection() { return *m_connection; }
    [[nodiscard]] MainQueuePort& queue() { return m_queue; }

    /// Waits for a reply, and so reads every event that the server has sent before it.
    void roundTrip() { (void)m_connection->internAtom("PRIMARY"); }

private:
    qt::QtMainQueue m_queue;
    std::unique_ptr<x11::Connection> m_connection;
    SubscriptionPtr m_readable;
};

} // namespace tessarel::contract
