// SPDX-License-Identifier: MIT

#include "platform/qt_x11/tray/qt_status_item.h"

#include "platform/sim/time/sim_clock.h"
#include "platform/sim/time/sim_main_queue.h"

#include <QApplication>
#include <QEventLoop>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <optional>
#include <utility>
#include <vector>

namespace tessarel::qt {
namespace {

/// The status item without a panel. Tests with panels are in tests/desktop.
class QtStatusItemTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    }

    [[nodiscard]] SubscriptionPtr create() {
        return item->create({.menuNeedsUpdate =
                                 [this] {
                                     ++updates;
                                     return Menu{};
                                 },
                             .itemSelected = [](const MenuItem&) {}});
    }

    int argumentCount = 1;
    std::array<char, 5> programName{"test"};
    std::array<char*, 2> arguments{programName.data(), nullptr};
    std::optional<QApplication> application{std::in_place, argumentCount, arguments.data()};
    sim::SimClock clock;
    sim::SimMainQueue queue{clock};
    QtMainQueue busQueue;
    SessionBus bus{busQueue};
    std::optional<QtStatusItem> item{std::in_place, queue, bus};
    int updates = 0;
};

TEST_F(QtStatusItemTest, KnowsItsOwnSymbolsAndNoOthers) {
    const auto subscription = create();

    for (const char* name : {"rectangle.3.group", "square.grid.2x2", "rectangle.split.3x1"})
        EXPECT_TRUE(item->setSymbol(name, "Tessarel")) << name;
    for (const char* name : {"", "square", "rectangle.3.groups"})
        EXPECT_FALSE(item->setSymbol(name, "Tessarel")) << name;
}

TEST_F(QtStatusItemTest, CallsBeforeTheFirstItemDoNothing) {
    item->clearImage();
    item->setTitle("TS");
    item->setAppearsDisabled(true);

    EXPECT_TRUE(item->setSymbol("square.grid.2x2", "Tessarel"));
    EXPECT_EQ(clock.waiting(), 0U);
}

TEST_F(QtStatusItemTest, WithoutAnExpectedPanelItChecksOnceAndGoesIdle) {
    const auto subscription = create();
    EXPECT_GT(clock.waiting(), 0U);

    clock.advance(std::chrono::seconds(0));

    EXPECT_EQ(clock.waiting(), 0U);
}

TEST_F(QtStatusItemTest, WithoutAPanelTheMenuIsNeverRequested) {
    const auto subscription = create();

    clock.advance(std::chrono::minutes(1));

    EXPECT_EQ(updates, 0);
}

TEST_F(QtStatusItemTest, ReportsWithinEightSecondsThatThereIsNoPlace) {
    const auto subscription = create();
    std::vector<bool> reports;

    item->whenPlaced([&](bool isShown) { reports.push_back(isShown); });
    EXPECT_TRUE(reports.empty());
    clock.advance(std::chrono::seconds(8));
    clock.advance(std::chrono::minutes(1));

    EXPECT_EQ(reports, std::vector{false});
}

TEST_F(QtStatusItemTest, ReportsThatThereIsNoPlaceAfterTheFirstLook) {
    const auto subscription = create();
    std::vector<bool> reports;
    item->whenPlaced([&](bool isShown) { reports.push_back(isShown); });
    clock.advance(std::chrono::seconds(0));

    QApplication::processEvents();

    EXPECT_EQ(reports, std::vector{false});
}

TEST_F(QtStatusItemTest, WorksWithoutAPanel) {
    const auto subscription = create();

    EXPECT_TRUE(item->setSymbol("square.grid.2x2", "Tessarel"));
    item->setAppearsDisabled(true);
    item->clearImage();
    item->setTitle("TS");
    clock.advance(std::chrono::minutes(1));

    EXPECT_EQ(clock.waiting(), 0U);
}

TEST_F(QtStatusItemTest, NothingHappensAfterTheSubscriptionEnded) {
    auto subscription = create();

    subscription.reset();

    item->setTitle("TS");
    clock.advance(std::chrono::seconds(3));
    EXPECT_EQ(clock.waiting(), 0U);
}

TEST_F(QtStatusItemTest, TheItemMayBeDestroyedBeforeItsSubscription) {
    auto subscription = create();

    item.reset();
    clock.advance(std::chrono::seconds(3));
    subscription.reset();
    clock.advance(std::chrono::seconds(3));

    EXPECT_EQ(clock.waiting(), 0U);
}

} // namespace
} // namespace tessarel::qt
