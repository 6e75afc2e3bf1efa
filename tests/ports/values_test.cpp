// SPDX-License-Identifier: MIT

#include "ports/desktop/displays_port.h"
#include "ports/desktop/hot_key_port.h"
#include "ports/desktop/local_keys_port.h"
#include "ports/desktop/mouse_port.h"
#include "ports/desktop/overlay_port.h"
#include "ports/desktop/rect.h"
#include "ports/desktop/workspace_port.h"
#include "ports/login_item_port.h"
#include "ports/main_menu_port.h"
#include "ports/main_queue_port.h"
#include "ports/menu.h"
#include "ports/url_loading_port.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

namespace tessarel {
namespace {

TEST(ValuesTest, RectanglesPointsAndSizesAreZeroByDefault) {
    EXPECT_EQ(Point{}, (Point{0, 0}));
    EXPECT_EQ(Size{}, (Size{0, 0}));
    EXPECT_EQ(Rect{}, (Rect{0, 0, 0, 0}));
    EXPECT_EQ(Screen{}, (Screen{0, {0, 0, 0, 0}, {0, 0, 0, 0}}));
}

TEST(ValuesTest, KeysHaveNoModifiersByDefault) {
    EXPECT_EQ(HotKeyRequest{}, (HotKeyRequest{0, 0, {0, 0}}));
    EXPECT_EQ(KeyDown{}, (KeyDown{std::nullopt, 0}));
}

TEST(ValuesTest, AMouseEventIsALeftPressWithoutModifiersByDefault) {
    EXPECT_EQ(MouseEvent{}, (MouseEvent{MouseEventKind::LeftDown, {0, 0}, 0}));
}

TEST(ValuesTest, ModifierFlagsHaveTheBitsOfAppKit) {
    EXPECT_EQ(kShiftFlag, 0x20000U);
    EXPECT_EQ(kControlFlag, 0x40000U);
    EXPECT_EQ(kOptionFlag, 0x80000U);
    EXPECT_EQ(kCommandFlag, 0x100000U);
}

TEST(ValuesTest, AnOverlayFigureIsInvisibleByDefault) {
    EXPECT_EQ(OverlayLabel{}, (OverlayLabel{"", {0, 0}, 0, 0, 0}));
    EXPECT_EQ(OverlayFigure{}, (OverlayFigure{{}, {}, 0, 0, 0, 0, OverlayLabel{}, false}));
}

TEST(ValuesTest, AMenuItemIsEnabledAndHasNoCommandByDefault) {
    EXPECT_EQ(MenuItem{}, (MenuItem{"", MenuCommand::None, 0, true, false, false, "", {}}));
    EXPECT_EQ(MenuItem::separator(), (MenuItem{"", MenuCommand::None, 0, true, false, true, "", {}}));
    EXPECT_EQ(MainMenuItem{}, (MainMenuItem{"", "", 0, false})) << "a separator without a key equivalent";
}

TEST(ValuesTest, ARunningApplicationIsRegularByDefault) {
    EXPECT_EQ(RunningApplication{}, (RunningApplication{0, std::nullopt, true}));
}

TEST(ValuesTest, UrlRequestsAndResponsesAreZeroByDefault) {
    EXPECT_EQ(UrlRequest{}, (UrlRequest{"", "", std::chrono::milliseconds(0), 0}));
    EXPECT_EQ(UrlResponse{}, (UrlResponse{0, std::nullopt}));
}

TEST(ValuesTest, LoginItemStatusHasTheValuesOfSMAppService) {
    using Status = LoginItemPort::Status;

    EXPECT_EQ(static_cast<int>(Status::NotRegistered), 0);
    EXPECT_EQ(static_cast<int>(Status::Enabled), 1);
    EXPECT_EQ(static_cast<int>(Status::RequiresApproval), 2);
    EXPECT_EQ(static_cast<int>(Status::NotFound), 3);
}

TEST(ValuesTest, AsyncPassesWorkOnWithZeroDelay) {
    struct Queue : MainQueuePort {
        TimePoint now() override { return {}; }
        SubscriptionPtr asyncAfter(Duration delay, std::function<void()> work) override {
            delays.push_back(delay);
            work();
            return nullptr;
        }
        std::vector<Duration> delays;
    };
    Queue queue;
    int runs = 0;

    (void)queue.async([&] { ++runs; });

    EXPECT_EQ(queue.delays, (std::vector{MainQueuePort::Duration::zero()}));
    EXPECT_EQ(runs, 1);
}

} // namespace
} // namespace tessarel
