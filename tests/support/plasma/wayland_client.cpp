// SPDX-License-Identifier: MIT

#include "support/plasma/wayland_client.h"

#include <cmath>
#include <sstream>

namespace tessarel::plasmatest {

WaylandClient::WaylandClient(const x11test::Environment& environment)
    : m_process({TESSAREL_WAYLAND_CLIENT}, environment) {}

void WaylandClient::open(int number, const WindowOptions& options) {
    std::ostringstream command;
    command << "open " << number << ' ' << options.isDecorated;
    for (const Size& size : {options.size, options.minimum, options.maximum})
        command << ' ' << std::lround(size.width) << ' ' << std::lround(size.height);
    command << ' ' << options.announcesLimits << ' ' << options.parent << ' ' << options.applicationId;
    m_process.writeLine(command.str());
}

void WaylandClient::close(int number) {
    m_process.writeLine("close " + std::to_string(number));
}

void WaylandClient::openPanel(int height) {
    m_process.writeLine("panel " + std::to_string(height));
}

void WaylandClient::reserve(int height) {
    m_process.writeLine("reserve " + std::to_string(height));
}

void WaylandClient::stall() {
    m_process.writeLine("stall");
}

void WaylandClient::resume() {
    m_process.writeLine("resume");
}

} // namespace tessarel::plasmatest
