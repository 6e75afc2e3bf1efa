// SPDX-License-Identifier: MIT

#include "contract/x11_contract_stage.h"

#include <stdexcept>
#include <utility>

namespace tessarel::contract {

using x11test::Extents;
using x11test::TestClient;

namespace {

std::unique_ptr<x11::Connection> open(const std::string& display, MainQueuePort& queue) {
    auto opened = x11::Connection::open(display.c_str(), queue);
    if (!opened.connection)
        throw std::runtime_error(opened.failure);
    return std::move(opened.connection);
}

} // namespace

void require(bool holds, const char* what) {
    if (!holds)
        throw std::runtime_error(std::string("the test desktop is not as expected: no ") + what);
}

Stage& Stage::shared() {
    static Stage stage;
    return stage;
}

Stage::Stage()
    : manager(server, x11test::chosenWindowManager()), decoration(measureDecoration({})),
      fixedDecoration(measureDecoration({.minimum = {{500, 400}}, .maximum = {{500, 400}}})) {}

Extents Stage::measureDecoration(const x11test::WindowOptions& options) {
    TestClient client(server);
    const xcb_window_t window = client.open(options);
    observer.watch(window);
    const auto extents = [&] { return observer.extents(window, "_NET_FRAME_EXTENTS"); };
    require(observer.waitUntil([&] { return observer.managed(window) && extents(); }), "managed window");
    const Extents measured = extents().value_or(Extents{});
    client.process().kill();
    require(observer.waitUntil([&] { return observer.clients().empty(); }), "empty desktop");
    return measured;
}

void Stage::reset() {
    if (!std::exchange(m_complete, true))
        server.setMonitors(x11test::twoMonitors());
}

void Stage::disconnectSecondDisplay() {
    m_complete = false;
    server.setMonitors({x11test::twoMonitors().front()});
}

Program& Program::shared() {
    static Program program(Stage::shared());
    return program;
}

Program::Program(Stage& stage) {
    for (const auto& [name, value] : stage.server.environment())
        qputenv(name.c_str(), value.c_str());
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    qputenv("QT_QPA_PLATFORM", "xcb");
    m_application.emplace(m_argumentCount, m_arguments.data());
    m_barrier.emplace(stage.observer);
}

void Program::focusOwnWindow() {
    m_window.emplace();
    m_window->setGeometry(300, 200, 200, 100);
    m_window->show();
    m_window->requestActivate();
    require(m_barrier->waitUntil([this] { return QGuiApplication::focusWindow() == &*m_window; }),
            "focus in an own window");
    settle();
}

void Program::waitUntilWithoutFocus() {
    require(m_barrier->waitUntil([] { return QGuiApplication::focusWindow() == nullptr; }),
            "focus in another client");
    settle(); // Qt releases the keyboard grab
}

void Program::closeWindow() {
    m_window.reset();
    settle();
}

void Program::settle() {
    require(m_barrier->pass(), "reply from Qt");
}

Line::Line(const std::string& display) : m_connection(open(display, m_queue)) {
    m_readable = m_queue.onReadable(m_connection->fileDescriptor(), [this] { m_connection->dispatch(); });
}

} // namespace tessarel::contract
