#include "desktop/overlay_fixture.h"
#include "desktop/pointer_target.h"
#include "support/x11/keyboard.h"

#include <xcb/shape.h>

#include <algorithm>
#include <string>

namespace tessarel::qt {
namespace {

using x11test::Frame;
using x11test::PointerTarget;

constexpr Rect kDesktop{0, 0, 1600, 900};
constexpr Rect kLeft{0, 0, 800, 900};
constexpr Rect kRight{800, 0, 800, 900};
const QColor kAccentColor(0x0a, 0x84, 0xff);
const QColor kWhite(Qt::white);

/// Returns the accent colour at `alpha` over `below`.
QColor tinted(const QColor& below, double alpha) {
    const auto mix = [alpha](int upper, int lower) { return qRound(upper * alpha + lower * (1 - alpha)); };
    return {mix(0x0a, below.red()), mix(0x84, below.green()), mix(0xff, below.blue())};
}

const std::vector<OverlayFigure> kLeftHighlighted = {zoneFigure(kLeft, "1", true), zoneFigure(kRight, "2")};
const std::vector<OverlayFigure> kRightHighlighted = {zoneFigure(kLeft, "1"), zoneFigure(kRight, "2", true)};

/// Tests that run with the translucent look (with a compositor) and the outlined look.
class OverlayInBothLooksTest : public OverlayDesktopTest, public testing::WithParamInterface<bool> {
protected:
    void SetUp() override {
        if (GetParam())
            startCompositor();
        target.emplace(server(), observer, Frame{100, 100, 1400, 700});
        ASSERT_TRUE(waitUntil([&] { return observer.managed(target->window()); }));
        observer.activate(target->window());
        ASSERT_TRUE(waitUntil([&] { return observer.activeWindow() == target->window(); }));
        ASSERT_TRUE(observer.settle());
        ASSERT_TRUE(becomes(400, 300, kWhite)); // a compositor paints with a delay
    }

    void TearDown() override {
        target.reset();
        EXPECT_TRUE(waitUntil([&] { return observer.clients().empty(); }));
    }

    /// Waits for a pixel of the highlighted zone's fill (translucent look) or outline (outlined look).
    [[nodiscard]] testing::AssertionResult leftIsHighlighted() {
        return GetParam() ? becomes(400, 300, tinted(kWhite, 0.35)) : becomes(6, 300, kAccentColor);
    }

    std::optional<PointerTarget> target;
};

INSTANTIATE_TEST_SUITE_P(, OverlayInBothLooksTest, testing::Bool(), [](const auto& look) {
    return std::string(look.param ? "Translucent" : "Outlined");
});

TEST_P(OverlayInBothLooksTest, EveryClickGoesToTheWindowBelow) {
    show(kDesktop, kLeftHighlighted);
    ASSERT_TRUE(leftIsHighlighted());

    target->click(400, 450); // on the label
    target->click(801, 300); // between the zones
    target->click(804, 300); // on a line

    EXPECT_TRUE(waitUntil([&] { return target->clicks() == 3; }));
}

TEST_P(OverlayInBothLooksTest, TheFocusAndTheKeysStayWithTheWindowBelow) {
    const int before = target->focusLosses();

    show(kDesktop, kLeftHighlighted);
    ASSERT_TRUE(leftIsHighlighted());
    change(kRightHighlighted);
    target->press(x11test::key::kA);

    EXPECT_TRUE(waitUntil([&] { return target->keys() == 1; }));
    EXPECT_EQ(target->focusLosses(), before);
    EXPECT_EQ(observer.activeWindow(), target->window());
}

TEST_P(OverlayInBothLooksTest, ARaisedWindowStaysBelowTheOverlay) {
    show(kDesktop, kLeftHighlighted);
    ASSERT_TRUE(leftIsHighlighted());

    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(observer.x().get(), target->window(), XCB_CONFIG_WINDOW_STACK_MODE, &above);
    observer.activate(target->window());
    ASSERT_TRUE(observer.settle());

    EXPECT_TRUE(leftIsHighlighted());
    EXPECT_TRUE(GetParam() || becomes(797, 300, kWhite));
}

TEST_P(OverlayInBothLooksTest, TheWindowManagerDoesNotListTheOverlay) {
    show(kDesktop, kLeftHighlighted);
    ASSERT_TRUE(leftIsHighlighted());
    ASSERT_TRUE(observer.settle());

    EXPECT_EQ(observer.clients(), std::vector<xcb_window_t>{target->window()});
}

TEST_P(OverlayInBothLooksTest, HidingTheOverlayRestoresTheDesktop) {
    const QColor zone = screenPixel(400, 300);
    const QColor line = screenPixel(6, 300);
    show(kDesktop, kLeftHighlighted);
    ASSERT_TRUE(leftIsHighlighted());

    hide();

    EXPECT_EQ(surface(), nullptr);
    EXPECT_TRUE(becomes(400, 300, zone));
    EXPECT_TRUE(becomes(6, 300, line));
}

TEST_P(OverlayInBothLooksTest, AMovedHighlightLeavesNothingBehind) {
    show(kDesktop, kLeftHighlighted);
    ASSERT_TRUE(leftIsHighlighted());

    change(kRightHighlighted);

    EXPECT_TRUE(GetParam() ? becomes(1200, 300, tinted(kWhite, 0.35)) : becomes(806, 300, kAccentColor));
    for (int y = 300; y < 320; ++y)
        EXPECT_TRUE(becomes(400, y, GetParam() ? tinted(kWhite, 0.1) : kWhite));

    change({});
    for (int y = 300; y < 320; ++y)
        EXPECT_TRUE(becomes(400, y, kWhite));
    EXPECT_TRUE(becomes(400, 450, kWhite));
}

TEST_P(OverlayInBothLooksTest, AHundredDragsLeaveNothingBehind) {
    const QColor line = screenPixel(6, 300);
    for (int drag = 0; drag < 100; ++drag) {
        show(kDesktop, drag % 2 == 0 ? kLeftHighlighted : kRightHighlighted);
        hide();
    }

    EXPECT_TRUE(becomes(400, 300, kWhite));
    EXPECT_TRUE(becomes(6, 300, line));
}

TEST_F(OverlayDesktopTest, TheOutlinedWindowIsShapedLikeItsLinesAndTakesNoInput) {
    show(kDesktop, {zoneFigure({100, 100, 300, 200}, "1")});

    const auto shape = [&](xcb_shape_sk_t kind) {
        const auto cookie = xcb_shape_get_rectangles(observer.x().get(), surfaceWindow(), kind);
        const auto reply = x11test::own(xcb_shape_get_rectangles_reply(observer.x().get(), cookie, nullptr));
        QRegion region;
        for (int i = 0; i < xcb_shape_get_rectangles_rectangles_length(reply.get()); ++i) {
            const auto& rect = xcb_shape_get_rectangles_rectangles(reply.get())[i];
            region += QRect(rect.x, rect.y, rect.width, rect.height);
        }
        return region;
    };
    const QRegion ring = QRegion(102, 102, 296, 196) - QRegion(105, 105, 290, 190);
    EXPECT_EQ(shape(XCB_SHAPE_SK_BOUNDING), ring + QRegion(228, 178, 44, 44));
    EXPECT_TRUE(shape(XCB_SHAPE_SK_INPUT).isEmpty());
}

TEST_F(OverlayDesktopTest, TheLookFollowsACompositorStartedAndStoppedBetweenDrags) {
    for (int round = 0; round < 2; ++round) {
        show(kDesktop, kLeftHighlighted);
        EXPECT_EQ(surface()->kind(), X11OverlayWidget::Kind::Outlined);
        EXPECT_TRUE(becomes(6, 300, kAccentColor));
        hide();

        startCompositor();
        show(kDesktop, kLeftHighlighted);
        EXPECT_EQ(surface()->kind(), X11OverlayWidget::Kind::Translucent);
        EXPECT_TRUE(becomes(400, 300, tinted(Qt::black, 0.35)));
        hide();
        stopCompositor();
    }
}

TEST_F(OverlayDesktopTest, TheOutlinesReplaceTheFillWhenTheCompositorEndsDuringADrag) {
    startCompositor();
    show(kDesktop, kLeftHighlighted);
    ASSERT_TRUE(becomes(400, 300, tinted(Qt::black, 0.35)));

    stopCompositor();

    EXPECT_TRUE(becomes(6, 300, kAccentColor));
    EXPECT_EQ(surface()->kind(), X11OverlayWidget::Kind::Outlined);
    change(kRightHighlighted);
    EXPECT_TRUE(becomes(806, 300, kAccentColor));
    hide();
    EXPECT_EQ(surface(), nullptr);
}

TEST_F(OverlayDesktopTest, ACompositorStartedDuringADragDoesNotChangeTheLook) {
    show(kDesktop, kLeftHighlighted);
    ASSERT_TRUE(becomes(6, 300, kAccentColor));

    startCompositor();
    change(kRightHighlighted);

    EXPECT_TRUE(becomes(806, 300, kAccentColor));
    EXPECT_EQ(surface()->kind(), X11OverlayWidget::Kind::Outlined);
}

TEST_F(OverlayDesktopTest, TheOverlayMovesFromScreenToScreen) {
    server().setMonitors({{.name = "L", .x = 0, .y = 0, .width = 700, .height = 500, .primary = false},
                          {.name = "R", .x = 700, .y = 100, .width = 900, .height = 800, .primary = true}});
    turn();
    show({700, 100, 900, 800}, {zoneFigure({0, 0, 900, 800}, "1", true)});
    EXPECT_TRUE(becomes(706, 500, kAccentColor));

    show({0, 0, 700, 500}, {zoneFigure({0, 0, 700, 500}, "1", true)});

    EXPECT_TRUE(becomes(694, 250, kAccentColor));
    EXPECT_TRUE(becomes(706, 500, Qt::black));
    EXPECT_EQ(observer.clientFrame(surfaceWindow()), (Frame{0, 0, 700, 500}));
}

TEST_F(OverlayDesktopTest, TheOverlayWorksAfterItsScreenWasRemoved) {
    server().setMonitors({{.name = "L", .x = 0, .y = 0, .width = 700, .height = 900, .primary = true},
                          {.name = "R", .x = 700, .y = 0, .width = 900, .height = 900, .primary = false}});
    turn();
    show({700, 0, 900, 900}, {zoneFigure({0, 0, 900, 900}, "1", true)});
    ASSERT_TRUE(becomes(706, 500, kAccentColor));

    server().setMonitors({{.name = "L", .x = 0, .y = 0, .width = 700, .height = 900, .primary = true}});
    turn();
    change({zoneFigure({0, 0, 900, 900}, "1")});
    hide();
    EXPECT_EQ(surface(), nullptr);
    EXPECT_TRUE(becomes(706, 500, Qt::black));

    show({0, 0, 700, 900}, {zoneFigure({0, 0, 700, 900}, "1", true)});
    EXPECT_TRUE(becomes(6, 500, kAccentColor));
}

/// Every scale factor in both looks, on a display of odd size that is not at the corner of the desktop.
class OverlayScaleTest : public OverlayDesktopTest,
                         public testing::WithParamInterface<std::tuple<const char*, bool>> {
protected:
    OverlayScaleTest() : OverlayDesktopTest(std::get<0>(GetParam())) {}

    void SetUp() override {
        server().setMonitors(
            {{.name = "L", .x = 0, .y = 0, .width = 233, .height = 900, .primary = true},
             {.name = "R", .x = 233, .y = 31, .width = 1363, .height = 769, .primary = false}});
        if (std::get<1>(GetParam()))
            startCompositor();
        turn();
    }
};

INSTANTIATE_TEST_SUITE_P(, OverlayScaleTest,
                         testing::Combine(testing::Values("1", "1.25", "1.5", "1.75", "2", "3"),
                                          testing::Bool()));

TEST_P(OverlayScaleTest, FiguresCoverTheExactPixelsOfTheirZones) {
    const Rect zone{7, 5, 1356, 764}; // its shape covers x 242 to 1594 and y 38 to 798 of the root window
    show({233, 31, 1363, 769}, {zoneFigure(zone, {}, true)});

    if (std::get<1>(GetParam())) {
        const QColor line = tinted(tinted(Qt::black, 0.35), 0.95);
        EXPECT_TRUE(becomes(242, 400, line));
        EXPECT_TRUE(becomes(1593, 400, line));
        EXPECT_TRUE(becomes(900, 38, line));
        EXPECT_TRUE(becomes(900, 797, line));
    } else {
        EXPECT_TRUE(becomes(242, 400, kWhite));
        EXPECT_TRUE(becomes(1593, 400, kWhite));
        EXPECT_TRUE(becomes(900, 38, kWhite));
        EXPECT_TRUE(becomes(900, 797, kWhite));
    }
    EXPECT_TRUE(becomes(239, 400, Qt::black));
    EXPECT_TRUE(becomes(1596, 400, Qt::black));
    EXPECT_TRUE(becomes(900, 35, Qt::black));
    EXPECT_TRUE(becomes(900, 800, Qt::black));
}

TEST_P(OverlayScaleTest, RepaintingGivesTheSamePixelsAsTheFirstShow) {
    const std::vector<OverlayFigure> zones = {zoneFigure({3, 3, 677, 761}, "1"),
                                              zoneFigure({683, 3, 677, 761}, "2", true)};
    const std::vector<OverlayFigure> others = {zoneFigure({3, 3, 677, 761}, "1", true),
                                               zoneFigure({391, 77, 501, 333}, "7"), zones.back()};
    constexpr QRect kAll(0, 0, 1600, 900);
    const QImage empty = settledScreen(kAll);
    show({233, 31, 1363, 769}, zones);
    ASSERT_TRUE(waitUntil([&] { return screenPixel(920, 400) != QColor(Qt::black); }));
    const QImage fresh = settledScreen(kAll);

    change(others);
    change(zones);

    EXPECT_TRUE(waitUntil([&] { return screen(kAll) == fresh; }));
    change({});
    EXPECT_TRUE(waitUntil([&] { return screen(kAll) == empty; }));
}

} // namespace
} // namespace tessarel::qt
