// SPDX-License-Identifier: MIT

#include "support/x11/window_manager.h"

#include "support/x11/keyboard.h"
#include "support/x11/observer.h"
#include "support/x11/test_client.h"

#include <gtest/gtest.h>

#include <map>

namespace tessarel::x11test {
namespace {

/// A window manager on a private server, shared by all its tests.
struct Stage {
    explicit Stage(WindowManagerKind kind) : server(serverFor(kind)), manager(server, kind) {}

    static Stage& of(WindowManagerKind kind) {
        static std::map<WindowManagerKind, Stage> stages;
        return stages.try_emplace(kind, kind).first->second;
    }

    XServer server;
    WindowManager manager;
    Observer observer{server.display()};
    Keyboard keyboard{server, observer};
};

class WindowManagerTest : public testing::TestWithParam<WindowManagerKind> {
protected:
    ~WindowManagerTest() override {
        client.process().kill();
        EXPECT_TRUE(observer.waitUntil([this] { return observer.clients().empty(); }));
    }

    xcb_window_t openAndWait(const WindowOptions& options = {}) {
        const xcb_window_t window = client.open(options);
        EXPECT_TRUE(observer.waitUntil([&] { return observer.managed(window); }));
        EXPECT_TRUE(observer.settle());
        return window;
    }

    Stage& stage = Stage::of(GetParam());
    Observer& observer = stage.observer;
    Keyboard& keyboard = stage.keyboard;
    TestClient client{stage.server};
};

TEST_P(WindowManagerTest, StartsAndCanMoveWindows) {
    EXPECT_FALSE(observer.windowManagerName().empty());
    EXPECT_TRUE(observer.supports("_NET_CLIENT_LIST"));
    EXPECT_TRUE(stage.manager.process().running());
}

TEST_P(WindowManagerTest, TheOuterFrameIsTheRequestedOne) {
    const xcb_window_t window = openAndWait();
    const Frame wanted{211, 133, 640, 480};

    observer.moveOuterFrame(window, wanted);

    EXPECT_TRUE(observer.waitUntil([&] { return observer.outerFrame(window) == wanted; }));
    ASSERT_TRUE(observer.settle());
    EXPECT_EQ(observer.outerFrame(window), wanted);
    EXPECT_GT(observer.clientFrame(window)->y, wanted.y) << "no title bar";
}

TEST_P(WindowManagerTest, ActivatesTheRequestedWindow) {
    const xcb_window_t first = openAndWait();
    const xcb_window_t second = openAndWait();
    if (GetParam() == WindowManagerKind::Blackbox) {
        // It activates a new window after all else that it does for it.
        ASSERT_TRUE(observer.waitUntil([&] { return observer.activeWindow() == second; }));
    }

    for (const xcb_window_t window : {first, second, first})
        EXPECT_TRUE(observer.activateAndWait(window));
}

TEST_P(WindowManagerTest, LeavesTheDefaultHotKeysFree) {
    for (xcb_keycode_t digit = key::kDigit1; digit < key::kDigit1 + 9; ++digit)
        EXPECT_FALSE(keyboard.held({digit, kControlAlt})) << int{digit};
    for (const xcb_keycode_t named :
         {key::kLeft, key::kRight, key::kUp, key::kDown, key::kReturn, key::kC, key::kBackspace, key::kA})
        EXPECT_FALSE(keyboard.held({named, kControlAlt})) << int{named};
}

TEST_P(WindowManagerTest, LetsPressesOfAGrabbedCombinationThrough) {
    ASSERT_TRUE(client.grabKey({key::kReturn, kControlAlt}));

    keyboard.press({key::kReturn, kControlAlt});

    EXPECT_TRUE(observer.waitUntil([&] { return client.keyPresses() == 1; }));
}

INSTANTIATE_TEST_SUITE_P(Every, WindowManagerTest, testing::ValuesIn(kAllWindowManagers),
                         [](const auto& instance) { return std::string(name(instance.param)); });

} // namespace
} // namespace tessarel::x11test
