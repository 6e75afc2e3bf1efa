// SPDX-License-Identifier: MIT

#include "platform/plasma/reports.h"

#include <gmock/gmock.h>

#include <string>

namespace tessarel::plasma {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using wayland::DisplayState;
using wayland::Mirror;
using wayland::WindowKind;
using wayland::WindowState;

constexpr const char* kWindow =
    R"({"name":"a","pid":42,"application":"org.example.editor.desktop","class":"editor",
    "frame":[100,50,500,400],"kind":"standard","minimized":false,"fullScreen":false,"onCurrentDesktop":true,
    "opacity":0.5})";
constexpr Rect kFrame{100, 50, 500, 400};

/// A mirror with the window "a" on one display.
class ReportsTest : public testing::Test {
protected:
    ReportsTest() {
        (void)apply(std::string(R"({"event":"everything","active":"a","windows":[)") + kWindow +
                    R"(],"displays":[{"frame":[0,0,1600,900],"usable":[0,40,1600,860]}]})");
    }

    std::optional<Settled> apply(const std::string& text) {
        const auto report = readJson(text);
        EXPECT_TRUE(report) << text;
        const auto settled = applyReport(report.value_or(Json()), mirror);
        mirror.deliver();
        return settled;
    }

    [[nodiscard]] const WindowState* find(const std::string& name) const {
        return mirror.find(mirror.named(name));
    }

    Mirror mirror;
};

TEST_F(ReportsTest, EverythingIsTakenOver) {
    const WindowState expected{.name = "a",
                               .pid = 42,
                               .applicationId = "org.example.editor",
                               .windowClass = "editor",
                               .frame = kFrame,
                               .opacity = 0.5};

    ASSERT_NE(find("a"), nullptr);
    EXPECT_EQ(*find("a"), expected);
    EXPECT_EQ(mirror.active(), mirror.named("a"));
    EXPECT_THAT(mirror.displays(), ElementsAre(DisplayState{{0, 0, 1600, 900}, {0, 40, 1600, 860}}));
}

TEST_F(ReportsTest, AWindowIsUpdatedActivatedRestackedAndRemoved) {
    apply(
        R"({"event":"window","window":{"name":"b","pid":7,"frame":[0,0,10,10],"kind":"dialog","minimized":true}})");
    apply(R"({"event":"active","name":"b"})");
    apply(R"({"event":"order","names":["b","a"]})");
    ASSERT_NE(find("b"), nullptr);
    EXPECT_EQ(find("b")->kind, WindowKind::Dialog);
    EXPECT_TRUE(find("b")->isMinimized);
    EXPECT_EQ(mirror.active(), mirror.named("b"));
    EXPECT_THAT(mirror.frontToBack(), ElementsAre(mirror.named("a"), mirror.named("b")));

    apply(R"({"event":"removed","name":"b"})");
    EXPECT_EQ(find("b"), nullptr);
}

TEST_F(ReportsTest, APlacementHasSettledWithItsSerialAndFrame) {
    const auto settled = apply(R"({"event":"placed","name":"a","serial":9,"frame":[1,2,3,4]})");

    ASSERT_TRUE(settled);
    EXPECT_EQ(settled->window, mirror.named("a"));
    EXPECT_EQ(settled->serial, 9U);
    EXPECT_FALSE(settled->isReplaced);
    EXPECT_EQ(find("a")->frame, (Rect{1, 2, 3, 4}));
}

TEST_F(ReportsTest, AFrameThatAPlacementHasNotChangedIsAnnouncedUnlessTheWindowIsLate) {
    std::vector<Rect> frames;
    const auto changed =
        mirror.onFrameChanged([&](wayland::WindowId, const Rect& frame) { frames.push_back(frame); });

    apply(R"({"event":"frame","name":"a","frame":[1,2,3,4]})");
    apply(R"({"event":"placed","name":"a","serial":1,"late":true,"frame":[1,2,3,4]})");
    apply(R"({"event":"placed","name":"a","serial":2,"frame":[1,2,3,4]})");
    apply(R"({"event":"placed","name":"a","serial":3,"frame":[5,6,7,8]})");
    apply(R"({"event":"placed","name":"unknown","serial":4,"frame":[5,6,7,8]})");
    mirror.deliver();

    EXPECT_THAT(frames, ElementsAre(Rect{1, 2, 3, 4}, Rect{1, 2, 3, 4}, Rect{5, 6, 7, 8}));
}

TEST_F(ReportsTest, APlacementThatAnotherRequestHasReplacedIsOver) {
    const auto settled = apply(R"({"event":"replaced","name":"a","serial":9})");

    ASSERT_TRUE(settled);
    EXPECT_EQ(settled->window, mirror.named("a"));
    EXPECT_EQ(settled->serial, 9U);
    EXPECT_TRUE(settled->isReplaced);
    EXPECT_EQ(find("a")->frame, kFrame);
}

TEST_F(ReportsTest, EveryPhaseOfAMoveIsReported) {
    std::vector<wayland::UserMove::Phase> phases;
    const auto moved = mirror.onMove([&](const wayland::UserMove& move) { phases.push_back(move.phase); });
    for (const char* const event : {"moveStarted", "moveStepped", "moveCancelled", "moveFinished"})
        apply(std::string(R"({"event":")") + event +
              R"(","name":"a","move":true,"pointer":[5,6],"frame":[1,2,3,4]})");

    using enum wayland::UserMove::Phase;
    EXPECT_THAT(phases, ElementsAre(Started, Stepped, Cancelled, Finished));
}

TEST_F(ReportsTest, ReportsThatAreNoneChangeNothing) {
    for (const char* const text :
         {"[]", "7", "null", "\"everything\"", "{}", R"({"event":7})", R"({"event":"everything"})",
          R"({"event":"everything","windows":{},"displays":[]})", R"({"event":"everything","windows":[]})",
          R"({"event":"unknown","name":"a"})", R"({"event":"removed"})",
          R"({"event":"removed","name":["a"]})", R"({"event":"removed","name":"b"})", R"({"event":"order"})",
          R"({"event":"order","names":[7,null,{}]})", R"({"event":"displays"})",
          R"({"event":"displays","displays":{"frame":[0,0,1,1]}})", R"({"event":"window"})",
          R"({"event":"window","window":[]})"})
        EXPECT_FALSE(apply(text)) << text;

    ASSERT_NE(find("a"), nullptr);
    EXPECT_EQ(find("a")->frame, kFrame);
    EXPECT_EQ(mirror.active(), mirror.named("a"));
    EXPECT_EQ(mirror.frontToBack().size(), 1U);
    EXPECT_EQ(mirror.displays().size(), 1U);
}

TEST_F(ReportsTest, FramesThatNoDesktopHasAreIgnored) {
    for (const char* const frame :
         {"7", "null", "[]", "[1,2,3]", "[1,2,3,4,5]", "[1,2,3,\"4\"]", "[1,2,null,4]", "[1,2,-3,4]",
          "[1e300,2,3,4]", "[-1e300,2,3,4]", "[1,2,1e999,4]", "[1,2,3,[4]]", "{\"x\":1}"}) {
        apply(std::string(R"({"event":"frame","name":"a","frame":)") + frame + "}");
        apply(std::string(R"({"event":"placed","name":"a","serial":1,"frame":)") + frame + "}");
        apply(std::string(R"({"event":"moveStepped","name":"a","move":true,"pointer":[1,1],"frame":)") +
              frame + "}");
        apply(std::string(R"({"event":"window","window":{"name":"b","pid":7,"frame":)") + frame + "}}");
        EXPECT_EQ(find("a")->frame, kFrame) << frame;
        EXPECT_EQ(find("b"), nullptr) << frame;
    }
}

TEST_F(ReportsTest, AMoveWithoutAPointerIsIgnored) {
    int moves = 0;
    const auto moved = mirror.onMove([&](const wayland::UserMove&) { ++moves; });
    for (const char* const pointer : {"null", "[]", "[1]", "[1,2,3]", "[1,\"2\"]", "[1e300,0]"})
        apply(std::string(R"({"event":"moveStepped","name":"a","move":true,"frame":[1,2,3,4],"pointer":)") +
              pointer + "}");

    EXPECT_EQ(moves, 0);
    EXPECT_EQ(find("a")->frame, kFrame);
}

TEST_F(ReportsTest, OfSeveralWindowsAndDisplaysOnlyTheBrokenOnesAreLeftOut) {
    apply(std::string(R"({"event":"everything","active":7,"windows":[7,null,{},{"name":""},{"name":"c"},)") +
          kWindow + R"(],"displays":[null,{"frame":[0,0,0,900]},{"frame":[0,0,800,600],"usable":"?"},[]]})");

    EXPECT_THAT(mirror.frontToBack(), ElementsAre(mirror.named("a")));
    EXPECT_THAT(mirror.displays(), ElementsAre(DisplayState{{0, 0, 800, 600}, {0, 0, 800, 600}}));
    EXPECT_EQ(mirror.active(), wayland::kNoWindow);
}

TEST_F(ReportsTest, OddMembersOfAWindowCountAsMissing) {
    apply(
        R"({"event":"window","window":{"name":"b","pid":1e300,"application":7,"class":null,"frame":[0,0,10,10],
        "kind":[],"minimized":1,"fullScreen":"true","onCurrentDesktop":null,"opacity":"0.5"}})");

    ASSERT_NE(find("b"), nullptr);
    EXPECT_EQ(*find("b"), (WindowState{.name = "b",
                                       .pid = find("b")->pid,
                                       .applicationId = {},
                                       .windowClass = {},
                                       .frame = {0, 0, 10, 10},
                                       .kind = WindowKind::Other,
                                       .isOnCurrentDesktop = false,
                                       .opacity = 1}));
}

TEST_F(ReportsTest, AProcessIdThatIsNoneIsUnknown) {
    constexpr ProcessId kHighestProcess = 1 << 22; // of the kernel
    for (const char* const pid :
         {"-1", "2147483648", "18446744073709551615", "1.5", "1e999", "\"42\"", "true"}) {
        apply(std::string(R"({"event":"window","window":{"name":"b","frame":[0,0,10,10],"pid":)") + pid +
              "}}");
        ASSERT_NE(find("b"), nullptr);
        EXPECT_GT(find("b")->pid, kHighestProcess) << pid; // made up by the mirror
    }
}

TEST_F(ReportsTest, ASerialThatIsNoneIsZero) {
    for (const char* const serial : {"-1", "1.5", "1e300", "\"9\"", "null"}) {
        const auto settled =
            apply(std::string(R"({"event":"placed","name":"a","frame":[1,2,3,4],"serial":)") + serial + "}");
        ASSERT_TRUE(settled);
        EXPECT_EQ(settled->serial, 0U) << serial;
    }
}

TEST_F(ReportsTest, HostileNamesAreOrdinaryNames) {
    const std::string name = std::string(100000, 'x') + "\\u0001\\\"{}";
    apply(R"({"event":"window","window":{"name":")" + name + R"(","pid":7,"frame":[0,0,10,10]}})");
    EXPECT_EQ(mirror.frontToBack().size(), 2U);

    apply(R"({"event":"removed","name":")" + name + R"("})");
    EXPECT_EQ(mirror.frontToBack().size(), 1U);
}

} // namespace
} // namespace tessarel::plasma
