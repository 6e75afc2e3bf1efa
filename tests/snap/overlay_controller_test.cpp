// SPDX-License-Identifier: MIT

#include "snap/overlay_controller.h"

#include "snap/snap_test.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

namespace tessarel {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

class OverlayControllerTest : public SnapTest {
protected:
    const OverlayItem left{kLeft, false, "1"};
    const OverlayItem right{kRight, false, "2"};
    const OverlayItem target{kRight, true, "2"};
};

TEST_F(OverlayControllerTest, ThereIsNoWindowBeforeTheFirstShow) {
    EXPECT_EQ(picture.windows, 0);
    overlay.hide();
    EXPECT_EQ(picture.windows, 0);
    EXPECT_EQ(picture.ordersOut, 0);
}

TEST_F(OverlayControllerTest, ShowCoversTheScreenAndDrawsTheItems) {
    overlay.show(geo.screens(), screen, {left, target});

    EXPECT_TRUE(picture.isVisible);
    EXPECT_EQ(picture.screenFrame, screen.frame);
    EXPECT_THAT(shown(), ElementsAre(kLeftShown, kRightShown));
    EXPECT_EQ(labels(), "1[2]");
}

/// An `OverlayPort` that records the order of the calls to it.
class RecordedOverlay : public OverlayPort {
public:
    std::unique_ptr<OverlayWindow> createWindow() override {
        order.emplace_back("make");
        return std::make_unique<Window>(order);
    }
    [[nodiscard]] bool showsOutlines() const override { return false; }

    std::vector<std::string> order;

private:
    class Window : public OverlayWindow {
    public:
        explicit Window(std::vector<std::string>& order) : m_order(order) {}
        void setFrame(const Rect&) override { m_order.emplace_back("frame"); }
        void setFigures(const std::vector<OverlayFigure>&, const std::vector<Rect>&) override {
            m_order.emplace_back("figures");
        }
        void orderFront() override { m_order.emplace_back("front"); }
        void orderOut() override { m_order.emplace_back("out"); }

    private:
        std::vector<std::string>& m_order;
    };
};

TEST_F(OverlayControllerTest, TheOverlayIsSetUpBeforeItIsShown) {
    RecordedOverlay recorded;
    OverlayController controller{recorded};

    controller.show(geo.screens(), screen, {left});
    controller.show(geo.screens(), desktop.displays().screens().front(), {right});
    controller.hide();

    EXPECT_THAT(recorded.order,
                ElementsAre("make", "frame", "figures", "front", "frame", "figures", "front", "out"));
}

TEST_F(OverlayControllerTest, HidingTwiceOrdersTheWindowOutOnce) {
    overlay.show(geo.screens(), screen, {left});
    overlay.hide();
    overlay.hide();

    EXPECT_EQ(picture.ordersOut, 1);
}

TEST_F(OverlayControllerTest, TheWindowIsCreatedOnceAndKept) {
    overlay.show(geo.screens(), screen, {left});
    overlay.hide();
    overlay.show(geo.screens(), screen, {right});

    EXPECT_EQ(picture.windows, 1);
    EXPECT_TRUE(picture.isVisible);
}

TEST_F(OverlayControllerTest, HideOrdersTheWindowOutAndKeepsThePicture) {
    overlay.show(geo.screens(), screen, {left, right});

    overlay.hide();
    EXPECT_FALSE(picture.isVisible);
    EXPECT_EQ(picture.figures.size(), 2U);

    overlay.show(geo.screens(), screen, {left, right});
    EXPECT_TRUE(picture.isVisible);
    EXPECT_EQ(picture.drawings, 1) << "nothing has changed meanwhile";
}

TEST_F(OverlayControllerTest, ShowingTheSameItemsAgainDoesNothing) {
    overlay.show(geo.screens(), screen, {left, target});
    for (int n = 0; n < 100; ++n)
        overlay.show(geo.screens(), screen, {left, target});

    EXPECT_EQ(picture.framesSet, 1);
    EXPECT_EQ(picture.drawings, 1);
    EXPECT_EQ(picture.ordersFront, 1);
}

TEST_F(OverlayControllerTest, EveryShowThatChangesSomethingBringsTheWindowToTheFront) {
    overlay.show(geo.screens(), screen, {left});
    overlay.show(geo.screens(), screen, {right});
    overlay.hide();
    overlay.show(geo.screens(), screen, {right});

    EXPECT_EQ(picture.ordersFront, 3);
}

TEST_F(OverlayControllerTest, OnlyItemsThatLookDifferentAreReportedAsChanged) {
    overlay.show(geo.screens(), screen, {left, right});
    EXPECT_THAT(picture.changed, UnorderedElementsAre(kLeftShown, kRightShown));

    overlay.show(geo.screens(), screen, {left, target});
    EXPECT_THAT(picture.changed, UnorderedElementsAre(kRightShown));
}

TEST_F(OverlayControllerTest, AnItemThatMovesChangesItsOldAndItsNewFrame) {
    overlay.show(geo.screens(), screen, {left});

    overlay.show(geo.screens(), screen, {right});

    EXPECT_THAT(picture.changed, UnorderedElementsAre(kLeftShown, kRightShown));
}

TEST_F(OverlayControllerTest, AddedAndRemovedItemsChangeTheirFrames) {
    overlay.show(geo.screens(), screen, {left});

    overlay.show(geo.screens(), screen, {left, right});
    EXPECT_THAT(picture.changed, UnorderedElementsAre(kRightShown));

    overlay.show(geo.screens(), screen, {left});
    EXPECT_THAT(picture.changed, UnorderedElementsAre(kRightShown));
    EXPECT_EQ(picture.figures.size(), 1U);
}

TEST_F(OverlayControllerTest, WithoutItemsTheWindowIsShownEmpty) {
    overlay.show(geo.screens(), screen, {});
    EXPECT_TRUE(picture.isVisible);
    EXPECT_TRUE(picture.figures.empty());

    overlay.show(geo.screens(), screen, {left});
    overlay.show(geo.screens(), screen, {});
    EXPECT_TRUE(picture.isVisible);
    EXPECT_TRUE(picture.figures.empty());
    EXPECT_THAT(picture.changed, ElementsAre(kLeftShown));
}

TEST_F(OverlayControllerTest, AnotherScreenGivesTheSameWindowAnotherFrame) {
    const Screen second = desktop.addScreen({.frame = {1280, -300, 1920, 1080}});
    overlay.show(geo.screens(), screen, {left});

    overlay.show(geo.screens(), second, {{{1290, 40, 960, 1000}, false, "1"}});

    EXPECT_EQ(picture.windows, 1);
    EXPECT_EQ(picture.screenFrame, (Rect{1280, -300, 1920, 1080}));
    EXPECT_THAT(shown(), ElementsAre(Rect{10, 20, 960, 1000}));
}

TEST_F(OverlayControllerTest, ADisplayThatHasGrownIsCoveredCompletely) {
    overlay.show(geo.screens(), screen, {left});
    Screen larger = screen;
    larger.frame = {screen.frame.x, screen.frame.y - 100, screen.frame.width, screen.frame.height + 100};

    overlay.show(geo.screens(), larger, {left}); // its top-left corner has not moved

    EXPECT_EQ(picture.screenFrame, larger.frame);
    EXPECT_EQ(picture.drawings, 1);
}

TEST_F(OverlayControllerTest, WhileTheOverlayIsShownTheFrameIsSetOnlyWhenItChanges) {
    overlay.show(geo.screens(), screen, {left});
    overlay.show(geo.screens(), screen, {right});
    EXPECT_EQ(picture.framesSet, 1);

    overlay.show(geo.screens(), desktop.displays().screens().front(), {left});
    EXPECT_EQ(picture.framesSet, 2);
}

TEST_F(OverlayControllerTest, TheFrameIsSetAgainWhenTheOverlayIsShownAgain) {
    overlay.show(geo.screens(), screen, {left});
    overlay.hide();

    overlay.show(geo.screens(), screen, {left});

    EXPECT_EQ(picture.framesSet, 2);
}

TEST_F(OverlayControllerTest, AChangedHeightOfThePrimaryDisplayMovesTheOverlayOnOtherScreens) {
    overlay.show(geo.screens(), screen, {left});
    ASSERT_THAT(shown(), ElementsAre(kLeftShown));
    desktop.removeScreen(desktop.displays().screens().front().id); // 800 points high; this one has 900

    overlay.show(geo.screens(), screen, {left});

    EXPECT_THAT(shown(), ElementsAre(Rect{40, -75, 650, 820}));
    EXPECT_EQ(picture.framesSet, 2);
}

} // namespace
} // namespace tessarel
