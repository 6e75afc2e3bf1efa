// SPDX-License-Identifier: MIT

#include "engine/ax.h"
#include "engine/geo.h"
#include "engine/permissions.h"
#include "engine/runtime.h"
#include "engine/window_engine.h"
#include "model/settings/store.h"
#include "placer/app_placer.h"
#include "platform/sim/sim_desktop.h"
#include "platform/x11/windows/window_list.h"
#include "platform/x11/x11_fixture.h"
#include "support/long_run.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <malloc.h>
#include <poll.h>
#include <thread>

// Defined only in builds with a sanitizer that replaces the allocator.
extern "C" [[gnu::weak]] std::size_t __sanitizer_get_current_allocated_bytes(); // NOLINT

namespace tessarel::x11 {
namespace {

using namespace std::chrono_literals;

/// Returns the number of heap bytes in use.
std::size_t heapInUse() {
    return __sanitizer_get_current_allocated_bytes ? __sanitizer_get_current_allocated_bytes()
                                                   : ::mallinfo2().uordblks;
}

/// The placer on a real desktop, with a clock that the test advances.
class ManyWindowsTest : public X11Test {
protected:
    ManyWindowsTest() {
        store.settings.appZones["Busy"] = 0;
        placer.start();
        settle();
    }

    /// Opens and closes windows as fast as the window manager allows, while the placer watches.
    void openAndClose(int count) {
        constexpr int kAtOnce = 50; // the client replies once per so many windows
        std::atomic<bool> isOver = false;
        std::thread hand([&] {
            for (int done = 0; done < count; done += kAtOnce)
                client.openAndClose({.className = "Busy"}, kAtOnce);
            isOver = true;
        });
        while (!isOver)
            runLoop();
        hand.join();
        EXPECT_TRUE(observer.waitUntil([&] { return observer.clients().empty(); }));
        settle();
        simulated.advance(2s);
        settle();
    }

    /// Does the work of the program's event loop for a moment.
    void runLoop() {
        pollfd line{.fd = connection.fileDescriptor(), .events = POLLIN, .revents = 0};
        constexpr int kMoment = 10;
        ::poll(&line, 1, kMoment);
        connection.dispatch();
        if (driver.queue().waiting() > 0)
            driver.queue().runTurn();
        simulated.advance(std::chrono::milliseconds(kMoment));
    }

    sim::SimDesktop simulated; // everything except windows and displays
    Store store{simulated.preferences()};
    Runtime runtime;
    Permissions permissions{simulated.trust()};
    Geo geo{displays, store};
    AX ax{accessibility, workspace};
    X11WindowList windowList{connection, monitors, windows};
    WindowEngine engine{ax, geo, displays, workspace, windowList, simulated.alertSound(), store};
    AppPlacer placer{{.workspace = workspace,
                      .mainQueue = simulated.mainQueue(),
                      .store = store,
                      .runtime = runtime,
                      .permissions = permissions,
                      .geo = geo,
                      .ax = ax,
                      .engine = engine}};
};

TEST_F(ManyWindowsTest, OpeningAndClosingWindowsLeaksNothing) {
    constexpr std::size_t kWhatMapsMayGrowBy = std::size_t{32} * 1024;
    openAndClose(1'100); // until the tables that hold a thousand windows have their full size
    const std::size_t before = heapInUse();

    openAndClose(rounds(1'000, 9'000));

    EXPECT_LT(heapInUse(), before + kWhatMapsMayGrowBy);
    EXPECT_EQ(simulated.clock().waiting(), 0U);
    EXPECT_EQ(driver.queue().waiting(), 0U);
    pollfd line{.fd = connection.fileDescriptor(), .events = POLLIN, .revents = 0};
    EXPECT_EQ(::poll(&line, 1, 0), 0);

    const xcb_window_t window = open({.className = "Busy"});
    const Rect visible = geo.axVisible(displays.screens().front());
    const Rect zone = geo.zoneFrame(store.settings.zones.front(), visible);
    EXPECT_TRUE(observer.waitUntil([&] {
        runLoop();
        return actualFrame(window) == zone;
    }));
}

} // namespace
} // namespace tessarel::x11
