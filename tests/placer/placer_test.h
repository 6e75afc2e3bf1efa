// SPDX-License-Identifier: MIT

#pragma once

#include "engine/engine_test.h"
#include "placer/app_placer.h"

#include <chrono>
#include <memory>
#include <string>

namespace tessarel {

using namespace std::chrono_literals;

/// Fixture: the placer, with the two halves of a screen as zones. The right half is remembered for the editor
/// and for this program itself.
///
/// Windows open behind all others, so that opening one does not activate its program.
class PlacerTest : public EngineTest {
protected:
    /// The right half of the primary display.
    static constexpr Rect kPrimaryRight{632, 31, 620, 725};
    static constexpr std::size_t kRightZone = 1;
    static constexpr auto kWindowDelay = 400ms;
    static constexpr auto kLaunchDelay = 1000ms;

    PlacerTest() {
        settings.zones = {kLeftHalf, kRightHalf};
        settings.zones.resize(kZoneSlots);
        settings.appZones = {{"org.example.editor", kRightZone}, {"org.example.self", kRightZone}};
        desktop.launchAs(sim::SimState::kOwnPid, {.bundleIdentifier = "org.example.self"});
    }

    sim::WindowId open(ProcessId pid) { return desktop.openWindowBehind(pid, {.axFrame = kStart}); }
    /// Opens a window and lets the delay pass after which it is placed.
    sim::WindowId openAndWait(ProcessId pid, const sim::SimWindow& window = {.axFrame = kStart}) {
        const auto opened = desktop.openWindowBehind(pid, window);
        desktop.advance(kWindowDelay);
        return opened;
    }

    Screen screen = addScreens();
    sim::SimAccessibility& accessibility = desktop.accessibility();
    ProcessId editor = desktop.launch({.bundleIdentifier = "org.example.editor"});
    std::unique_ptr<AppPlacer> placer =
        std::make_unique<AppPlacer>(AppPlacer::Uses{.workspace = desktop.workspace(),
                                                    .mainQueue = desktop.mainQueue(),
                                                    .store = store,
                                                    .runtime = runtime,
                                                    .permissions = permissions,
                                                    .geo = geo,
                                                    .ax = ax,
                                                    .engine = engine});
};

} // namespace tessarel
