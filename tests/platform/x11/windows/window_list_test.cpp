// SPDX-License-Identifier: MIT

#include "platform/x11/windows/window_list.h"

#include "platform/x11/x11_fixture.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

namespace tessarel::x11 {
namespace {

constexpr std::uint32_t kOpaque = std::numeric_limits<std::uint32_t>::max();

class WindowListTest : public X11Test {
protected:
    [[nodiscard]] std::vector<ListedWindow> list() {
        settle();
        return windowList.onScreenWindows();
    }

    /// Returns the only listed window; default values unless exactly one window is listed.
    [[nodiscard]] ListedWindow only() {
        const auto all = list();
        EXPECT_EQ(all.size(), 1U);
        return all.size() == 1 ? all.front() : ListedWindow{};
    }

    void moveToDesktop(xcb_window_t window, std::uint32_t desktopNumber) {
        observer.sendToRoot(window, "_NET_WM_DESKTOP", {desktopNumber, 2, 0, 0, 0});
        ASSERT_TRUE(observer.waitUntil([&] {
            return observer.values(window, "_NET_WM_DESKTOP") == std::vector<std::uint32_t>{desktopNumber};
        }));
    }

    /// Overwrites a property of the window manager, until the window manager sets it again.
    void setRootWindows(const std::string& property, const std::vector<xcb_window_t>& windowsThen) {
        xcb_change_property(observer.x().get(), XCB_PROP_MODE_REPLACE, observer.root(),
                            observer.x().atom(property), XCB_ATOM_WINDOW, 32,
                            static_cast<std::uint32_t>(windowsThen.size()), windowsThen.data());
        observer.x().roundTrip();
        connection.flush();
    }

    X11WindowList windowList{connection, monitors, windows};
};

TEST_F(WindowListTest, AnEmptyDesktopListsNothing) {
    EXPECT_TRUE(list().empty());
}

TEST_F(WindowListTest, AWindowIsListedWithItsVisibleFrameAndItsProcess) {
    const xcb_window_t window = open();

    const ListedWindow listed = only();

    EXPECT_EQ(listed.layer, 0);
    EXPECT_EQ(listed.ownerPid, client.pid());
    EXPECT_EQ(listed.axBounds, actualFrame(window));
    EXPECT_EQ(listed.alpha, std::nullopt);
}

TEST_F(WindowListTest, AWindowIsListedWithTheKeyOfItsElement) {
    const xcb_window_t window = open();

    EXPECT_EQ(only().key, accessibility.key(elementOf(window)));
}

TEST_F(WindowListTest, WindowsAreListedFrontToBack) {
    const xcb_window_t first = open({.client = {100, 100, 300, 200}});
    const xcb_window_t second = open({.client = {200, 200, 310, 210}});
    const xcb_window_t third = open({.client = {300, 300, 320, 220}});
    observer.activate(first);
    ASSERT_TRUE(observer.waitUntil([&] { return observer.activeWindow() == first; }));

    const auto all = list();

    ASSERT_EQ(all.size(), 3U);
    EXPECT_EQ(all[0].axBounds, actualFrame(first));
    EXPECT_EQ(all[1].axBounds, actualFrame(third));
    EXPECT_EQ(all[2].axBounds, actualFrame(second));
}

TEST_F(WindowListTest, TheServersStackingOrderOverridesAnOutdatedProperty) {
    const xcb_window_t first = open({.client = {100, 100, 300, 200}});
    const xcb_window_t second = open({.client = {200, 200, 310, 210}});
    const xcb_window_t third = open({.client = {300, 300, 320, 220}});
    settle();
    setRootWindows("_NET_CLIENT_LIST_STACKING", {third, first, second});

    const auto all = windowList.onScreenWindows();

    ASSERT_EQ(all.size(), 3U);
    EXPECT_EQ(all[0].axBounds, actualFrame(third));
    EXPECT_EQ(all[1].axBounds, actualFrame(second));
    EXPECT_EQ(all[2].axBounds, actualFrame(first));
}

TEST_F(WindowListTest, AMinimizedWindowIsNotOnTheScreen) {
    const xcb_window_t window = open();
    observer.iconify(window);
    ASSERT_TRUE(observer.waitUntil([&] { return observer.hasState(window, "_NET_WM_STATE_HIDDEN"); }));

    EXPECT_TRUE(list().empty());
}

TEST_F(WindowListTest, AShadedWindowIsOnTheScreenUntilItIsMinimised) {
    const xcb_window_t window = open();
    observer.changeState(window, x11test::StateChange::Add, "_NET_WM_STATE_SHADED");
    ASSERT_TRUE(observer.waitUntil([&] { return observer.hasState(window, "_NET_WM_STATE_SHADED"); }));
    EXPECT_EQ(list().size(), 1U);

    // openbox ignores WM_CHANGE_STATE for a shaded window.
    observer.changeState(window, x11test::StateChange::Add, "_NET_WM_STATE_HIDDEN");
    ASSERT_TRUE(observer.waitUntil([&] { return observer.hasState(window, "_NET_WM_STATE_HIDDEN"); }));

    EXPECT_TRUE(observer.hasState(window, "_NET_WM_STATE_SHADED"));
    EXPECT_TRUE(observer.waitUntil([&] { return list().empty(); })); // openbox still shows an animation
}

TEST_F(WindowListTest, AWindowOnAnotherDesktopIsNotOnTheScreen) {
    moveToDesktop(open(), 1);

    EXPECT_TRUE(list().empty());
}

TEST_F(WindowListTest, AWindowOnAllDesktopsIsOnTheScreen) {
    moveToDesktop(open(), 0xFFFFFFFF);

    EXPECT_EQ(list().size(), 1U);
}

TEST_F(WindowListTest, AlphaIsTheOpacityFromZeroToOne) {
    const xcb_window_t window = open();

    client.setCardinals(window, "_NET_WM_WINDOW_OPACITY", {kOpaque});
    EXPECT_EQ(only().alpha, 1.0);
    client.setCardinals(window, "_NET_WM_WINDOW_OPACITY", {0});
    EXPECT_EQ(only().alpha, 0.0);
    client.setCardinals(window, "_NET_WM_WINDOW_OPACITY", {kOpaque / 2});
    EXPECT_NEAR(only().alpha.value_or(-1), 0.5, 1e-6);
}

TEST_F(WindowListTest, AMalformedOpacityIsIgnored) {
    const xcb_window_t window = open();

    client.setProperty(window, "_NET_WM_WINDOW_OPACITY", "STRING", 8, "half");
    EXPECT_EQ(only().alpha, std::nullopt);
    client.setCardinals(window, "_NET_WM_WINDOW_OPACITY", {1, 2});
    EXPECT_EQ(only().alpha, std::nullopt);
}

TEST_F(WindowListTest, AUtilityIsAnOrdinaryWindow) {
    (void)open({.type = "_NET_WM_WINDOW_TYPE_UTILITY"});
    EXPECT_EQ(only().layer, 0);
}

TEST_F(WindowListTest, ADialogIsAnOrdinaryWindow) {
    (void)open({.type = "_NET_WM_WINDOW_TYPE_DIALOG"});
    EXPECT_EQ(only().layer, 0);
}

TEST_F(WindowListTest, APanelIsOnAnotherLayer) {
    const xcb_window_t panel = client.open({.type = "_NET_WM_WINDOW_TYPE_DOCK"});
    ASSERT_TRUE(observer.waitUntil([&] { return observer.managed(panel); }));

    EXPECT_NE(only().layer, 0);
}

TEST_F(WindowListTest, ListingManyWindowsTakesTwoRoundTrips) {
    for (int i = 0; i < 9; ++i)
        (void)open();
    settle();
    (void)monitors.primaryOrigin(); // cached until the monitors change
    (void)windows.manager();        // cached until the window manager changes
    const auto before = connection.roundTrips();

    EXPECT_EQ(windowList.onScreenWindows().size(), 9U);

    EXPECT_LE(connection.roundTrips() - before, 2U);
}

TEST_F(WindowListTest, FramesReadByTheListAreCachedForTheWindows) {
    for (int i = 0; i < 3; ++i)
        (void)open();
    settle();
    (void)windowList.onScreenWindows();
    const auto before = connection.roundTrips();

    const auto elements =
        read<std::vector<Element>>(accessibility.application(client.pid()), attribute::kWindows);
    ASSERT_TRUE(elements);
    for (const Element& element : *elements)
        (void)readFrame(element);

    EXPECT_EQ(connection.roundTrips(), before);
}

} // namespace
} // namespace tessarel::x11
