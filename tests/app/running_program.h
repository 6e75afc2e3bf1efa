// SPDX-License-Identifier: MIT

#pragma once

#include "app/app_delegate.h"
#include "platform/sim/sim_desktop.h"
#include "support/settings_window_record.h"
#include "support/sim_ports.h"

#include <gtest/gtest.h>

#include <optional>

namespace tessarel {

/// Fixture: the running program on a simulated desktop with one display and one window.
class RunningProgramTest : public ::testing::Test {
protected:
    static constexpr Rect kSomewhere{200, 150, 640, 480};
    static constexpr Rect kLeftHalf{40, 25, 650, 820};

    RunningProgramTest() {
        desktop.preferences().setData(Store::key, R"({"hasOnboarded": true})");
        desktop.addScreen(
            {.frame = {0, 0, 1440, 900}, .menuBar = 25, .dock = 55, .leftBar = 40, .rightBar = 100});
        window = desktop.openWindow("org.example.editor", kSomewhere);
        delegate.emplace(simPorts(desktop, copy), settingsWindow.factory());
        EXPECT_EQ(delegate->applicationDidFinishLaunching(), AppDelegate::Launch::Running);
    }

    const AppSettings& settings() { return Store::shared().settings; }

    sim::SimDesktop desktop;
    sim::SimSingleInstance copy = desktop.makeCopy();
    sim::WindowId window{};
    SettingsWindowRecord settingsWindow;
    std::optional<AppDelegate> delegate;
};

} // namespace tessarel
