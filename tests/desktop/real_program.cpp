// SPDX-License-Identifier: MIT

#include "desktop/real_program.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tessarel::x11test {

namespace {

bool speaksPing(Observer& observer, xcb_window_t window) {
    const auto protocols = observer.values(window, "WM_PROTOCOLS");
    return std::ranges::find(protocols, observer.x().atom("_NET_WM_PING")) != protocols.end();
}

} // namespace

std::ostream& operator<<(std::ostream& stream, const RealProgram& program) {
    return stream << program.name;
}

StartedProgram start(const RealProgram& program, Desktop& desktop) {
    Observer& observer = desktop.observer();
    const std::size_t before = observer.clients().size();
    Environment environment = desktop.server().environment();
    environment["DBUS_SESSION_BUS_ADDRESS"] = "disabled:";
    environment["GSK_RENDERER"] = "cairo"; // there is no GPU
    auto process = std::make_unique<ChildProcess>(program.arguments, environment);
    EXPECT_TRUE(observer.waitUntil([&] { return observer.clients().size() > before; })) << process->errors();
    const xcb_window_t window = observer.clients().back();
    observer.watch(window);
    // Until it replies to a ping, the program may still resize its window.
    if (speaksPing(observer, window)) {
        EXPECT_TRUE(observer.settleProgram(window)) << process->errors();
    }
    return {std::move(process), window};
}

} // namespace tessarel::x11test
