// SPDX-License-Identifier: MIT

#include "platform/qt/overlay/composed_overlay.h"

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

class ComposedOverlayTest : public OffscreenTest {
protected:
    static QWidget* surface() {
        const auto all = QApplication::topLevelWidgets();
        return all.isEmpty() ? nullptr : all.first();
    }

    /// Shows the window with two zones, the left one highlighted, and waits until it is painted.
    void showTwoZones() {
        window->setFrame({100, 50, 400, 300});
        window->setFigures({zoneFigure(kLeft, "1", true), zoneFigure(kRight, "2")}, {kLeft, kRight});
        window->orderFront();
        QApplication::processEvents();
    }

    static QColor colorAt(int x, int y) { return surface()->grab().toImage().pixelColor(x, y); }

    sim::SimClock clock;
    sim::SimMainQueue queue{clock};
    std::vector<bool> prepared; ///< for each created widget, whether it was already visible
    std::vector<bool> ordered;  ///< for each call of orderFront, whether the widget was visible
    QColor accent = Qt::green;
    ComposedOverlay overlay{
        queue,
        {.place =
             [](const Rect& screenFrame) {
                 return Rect{screenFrame.x, 1000 - screenFrame.maxY(), screenFrame.width, screenFrame.height};
             },
         .prepare = [this](QWidget& made) { prepared.push_back(made.isVisible()); },
         .orderFront = [this](QWidget& shown) { ordered.push_back(shown.isVisible()); },
         .accent = [this] { return accent; }}};
    std::unique_ptr<OverlayWindow> window = overlay.createWindow();
};

TEST_F(ComposedOverlayTest, NoWidgetIsCreatedBeforeTheWindowIsShown) {
    window->setFrame({0, 0, 400, 300});
    window->setFigures({zoneFigure(kLeft)}, {kLeft});

    EXPECT_EQ(surface(), nullptr);
}

TEST_F(ComposedOverlayTest, TheWindowIsPreparedOnceAndBeforeItIsShown) {
    showTwoZones();
    window->orderOut();
    window->orderFront();

    EXPECT_EQ(prepared, std::vector<bool>{false});
    EXPECT_TRUE(surface()->isVisible());
}

TEST_F(ComposedOverlayTest, TheSystemOrdersTheWindowToTheFrontAndQtDoesNotRaiseIt) {
    struct Raises : QObject {
        bool eventFilter(QObject*, QEvent* event) override {
            count += event->type() == QEvent::ZOrderChange ? 1 : 0;
            return false;
        }

        int count = 0;
    } raises;
    qApp->installEventFilter(&raises);

    window->orderFront();
    window->orderFront();

    EXPECT_EQ(ordered, (std::vector<bool>{true, true}));
    EXPECT_EQ(raises.count, 0);
}

TEST_F(ComposedOverlayTest, TheFrameIsConvertedToQtCoordinates) {
    showTwoZones();
    EXPECT_EQ(surface()->geometry(), QRect(100, 650, 400, 300));

    window->setFrame({-300, 20, 300, 200});

    EXPECT_EQ(surface()->geometry(), QRect(-300, 780, 300, 200));
}

TEST_F(ComposedOverlayTest, ZonesArePaintedAndNothingBetweenThem) {
    showTwoZones();

    EXPECT_NEAR(colorAt(50, 60).alphaF(), 0.35, 0.01);
    EXPECT_NEAR(colorAt(250, 60).alphaF(), 0.1, 0.01);
    EXPECT_EQ(colorAt(200, 150).alpha(), 0);
}

TEST_F(ComposedOverlayTest, TheAccentColourIsReadEachTimeTheWindowIsShown) {
    showTwoZones();
    EXPECT_GT(colorAt(50, 60).green(), 200);
    EXPECT_LT(colorAt(50, 60).red(), 20);

    accent = Qt::red;
    window->orderFront();
    EXPECT_LT(colorAt(50, 60).red(), 20) << "not in the middle of a drag";
    window->orderOut();
    window->orderFront();

    EXPECT_GT(colorAt(50, 60).red(), 200);
    EXPECT_LT(colorAt(50, 60).green(), 20);
}

TEST_F(ComposedOverlayTest, ARemovedFigureIsErased) {
    showTwoZones();

    window->setFigures({zoneFigure(kLeft, "1", true)}, {kRight});

    EXPECT_EQ(colorAt(250, 60).alpha(), 0);
}

/// Records the painted area of all widgets.
class PaintLog : public QObject {
public:
    PaintLog() { qApp->installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint)
            painted += static_cast<QPaintEvent*>(event)->region();
        return false;
    }

    QRegion painted;
};

TEST_F(ComposedOverlayTest, OnlyTheChangedAreaIsRepainted) {
    showTwoZones();
    PaintLog log;

    window->setFigures({zoneFigure(kLeft, "1", true), zoneFigure(kRight, "2", true)}, {kRight});
    QApplication::processEvents();

    EXPECT_EQ(log.painted.boundingRect(), QRect(200, 0, 200, 300));
}

TEST_F(ComposedOverlayTest, ALabelLargerThanItsZoneIsRepaintedWhole) {
    showTwoZones();
    constexpr Rect kSlim{100, 100, 4, 4};
    PaintLog log;

    window->setFigures({zoneFigure(kSlim, "8")}, {kLeft, kRight, kSlim});
    QApplication::processEvents();
    log.painted = {};
    window->setFigures({zoneFigure(kSlim, "8", true)}, {kSlim});
    QApplication::processEvents();

    EXPECT_TRUE(log.painted.contains(QRect(96, 90, 12, 20)));
    EXPECT_FALSE(log.painted.contains(QPoint(300, 150)));
}

TEST_F(ComposedOverlayTest, OrderOutHidesTheWindowAtOnce) {
    showTwoZones();

    window->orderOut();

    EXPECT_FALSE(surface()->isVisible());
}

TEST_F(ComposedOverlayTest, ChangesMadeWhileHiddenAreShownNextTime) {
    showTwoZones();
    window->orderOut();

    window->setFrame({0, 700, 400, 300});
    window->setFigures({zoneFigure(kRight, "2", true)}, {kLeft, kRight});
    window->orderFront();
    QApplication::processEvents();

    EXPECT_EQ(surface()->geometry(), QRect(0, 0, 400, 300));
    EXPECT_NEAR(colorAt(250, 60).alphaF(), 0.35, 0.01);
}

TEST_F(ComposedOverlayTest, TheWidgetIsDestroyedAfterAQuietTimeAndCreatedAgainOnDemand) {
    showTwoZones();
    window->orderOut();
    clock.advance(ComposedOverlay::kQuietTime - 1ms);
    EXPECT_NE(surface(), nullptr);
    clock.advance(1ms);
    EXPECT_EQ(surface(), nullptr);

    window->orderFront();
    QApplication::processEvents();

    EXPECT_NEAR(colorAt(50, 60).alphaF(), 0.35, 0.01);
    EXPECT_EQ(prepared.size(), 2U);
}

TEST_F(ComposedOverlayTest, TheQuietTimeStartsAnewWhenTheWindowIsHiddenAgain) {
    showTwoZones();
    window->orderOut();
    clock.advance(20s);
    window->orderFront();
    clock.advance(1min);
    EXPECT_TRUE(surface()->isVisible());

    window->orderOut();
    clock.advance(29s);

    EXPECT_NE(surface(), nullptr);
}

TEST_F(ComposedOverlayTest, ADestroyedWindowLeavesNoWidgetAndNoPendingWork) {
    showTwoZones();
    window->orderOut();

    window.reset();
    clock.advance(1min);

    EXPECT_EQ(surface(), nullptr);
}

TEST_F(ComposedOverlayTest, OrderOutBeforeTheFirstShowDoesNothing) {
    window->orderOut();
    clock.advance(1min);

    EXPECT_EQ(surface(), nullptr);
}

TEST_F(ComposedOverlayTest, MouseAndKeyboardPassThroughTheWindow) {
    showTwoZones();

    EXPECT_TRUE(surface()->windowFlags() & Qt::WindowTransparentForInput);
    EXPECT_TRUE(surface()->windowFlags() & Qt::WindowDoesNotAcceptFocus);
    EXPECT_TRUE(surface()->testAttribute(Qt::WA_ShowWithoutActivating));
}

/// A display with two pixels per point.
class FineComposedOverlayTest : public ComposedOverlayTest {
protected:
    static void SetUpTestSuite() {
        ComposedOverlayTest::SetUpTestSuite();
        qputenv("QT_SCALE_FACTOR", "2");
    }
    static void TearDownTestSuite() { qunsetenv("QT_SCALE_FACTOR"); }
};

TEST_F(FineComposedOverlayTest, FiguresArePaintedAtTheFullResolutionOfTheDisplay) {
    showTwoZones();
    const QImage image = surface()->grab().toImage();

    ASSERT_EQ(image.size(), QSize(800, 600));
    EXPECT_NEAR(image.pixelColor(100, 120).alphaF(), 0.35, 0.01);
    EXPECT_NEAR(image.pixelColor(500, 120).alphaF(), 0.1, 0.01);
    EXPECT_EQ(image.pixelColor(400, 300).alpha(), 0);
    // The line is three points wide, centred on the edge of a shape that is inset by two points.
    EXPECT_EQ(image.pixelColor(0, 300).alpha(), 0);
    EXPECT_GT(image.pixelColor(1, 300).alphaF(), 0.9);
    EXPECT_GT(image.pixelColor(6, 300).alphaF(), 0.9);
    EXPECT_NEAR(image.pixelColor(7, 300).alphaF(), 0.35, 0.01);
}

TEST_F(FineComposedOverlayTest, OnlyTheChangedAreaIsRepainted) {
    showTwoZones();
    PaintLog log;

    window->setFigures({zoneFigure(kLeft, "1"), zoneFigure(kRight, "2")}, {kLeft});
    QApplication::processEvents();

    EXPECT_EQ(log.painted.boundingRect(), QRect(0, 0, 200, 300));
}

} // namespace
} // namespace tessarel::qt
