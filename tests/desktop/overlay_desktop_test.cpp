// SPDX-License-Identifier: MIT

#include "desktop/overlay_fixture.h"
#include "desktop/pointer_target.h"
#include "platform/qt_x11/overlay/x11_overlay_window.h"
#include "platform/qt_x11/qt_connection.h"
#include "support/x11/keyboard.h"

#include <QtMath>
#include <xcb/shape.h>

#include <algorithm>
#include <cstdlib>
#include <string>

namespace tessarel::qt {
namespace {

using x11test::Frame;
using x11test::PointerTarget;

constexpr Rect kDesktop{0, 0, 1600, 900};
constexpr Rect kLeft{0, 0, 800, 900};
constexpr Rect kRight{800, 0, 800, 900};
const QColor kAccentColor(0x0a, 0x72, 0xe3);
const QColor kWhite(Qt::white);

/// Returns the accent colour at `alpha` over `below`.
QColor tinted(const QColor& below, double alpha) {
    const auto mix = [alpha](int upper, int lower) { return qRound(upper * alpha + lower * (1 - alpha)); };
    return {mix(kAccentColor.red(), below.red()), mix(kAccentColor.green(), below.green()),
            mix(kAccentColor.blue(), below.blue())};
}

/// Returns true if no pixel differs by more than rounding.
bool isSame(const QImage& one, const QImage& other) {
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x)
            if (std::abs(qGray(one.pixel(x, y)) - qGray(other.pixel(x, y))) > 3)
                return false;
    return true;
}

const std::vector<OverlayFigure> kLeftHighlighted = {zoneFigure(kLeft, "1", true), zoneFigure(kRight, "2")};
const std::vector<OverlayFigure> kRightHighlighted = {zoneFigure(kLeft, "1"), zoneFigure(kRight, "2", true)};

/// A white window of another program that comes to the front without the window manager, like a menu.
class Intruder {
public:
    Intruder(x11test::Observer& observer, const Frame& frame)
        : m_x(observer.x()), m_window(xcb_generate_id(m_x.get())) {
        const std::uint32_t values[] = {m_x.screen().white_pixel, 1};
        xcb_create_window(m_x.get(), XCB_COPY_FROM_PARENT, m_window, m_x.root(),
                          static_cast<std::int16_t>(frame.x), static_cast<std::int16_t>(frame.y),
                          static_cast<std::uint16_t>(frame.width), static_cast<std::uint16_t>(frame.height),
                          0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
        m_x.roundTrip();
    }
    Intruder(const Intruder&) = delete;
    Intruder& operator=(const Intruder&) = delete;
    ~Intruder() {
        xcb_destroy_window(m_x.get(), m_window);
        m_x.roundTrip();
    }

    [[nodiscard]] xcb_window_t window() const { return m_window; }
    void map() const {
        xcb_map_window(m_x.get(), m_window);
        raise();
    }
    void unmap() const {
        xcb_unmap_window(m_x.get(), m_window);
        m_x.roundTrip();
    }
    void raise() const { restack(XCB_STACK_MODE_ABOVE); }
    void lower() const { restack(XCB_STACK_MODE_BELOW); }

private:
    void restack(std::uint32_t mode) const {
        xcb_configure_window(m_x.get(), m_window, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
        m_x.roundTrip();
    }

    x11test::XConnection& m_x;
    xcb_window_t m_window;
};

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

    /// Returns true if the overlay is above `other` in the stack of the root window's children.
    [[nodiscard]] bool isInFrontOf(const Intruder& other) {
        xcb_connection_t* const x = observer.x().get();
        const auto tree = x11test::own(xcb_query_tree_reply(x, xcb_query_tree(x, observer.root()), nullptr));
        const xcb_window_t* const all = xcb_query_tree_children(tree.get());
        const xcb_window_t* const end = all + xcb_query_tree_children_length(tree.get());
        return std::find(all, end, surfaceWindow()) > std::find(all, end, other.window());
    }
    [[nodiscard]] bool comesInFrontOf(const Intruder& other) {
        catchUp();
        return isInFrontOf(other);
    }

    /// Returns true if Qt's connection gets events of all children of the root window.
    [[nodiscard]] bool watchesOtherWindows() {
        xcb_connection_t* const qt = qtConnection();
        const auto attributes = x11test::own(
            xcb_get_window_attributes_reply(qt, xcb_get_window_attributes(qt, observer.root()), nullptr));
        return (attributes->your_event_mask & XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY) != 0;
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

TEST_P(OverlayInBothLooksTest, AWindowThatIsMappedInFrontGoesBelowTheOverlay) {
    show(kDesktop, kLeftHighlighted);
    ASSERT_TRUE(leftIsHighlighted());
    const Intruder popUp(observer, {0, 250, 700, 100});

    popUp.map();
    EXPECT_TRUE(comesInFrontOf(popUp));
    EXPECT_TRUE(leftIsHighlighted());
    popUp.raise();
    EXPECT_TRUE(comesInFrontOf(popUp));
    EXPECT_TRUE(leftIsHighlighted());
}

TEST_P(OverlayInBothLooksTest, AWindowThatIsMappedInFrontGoesBelowTheOverlayInEveryDrag) {
    const Intruder popUp(observer, {0, 250, 700, 100});
    for (int drag = 0; drag < 3; ++drag) {
        show(kDesktop, kLeftHighlighted);
        popUp.map();
        EXPECT_TRUE(comesInFrontOf(popUp));
        popUp.unmap();
        hide();
    }
}

TEST_P(OverlayInBothLooksTest, AnotherProgramThatRaisesItselfEachTimeWinsAfterEightTimes) {
    show(kDesktop, kLeftHighlighted);
    ASSERT_TRUE(leftIsHighlighted());
    const Intruder other(observer, {0, 250, 700, 100});
    turn();

    other.map();
    for (int raises = 1; raises < X11OverlayWindow::kMostRaises; ++raises) {
        ASSERT_TRUE(comesInFrontOf(other)) << raises;
        other.raise();
    }
    ASSERT_TRUE(comesInFrontOf(other));
    other.raise();
    turn();
    EXPECT_FALSE(isInFrontOf(other));

    other.lower();
    other.raise(); // a second later
    EXPECT_TRUE(comesInFrontOf(other));
}

TEST_P(OverlayInBothLooksTest, OtherWindowsAreNotWatchedBetweenDrags) {
    show(kDesktop, kLeftHighlighted);
    ASSERT_TRUE(leftIsHighlighted());
    EXPECT_TRUE(watchesOtherWindows());

    hide();

    EXPECT_FALSE(watchesOtherWindows());
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

TEST_P(OverlayInBothLooksTest, TheHighlightedNumberIsReadableWhereCentresCoincide) {
    const OverlayFigure target = zoneFigure({600, 300, 400, 300}, "3", true);
    constexpr QRect kLabels(770, 420, 60, 60);
    show(kDesktop, {zoneFigure(kDesktop), target});
    ASSERT_TRUE(GetParam() ? becomes(650, 350, tinted(tinted(kWhite, 0.1), 0.35))
                           : becomes(606, 350, kAccentColor));
    const QImage number = settledScreen(kLabels);

    for (const auto& zones :
         {std::vector{zoneFigure(kDesktop, "8"), target}, std::vector{target, zoneFigure(kDesktop, "8")}}) {
        change(zones);
        EXPECT_TRUE(waitUntil([&] { return isSame(settledScreen(kLabels), number); }));
    }
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
    const Rect zone{7, 5, 1356, 764}; // covers x 240 to 1596 and y 36 to 800 of the root window
    show({233, 31, 1363, 769}, {zoneFigure(zone, {}, true)});

    if (std::get<1>(GetParam())) {
        const double scale = std::stod(std::get<0>(GetParam()));
        const int inset = qCeil(2 * scale);
        const int wholeHalf = qFloor(1.5 * scale); // of the line, which is three points wide
        const QColor fill = tinted(Qt::black, 0.35);
        const QColor line = tinted(fill, 0.95);
        EXPECT_TRUE(becomes(240 + inset + wholeHalf - 1, 400, line));
        EXPECT_TRUE(becomes(1595 - inset - wholeHalf + 1, 400, line));
        EXPECT_TRUE(becomes(900, 36 + inset + wholeHalf - 1, line));
        EXPECT_TRUE(becomes(900, 799 - inset - wholeHalf + 1, line));
        EXPECT_TRUE(becomes(240 + inset + qCeil(1.5 * scale), 400, fill));
        EXPECT_TRUE(becomes(900, 36 + inset + qCeil(1.5 * scale), fill));
        EXPECT_TRUE(becomes(240 + inset - wholeHalf, 400, tinted(Qt::black, 0.95)));
        const int corner = inset + qFloor(0.75 * scale); // outside the rounded line
        EXPECT_TRUE(becomes(240 + corner, 36 + corner, Qt::black));
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
