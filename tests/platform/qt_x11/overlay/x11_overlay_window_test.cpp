// SPDX-License-Identifier: MIT

#include "platform/qt_x11/overlay/x11_overlay_window.h"

#include "platform/qt_x11/overlay/x11_overlay.h"
#include "platform/sim/time/sim_clock.h"
#include "platform/sim/time/sim_main_queue.h"
#include "support/offscreen_test.h"
#include "support/overlay_figures.h"

#include <QEvent>
#include <QPaintEvent>
#include <QWidget>

#include <memory>
#include <vector>

namespace tessarel::qt {
namespace {

using namespace std::chrono_literals;

constexpr Rect kLeft{0, 0, 200, 300};
constexpr Rect kRight{200, 0, 200, 300};

/// Records the painted regions of all widgets.
class PaintLog : public QObject {
public:
    PaintLog() { qApp->installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint)
            painted.push_back(static_cast<QPaintEvent*>(event)->region());
        return false;
    }

    std::vector<QRegion> painted;
};

class X11OverlayWindowTest : public OffscreenTest {
protected:
    /// Returns the overlay's widget, or null.
    [[nodiscard]] static QWidget* surface() {
        const auto all = QApplication::topLevelWidgets();
        return all.isEmpty() ? nullptr : all.first();
    }

    /// Shows the window with two zones, the left one highlighted, waits until it is painted and lets a second
    /// pass.
    void showTwoZones() {
        window->setFrame({100, 50, 400, 300});
        window->setFigures(leftHighlighted, {kLeft, kRight});
        window->orderFront();
        turn();
        clock.advance(1s);
        log.painted.clear();
    }

    void highlightRight() { window->setFigures(rightHighlighted, {kLeft, kRight}); }
    void highlightLeft() { window->setFigures(leftHighlighted, {kLeft, kRight}); }

    /// Processes Qt's events and the due work of the main queue.
    void turn() {
        QApplication::processEvents();
        clock.advance(0s);
        QApplication::processEvents();
    }

    const std::vector<OverlayFigure> leftHighlighted = {zoneFigure(kLeft, "1", true),
                                                        zoneFigure(kRight, "2")};
    const std::vector<OverlayFigure> rightHighlighted = {zoneFigure(kLeft, "1"),
                                                         zoneFigure(kRight, "2", true)};
    sim::SimClock clock;
    sim::SimMainQueue queue{clock};
    X11Overlay overlay{queue, [](const Rect& screenFrame) { return screenFrame; }};
    std::unique_ptr<OverlayWindow> window = overlay.createWindow();
    PaintLog log;
};

TEST_F(X11OverlayWindowTest, NoWidgetIsCreatedBeforeTheWindowIsShown) {
    window->setFrame({0, 0, 400, 300});
    window->setFigures(leftHighlighted, {kLeft, kRight});
    turn();

    EXPECT_EQ(surface(), nullptr);
}

TEST_F(X11OverlayWindowTest, TheSurfaceCoversTheFrame) {
    showTwoZones();

    ASSERT_NE(surface(), nullptr);
    EXPECT_TRUE(surface()->isVisible());
    EXPECT_EQ(surface()->geometry(), QRect(100, 50, 400, 300));
}

TEST_F(X11OverlayWindowTest, TheSurfaceFollowsTheFrameToAnotherScreen) {
    showTwoZones();

    window->setFrame({-300, 20, 300, 200});

    EXPECT_EQ(surface()->geometry(), QRect(-300, 20, 300, 200));
}

TEST_F(X11OverlayWindowTest, TheFirstShowPaintsAllFigures) {
    showTwoZones();
    const QImage image = surface()->grab().toImage();

    EXPECT_NEAR(image.pixelColor(50, 60).alphaF(), 0.35, 0.01);
    EXPECT_NEAR(image.pixelColor(250, 60).alphaF(), 0.1, 0.01);
}

TEST_F(X11OverlayWindowTest, WithoutFiguresTheWindowIsTransparent) {
    window->setFrame({100, 50, 400, 300});
    window->orderFront();
    turn();

    ASSERT_TRUE(surface()->isVisible());
    const QImage image = surface()->grab().toImage();
    for (int x = 0; x < 400; x += 10)
        EXPECT_EQ(image.pixelColor(x, 150).alpha(), 0);
}

TEST_F(X11OverlayWindowTest, ARemovedFigureIsErased) {
    showTwoZones();

    window->setFigures({zoneFigure(kLeft, "1", true)}, {kRight});
    turn();

    const QImage image = surface()->grab().toImage();
    EXPECT_EQ(image.pixelColor(250, 60).alpha(), 0);
    EXPECT_NEAR(image.pixelColor(50, 60).alphaF(), 0.35, 0.01);
}

TEST_F(X11OverlayWindowTest, OnlyTheChangedAreaIsPainted) {
    showTwoZones();

    window->setFigures({zoneFigure(kLeft, "1", true), zoneFigure(kRight, "3")}, {kRight});

    ASSERT_EQ(log.painted.size(), 1U);
    EXPECT_EQ(log.painted.front(), QRegion(200, 0, 200, 300));
}

TEST_F(X11OverlayWindowTest, ALabelLargerThanItsZoneIsPaintedWhole) {
    const Rect small{100, 100, 40, 40};
    showTwoZones();

    window->setFigures({zoneFigure(small, "123456")}, {small});

    ASSERT_EQ(log.painted.size(), 1U);
    EXPECT_LT(log.painted.front().boundingRect().left(), 90);
    EXPECT_GT(log.painted.front().boundingRect().right(), 150);
}

TEST_F(X11OverlayWindowTest, ALabelThatGivesWayToTheHighlightedOneIsErasedAndComesBackWhole) {
    const Rect small{185, 140, 10, 20}; // beside the middle of the large zone, whose label reaches further
    const Rect large{0, 0, 400, 300};
    const std::vector<OverlayFigure> plain = {zoneFigure(large, "12345"), zoneFigure(small, "2")};
    const std::vector<OverlayFigure> highlighted = {plain.front(), zoneFigure(small, "2", true)};
    showTwoZones();
    window->setFigures(plain, {kLeft, kRight, large, small});
    clock.advance(1s);
    const QImage before = surface()->grab().toImage();

    window->setFigures(highlighted, {small});
    clock.advance(1s);
    const QColor letters = surface()->grab().toImage().pixelColor(230, 150);
    ASSERT_EQ(log.painted.size(), 4U); // a grab paints, too
    EXPECT_TRUE(log.painted.at(2).contains(QPoint(230, 150)));

    EXPECT_EQ(letters, before.pixelColor(300, 60));
    window->setFigures(plain, {small});
    clock.advance(1s);
    EXPECT_EQ(surface()->grab().toImage(), before);
}

TEST_F(X11OverlayWindowTest, WithoutAChangeNothingIsPainted) {
    showTwoZones();

    window->setFigures(leftHighlighted, {});
    window->orderFront();
    turn();
    clock.advance(1s);

    EXPECT_TRUE(log.painted.empty());
}

TEST_F(X11OverlayWindowTest, AChangeAfterAPauseIsPaintedAtOnce) {
    showTwoZones();

    highlightRight();

    EXPECT_EQ(log.painted.size(), 1U);
}

TEST_F(X11OverlayWindowTest, ChangesInQuickSuccessionAreCoalesced) {
    showTwoZones();
    highlightRight();

    highlightLeft();
    highlightRight();
    highlightLeft();
    EXPECT_EQ(log.painted.size(), 1U);
    clock.advance(8ms);

    EXPECT_EQ(log.painted.size(), 2U);
    EXPECT_NEAR(surface()->grab().toImage().pixelColor(50, 60).alphaF(), 0.35, 0.01);
}

TEST_F(X11OverlayWindowTest, AStreamOfChangesIsPaintedAtALimitedRate) {
    showTwoZones();

    for (int millisecond = 0; millisecond < 1000; ++millisecond) {
        millisecond % 2 == 0 ? highlightRight() : highlightLeft();
        clock.advance(1ms);
    }

    EXPECT_EQ(log.painted.size(), 1000U / 8 + 1);
}

TEST_F(X11OverlayWindowTest, OrderOutHidesTheWindowAtOnce) {
    showTwoZones();

    window->orderOut();

    EXPECT_FALSE(surface()->isVisible());
}

TEST_F(X11OverlayWindowTest, APendingChangeIsNotPaintedAfterOrderOut) {
    showTwoZones();
    highlightRight();
    highlightLeft();
    window->orderOut();
    log.painted.clear();

    clock.advance(1s);
    turn();

    EXPECT_TRUE(log.painted.empty());
    EXPECT_FALSE(surface()->isVisible());
}

TEST_F(X11OverlayWindowTest, FiguresSetWhileHiddenAreShownNextTime) {
    showTwoZones();
    window->orderOut();

    highlightRight();
    window->orderFront();
    turn();

    EXPECT_NEAR(surface()->grab().toImage().pixelColor(250, 60).alphaF(), 0.35, 0.01);
}

TEST_F(X11OverlayWindowTest, TheSurfaceIsReusedForTheNextDrag) {
    showTwoZones();
    const QWidget* const first = surface();
    window->orderOut();
    clock.advance(29s);

    window->orderFront();

    EXPECT_EQ(surface(), first);
    EXPECT_TRUE(surface()->isVisible());
}

TEST_F(X11OverlayWindowTest, TheSurfaceIsDestroyedAfterAQuietTime) {
    showTwoZones();
    window->orderOut();

    clock.advance(X11OverlayWindow::kQuietTime);

    EXPECT_EQ(surface(), nullptr);
}

TEST_F(X11OverlayWindowTest, TheQuietTimeStartsWithTheEndOfTheLastDrag) {
    showTwoZones();
    window->orderOut();
    clock.advance(20s);
    window->orderFront();
    window->orderOut();

    clock.advance(29s);
    EXPECT_NE(surface(), nullptr);
    clock.advance(1s);
    EXPECT_EQ(surface(), nullptr);
}

TEST_F(X11OverlayWindowTest, AVisibleSurfaceIsNotDestroyed) {
    showTwoZones();
    window->orderOut();
    window->orderFront();

    clock.advance(10min);

    ASSERT_NE(surface(), nullptr);
    EXPECT_TRUE(surface()->isVisible());
}

TEST_F(X11OverlayWindowTest, ARecreatedSurfaceShowsTheSameFigures) {
    showTwoZones();
    window->orderOut();
    clock.advance(1min);

    window->orderFront();
    turn();

    ASSERT_NE(surface(), nullptr);
    EXPECT_EQ(surface()->geometry(), QRect(100, 50, 400, 300));
    EXPECT_NEAR(surface()->grab().toImage().pixelColor(50, 60).alphaF(), 0.35, 0.01);
}

TEST_F(X11OverlayWindowTest, ADestroyedWindowLeavesNoPendingWork) {
    showTwoZones();
    highlightRight();
    highlightLeft();
    window->orderOut();

    window.reset();
    clock.advance(1min);

    EXPECT_EQ(surface(), nullptr);
}

TEST_F(X11OverlayWindowTest, OrderOutTwiceOrBeforeTheFirstShowDoesNothing) {
    window->orderOut();
    showTwoZones();
    window->orderOut();
    window->orderOut();

    EXPECT_FALSE(surface()->isVisible());
}

TEST_F(X11OverlayWindowTest, HidingTheOverlayDoesNotQuitTheProgram) {
    bool hasQuit = false;
    QObject::connect(qApp, &QGuiApplication::lastWindowClosed, qApp, [&] { hasQuit = true; });

    showTwoZones();
    window->orderOut();
    clock.advance(1min);
    turn();

    EXPECT_FALSE(hasQuit);
}

} // namespace
} // namespace tessarel::qt
