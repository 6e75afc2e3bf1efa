#pragma once

#include "platform/qt/qt_main_queue.h"
#include "platform/x11/server/connection.h"
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

/// Throws std::runtime_error, which names `what`, unless it has come to pass.
void require(bool holds, const char* what);

/// Two monitors under a window manager, shared by all cases.
class Stage {
public:
    [[nodiscard]] static Stage& shared();

    /// Connects every display again.
    void reset();
    void disconnectSecondDisplay();

    x11test::XServer server{{.width = 2560, .height = 1024, .monitors = x11test::twoMonitors()}};
    x11test::WindowManager manager;
    x11test::Observer observer{server.display()};
    x11test::Keyboard keyboard{server, observer};
    x11test::Mouse mouse{observer};
    // What windows are larger than their clients by; some managers leave parts of it out where there is
    // nothing to resize.
    const x11test::Extents decoration;
    const x11test::Extents fixedDecoration;

private:
    Stage();
    [[nodiscard]] x11test::Extents measureDecoration(const x11test::WindowOptions& options);

    bool m_complete = true;
};

/// The program's windows on the stage, and its event loop.
class Program {
public:
    [[nodiscard]] static Program& shared();

    void focusOwnWindow();
    void waitUntilWithoutFocus();
    void closeWindow();
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

/// A connection that lives on the event loop.
class Line {
public:
    explicit Line(const std::string& display);

    [[nodiscard]] x11::Connection& connection() { return *m_connection; }
    [[nodiscard]] MainQueuePort& queue() { return m_queue; }

    /// Reads all that the server has sent before it answers.
    void roundTrip() { (void)m_connection->internAtom("PRIMARY"); }

private:
    qt::QtMainQueue m_queue;
    std::unique_ptr<x11::Connection> m_connection;
    SubscriptionPtr m_readable;
};

} // namespace tessarel::contract
