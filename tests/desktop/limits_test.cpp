// SPDX-License-Identifier: MIT

#include "desktop/snap_fixture.h"
#include "desktop/window_kinds.h"

#include <algorithm>

namespace tessarel::x11test {
namespace {

const WindowKind& kindNamed(const std::string& name) {
    const auto& kinds = windowKinds();
    return *std::find_if(kinds.begin(), kinds.end(), [&](const auto& kind) { return kind.name == name; });
}

/// Known limitations of window managers that exclude combinations from PlacementTest. A pager's request shows
/// that the window manager is the limit.
class LimitsTest : public testing::Test {
protected:
    void start(WindowManagerKind kind) {
        observer.reset();
        manager.reset();
        manager.emplace(server, kind);
        observer.emplace(server.display());
    }

    xcb_window_t open(const WindowKind& kind) {
        const xcb_window_t window = client.open(kind.options);
        EXPECT_TRUE(observer->waitUntil([&] { return observer->managed(window); }));
        observer->activate(window);
        EXPECT_TRUE(observer->waitUntil([&] { return observer->activeWindow() == window; }));
        return window;
    }

    XServer server{serverFor(WindowManagerKind::Mutter)};
    std::optional<WindowManager> manager;
    std::optional<Observer> observer;
    TestClient client{server};
};

TEST_F(LimitsTest, MarcoAndIcewmKeepTheShadowOfAClientInsideTheScreen) {
    for (const WindowManagerKind kind : {WindowManagerKind::Marco, WindowManagerKind::Icewm}) {
        start(kind);
        const xcb_window_t window = open(kindNamed("ClientDecorated"));
        const Extents shadow = *kindNamed("ClientDecorated").options.shadow;
        const auto before = observer->clientFrame(window);

        // Requests the visible frame flush with the right edge of the screen, so that the shadow would extend
        // beyond it.
        observer->moveOuterFrame(window, {1600 - 500 + shadow.right, 300, 500, 400});

        ASSERT_TRUE(observer->waitUntil([&] { return observer->clientFrame(window) != before; })) << kind;
        ASSERT_TRUE(observer->settle());
        EXPECT_LE(observer->clientFrame(window)->right(), 1600) << kind;
        client.destroy(window);
    }
}

TEST_F(LimitsTest, MutterAndIcewmUnfocusAWindowThatTheyShade) {
    for (const WindowManagerKind kind : {WindowManagerKind::Mutter, WindowManagerKind::Icewm}) {
        start(kind);
        const xcb_window_t other = open(kindNamed("Plain"));
        const xcb_window_t window = open(kindNamed("Shaded"));

        observer->changeState(window, StateChange::Add, "_NET_WM_STATE_SHADED");

        EXPECT_TRUE(observer->waitUntil([&] { return observer->activeWindow() != window; })) << kind;
        client.destroy(window);
        client.destroy(other);
    }
}

} // namespace
} // namespace tessarel::x11test
