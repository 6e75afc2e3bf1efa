#pragma once

#include "engine/engine_test.h"
#include "placer/app_placer.h"

#include <chrono>
#include <memory>
#include <string>

namespace tessarel {

using namespace std::chrono_literals;

/// The placer on a desktop with one display, whose zones are the two halves. The editor is remembered for
/// the right one.
class PlacerTest : public EngineTest {
protected:
    static constexpr Rect kStart{200, 150, 640, 480};
    static constexpr Rect kLeft{0, 25, 720, 875};
    static constexpr Rect kRight{720, 25, 720, 875};
    static constexpr std::size_t kRightZone = 1;
    static constexpr auto kWindowDelay = 400ms;
    static constexpr auto kLaunchDelay = 1000ms;

    PlacerTest() {
        settings.zones = {kLeftHalf, kRightHalf};
        settings.zones.resize(kZoneSlots);
        settings.appZones["org.example.editor"] = kRightZone;
    }

    sim::WindowId open(ProcessId pid) { return desktop.openWindow(pid, {.axFrame = kStart}); }
    /// Opens a window and lets its moment pass.
    sim::WindowId openAndWait(ProcessId pid, const sim::SimWindow& window = {.axFrame = kStart}) {
        const auto opened = desktop.openWindow(pid, window);
        desktop.advance(kWindowDelay);
        return opened;
    }

    Screen screen = addScreen();
    sim::SimAccessibility& accessibility = desktop.accessibility();
    ProcessId editor = desktop.launch({.bundleIdentifier = "org.example.editor"});
    std::unique_ptr<AppPlacer> placer =
        std::make_unique<AppPlacer>(AppPlacer::Uses{.workspace = desktop.workspace(),
                                                    .accessibility = desktop.accessibility(),
                                                    .mainQueue = desktop.mainQueue(),
                                                    .store = store,
                                                    .runtime = runtime,
                                                    .permissions = permissions,
                                                    .geo = geo,
                                                    .ax = ax,
                                                    .engine = engine});
};

} // namespace tessarel
