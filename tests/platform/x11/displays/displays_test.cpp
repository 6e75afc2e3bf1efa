// SPDX-License-Identifier: MIT

#include "platform/x11/server/event.h"
#include "platform/x11/x11_fixture.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace tessarel::x11 {
namespace {

using x11test::WindowOptions;

/// Returns the twelve values of a strut along the top edge.
std::vector<std::uint32_t> topStrut(std::uint32_t depth, std::uint32_t start, std::uint32_t end) {
    return {0, 0, depth, 0, 0, 0, 0, 0, start, end, 0, 0};
}

class DisplaysTest : public X11Test {
protected:
    ~DisplaysTest() override { desktop.server.setMonitors({}); }

    [[nodiscard]] xcb_window_t openPanel(const std::vector<std::uint32_t>& strut) {
        const xcb_window_t panel =
            client.open({.client = {0, 0, 100, 20}, .type = "_NET_WM_WINDOW_TYPE_DOCK", .strut = strut});
        EXPECT_TRUE(observer.waitUntil([&] { return observer.managed(panel); }));
        settle();
        return panel;
    }

    /// Waits until the visible frame is `screenFrame`: some window managers publish their own areas with a
    /// delay.
    [[nodiscard]] bool becomesVisible(const Rect& screenFrame) {
        return observer.waitUntil([&] {
            driver.hear();
            return displays.screens().at(0).visibleFrame == screenFrame;
        });
    }

    /// Returns how many events of `type` the server reports while `change` happens.
    template <class Change>
    [[nodiscard]] int eventsDuring(Change change, std::uint8_t type) {
        int events = 0;
        const auto count = connection.onRead(
            [&](const Connection::Event& event) { events += eventType(event) == type ? 1 : 0; });
        change();
        settle();
        return events;
    }

    void splitInTwo() {
        desktop.server.setMonitors(
            {{.name = "L", .x = 0, .y = 0, .width = 900, .height = 800, .primary = true},
             {.name = "R", .x = 900, .y = 0, .width = 700, .height = 900, .primary = false}});
        settle();
    }
};

TEST_F(DisplaysTest, TheRootWindowIsTheOneDisplayOfAPlainServer) {
    const auto screens = displays.screens();

    ASSERT_EQ(screens.size(), 1U);
    EXPECT_EQ(screens[0].frame, (Rect{0, 0, 1600, 900}));
    EXPECT_EQ(screens[0].visibleFrame, screens[0].frame);
}

TEST_F(DisplaysTest, NewMonitorsAreReturnedByTheNextCall) {
    const auto before = displays.screens();
    ASSERT_EQ(before.size(), 1U);

    splitInTwo();

    const auto screens = displays.screens();
    ASSERT_EQ(screens.size(), 2U);
    EXPECT_EQ(screens[0].frame, (Rect{0, 0, 900, 800}));
    EXPECT_EQ(screens[1].frame, (Rect{900, -100, 700, 900}));
}

TEST_F(DisplaysTest, ThePrimaryMonitorComesFirstWhereverItIs) {
    desktop.server.setMonitors(
        {{.name = "A", .x = 0, .y = 0, .width = 800, .height = 900, .primary = false},
         {.name = "B", .x = 800, .y = 0, .width = 800, .height = 600, .primary = true}});
    settle();

    const auto screens = displays.screens();

    ASSERT_EQ(screens.size(), 2U);
    EXPECT_EQ(screens[0].frame, (Rect{0, 0, 800, 600}));
    EXPECT_EQ(screens[1].frame, (Rect{-800, -300, 800, 900}));
}

TEST_F(DisplaysTest, MonitorsThatMirrorEachOtherAreOneDisplay) {
    desktop.server.setMonitors(
        {{.name = "Mirror", .x = 0, .y = 0, .width = 800, .height = 600, .primary = false},
         {.name = "Same", .x = 0, .y = 0, .width = 900, .height = 800, .primary = false},
         {.name = "Primary", .x = 0, .y = 0, .width = 900, .height = 800, .primary = true},
         {.name = "Other", .x = 900, .y = 0, .width = 700, .height = 900, .primary = false}});
    settle();

    const auto screens = displays.screens();

    ASSERT_EQ(screens.size(), 2U);
    EXPECT_EQ(screens[0].frame, (Rect{0, 0, 900, 800}));
    EXPECT_EQ(screens[1].frame, (Rect{900, -100, 700, 900}));
}

TEST_F(DisplaysTest, MonitorsThatOnlyOverlapAreTwoDisplays) {
    desktop.server.setMonitors(
        {{.name = "L", .x = 0, .y = 0, .width = 900, .height = 900, .primary = true},
         {.name = "R", .x = 800, .y = 0, .width = 800, .height = 900, .primary = false}});
    settle();

    EXPECT_EQ(displays.screens().size(), 2U);
}

TEST_F(DisplaysTest, AMonitorKeepsItsIdWhenItsGeometryChanges) {
    splitInTwo();
    const auto before = displays.screens();
    desktop.server.setMonitors(
        {{.name = "L", .x = 0, .y = 0, .width = 700, .height = 800, .primary = false},
         {.name = "R", .x = 700, .y = 0, .width = 900, .height = 900, .primary = true}});
    settle();

    const auto after = displays.screens();

    ASSERT_EQ(before.size(), 2U);
    ASSERT_EQ(after.size(), 2U);
    EXPECT_EQ(after[0].id, before[1].id);
    EXPECT_EQ(after[1].id, before[0].id);
}

TEST_F(DisplaysTest, APanelOnOneMonitorLeavesTheOtherAlone) {
    splitInTwo();
    (void)openPanel(topStrut(30, 900, 1599));

    const auto screens = displays.screens();

    ASSERT_EQ(screens.size(), 2U);
    EXPECT_EQ(screens[0].visibleFrame, screens[0].frame);
    EXPECT_EQ(screens[1].visibleFrame, (Rect{900, -100, 700, 870}));
}

TEST_F(DisplaysTest, AGrowingOrDestroyedPanelIsNoticed) {
    const xcb_window_t panel = openPanel(topStrut(30, 0, 1599));
    EXPECT_TRUE(becomesVisible({0, 0, 1600, 870}));

    client.setCardinals(panel, "_NET_WM_STRUT_PARTIAL", topStrut(50, 0, 1599));
    EXPECT_TRUE(becomesVisible({0, 0, 1600, 850}));

    client.destroy(panel);
    EXPECT_TRUE(becomesVisible({0, 0, 1600, 900}));
}

TEST_F(DisplaysTest, AStrutSetAfterMappingIsNoticed) {
    const xcb_window_t panel = openPanel({});
    EXPECT_EQ(displays.screens().at(0).visibleFrame, (Rect{0, 0, 1600, 900}));

    client.setCardinals(panel, "_NET_WM_STRUT", {0, 0, 0, 40});

    EXPECT_TRUE(becomesVisible({0, 40, 1600, 860}));
}

TEST_F(DisplaysTest, MalformedStrutsNeverHarmTheVisibleFrame) {
    const xcb_window_t panel = openPanel({});
    splitInTwo(); // so that the window manager's work area, which adds up all struts, is not used
    const Rect whole = displays.screens().at(0).frame;
    const std::vector<std::vector<std::uint32_t>> bad = {
        {},
        {1},
        {0, 0, 30},
        {0, 0, 0xFFFFFFFF, 0},
        {0, 0, 0x80000000, 0, 0, 0, 0, 0, 0, 1599, 0, 0},
        {0, 0, 5000, 0, 0, 0, 0, 0, 0, 1599, 0, 0},
        {0, 0, 800, 0, 0, 0, 0, 0, 0, 1599, 0, 0},
        {0, 0, 30, 0, 0, 0, 0, 0, 1599, 0, 0, 0},
        {0, 0, 30, 0, 0, 0, 0, 0, 0, 1599, 0, 0, 0},
    };
    for (const auto& values : bad) {
        client.setCardinals(panel, "_NET_WM_STRUT_PARTIAL", values);
        settle();
        EXPECT_EQ(displays.screens().at(0).visibleFrame, whole);
    }
    client.setProperty(panel, "_NET_WM_STRUT_PARTIAL", "CARDINAL", 8, std::string(48, '\1'));
    client.setProperty(panel, "_NET_WM_STRUT", "ATOM", 32, std::string(16, '\1'));
    settle();
    EXPECT_EQ(displays.screens().at(0).visibleFrame, whole);
}

TEST_F(DisplaysTest, TheWindowManagersAreasPerMonitorTakePrecedence) {
    splitInTwo();
    (void)displays.screens();
    client.setCardinals(observer.root(), "_GTK_WORKAREAS_D0", {900, 20, 700, 880, 0, 10, 900, 790});
    settle();

    const auto screens = displays.screens();
    client.setCardinals(observer.root(), "_GTK_WORKAREAS_D0", {});
    settle();

    ASSERT_EQ(screens.size(), 2U);
    EXPECT_EQ(screens[0].visibleFrame, (Rect{0, 0, 900, 790}));
    EXPECT_EQ(screens[1].visibleFrame, (Rect{900, -100, 700, 880}));
    EXPECT_EQ(displays.screens().at(0).visibleFrame, screens[0].frame);
}

TEST(ReservedSpaceTest, AMalformedPartialStrutFallsBackToTheOldStrut) {
    SharedDesktop& bare = SharedDesktop::withoutManager();
    x11test::TestClient client(bare.server);
    ConnectionDriver driver(bare.server.display());
    ReservedSpaceWatch watch(driver.connection());
    const xcb_window_t panel = client.open();
    client.setCardinals(panel, "_NET_WM_STRUT", {60, 0, 0, 0});
    client.setCardinals(panel, "_NET_WM_STRUT_PARTIAL", {1, 2, 3});
    client.setProperty(bare.observer.root(), "_NET_CLIENT_LIST", "WINDOW", 32,
                       {reinterpret_cast<const char*>(&panel), sizeof(panel)});
    driver.hear();

    EXPECT_EQ(watch.current().struts, (std::vector<Strut>{{Strut::Edge::Left, 60, 0, 65535}}));

    client.setProperty(bare.observer.root(), "_NET_CLIENT_LIST", "WINDOW", 32, "");
    driver.hear();
    EXPECT_TRUE(watch.current().struts.empty());
}

TEST_F(DisplaysTest, TheMainScreenIsThatOfTheActiveWindow) {
    splitInTwo();
    const xcb_window_t window = open();
    writeFrame(elementOf(window), {1000, 100, 300, 200});
    settle();

    EXPECT_EQ(displays.mainScreen(), displays.screens().at(1));
}

TEST_F(DisplaysTest, WithoutAnActiveWindowTheMainScreenIsThatOfThePointer) {
    splitInTwo();
    for (const std::int16_t x : {std::int16_t{100}, std::int16_t{1000}}) {
        xcb_warp_pointer(observer.x().get(), XCB_NONE, observer.root(), 0, 0, 0, 0, x, 50);
        observer.x().roundTrip();
        EXPECT_EQ(displays.mainScreen(), displays.screens().at(x < 900 ? 0 : 1));
    }
}

TEST_F(DisplaysTest, APanelIsStillWatchedAfterItsOtherEventsWereDeselected) {
    const xcb_window_t panel = openPanel(topStrut(30, 0, 1599));
    ASSERT_TRUE(becomesVisible({0, 0, 1600, 870}));
    connection.selectEvents(panel, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    connection.deselectEvents(panel, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    settle();

    EXPECT_GT(eventsDuring([&] { client.setProperty(panel, "NAME", "STRING", 8, "x"); }, XCB_PROPERTY_NOTIFY),
              0);
}

TEST_F(DisplaysTest, ReadingStrutsLeavesOtherEventsSelected) {
    const xcb_window_t window = client.open();
    ASSERT_TRUE(observer.waitUntil([&] { return observer.managed(window); }));
    connection.selectEvents(window, XCB_EVENT_MASK_STRUCTURE_NOTIFY);

    (void)displays.screens();

    EXPECT_GT(eventsDuring([&] { client.moveBack(window, {300, 300, 444, 333}); }, XCB_CONFIGURE_NOTIFY), 0);
    EXPECT_EQ(
        eventsDuring([&] { client.setProperty(window, "NAME", "STRING", 8, "x"); }, XCB_PROPERTY_NOTIFY), 0)
        << "the window is no panel";
}

TEST_F(DisplaysTest, WithoutChangesNoRequestIsSent) {
    (void)displays.screens();
    settle();
    const auto before = connection.roundTrips();

    for (int i = 0; i < 3; ++i)
        (void)displays.screens();

    EXPECT_EQ(connection.roundTrips(), before);
}

} // namespace
} // namespace tessarel::x11
