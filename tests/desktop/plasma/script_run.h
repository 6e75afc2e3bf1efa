// SPDX-License-Identifier: MIT

#pragma once

#include "platform/plasma/bridge.h"
#include "platform/sim/time/sim_clock.h"
#include "platform/sim/time/sim_main_queue.h"
#include "platform/wayland/bus_names.h"
#include "support/plasma/plasma_session.h"

#include <gtest/gtest.h>

#include <string>

namespace tessarel::plasmatest {

/// A run of the program, as far as its script goes. Its clock stands still.
struct ScriptRun {
    explicit ScriptRun(const PlasmaSession& session)
        : link(session.environment().at("DBUS_SESSION_BUS_ADDRESS")) {
        EXPECT_TRUE(link.waitUntil([this] { return !link.uniqueName().empty(); }, x11test::kPatience));
        bridge.load();
    }

    /// Waits until the bus has passed on everything that was sent.
    void passBus() {
        bool hasReply = false;
        link.call(
            wayland::busCall("GetId", "", {}), [&](const wayland::BusMessage&) { hasReply = true; },
            wayland::BusLink::Delivery::Urgent);
        EXPECT_TRUE(link.waitUntil([&] { return hasReply; }, x11test::kPatience));
    }
    bool seesWindows() {
        bridge.awaitWindows(x11test::kPatience);
        return mirror.isReady();
    }

    ScratchFolder folder;
    sim::SimClock clock;
    sim::SimMainQueue queue{clock};
    wayland::Mirror mirror;
    wayland::BusLink link;
    plasma::Bridge bridge{link, mirror, queue, folder.path(),
                          [](const std::string& problem) { ADD_FAILURE() << problem; }};
};

} // namespace tessarel::plasmatest
