// SPDX-License-Identifier: MIT

#include "settings_ui/settings_window_controller.h"

#include "look/control_style.h"
#include "model/presets.h"
#include "settings_ui/kit/kit.h"
#include "settings_ui/recorder_button.h"
#include "settings_ui/settings_ui_test.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QImage>
#include <QList>
#include <QPoint>
#include <QPointF>
#include <QPushButton>
#include <QRect>
#include <QRectF>
#include <QScreen>
#include <QSlider>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QWheelEvent>
#include <QWidget>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>

namespace tessarel {
namespace {

using Tab = SettingsWindowController::Tab;

class SettingsWindowControllerTest : public SettingsUiTest {
protected:
    /// Returns the settings windows, whether shown or not.
    static QList<QWidget*> windows() {
        QList<QWidget*> windows;
        for (QWidget* const widget : QApplication::topLevelWidgets()) {
            if (widget->windowTitle() == "Tessarel Settings")
                windows.append(widget);
        }
        return windows;
    }

    static QWidget& window() { return *windows().first(); }
    static QTabWidget& tabs() { return *window().findChild<QTabWidget*>(); }

    /// Returns the gap slider, whether its tab is in a window or not. Throws when there is none.
    static QSlider& gapSlider() {
        for (QWidget* const widget : QApplication::allWidgets()) {
            if (widget->accessibleName() == "Gap between windows" && widget->inherits("QSlider"))
                return dynamic_cast<QSlider&>(*widget);
        }
        throw std::out_of_range("no gap slider");
    }

    SettingsWindowController controller{services, ports};
};

TEST(SettingsTabTest, ThereAreFourTabs) {
    EXPECT_EQ(SettingsWindowController::tab(0), Tab::Layouts);
    EXPECT_EQ(SettingsWindowController::tab(1), Tab::Shortcuts);
    EXPECT_EQ(SettingsWindowController::tab(2), Tab::General);
    EXPECT_EQ(SettingsWindowController::tab(3), Tab::About);
    EXPECT_EQ(SettingsWindowController::tab(-1), std::nullopt);
    EXPECT_EQ(SettingsWindowController::tab(4), std::nullopt);
}

TEST_F(SettingsWindowControllerTest, NoWindowExistsBeforeTheFirstShow) {
    EXPECT_TRUE(windows().isEmpty());
}

TEST_F(SettingsWindowControllerTest, ARefreshShowsTheCurrentSettingsWithoutCreatingAWindow) {
    settings.gap = 8;

    controller.refreshAll();

    EXPECT_TRUE(windows().isEmpty());
    EXPECT_EQ(gapSlider().value(), 8);
}

TEST_F(SettingsWindowControllerTest, EveryTabIsRefreshed) {
    controller.show();
    settings.zones = Presets::all()[1].zones;
    settings.gap = 8;
    services.store.setBinding(std::nullopt, ActionID::leftHalf);

    controller.refreshAll();

    EXPECT_EQ(gapSlider().value(), 8);
    std::string leftHalf;
    std::string layout;
    for (QWidget* const widget : window().findChildren<QWidget*>()) {
        if (widget->accessibleName() == "Left half" && widget->inherits("QPushButton"))
            leftHalf = fullText(*widget).toStdString();
        if (widget->accessibleName() == "Layout")
            layout = dynamic_cast<QComboBox&>(*widget).currentText().toStdString();
    }
    EXPECT_EQ(leftHalf, "None");
    EXPECT_EQ(layout, "Halves");
}

TEST_F(SettingsWindowControllerTest, AHotKeyRecordedOnOneTabIsShownOnTheOther) {
    controller.show(Tab::Layouts);
    QList<RecorderButton*> recorders;
    for (QPushButton* const button : window().findChildren<QPushButton*>()) {
        auto* const recorder = dynamic_cast<RecorderButton*>(button);
        if (recorder && recorder->actionID() == ActionID::zone1)
            recorders.append(recorder);
    }
    ASSERT_EQ(recorders.size(), 2) << "one on the Layouts tab and one on the Shortcuts tab";

    recorders[0]->click();
    desktop.localKeys().press({11, kControlFlag});

    for (const RecorderButton* const recorder : recorders)
        EXPECT_EQ(fullText(*recorder), "Ctrl+B");
}

TEST_F(SettingsWindowControllerTest, ShowingRefreshesTheSettings) {
    controller.show();
    window().close();
    settings.gap = 8;

    controller.show();

    EXPECT_EQ(gapSlider().value(), 8);
}

TEST_F(SettingsWindowControllerTest, TheWindowHasItsSizeAndTitleAndCannotBeResized) {
    controller.show();

    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(window().windowTitle(), "Tessarel Settings");
    EXPECT_EQ(window().minimumSize(), QSize(820, 540));
    EXPECT_EQ(window().maximumSize(), QSize(820, 540));
    EXPECT_FALSE(window().windowFlags() & Qt::WindowMaximizeButtonHint);
    EXPECT_TRUE(window().windowFlags() & Qt::WindowMinimizeButtonHint);
    EXPECT_TRUE(window().windowFlags() & Qt::WindowCloseButtonHint);
    EXPECT_TRUE(window().windowFlags() & Qt::WindowTitleHint);
    EXPECT_TRUE(window().windowFlags() & Qt::WindowSystemMenuHint);
    EXPECT_EQ(window().font().pixelSize(), 13);
}

TEST_F(SettingsWindowControllerTest, TheTabsAreInOrder) {
    controller.show();

    ASSERT_EQ(tabs().count(), 4);
    EXPECT_EQ(tabs().geometry(), QRect(10, 10, 800, 520));
    EXPECT_EQ(tabs().focusPolicy(), Qt::NoFocus) << "its tab bar takes the focus instead";
    const QStringList labels{"Layouts", "Shortcuts", "General", "About"};
    for (int position = 0; position < 4; ++position) {
        EXPECT_EQ(tabs().tabText(position), labels[position]);
        EXPECT_EQ(tabs().widget(position)->objectName(), labels[position]);
    }
}

TEST_F(SettingsWindowControllerTest, TheTabKeyReachesTheRowOfTabsFromEveryTab) {
    for (const Tab tab : {Tab::Layouts, Tab::Shortcuts, Tab::General, Tab::About}) {
        controller.show(tab);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
        QWidget* const bar = tabs().tabBar();
        bar->setFocus();
        QTest::keyClick(bar, Qt::Key_Tab);
        ASSERT_NE(window().focusWidget(), bar);
        for (int steps = 0; steps < 100 && window().focusWidget() != bar; ++steps)
            QTest::keyClick(window().focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(window().focusWidget(), bar);
        QTest::keyClick(bar, Qt::Key_Tab);
        QTest::keyClick(window().focusWidget(), Qt::Key_Tab, Qt::ShiftModifier);
        EXPECT_EQ(window().focusWidget(), bar) << "and back";
    }
}

TEST_F(SettingsWindowControllerTest, TheArrowKeysChangeTheTab) {
    controller.show(Tab::Layouts);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    tabs().tabBar()->setFocus();

    QTest::keyClick(tabs().tabBar(), Qt::Key_Right);

    EXPECT_EQ(tabs().currentIndex(), 1);
}

TEST_F(SettingsWindowControllerTest, EachViewIsCompletelyInsideItsTab) {
    controller.show();

    for (int position = 0; position < 4; ++position) {
        tabs().setCurrentIndex(position);
        const QWidget& page = *tabs().widget(position);
        const auto* const view = page.findChild<QWidget*>({}, Qt::FindDirectChildrenOnly);
        EXPECT_EQ(view->geometry(), QRect(8, 4, 780, 480));
        EXPECT_TRUE(page.rect().contains(view->geometry())) << position;
    }
}

TEST_F(SettingsWindowControllerTest, TheWindowIsCentredOnTheScreenAsFarAsThereIsRoom) {
    const QRect room = QApplication::primaryScreen()->availableGeometry();
    ASSERT_LT(room.width(), 820);
    ASSERT_GT(room.height(), 540);

    controller.show();

    EXPECT_EQ(window().x(), room.x());
    EXPECT_EQ(window().y(), room.y() + (room.height() - 540) / 2);
}

TEST_F(SettingsWindowControllerTest, AWindowWhoseDisplayHasGoneIsCentredAgain) {
    controller.show();
    const QPoint centred = window().pos();
    const int beyond = QApplication::primaryScreen()->geometry().right() + 1;

    window().move(beyond, 100);
    controller.show();
    EXPECT_EQ(window().pos(), centred) << "while it is open";

    window().move(beyond, 100);
    window().close();
    controller.show();
    EXPECT_EQ(window().pos(), centred) << "after it has been closed";
}

TEST_F(SettingsWindowControllerTest, AWindowThatTheUserHasMovedStaysWhereItIs) {
    controller.show();

    window().move(50, 60);
    controller.show();
    EXPECT_EQ(window().pos(), QPoint(50, 60));

    window().close();
    controller.show();
    EXPECT_EQ(window().pos(), QPoint(50, 60));
}

TEST_F(SettingsWindowControllerTest, ShowingTwiceCreatesOneWindowAndKeepsItsTab) {
    controller.show(Tab::General);

    controller.show();

    EXPECT_EQ(windows().size(), 1);
    EXPECT_EQ(tabs().currentIndex(), 2);
}

TEST_F(SettingsWindowControllerTest, ClosingHidesTheWindowAndShowingBringsTheSameOneBack) {
    controller.show();
    const QWidget* const first = &window();

    window().close();
    EXPECT_FALSE(window().isVisible());
    controller.show();

    EXPECT_EQ(&window(), first);
    EXPECT_TRUE(window().isVisible());
}

TEST_F(SettingsWindowControllerTest, AWindowClosedOnOneTabReopensOnTheRequestedTab) {
    controller.show(Tab::Layouts);
    window().close();

    controller.show(Tab::About);

    EXPECT_EQ(tabs().currentIndex(), 3);
}

TEST_F(SettingsWindowControllerTest, ShowingBringsTheProgramToTheFront) {
    controller.show();

    EXPECT_EQ(desktop.ownApplication().activations, 1);
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window()));
}

TEST_F(SettingsWindowControllerTest, ShowingRestoresAMinimizedWindow) {
    controller.show();
    window().showMinimized();
    const int before = desktop.ownApplication().activations;

    controller.show();

    EXPECT_FALSE(window().isMinimized());
    EXPECT_EQ(desktop.ownApplication().activations, before + 2) << "already while it is minimised";
}

/// Turns the wheel over a control by one notch down and one up.
void turnWheelOver(QWidget& control) {
    const QPointF middle = QRectF(control.rect()).center();
    for (const int angle : {-120, 120}) {
        QWheelEvent wheel(middle, control.mapToGlobal(middle), {}, {0, angle}, {}, {}, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(&control, &wheel);
        QApplication::processEvents();
    }
}

TEST_F(SettingsWindowControllerTest, TheWheelChangesNoPopUpOrSliderWithoutTheFocus) {
    settings.gap = settings.margin = 12.5; // a moved slider would round it
    const AppSettings before = settings;
    int turned = 0;
    for (const Tab tab : {Tab::Layouts, Tab::Shortcuts, Tab::General, Tab::About}) {
        controller.show(tab);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
        const QWidget* const focused = window().focusWidget();
        for (QWidget* const control : window().findChildren<QWidget*>()) {
            if (!control->isVisible() || !(control->inherits("QComboBox") || control->inherits("QSlider")))
                continue;
            turnWheelOver(*control);
            ++turned;
            EXPECT_EQ(settings, before) << control->accessibleName().toStdString();
            EXPECT_EQ(window().focusWidget(), focused) << control->accessibleName().toStdString();
        }
    }
    EXPECT_EQ(turned, 5);
}

TEST_F(SettingsWindowControllerTest, TheWheelMovesASliderThatHasTheFocus) {
    controller.show(Tab::General);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    gapSlider().setFocus();
    QWheelEvent wheel({5, 5}, gapSlider().mapToGlobal(QPointF(5, 5)), {}, {0, 120}, {}, {}, Qt::NoScrollPhase,
                      false);

    QApplication::sendEvent(&gapSlider(), &wheel);

    EXPECT_GT(settings.gap, 0);
}

TEST_F(SettingsWindowControllerTest, TheStandardKeysCloseTheWindowAndQuitTheProgram) {
    controller.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));

    QTest::keyClick(&window(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(window().isVisible());
    EXPECT_EQ(desktop.ownApplication().terminations, 0);

    controller.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    QTest::keyClick(&window(), Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(desktop.ownApplication().terminations, 1);
}

TEST_F(SettingsWindowControllerTest, TheWindowIsDestroyedWithItsController) {
    {
        SettingsWindowController other(services, ports);
        other.show();
        ASSERT_EQ(windows().size(), 1);
    }

    EXPECT_TRUE(windows().isEmpty());
}

/// Fixture: the window rendered at 1.25 pixels per point.
class ScaledSettingsWindowTest : public SettingsWindowControllerTest {
protected:
    static constexpr double kScale = 1.25;

    ScaledSettingsWindowTest() {
        QApplication::setStyle(new ControlStyle);
        controller.show();
        screen.setDevicePixelRatio(kScale);
        window().render(&screen);
    }

    /// Returns the lowest grey value of `count` pixels, from (`x`, `y`) on in steps of `step`.
    [[nodiscard]] int darkest(int x, int y, QPoint step, int count) const {
        int darkest = 255;
        for (int i = 0; i < count; ++i)
            darkest = std::min(darkest, qGray(screen.pixel(QPoint(x, y) + i * step)));
        return darkest;
    }
    static int pixels(int points) { return static_cast<int>(points * kScale); }

    QImage screen{QSize(pixels(820), pixels(540)), QImage::Format_RGB32};
};

TEST_F(ScaledSettingsWindowTest, ThePagesHaveABorderOnEverySide) {
    constexpr int kLine = 200; // the border is darker than this, the window and the page are not
    const int middle = pixels(300);

    EXPECT_LT(darkest(pixels(8), middle, QPoint(1, 0), 6), kLine) << "left";
    EXPECT_LT(darkest(pixels(806), middle, QPoint(1, 0), 6), kLine) << "right";
    EXPECT_LT(darkest(middle, pixels(526), QPoint(0, 1), 6), kLine) << "below";
    EXPECT_LT(darkest(pixels(700), pixels(30), QPoint(0, 1), 12), kLine) << "above";
    EXPECT_GT(darkest(pixels(12), middle, QPoint(1, 0), 6), kLine) << "in the page";
}

TEST_F(SettingsWindowControllerTest, ShortcutsThatHaveBecomeFreeAreTakenOverWhenTheWindowBecomesActive) {
    auto other = desktop.hotKeys().holdByAnotherProgram(8, kCtrlKey + kOptKey);
    services.hotKeys.registerAll();
    controller.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    ASSERT_TRUE(services.hotKeys.isTaken(ActionID::center));
    QWidget elsewhere;
    elsewhere.show();
    elsewhere.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&elsewhere));
    other.reset();
    ASSERT_TRUE(services.hotKeys.isTaken(ActionID::center));

    window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));

    EXPECT_FALSE(services.hotKeys.isTaken(ActionID::center));
}

TEST_F(SettingsWindowControllerTest, TheLoginItemIsReadAgainWhenTheWindowBecomesActive) {
    controller.show(Tab::General);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    const auto boxes = window().findChildren<QCheckBox*>();
    const auto box =
        std::ranges::find_if(boxes, [](const QCheckBox* one) { return one->text().startsWith("Launch"); });
    ASSERT_NE(box, boxes.end());
    QWidget elsewhere;
    elsewhere.show();
    elsewhere.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&elsewhere));
    desktop.loginItem().currentStatus = LoginItemPort::Status::Enabled;
    ASSERT_FALSE((*box)->isChecked());

    window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));

    EXPECT_TRUE((*box)->isChecked());
}

} // namespace
} // namespace tessarel
