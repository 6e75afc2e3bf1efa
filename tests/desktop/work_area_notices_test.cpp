// SPDX-License-Identifier: MIT

#include "platform/qt_x11/work_area_notices.h"

#include "platform/qt_x11/qt_connection.h"
#include "platform/sim/time/sim_clock.h"
#include "platform/sim/time/sim_main_queue.h"
#include "support/x11/deadline.h"
#include "support/x11/x_connection.h"
#include "support/x11/x_server.h"

#include <QGuiApplication>
#include <QRect>
#include <QScreen>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <memory>

namespace tessarel::qt {
namespace {

/// Qt on an X server without a window manager. The test publishes the work area.
class WorkAreaNoticesTest : public testing::Test {
protected:
    WorkAreaNoticesTest() {
        for (const auto& [name, value] : server.environment())
            qputenv(name.c_str(), value.c_str());
        qputenv("QT_QPA_PLATFORM", "xcb");
        application = std::make_unique<QGuiApplication>(m_count, m_arguments.data());
        notices = std::make_unique<WorkAreaNotices>(queue);
    }

    void publish(const QRect& area) {
        const std::array<std::uint32_t, 4> values{
            static_cast<std::uint32_t>(area.x()), static_cast<std::uint32_t>(area.y()),
            static_cast<std::uint32_t>(area.width()), static_cast<std::uint32_t>(area.height())};
        xcb_change_property(x.get(), XCB_PROP_MODE_REPLACE, x.root(), x.atom("_NET_WORKAREA"),
                            XCB_ATOM_CARDINAL, 32, values.size(), values.data());
    }

    /// Runs Qt's event loop and the main queue until Qt has taken over the work area `area`.
    [[nodiscard]] bool becomesAvailable(const QRect& area) {
        x.roundTrip();
        for (const x11test::Deadline deadline; !deadline.passed();) {
            QGuiApplication::processEvents();
            clock.advance({});
            if (QGuiApplication::primaryScreen()->availableGeometry() == area)
                return true;
        }
        return false;
    }

    /// Returns how many requests Qt has sent so far.
    [[nodiscard]] static unsigned requests() { return xcb_no_operation(qtConnection()).sequence; }

    x11test::XServer server;
    x11test::XConnection x{server.display()};
    sim::SimClock clock;
    sim::SimMainQueue queue{clock};
    std::unique_ptr<QGuiApplication> application;
    std::unique_ptr<WorkAreaNotices> notices;

private:
    std::array<char, 5> m_name{"test"};
    std::array<char*, 2> m_arguments{m_name.data(), nullptr};
    int m_count = 1;
};

TEST_F(WorkAreaNoticesTest, QtTakesOverEachWorkArea) {
    const QRect screen = QGuiApplication::primaryScreen()->geometry();

    for (const int bar : {30, 40, 30}) {
        const QRect area = screen.adjusted(0, bar, 0, 0);
        publish(area);
        EXPECT_TRUE(becomesAvailable(area)) << bar;
    }
}

TEST_F(WorkAreaNoticesTest, AFloodOfChangesCostsFewRequests) {
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    constexpr int kChanges = 2000;
    const unsigned before = requests();

    for (int i = 0; i < kChanges; ++i)
        publish(screen.adjusted(0, i % 100, 0, 0));
    const QRect last = screen.adjusted(0, 200, 0, 0);
    publish(last);

    ASSERT_TRUE(becomesAvailable(last));
    EXPECT_LT(requests() - before, kChanges / 4U);
}

} // namespace
} // namespace tessarel::qt
