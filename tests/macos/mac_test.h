// SPDX-License-Identifier: MIT

#pragma once

#include "macos/fake/fake_mac.h"
#include "platform/macos/desktop.h"
#include "platform/sim/time/sim_clock.h"
#include "platform/sim/time/sim_main_queue.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tessarel::macos {

using Lines = std::vector<std::string>;

/// The back end on a new fake Mac with one display and a running editor. The destructor fails the test if the
/// back end leaves any object of the system behind.
class MacTest : public ::testing::Test {
protected:
    static constexpr ProcessId kEditor = 7;

    MacTest() {
        fakemac::reset();
        fakemac::mac().displays = {
            {.number = 1, .frame = {0, 0, 1440, 900}, .visibleFrame = {0, 0, 1440, 875}}};
        fakemac::launch(kEditor, {.bundleIdentifier = "org.example.editor"});
        makeDesktop();
    }
    ~MacTest() override {
        desktop.reset();
        EXPECT_EQ(fakemac::heldObjects(), Lines());
    }

    void makeDesktop(MacMainMenu::Toolkit toolkit = nullptr) {
        desktop.emplace(queue, std::move(toolkit), [this](std::chrono::milliseconds time) {
            waited += time;
            fakemac::passTime(std::chrono::duration<double>(time).count());
        });
    }

    /// Runs one iteration of the run loop and moves the clock by `duration`.
    void turn(sim::SimClock::Duration duration = {}) {
        fakemac::turn();
        clock.advance(duration);
    }

    std::chrono::milliseconds waited{0}; ///< total time that the back end has blocked for late frames
    sim::SimClock clock;
    sim::SimMainQueue queue{clock};
    std::optional<MacDesktop> desktop;
};

} // namespace tessarel::macos
