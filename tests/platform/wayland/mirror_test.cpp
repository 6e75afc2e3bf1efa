// SPDX-License-Identifier: MIT

#include "platform/wayland/mirror.h"

#include <gmock/gmock.h>

#include <utility>

namespace tessarel::wayland {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Rect kLeft{0, 0, 1600, 900};
constexpr Rect kRight{1600, 0, 1280, 1024};
constexpr Rect kFrame{100, 100, 500, 400};
constexpr Rect kOther{300, 200, 600, 500};

WindowState window(const std::string& name, const Rect& frame = kFrame) {
    return {.name = name,
            .pid = 42,
            .applicationId = "org.example.editor",
            .windowClass = "editor",
            .frame = frame};
}

/// A mirror that knows the windows "a" and "b", with "b" in front and active.
class MirrorTest : public testing::Test {
protected:
    MirrorTest() {
        mirror.reset({.windows = {window("a"), window("b")}, .active = "b", .displays = {{kLeft, kLeft}}});
        mirror.deliver();
    }

    [[nodiscard]] std::vector<std::string> namesFrontToBack() const {
        std::vector<std::string> names;
        for (const WindowId id : mirror.frontToBack())
            names.push_back(mirror.find(id)->name);
        return names;
    }

    Mirror mirror;
};

TEST(NewMirrorTest, KnowsNothingBeforeTheFirstSnapshot) {
    const Mirror mirror;

    EXPECT_FALSE(mirror.isReady());
    EXPECT_THAT(mirror.frontToBack(), IsEmpty());
    EXPECT_THAT(mirror.displays(), IsEmpty());
    EXPECT_EQ(mirror.primary(), Rect());
    EXPECT_EQ(mirror.active(), kNoWindow);
    EXPECT_EQ(mirror.find(kNoWindow), nullptr);
}

TEST(NewMirrorTest, TheFirstSnapshotIsReadyAndItsWindowsAreOpenAlready) {
    Mirror mirror;
    int opened = 0;
    int ready = 0;
    const auto openings = mirror.onOpened([&](WindowId) { ++opened; });
    const auto readiness = mirror.onReady([&] { ++ready; });

    mirror.reset({.windows = {window("a")}, .active = "a", .displays = {{kLeft, kLeft}}});
    EXPECT_EQ(ready, 0); // signals wait for `deliver`
    mirror.deliver();
    mirror.reset({.windows = {window("a")}, .active = "a", .displays = {{kLeft, kLeft}}});
    mirror.deliver();

    EXPECT_TRUE(mirror.isReady());
    EXPECT_EQ(ready, 1);
    EXPECT_EQ(opened, 0);
}

TEST_F(MirrorTest, OfDisplaysThatShowTheSameOnlyTheFirstIsKnown) {
    constexpr Rect kCorner{0, 0, 640, 480};
    constexpr Rect kOverlapping{1500, 0, 800, 600};
    mirror.setDisplays(
        {{kLeft, kLeft}, {kLeft, kLeft}, {kCorner, kCorner}, {kRight, kRight}, {kOverlapping, kOverlapping}});

    EXPECT_THAT(mirror.displays(), ElementsAre(DisplayState{kLeft, kLeft}, DisplayState{kRight, kRight},
                                               DisplayState{kOverlapping, kOverlapping}));

    mirror.setDisplays({{kCorner, kCorner}, {kLeft, kLeft}});
    EXPECT_THAT(mirror.displays(), ElementsAre(DisplayState{kCorner, kCorner}));
}

TEST_F(MirrorTest, AWindowOfAnUnknownProcessKeepsOneOfItsOwnUntilItIsKnown) {
    for (const char* const name : {"c", "d"}) {
        WindowState state = window(name);
        state.pid = 0;
        mirror.update(state);
    }
    const ProcessId standIn = mirror.find(mirror.named("c"))->pid;
    EXPECT_GT(standIn, 1 << 22); // the kernel has none
    EXPECT_NE(standIn, mirror.find(mirror.named("d"))->pid);

    WindowState changed = window("c", kOther);
    changed.pid = 0;
    mirror.update(changed);
    EXPECT_EQ(mirror.find(mirror.named("c"))->pid, standIn);
    mirror.update(window("c"));
    EXPECT_EQ(mirror.find(mirror.named("c"))->pid, 42);
}

TEST_F(MirrorTest, ASnapshotGivesOrderActiveWindowAndDisplays) {
    EXPECT_THAT(namesFrontToBack(), ElementsAre("b", "a"));
    EXPECT_EQ(mirror.active(), mirror.named("b"));
    EXPECT_EQ(mirror.primary(), kLeft);
}

TEST_F(MirrorTest, AReplacementIsAnnouncedBetweenTheFramesBeforeAndAfterIt) {
    std::vector<std::string> notices;
    const auto changes = mirror.onFrameChanged([&](WindowId, const Rect&) { notices.emplace_back("frame"); });
    const auto replacements = mirror.onReplaced(
        [&](WindowId window) { notices.push_back("replaced " + mirror.find(window)->name); });

    mirror.setFrame("a", kOther);
    mirror.replace(mirror.named("a"));
    mirror.setFrame("a", kFrame);
    EXPECT_THAT(notices, IsEmpty());
    mirror.deliver();

    EXPECT_THAT(notices, ElementsAre("frame", "replaced a", "frame"));
}

TEST_F(MirrorTest, AnUnknownIdOrNameIsNoWindow) {
    EXPECT_EQ(mirror.named("c"), kNoWindow);
    EXPECT_EQ(mirror.named(""), kNoWindow);
    EXPECT_EQ(mirror.find(kNoWindow), nullptr);
    EXPECT_EQ(mirror.find(999), nullptr);
}

TEST_F(MirrorTest, EventsOfUnknownWindowsChangeNothing) {
    std::vector<UserMove> moves;
    int others = 0;
    const auto moved = mirror.onMove([&](const UserMove& move) { moves.push_back(move); });
    const auto changed = mirror.onFrameChanged([&](WindowId, const Rect&) { ++others; });
    const auto closed = mirror.onClosed([&](WindowId, const WindowState&) { ++others; });

    mirror.setFrame("c", kOther);
    mirror.move(UserMove::Phase::Started, "c", true, {5, 5}, kOther);
    mirror.remove("c");
    mirror.restack({"c", "b", "", "a", "c"});
    mirror.deliver();

    EXPECT_THAT(namesFrontToBack(), ElementsAre("a", "b"));
    EXPECT_THAT(moves, IsEmpty());
    EXPECT_EQ(others, 0);
}

TEST_F(MirrorTest, AFrameReportedAfterAMoveStaysWhenTheMoveIsDelivered) {
    mirror.move(UserMove::Phase::Finished, "a", true, {150, 110}, kOther);
    mirror.setFrame("a", kFrame);
    mirror.deliver();

    EXPECT_EQ(mirror.find(mirror.named("a"))->frame, kFrame);
}

TEST_F(MirrorTest, ANewWindowIsInFrontAndReportedOnce) {
    std::vector<WindowId> opened;
    const auto openings = mirror.onOpened([&](WindowId id) { opened.push_back(id); });

    mirror.update(window("c"));
    mirror.update(window("c"));
    mirror.deliver();

    EXPECT_THAT(opened, ElementsAre(mirror.named("c")));
    EXPECT_THAT(namesFrontToBack(), ElementsAre("c", "b", "a"));
}

TEST_F(MirrorTest, AnUpdateReplacesTheStateAndReportsOnlyAChangedFrame) {
    std::vector<std::pair<WindowId, Rect>> changes;
    const auto changed =
        mirror.onFrameChanged([&](WindowId id, const Rect& frame) { changes.emplace_back(id, frame); });
    WindowState minimized = window("a");
    minimized.isMinimized = true;

    mirror.update(minimized);
    mirror.update(window("a", kOther));
    mirror.setFrame("a", kOther);
    mirror.deliver();

    EXPECT_FALSE(mirror.find(mirror.named("a"))->isMinimized);
    EXPECT_THAT(changes, ElementsAre(std::pair(mirror.named("a"), kOther)));
}

TEST_F(MirrorTest, AClosedWindowIsReportedWithItsLastStateAndIsNotActiveAnyMore) {
    const WindowId b = mirror.named("b");
    std::vector<std::pair<WindowId, WindowState>> closed;
    const auto closings =
        mirror.onClosed([&](WindowId id, const WindowState& last) { closed.emplace_back(id, last); });

    mirror.setFrame("b", kOther);
    mirror.remove("b");
    mirror.remove("b");
    EXPECT_EQ(mirror.find(b), nullptr);
    mirror.deliver();

    EXPECT_THAT(closed, ElementsAre(std::pair(b, window("b", kOther))));
    EXPECT_EQ(mirror.active(), kNoWindow);
    EXPECT_THAT(namesFrontToBack(), ElementsAre("a"));
}

TEST_F(MirrorTest, AWindowThatComesBackWithItsNameIsANewOne) {
    const WindowId before = mirror.named("a");

    mirror.remove("a");
    mirror.update(window("a"));

    EXPECT_NE(mirror.named("a"), before);
    EXPECT_EQ(mirror.find(before), nullptr);
}

TEST_F(MirrorTest, AnActivationBeforeTheWindowIsKnownCountsOnceItIs) {
    mirror.activate("c");
    EXPECT_EQ(mirror.active(), kNoWindow);

    mirror.update(window("c"));
    mirror.activate("c");

    EXPECT_EQ(mirror.active(), mirror.named("c"));
}

TEST_F(MirrorTest, AnActivationIsReportedOnlyWhenItChangesTheWindow) {
    int activations = 0;
    const auto activated = mirror.onActivated([&] { ++activations; });

    mirror.activate("b");
    mirror.activate("a");
    mirror.activate("a");
    mirror.activate("");
    mirror.deliver();

    EXPECT_EQ(activations, 2);
}

TEST_F(MirrorTest, ALaterSnapshotReportsWhatHasOpenedAndClosedAndKeepsTheOtherIds) {
    const WindowId b = mirror.named("b");
    std::vector<std::string> log;
    const auto openings =
        mirror.onOpened([&](WindowId id) { log.push_back("opened " + mirror.find(id)->name); });
    const auto closings =
        mirror.onClosed([&](WindowId, const WindowState& last) { log.push_back("closed " + last.name); });

    mirror.reset({.windows = {window("b"), window("c")}, .active = "c", .displays = {{kRight, kRight}}});
    mirror.deliver();

    EXPECT_EQ(mirror.named("b"), b);
    EXPECT_THAT(log, ElementsAre("closed a", "opened c"));
    EXPECT_EQ(mirror.primary(), kRight);
}

TEST_F(MirrorTest, WindowsThatAnOrderLeavesOutStayInFront) {
    mirror.update(window("c"));

    mirror.restack({"b", "a"});

    EXPECT_THAT(namesFrontToBack(), ElementsAre("c", "a", "b"));
}

TEST_F(MirrorTest, AWindowThatAnOrderNamesTwiceIsListedOnce) {
    mirror.restack({"b", "a", "b"});

    EXPECT_THAT(namesFrontToBack(), ElementsAre("a", "b"));
}

TEST_F(MirrorTest, MovesAreReportedInOrderWithTheFrameOfTheStep) {
    std::vector<UserMove> moves;
    const auto moved = mirror.onMove([&](const UserMove& move) { moves.push_back(move); });
    const WindowId a = mirror.named("a");
    std::vector<Rect> frames;
    const auto atStep = mirror.onMove([&](const UserMove&) { frames.push_back(mirror.find(a)->frame); });

    mirror.move(UserMove::Phase::Started, "a", true, {150, 110}, kFrame);
    mirror.move(UserMove::Phase::Finished, "a", true, {350, 210}, kOther);
    mirror.deliver();

    EXPECT_THAT(frames, ElementsAre(kFrame, kOther));
    EXPECT_THAT(moves, ElementsAre(UserMove{UserMove::Phase::Started, a, true, {150, 110}, kFrame},
                                   UserMove{UserMove::Phase::Finished, a, true, {350, 210}, kOther}));
}

TEST_F(MirrorTest, TheMoveOfAWindowThatClosesIsCancelledBefore) {
    std::vector<UserMove> moves;
    std::vector<std::size_t> movesBeforeClosing;
    const auto moved = mirror.onMove([&](const UserMove& move) { moves.push_back(move); });
    const auto closed =
        mirror.onClosed([&](WindowId, const WindowState&) { movesBeforeClosing.push_back(moves.size()); });
    const WindowId a = mirror.named("a");

    mirror.move(UserMove::Phase::Started, "a", true, {150, 110}, kFrame);
    mirror.move(UserMove::Phase::Stepped, "a", true, {350, 210}, kOther);
    mirror.remove("b");
    mirror.remove("a");
    mirror.move(UserMove::Phase::Finished, "a", true, {350, 210}, kOther);
    mirror.deliver();

    EXPECT_THAT(movesBeforeClosing, ElementsAre(2, 3));
    EXPECT_THAT(moves, testing::SizeIs(3));
    EXPECT_EQ(moves.back(), (UserMove{UserMove::Phase::Cancelled, a, true, {350, 210}, kOther}));
}

TEST_F(MirrorTest, AWindowThatClosesAfterItsMoveHasEndedCancelsNothing) {
    std::vector<UserMove::Phase> phases;
    const auto moved = mirror.onMove([&](const UserMove& move) { phases.push_back(move.phase); });

    mirror.move(UserMove::Phase::Started, "a", true, {150, 110}, kFrame);
    mirror.move(UserMove::Phase::Finished, "a", true, {350, 210}, kOther);
    mirror.remove("a");
    mirror.deliver();

    EXPECT_THAT(phases, ElementsAre(UserMove::Phase::Started, UserMove::Phase::Finished));
}

TEST_F(MirrorTest, AReportDuringADeliveryIsDeliveredToo) {
    std::vector<Rect> frames;
    const auto changed = mirror.onFrameChanged([&](WindowId, const Rect& frame) {
        frames.push_back(frame);
        mirror.setFrame("a", kLeft);
    });

    mirror.setFrame("a", kOther);
    mirror.deliver();

    EXPECT_THAT(frames, ElementsAre(kOther, kLeft));
}

TEST_F(MirrorTest, WithoutDisplaysThereIsNoPrimaryOne) {
    mirror.setDisplays({});

    EXPECT_EQ(mirror.primary(), Rect());
}

} // namespace
} // namespace tessarel::wayland
