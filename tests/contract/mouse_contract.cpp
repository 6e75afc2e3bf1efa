// SPDX-License-Identifier: MIT

#include "contract/contract_test.h"

#include <ostream>
#include <utility>
#include <vector>

namespace tessarel {

void PrintTo(const MouseEvent& event, std::ostream* out) {
    *out << "{" << static_cast<int>(event.kind) << ", " << event.screenLocation.x << ", "
         << event.screenLocation.y << ", " << event.modifierFlags << "}";
}

namespace contract {
namespace {

using enum MouseEventKind;
using Events = std::vector<MouseEvent>;

/// The pointer over a window of another program.
class MouseContract : public ContractTest {
protected:
    MouseContract() { desktop->movePointer({500, 400}); }

    [[nodiscard]] SubscriptionPtr watch(MouseEventKind kind) {
        auto monitor = desktop->mouse().addGlobalMonitor(
            kind, [this](const MouseEvent& event) { events.push_back(event); });
        desktop->settle(); // another client moves the mouse: the monitor must be registered before
        return monitor;
    }
    [[nodiscard]] std::vector<SubscriptionPtr> watchAll() {
        std::vector<SubscriptionPtr> all;
        for (const auto kind : {LeftDown, LeftDragged, LeftUp})
            all.push_back(watch(kind));
        return all;
    }
    void press() { desktop->pressLeftButton(); }
    void release() { desktop->releaseLeftButton(); }
    void moveTo(const Point& axPoint) { desktop->movePointer(axPoint); }

    WindowHandle window = openWindow({.axFrame = {200, 150, 640, 480}});
    Events events;
};

TEST_F(MouseContract, ADragIsReportedInScreenCoordinates) {
    const auto monitors = watchAll();

    press();
    moveTo({510, 390});
    moveTo({0, 0});
    release();

    EXPECT_EQ(events, (Events{{LeftDown, {500, 500}, 0},
                              {LeftDragged, {510, 510}, 0},
                              {LeftDragged, {0, 900}, 0},
                              {LeftUp, {0, 900}, 0}}));
}

TEST_F(MouseContract, ADragOntoTheOtherDisplayIsReported) {
    const auto monitors = watchAll();

    press();
    moveTo({2000, 1000});

    EXPECT_EQ(events.back(), (MouseEvent{LeftDragged, {2000, -100}, 0}));
}

TEST_F(MouseContract, AMovementWithoutAButtonIsNotReported) {
    const auto monitors = watchAll();

    moveTo({510, 390});
    press();
    release();
    events.clear();
    moveTo({520, 380});

    EXPECT_EQ(events, Events{});
}

TEST_F(MouseContract, ModifiersAreReportedAsTheyAreHeld) {
    const auto monitors = watchAll();
    press();

    double x = 500;
    for (const std::uint64_t flags :
         {kShiftFlag, kControlFlag, kOptionFlag, kCommandFlag, kShiftFlag | kCommandFlag, std::uint64_t{0}}) {
        desktop->holdModifiers(flags);
        moveTo({++x, 400});
        EXPECT_EQ(events.back().modifierFlags, flags);
    }
}

TEST_F(MouseContract, AModifierChangeUnderARestingPointerIsReportedAsAMovement) {
    const auto monitors = watchAll();
    press();
    for (const std::uint64_t flags : {kShiftFlag, kShiftFlag | kCommandFlag, kCommandFlag, std::uint64_t{0}})
        desktop->holdModifiers(flags);
    release();

    EXPECT_EQ(events, (Events{{LeftDown, {500, 500}, 0},
                              {LeftDragged, {500, 500}, kShiftFlag},
                              {LeftDragged, {500, 500}, kShiftFlag | kCommandFlag},
                              {LeftDragged, {500, 500}, kCommandFlag},
                              {LeftDragged, {500, 500}, 0},
                              {LeftUp, {500, 500}, 0}}));
}

TEST_F(MouseContract, AModifierChangeWithoutAButtonIsNotReported) {
    const auto monitors = watch(LeftDragged);

    desktop->holdModifiers(kShiftFlag);
    press();
    release();
    desktop->holdModifiers(0);
    press();
    release();

    EXPECT_EQ(events, Events{});
}

TEST_F(MouseContract, AnOrdinaryKeyDuringADragIsNotReported) {
    constexpr std::uint32_t kKeyA = 0;
    const auto monitors = watch(LeftDragged);
    press();

    desktop->pressKeys(kKeyA, 0);
    desktop->settle();

    EXPECT_EQ(events, Events{});
}

TEST_F(MouseContract, NoModifierChangeIsReportedAfterTheMonitorIsDestroyed) {
    auto monitor = watch(LeftDragged);
    press();

    monitor.reset();
    desktop->holdModifiers(kShiftFlag);

    EXPECT_EQ(events, Events{});
}

TEST_F(MouseContract, AMonitorReceivesOnlyEventsOfItsKind) {
    for (const auto kind : {LeftDown, LeftDragged, LeftUp}) {
        events.clear();
        const auto monitor = watch(kind);
        press();
        moveTo({510, 390});
        moveTo({500, 400});
        release();
        EXPECT_EQ(events.size(), kind == LeftDragged ? 2U : 1U);
        for (const MouseEvent& event : events)
            EXPECT_EQ(event.kind, kind);
    }
}

TEST_F(MouseContract, EveryMonitorOfAKindReceivesTheEvent) {
    const auto first = watch(LeftDown);
    const auto second = watch(LeftDown);

    press();

    EXPECT_EQ(events.size(), 2U);
}

TEST_F(MouseContract, ADestroyedMonitorReceivesNothing) {
    auto monitors = watchAll();
    press();
    events.clear();

    monitors.clear();
    moveTo({510, 390});
    release();

    EXPECT_EQ(events, Events{});
}

TEST_F(MouseContract, AHandlerMayDestroyItsMonitor) {
    const auto others = watchAll();
    int calls = 0;
    SubscriptionPtr monitor;
    monitor = desktop->mouse().addGlobalMonitor(LeftDragged, [&](const MouseEvent&) {
        ++calls;
        monitor.reset();
    });

    press();
    moveTo({510, 390});
    moveTo({520, 380});

    EXPECT_EQ(calls, 1);
    EXPECT_EQ(events.size(), 3U);
}

TEST_F(MouseContract, ADragInProgressIsNotReportedToANewMonitorAsAPress) {
    press();
    const auto monitor = watch(LeftDown);

    moveTo({510, 390});
    release();

    EXPECT_EQ(events, Events{});
}

TEST_F(MouseContract, EventsOnTheBareDesktopAreReported) {
    auto monitors = watchAll();
    desktop->closeWindow(window);

    press();
    release();

    EXPECT_EQ(events.size(), 2U);
}

} // namespace
} // namespace contract
} // namespace tessarel
