// SPDX-License-Identifier: MIT

#include "desktop/desktop.h"
#include "desktop/expected.h"
#include "support/x11/event_flood.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessarel::x11test {
namespace {

struct FloodCase {
    std::string name;
    FloodKind kind;
};

constexpr int kPerSecond = 60'000; // as many as the server takes

/// Another client that causes events faster than they could be handled one by one.
class FloodTest : public testing::TestWithParam<FloodCase> {
protected:
    Frame zoneFrame(int number) {
        return frameIn(desktop.usableArea(), kZones.at(static_cast<std::size_t>(number - 1)));
    }

    Desktop desktop{{.settings = kNoHomes}};
    TestClient client{desktop.server()};
};

TEST_P(FloodTest, LosesNoKeyAndLetsTheProgramEnd) {
    ASSERT_TRUE(desktop.start());
    const xcb_window_t window = desktop.open(client);
    std::vector<Frame> zones;
    for (const int number : {1, 2, 3, 4, 5})
        zones.push_back(zoneFrame(number));
    ASSERT_TRUE(desktop.waitUntilProgramRests());

    const EventFlood flood(desktop.server().display(), GetParam().kind, kPerSecond, window);

    for (int number = 1; number <= 5; ++number) {
        desktop.press(hotkey::zone(number));
        const Frame& wanted = zones[static_cast<std::size_t>(number - 1)];
        ASSERT_TRUE(desktop.observer().waitUntil([&] { return desktop.frame(window) == wanted; }))
            << "zone " << number << " after " << flood.sent() << " events";
    }
    EXPECT_TRUE(desktop.stop()) << "after " << flood.sent() << " events";
}

INSTANTIATE_TEST_SUITE_P(Of, FloodTest,
                         testing::Values(FloodCase{"ActiveWindows", FloodKind::ActiveWindow},
                                         FloodCase{"ClientLists", FloodKind::ClientList},
                                         FloodCase{"WorkAreas", FloodKind::WorkArea}),
                         [](const auto& instance) { return instance.param.name; });

} // namespace
} // namespace tessarel::x11test
