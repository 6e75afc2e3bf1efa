// SPDX-License-Identifier: MIT

#include "platform/wayland/accessibility.h"

#include "platform/sim/time/sim_clock.h"
#include "platform/sim/time/sim_main_queue.h"
#include "platform/wayland/desktop_ports.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tessarel::wayland {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr Rect kDisplay{0, 0, 1600, 900};
constexpr Rect kStart{100, 100, 500, 400};
constexpr Rect kWanted{0, 0, 800, 450};
constexpr Rect kWider{0, 0, 900, 450};

/// A compositor that gives windows their frames when they are waited for, and records all calls.
class FakeCompositor : public Compositor {
public:
    explicit FakeCompositor(Mirror& mirror) : m_mirror(mirror) {}

    void place(WindowId window, const Rect& frame) override {
        calls.push_back("place " + m_mirror.find(window)->name);
        m_underWay[window] = frame;
    }
    bool waitUntilSettled(WindowId window, std::chrono::milliseconds /*patience*/) override {
        const auto placement = m_underWay.find(window);
        if (placement == m_underWay.end())
            return true;
        const std::string name = m_mirror.find(window)->name;
        calls.push_back("wait for " + name);
        if (isSilent)
            return false;
        const bool isReplaced = replaced.contains(name);
        if (isReplaced)
            m_mirror.replace(window);
        const bool isInTime = !isReplaced && !stalled.contains(name);
        if (isInTime)
            m_mirror.setFrame(name, placement->second);
        m_underWay.erase(placement);
        return isInTime;
    }

    std::vector<std::string> calls;
    std::set<std::string> stalled;  ///< windows that do not settle in time
    std::set<std::string> replaced; ///< windows for which another frame is requested during the wait
    bool isSilent = false;          ///< whether it does not even report that they do not

private:
    Mirror& m_mirror;
    std::map<WindowId, Rect> m_underWay;
};

class WaylandAccessibilityTest : public testing::Test {
protected:
    WaylandAccessibilityTest() {
        Mirror::Snapshot snapshot{.windows = {}, .active = "a", .displays = {{kDisplay, kDisplay}}};
        for (const char* const name : {"a", "b", "c"})
            snapshot.windows.push_back({.name = name,
                                        .pid = 42,
                                        .applicationId = "editor",
                                        .windowClass = "editor",
                                        .frame = kStart});
        mirror.reset(snapshot);
        mirror.deliver();
    }

    Element element(const std::string& name) {
        for (const Element& window : windows()) {
            if (accessibility.key(window) == 2 * mirror.named(name) + 1)
                return window;
        }
        return {};
    }
    std::vector<Element> windows() {
        const auto value = accessibility.copyAttribute(accessibility.application(42), attribute::kWindows);
        return value ? std::get<std::vector<Element>>(*value) : std::vector<Element>();
    }
    void write(const std::string& name, const Rect& axFrame) {
        accessibility.setAttribute(element(name), attribute::kSize, axFrame.size());
        accessibility.setAttribute(element(name), attribute::kPosition, axFrame.origin());
    }
    /// Moves the window by the mouse.
    void move(const std::string& name) {
        mirror.move(UserMove::Phase::Started, name, true, {}, kStart);
        mirror.move(UserMove::Phase::Finished, name, true, {}, kStart);
        mirror.deliver();
    }
    std::optional<Size> readSize(const std::string& name) {
        const auto value = accessibility.copyAttribute(element(name), attribute::kSize);
        return value ? std::optional(std::get<Size>(*value)) : std::nullopt;
    }

    sim::SimClock clock;
    sim::SimMainQueue queue{clock};
    Mirror mirror;
    FakeCompositor compositor{mirror};
    Applications applications{mirror, queue, {}, [](ProcessId) { return xdg::ProcessFacts(); }};
    ApplicationWatch watch{mirror, applications};
    Accessibility accessibility{mirror, compositor, applications, watch, queue};
    std::vector<Rect> corrected;
    SubscriptionPtr corrections = accessibility.onCorrected(
        [this](const Element& /*window*/, const Rect& axFrame) { corrected.push_back(axFrame); });
};

TEST_F(WaylandAccessibilityTest, AWindowIsListedWithTheKeyOfItsElement) {
    const auto listed = WindowList(mirror).onScreenWindows();

    ASSERT_EQ(listed.size(), windows().size());
    for (std::size_t i = 0; i < listed.size(); ++i)
        EXPECT_EQ(listed[i].key, accessibility.key(windows()[i]));
}

TEST_F(WaylandAccessibilityTest, OfSeveralWindowsAtAPointTheOneThatTheUserMovesIsFoundAndElseTheTopmost) {
    const auto windowAt = [this](const Point& axPoint) {
        const auto found = accessibility.elementAtPosition(accessibility.systemWide(), axPoint);
        return found ? accessibility.key(*found) : 0;
    };
    const auto report = [this](UserMove::Phase phase, const Rect& frame) {
        mirror.move(phase, "a", true, {}, frame);
        mirror.deliver();
    };
    const Point point{150, 110};
    const Rect elsewhere{700, 100, 500, 400};
    EXPECT_EQ(windowAt(point), accessibility.key(element("c")));

    report(UserMove::Phase::Started, kStart);
    EXPECT_EQ(windowAt(point), accessibility.key(element("a")));
    report(UserMove::Phase::Stepped, elsewhere);
    EXPECT_EQ(windowAt(point), accessibility.key(element("c")));
    report(UserMove::Phase::Stepped, kStart);
    EXPECT_EQ(windowAt(point), accessibility.key(element("a")));
    report(UserMove::Phase::Finished, kStart);
    EXPECT_EQ(windowAt(point), accessibility.key(element("c")));

    report(UserMove::Phase::Started, kStart);
    mirror.remove("a");
    mirror.deliver();
    EXPECT_EQ(windowAt(point), accessibility.key(element("c")));
}

TEST_F(WaylandAccessibilityTest, AWindowIsWaitedForWhenItIsReadAfterAWrite) {
    write("a", kWanted);
    EXPECT_EQ(readSize("a"), kWanted.size());

    EXPECT_THAT(compositor.calls, ElementsAre("place a", "wait for a"));
}

TEST_F(WaylandAccessibilityTest, SeveralWindowsAreSentBeforeAnyIsWaitedFor) {
    auto several = accessibility.writeSeveral();
    for (const char* const name : {"a", "b", "c"}) {
        EXPECT_EQ(readSize(name), kStart.size());
        write(name, kWanted);
        EXPECT_EQ(readSize(name), std::nullopt);
    }
    EXPECT_THAT(corrected, IsEmpty());
    several.reset();

    EXPECT_THAT(compositor.calls,
                ElementsAre("place a", "place b", "place c", "wait for a", "wait for b", "wait for c"));
    EXPECT_THAT(corrected, ElementsAre(kWanted, kWanted, kWanted));
    EXPECT_EQ(readSize("b"), kWanted.size());
}

TEST_F(WaylandAccessibilityTest, TheLastOfSeveralWindowsIsSentThoughItIsNotRead) {
    auto several = accessibility.writeSeveral();
    write("a", kWanted);
    several.reset();

    EXPECT_EQ(mirror.find(mirror.named("a"))->frame, kWanted);
}

TEST_F(WaylandAccessibilityTest, AWindowThatIsStillUnderWayIsWaitedForBeforeItIsOneOfSeveral) {
    write("a", kWider);
    clock.advance(0ms);
    ASSERT_THAT(compositor.calls, ElementsAre("place a"));

    const auto several = accessibility.writeSeveral();

    EXPECT_EQ(readSize("a"), kWider.size());
}

TEST_F(WaylandAccessibilityTest, AWindowThatHasNotSettledInTimeCanBeReadAfterTheNextReport) {
    compositor.stalled = {"a"};
    write("a", kWanted);
    EXPECT_EQ(readSize("a"), std::nullopt);
    EXPECT_EQ(readSize("a"), std::nullopt);

    mirror.deliver();

    EXPECT_EQ(readSize("a"), kStart.size());
}

TEST_F(WaylandAccessibilityTest, WhileTheCompositorReportsNothingAWindowIsWaitedForOncePerWrite) {
    compositor.isSilent = true;
    write("a", kWider);
    EXPECT_EQ(readSize("a"), std::nullopt);
    mirror.deliver(); // a hot key has arrived
    EXPECT_EQ(readSize("a"), kStart.size());

    compositor.isSilent = false;
    write("a", kWanted);

    EXPECT_EQ(readSize("a"), kWanted.size());
    EXPECT_THAT(compositor.calls, ElementsAre("place a", "wait for a", "place a", "wait for a"));
}

TEST_F(WaylandAccessibilityTest, AWindowThatTurnsOutToHaveKeptItsFrameAfterItHasBeenReadIsReportedToo) {
    compositor.isSilent = true;
    write("a", kWanted);
    EXPECT_EQ(readSize("a"), std::nullopt);

    mirror.settle("a", kStart);
    mirror.deliver();

    EXPECT_THAT(corrected, ElementsAre(kStart));
}

TEST_F(WaylandAccessibilityTest, AWindowThatTheUserMovesBeforeItHasSettledIsNotReported) {
    compositor.stalled = {"a"};
    write("a", kWanted);
    EXPECT_EQ(readSize("a"), std::nullopt);

    move("a");
    mirror.setFrame("a", kWider);
    mirror.deliver();

    EXPECT_THAT(corrected, IsEmpty());
}

TEST_F(WaylandAccessibilityTest, AfterAMoveByTheUserAWindowIsNoLongerCorrected) {
    write("a", kWanted);
    EXPECT_EQ(readSize("a"), kWanted.size());
    mirror.deliver();
    corrected.clear();

    move("b");
    mirror.setFrame("a", kWider);
    mirror.deliver();
    EXPECT_THAT(corrected, ElementsAre(kWider));
    move("a");
    mirror.setFrame("a", kWanted);
    mirror.deliver();
    EXPECT_THAT(corrected, ElementsAre(kWider));
}

TEST_F(WaylandAccessibilityTest, ALatePlacementThatAnotherRequestReplacesIsNotReported) {
    compositor.stalled = {"a"};
    write("a", kWanted);
    EXPECT_EQ(readSize("a"), std::nullopt);

    clock.advance(10s);
    mirror.replace(mirror.named("a"));
    mirror.setFrame("a", kWider);
    mirror.deliver();

    EXPECT_THAT(corrected, IsEmpty());
    EXPECT_EQ(readSize("a"), kWider.size());
}

TEST_F(WaylandAccessibilityTest, APlacementThatAnotherRequestReplacesDuringTheWaitIsNotReported) {
    compositor.replaced = {"a"};
    write("a", kWanted);
    EXPECT_EQ(readSize("a"), std::nullopt) << "its frame is not known yet";
    mirror.deliver();

    mirror.setFrame("a", kWider);
    mirror.deliver();

    EXPECT_THAT(corrected, IsEmpty());
    EXPECT_EQ(readSize("a"), kWider.size());
}

TEST_F(WaylandAccessibilityTest, AWindowOfSeveralWhosePlacementAnotherRequestReplacesIsNotReported) {
    compositor.replaced = {"a"};
    auto several = accessibility.writeSeveral();
    for (const char* const name : {"a", "b"}) {
        write(name, kWanted);
        EXPECT_EQ(readSize(name), std::nullopt);
    }
    several.reset();
    mirror.deliver();
    EXPECT_THAT(corrected, testing::Each(kWanted)) << "of the other window";
    corrected.clear();

    mirror.setFrame("a", kWider);
    mirror.deliver();

    EXPECT_THAT(corrected, IsEmpty());
}

TEST_F(WaylandAccessibilityTest, AfterARequestByAnotherAWindowIsCorrectedOnlyOnceItIsWrittenAgain) {
    write("a", kWanted);
    EXPECT_EQ(readSize("a"), kWanted.size());
    mirror.deliver();
    corrected.clear();

    mirror.replace(mirror.named("a"));
    mirror.setFrame("a", kWider);
    mirror.deliver();
    EXPECT_THAT(corrected, IsEmpty());

    compositor.stalled = {"a"};
    write("a", kWanted);
    EXPECT_EQ(readSize("a"), std::nullopt);
    mirror.setFrame("a", kStart);
    mirror.deliver();
    EXPECT_THAT(corrected, ElementsAre(kStart));
}

TEST_F(WaylandAccessibilityTest, AWindowThatSettlesLongAfterItHasBeenReadIsReportedWithItsCorrections) {
    compositor.stalled = {"a"};
    write("a", kWanted);
    EXPECT_EQ(readSize("a"), std::nullopt);

    clock.advance(10s);
    mirror.setFrame("a", kWanted);
    mirror.deliver();
    clock.advance(500ms);
    mirror.setFrame("a", kWider);
    mirror.deliver();
    EXPECT_THAT(corrected, ElementsAre(kWanted, kWider));
    clock.advance(1ms);
    mirror.setFrame("a", kStart);
    mirror.deliver();

    EXPECT_THAT(corrected, ElementsAre(kWanted, kWider)) << "half a second after it has settled";
}

} // namespace
} // namespace tessarel::wayland
