#include "platform/qt_x11/tray/qt_status_item.h"

#include "platform/qt/qt_main_queue.h"

#include <QApplication>
#include <QEventLoop>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace tessarel::qt {
namespace {

/// A queue with a clock that the test advances.
class ManualQueue : public MainQueuePort {
public:
    TimePoint now() override { return m_now; }
    void asyncAfter(Duration delay, std::function<void()> work) override {
        m_work.emplace(m_now + delay, std::move(work));
    }
    void advance(Duration duration) {
        const TimePoint end = m_now + duration;
        while (!m_work.empty() && m_work.begin()->first <= end) {
            auto next = m_work.extract(m_work.begin());
            m_now = next.key();
            next.mapped()();
        }
        m_now = end;
    }
    [[nodiscard]] bool idle() const { return m_work.empty(); }

private:
    TimePoint m_now{};
    std::multimap<TimePoint, std::function<void()>> m_work;
};

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
    ManualQueue queue;
    std::optional<QtStatusItem> item{std::in_place, queue};
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
    EXPECT_TRUE(queue.idle());
}

TEST_F(QtStatusItemTest, WithoutAnExpectedPanelItChecksOnceAndGoesIdle) {
    const auto subscription = create();
    EXPECT_FALSE(queue.idle());

    queue.advance(std::chrono::seconds(0));

    EXPECT_TRUE(queue.idle());
}

TEST_F(QtStatusItemTest, WithoutAPanelTheMenuIsNeverRequested) {
    const auto subscription = create();

    queue.advance(std::chrono::minutes(1));

    EXPECT_EQ(updates, 0);
}

TEST_F(QtStatusItemTest, WorksWithoutAPanel) {
    const auto subscription = create();

    EXPECT_TRUE(item->setSymbol("square.grid.2x2", "Tessarel"));
    item->setAppearsDisabled(true);
    item->clearImage();
    item->setTitle("TS");
    queue.advance(std::chrono::minutes(1));

    EXPECT_TRUE(queue.idle());
}

TEST_F(QtStatusItemTest, NothingHappensAfterTheSubscriptionEnded) {
    auto subscription = create();

    subscription.reset();

    item->setTitle("TS");
    queue.advance(std::chrono::seconds(3));
    EXPECT_TRUE(queue.idle());
}

TEST_F(QtStatusItemTest, TheItemMayBeDestroyedBeforeItsSubscription) {
    auto subscription = create();

    item.reset();
    queue.advance(std::chrono::seconds(3));
    subscription.reset();
    queue.advance(std::chrono::seconds(3));

    EXPECT_TRUE(queue.idle());
}

} // namespace
} // namespace tessarel::qt
