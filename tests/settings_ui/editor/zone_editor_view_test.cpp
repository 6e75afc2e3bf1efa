// SPDX-License-Identifier: MIT

#include "settings_ui/editor/zone_editor_view.h"

#include "model/presets.h"
#include "settings_ui/kit/kit.h"
#include "settings_ui/recorded_painting.h"
#include "settings_ui/settings_ui_test.h"

#include <QAccessible>
#include <QApplication>
#include <QFocusEvent>
#include <QImage>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QRegion>
#include <QTest>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tessarel {
namespace {

/// Fixture: an editor view of 500 x 400 points. One percent is 5 points across and 4 down.
class ZoneEditorViewTest : public SettingsUiTest {
protected:
    ZoneEditorViewTest() {
        settings.gridStep = 0;
        put({Presets::z(20, 20, 20, 20), Presets::z(60, 60, 20, 20)});
        view->resize(500, 400);
        view->onSelect = [this](int index) { selections.push_back(index); };
        view->onEdit = [this] { ++edits; };
        view->onCommit = [this] { ++commits; };
        view->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(view.get()));
    }

    void put(std::vector<Zone> zones) { settings.zones = Presets::pad(std::move(zones)); }
    const Zone& zone(std::size_t i) { return settings.zones.at(i); }
    static QPoint at(double xPercent, double yPercent) {
        return QPointF(xPercent * 5, yPercent * 4).toPoint();
    }

    void press(double x, double y) { QTest::mousePress(view.get(), Qt::LeftButton, {}, at(x, y)); }
    void release(double x, double y) { QTest::mouseRelease(view.get(), Qt::LeftButton, {}, at(x, y)); }
    void move(double x, double y, Qt::KeyboardModifiers modifiers = {},
              Qt::MouseButtons down = Qt::LeftButton) {
        const QPointF place = at(x, y);
        QMouseEvent event(QEvent::MouseMove, place, view->mapToGlobal(place), Qt::NoButton, down, modifiers);
        QApplication::sendEvent(view.get(), &event);
    }

    std::unique_ptr<ZoneEditorView> view = std::make_unique<ZoneEditorView>(settings);
    std::vector<int> selections;
    int edits = 0;
    int commits = 0;
};

TEST_F(ZoneEditorViewTest, ADragMovesAZoneAndCommitsOnce) {
    press(70, 70);
    move(65, 70);
    move(60, 72);
    EXPECT_EQ(commits, 0);
    release(60, 72);

    EXPECT_EQ(zone(1), Presets::z(50, 62, 20, 20));
    EXPECT_EQ(selections, std::vector{1});
    EXPECT_EQ(edits, 2);
    EXPECT_EQ(commits, 1);
}

TEST_F(ZoneEditorViewTest, ADragFollowsThePointerByDevicePixels) {
    // At a scale of 2, Qt delivers whole points to a widget and half points to its window.
    const auto send = [this](QEvent::Type type, const QPointF& inWindow, Qt::MouseButton button) {
        const QPointF inView = (inWindow - QPointF(30, 40)).toPoint();
        QMouseEvent event(type, inView, inWindow, view->mapToGlobal(inView), button, Qt::LeftButton,
                          Qt::ShiftModifier);
        QApplication::sendEvent(view.get(), &event);
    };
    send(QEvent::MouseButtonPress, QPointF(380, 320), Qt::LeftButton);

    for (const double moved : {0.5, 1.0, 1.5, 2.0}) {
        send(QEvent::MouseMove, QPointF(380 + moved, 320 - moved), Qt::NoButton);
        EXPECT_NEAR(zone(1).x, 60 + moved / 5, 0.006) << moved;
        EXPECT_NEAR(zone(1).y, 60 - moved / 4, 0.006) << moved;
    }
}

TEST_F(ZoneEditorViewTest, TheViewSavesNothing) {
    press(70, 70);
    move(65, 70);
    release(65, 70);
    QTest::keyClick(view.get(), Qt::Key_Delete);

    EXPECT_EQ(saved(), std::nullopt);
    EXPECT_EQ(announcements, 0);
}

TEST_F(ZoneEditorViewTest, AnEdgeIsResized) {
    press(40, 30);
    move(46, 30);
    release(46, 30);

    EXPECT_EQ(zone(0), Presets::z(20, 20, 26, 20));
    EXPECT_TRUE(selections.empty());
}

TEST_F(ZoneEditorViewTest, AClickCommitsWithoutAnEdit) {
    press(30, 30);
    release(30, 30);

    EXPECT_EQ(edits, 0);
    EXPECT_EQ(commits, 1);
    EXPECT_TRUE(selections.empty());
}

TEST_F(ZoneEditorViewTest, AClickOnEmptySpaceReportsNothing) {
    press(5, 90);
    move(10, 90);
    release(10, 90);

    EXPECT_EQ(edits + commits, 0);
    EXPECT_EQ(view->selected(), 0);
}

TEST_F(ZoneEditorViewTest, TheSecondPressOfADoubleClickCanDrag) {
    press(30, 30);
    release(30, 30);
    QMouseEvent second(QEvent::MouseButtonDblClick, at(30, 30), view->mapToGlobal(at(30, 30)), Qt::LeftButton,
                       Qt::LeftButton, {});
    QApplication::sendEvent(view.get(), &second);
    move(36, 30);

    EXPECT_EQ(zone(0).x, 26);
}

TEST_F(ZoneEditorViewTest, ShiftHeldDuringTheDragTurnsSnappingOff) {
    press(20, 30);

    move(24, 30);
    EXPECT_EQ(zone(0).x, 25) << "snapped to the guide";
    move(24, 30, Qt::ShiftModifier);
    EXPECT_EQ(zone(0).x, 24);
    move(24, 30, Qt::ControlModifier);
    EXPECT_EQ(zone(0).x, 25);
}

TEST_F(ZoneEditorViewTest, OtherButtonsGrabNothing) {
    QTest::mousePress(view.get(), Qt::RightButton, {}, at(70, 70));
    move(75, 75, {}, Qt::RightButton);
    QTest::mouseRelease(view.get(), Qt::RightButton, {}, at(75, 75));

    EXPECT_EQ(zone(1), Presets::z(60, 60, 20, 20));
    EXPECT_EQ(view->selected(), 0);
    EXPECT_EQ(commits, 0);
}

TEST_F(ZoneEditorViewTest, AnotherButtonDuringADragDoesNotEndIt) {
    press(30, 30);
    QTest::mousePress(view.get(), Qt::RightButton, {}, at(30, 30));
    QTest::mouseRelease(view.get(), Qt::RightButton, {}, at(30, 30));
    move(38, 30);

    EXPECT_EQ(commits, 0);
    EXPECT_EQ(zone(0).x, 28);
}

TEST_F(ZoneEditorViewTest, ALostReleaseEndsTheDragAtTheNextMove) {
    press(30, 30);
    move(40, 30);
    move(80, 30, {}, Qt::NoButton);

    EXPECT_EQ(commits, 1);
    EXPECT_EQ(zone(0).x, 30);
}

TEST_F(ZoneEditorViewTest, HidingTheViewEndsTheDrag) {
    press(30, 30);
    move(40, 30);

    view->hide();

    EXPECT_EQ(commits, 1);
}

TEST_F(ZoneEditorViewTest, APressTakesTheKeyboardFocus) {
    view->clearFocus();

    press(5, 90);

    EXPECT_TRUE(view->hasFocus());
}

TEST_F(ZoneEditorViewTest, DeleteAndBackspaceDisableTheSelectedZone) {
    for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Backspace}) {
        put({Presets::z(20, 20, 20, 20), Presets::z(60, 60, 20, 20)});
        view->setSelected(1);
        selections.clear();
        commits = 0;

        QTest::keyClick(view.get(), key);

        EXPECT_EQ(zone(1), (Zone{false, 60, 60, 20, 20}));
        EXPECT_EQ(commits, 1);
        EXPECT_EQ(selections, std::vector{1});
    }
}

TEST_F(ZoneEditorViewTest, DeleteCommitsBeforeItSelects) {
    std::string order;
    view->onCommit = [&] { order += 'c'; };
    view->onSelect = [&](int) { order += 's'; };

    QTest::keyClick(view.get(), Qt::Key_Delete);

    EXPECT_EQ(order, "cs");
}

TEST_F(ZoneEditorViewTest, DeleteWithoutAValidSelectionDoesNothing) {
    for (const int beyond : {-1, 9}) {
        view->setSelected(beyond);
        const AppSettings before = settings;

        QTest::keyClick(view.get(), Qt::Key_Delete);

        EXPECT_EQ(settings, before);
        EXPECT_EQ(commits, 0);
        EXPECT_TRUE(selections.empty());
    }
}

TEST_F(ZoneEditorViewTest, EveryOtherKeyIsLeftToTheParent) {
    QKeyEvent other(QEvent::KeyPress, Qt::Key_A, {}, QStringLiteral("a"));
    QApplication::sendEvent(view.get(), &other);
    EXPECT_FALSE(other.isAccepted());

    QKeyEvent remove(QEvent::KeyPress, Qt::Key_Delete, {});
    QApplication::sendEvent(view.get(), &remove);
    EXPECT_TRUE(remove.isAccepted());
}

TEST_F(ZoneEditorViewTest, ItWorksWithoutCallbacks) {
    view->onSelect = nullptr;
    view->onEdit = nullptr;
    view->onCommit = nullptr;

    press(70, 70);
    move(65, 70);
    release(65, 70);
    QTest::keyClick(view.get(), Qt::Key_Delete);

    EXPECT_EQ(zone(1), (Zone{false, 55, 60, 20, 20}));
}

TEST_F(ZoneEditorViewTest, ItIsAccessibleAsAGraphic) {
    const QAccessibleInterface* const told = QAccessible::queryAccessibleInterface(view.get());

    ASSERT_NE(told, nullptr);
    EXPECT_EQ(told->role(), QAccessible::Graphic);
    EXPECT_EQ(told->text(QAccessible::Name), "Zones");
}

TEST_F(ZoneEditorViewTest, ItsDescriptionListsTheEnabledZones) {
    put({Presets::z(0, 0, 100.0 / 3, 50), {false, 1, 2, 3, 4}, Presets::z(12.5, 50, 87.5, 50)});
    view->zonesChanged();

    EXPECT_EQ(view->accessibleDescription(), "Zone 1: left 0 %, top 0 %, 33.33 % wide, 50 % high. "
                                             "Zone 3: left 12.5 %, top 50 %, 87.5 % wide, 50 % high");
    put({});
    view->zonesChanged();
    EXPECT_EQ(view->accessibleDescription(), "No zones");
}

TEST_F(ZoneEditorViewTest, ItsDescriptionFollowsEachChange) {
    put({Presets::z(20, 20, 20, 20)});
    view->setSelected(0);
    EXPECT_EQ(view->accessibleDescription(), "Zone 1: left 20 %, top 20 %, 20 % wide, 20 % high");

    press(30, 30);
    move(40, 30, Qt::ShiftModifier);
    EXPECT_EQ(view->accessibleDescription(), "Zone 1: left 30 %, top 20 %, 20 % wide, 20 % high");

    release(40, 30);
    QTest::keyClick(view.get(), Qt::Key_Delete);
    EXPECT_EQ(view->accessibleDescription(), "No zones");
}

TEST_F(ZoneEditorViewTest, TheCursorShowsWhatAPressWouldDo) {
    struct Case {
        QPointF place;
        Qt::CursorShape shape;
    };
    for (const auto& [place, shape] :
         {Case{{20, 30}, Qt::SizeHorCursor}, Case{{40, 30}, Qt::SizeHorCursor},
          Case{{30, 20}, Qt::SizeVerCursor}, Case{{30, 40}, Qt::SizeVerCursor},
          Case{{20, 20}, Qt::SizeFDiagCursor}, Case{{40, 40}, Qt::SizeFDiagCursor},
          Case{{40, 20}, Qt::SizeBDiagCursor}, Case{{20, 40}, Qt::SizeBDiagCursor},
          Case{{30, 30}, Qt::OpenHandCursor}, Case{{60, 70}, Qt::OpenHandCursor},
          Case{{5, 90}, Qt::ArrowCursor}}) {
        move(place.x(), place.y(), {}, Qt::NoButton);
        EXPECT_EQ(view->cursor().shape(), shape) << place.x() << ' ' << place.y();
    }
}

TEST_F(ZoneEditorViewTest, TheCursorIsAClosedHandWhileAZoneIsMoved) {
    press(30, 30);
    EXPECT_EQ(view->cursor().shape(), Qt::ClosedHandCursor);
    move(95, 95);
    EXPECT_EQ(view->cursor().shape(), Qt::ClosedHandCursor);
    release(95, 95);
    EXPECT_EQ(view->cursor().shape(), Qt::OpenHandCursor);
}

/// Fixture: keeps an image of the screen, to which only those parts of the view are copied that it repaints.
class ZoneEditorRepaintTest : public ZoneEditorViewTest, public QObject {
protected:
    ZoneEditorRepaintTest() {
        QApplication::processEvents();
        screen = whole();
        view->installEventFilter(this);
    }

    QImage whole() {
        isGrabbing = true;
        const QImage image = view->grab().toImage();
        isGrabbing = false;
        return image;
    }

    /// Processes events, copies the repainted parts, and expects the screen to match the view.
    void expectScreenIsUpToDate() {
        QApplication::processEvents();
        const QImage now = whole();
        QPainter painter(&screen);
        for (const QRect& part : painted)
            painter.drawImage(part, now, part);
        painter.end();
        painted = {};
        EXPECT_EQ(screen, now);
    }

    QImage screen;
    QRegion painted;
    bool isGrabbing = false;

private:
    bool eventFilter(QObject* /*receiver*/, QEvent* event) override {
        if (event->type() == QEvent::Paint && !isGrabbing)
            painted += dynamic_cast<QPaintEvent&>(*event).region();
        return false;
    }
};

TEST_F(ZoneEditorRepaintTest, TheScreenIsUpToDateDuringEveryDrag) {
    for (const auto& [x, y] : {std::pair{70, 70}, {80, 80}, {95, 50}, {33, 20}, {0, 0}, {100, 100}}) {
        press(x, y);
        expectScreenIsUpToDate();
        for (const int step : {3, -7, 30, -60}) {
            move(x + step, y + step / 2);
            expectScreenIsUpToDate();
        }
        release(x, y);
        expectScreenIsUpToDate();
    }
}

TEST_F(ZoneEditorRepaintTest, OnlyTheChangedPartIsRepainted) {
    press(70, 70);
    expectScreenIsUpToDate();

    move(75, 70);
    QApplication::processEvents();

    EXPECT_LT(painted.boundingRect().width(), 200);
    EXPECT_LT(painted.boundingRect().height(), 150);
}

TEST_F(ZoneEditorRepaintTest, ANewSelectionIsShownAtOnce) {
    view->setSelected(1);
    expectScreenIsUpToDate();
    view->setSelected(-1);
    expectScreenIsUpToDate();
}

TEST_F(ZoneEditorRepaintTest, KeyboardFocusIsShownAndMouseFocusIsNot) {
    const QImage without = whole();
    QFocusEvent byKey(QEvent::FocusIn, Qt::TabFocusReason);
    QApplication::sendEvent(view.get(), &byKey);
    EXPECT_NE(whole(), without);

    QFocusEvent byMouse(QEvent::FocusIn, Qt::MouseFocusReason);
    QApplication::sendEvent(view.get(), &byMouse);
    EXPECT_EQ(whole(), without);
}

TEST_F(ZoneEditorRepaintTest, KeyboardFocusIsShownAsALineOfTwoPointsAlongTheBorder) {
    QFocusEvent byKey(QEvent::FocusIn, Qt::BacktabFocusReason);
    QApplication::sendEvent(view.get(), &byKey);
    RecordedPainting painting;

    isGrabbing = true;
    view->render(&painting, {}, {}, {});

    const Painted ring = painting.painted.back();
    EXPECT_EQ(ring.bounds, QRectF(1, 1, 498, 398));
    EXPECT_EQ(ring.stroke, controlAccentColor(view->palette()));
    EXPECT_EQ(ring.strokeWidth, 2);
    EXPECT_EQ(ring.join, Qt::MiterJoin);
    EXPECT_FALSE(ring.fill.isValid());
}

TEST_F(ZoneEditorRepaintTest, ADeletedZoneDisappears) {
    const QRgb inZone = whole().pixel(at(30, 30));
    QTest::keyClick(view.get(), Qt::Key_Delete);

    EXPECT_NE(whole().pixel(at(30, 30)), inZone);
    EXPECT_EQ(whole().pixel(at(31, 31)), whole().pixel(at(90, 31))) << "the same as outside all zones";
}

} // namespace
} // namespace tessarel
