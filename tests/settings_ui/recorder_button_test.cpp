// SPDX-License-Identifier: MIT

#include "settings_ui/recorder_button.h"

#include "settings_ui/kit/kit.h"
#include "settings_ui/settings_ui_test.h"

#include <QApplication>
#include <QColor>
#include <QFocusEvent>
#include <QHideEvent>
#include <QImage>
#include <QPalette>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

namespace tessarel {
namespace {

using namespace std::chrono_literals;

constexpr KeyDown kEscape{53};
constexpr KeyDown kFree{11, kControlFlag | kOptionFlag};         // Ctrl+Opt+B
constexpr KeyDown kZone1Default{18, kControlFlag | kOptionFlag}; // Ctrl+Opt+1
constexpr KeyDown kCenterDefault{8, kControlFlag | kOptionFlag};
constexpr Binding kFreeBinding{11, kCtrlKey + kOptKey};

class RecorderButtonTest : public SettingsUiTest {
protected:
    std::unique_ptr<RecorderButton> makeRecorder(ActionID action) {
        auto made = std::make_unique<RecorderButton>(view, QRect(0, 0, 200, 26), context);
        made->configure(action);
        made->onChange = [this] { ++changes; };
        return made;
    }

    /// Presses a key in one of the program's windows. Returns whether a recorder consumed it.
    bool press(const KeyDown& key) { return desktop.localKeys().press(key); }
    [[nodiscard]] std::string title() const { return fullText(*recorder).toStdString(); }
    [[nodiscard]] std::optional<Binding> binding(ActionID action = ActionID::center) const {
        return services.store.binding(action);
    }

    /// Returns whether the button shows its text in the colour of warnings.
    [[nodiscard]] bool showsWarning() const {
        const QImage picture = recorder->grab().toImage();
        const QColor warning = warningColor(recorder->palette());
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                // No other part of the button has a colour.
                const QColor pixel = picture.pixelColor(x, y);
                if (pixel.hsvSaturation() > warning.hsvSaturation() / 2 &&
                    std::abs(pixel.hsvHue() - warning.hsvHue()) < 20)
                    return true;
            }
        }
        return false;
    }

    /// Returns the contrast of two colours as WCAG defines it.
    static double contrast(const QColor& one, const QColor& other) {
        const auto luminance = [](const QColor& color) {
            const auto part = [](double value) {
                return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
            };
            return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) + 0.0722 * part(color.blueF());
        };
        const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
        return (light + 0.05) / (dark + 0.05);
    }

    FlippedView view;
    int changes = 0;
    std::unique_ptr<RecorderButton> recorder = makeRecorder(ActionID::center);
};

TEST_F(RecorderButtonTest, RecordsForTheFirstActionByDefault) {
    const RecorderButton fresh(view, {0, 0, 200, 26}, context);

    EXPECT_EQ(fresh.actionID(), ActionID::zone1);
    EXPECT_EQ(fullText(fresh), "Ctrl+Opt+1");
}

TEST_F(RecorderButtonTest, ShowsTheHotKeyOfItsAction) {
    EXPECT_EQ(title(), "Ctrl+Opt+C");

    recorder->configure(ActionID::nextDisplay);
    EXPECT_EQ(recorder->actionID(), ActionID::nextDisplay);
    EXPECT_EQ(title(), "Ctrl+Opt+Cmd+Right");

    services.store.setBinding(std::nullopt, ActionID::nextDisplay);
    recorder->refresh();
    EXPECT_EQ(title(), "None");
}

TEST_F(RecorderButtonTest, ACombinationOfAnotherProgramIsMarkedUntilItIsFree) {
    auto other = desktop.hotKeys().holdByAnotherProgram(8, kCtrlKey + kOptKey);
    services.hotKeys.registerAll();
    EXPECT_EQ(title(), "Ctrl+Opt+C");
    EXPECT_EQ(recorder->toolTip(), "Another program uses this combination");
    EXPECT_EQ(recorder->accessibleDescription(), "Ctrl+Opt+C. Another program uses this combination");
    EXPECT_EQ(recorder->accessibleName(), "Center");
    EXPECT_TRUE(showsWarning());

    other.reset();
    services.hotKeys.retryTaken();

    EXPECT_EQ(recorder->toolTip(), "");
    EXPECT_EQ(recorder->accessibleDescription(), "Ctrl+Opt+C");
    EXPECT_FALSE(showsWarning());
}

TEST_F(RecorderButtonTest, OnlyTheRecorderOfTheTakenCombinationIsMarked) {
    const auto other = desktop.hotKeys().holdByAnotherProgram(8, kCtrlKey + kOptKey);
    services.hotKeys.registerAll();

    recorder->configure(ActionID::maximize);

    EXPECT_EQ(recorder->toolTip(), "");
    EXPECT_FALSE(showsWarning());
}

TEST_F(RecorderButtonTest, ThePromptIsNotMarked) {
    const auto other = desktop.hotKeys().holdByAnotherProgram(8, kCtrlKey + kOptKey);
    services.hotKeys.registerAll();

    recorder->click();
    EXPECT_EQ(recorder->accessibleDescription(), "Press keys...");
    EXPECT_FALSE(showsWarning());

    press(kEscape);
    EXPECT_TRUE(showsWarning());
}

TEST_F(RecorderButtonTest, ARecordedCombinationThatIsTakenIsMarkedAtOnce) {
    const auto other = desktop.hotKeys().holdByAnotherProgram(11, kCtrlKey + kOptKey);
    const auto registered =
        services.store.tessarelSettingsChanged.connect([this] { services.hotKeys.registerAll(); });
    recorder->click();

    press(kFree);

    EXPECT_EQ(recorder->accessibleDescription(), "Ctrl+Opt+B. Another program uses this combination");
    EXPECT_TRUE(showsWarning());
}

TEST_F(RecorderButtonTest, TheMarkIsReadableOnLightAndDarkButtons) {
    for (const auto& button : {QColor(0xef, 0xef, 0xef), QColor(0x2f, 0x2f, 0x2f)}) {
        const QPalette palette(button, button);
        EXPECT_GE(contrast(warningColor(palette), palette.color(QPalette::Button)), 4.5);
    }
}

TEST_F(RecorderButtonTest, WaitsForKeysOnceItHasBeenClicked) {
    QTest::mouseClick(recorder.get(), Qt::LeftButton);

    EXPECT_EQ(title(), "Press keys...");
    EXPECT_TRUE(recorder->isRecording());
    EXPECT_EQ(desktop.localKeys().monitors(), 1U);
}

TEST_F(RecorderButtonTest, MonitorsNoKeysBeforeAndAfterRecording) {
    EXPECT_EQ(desktop.localKeys().monitors(), 0U);
    recorder->click();
    press(kEscape);

    EXPECT_EQ(desktop.localKeys().monitors(), 0U);
    EXPECT_FALSE(press(kFree));
    EXPECT_EQ(title(), "Ctrl+Opt+C");
}

TEST_F(RecorderButtonTest, StoresSavesAndAnnouncesAFreeCombination) {
    recorder->click();

    EXPECT_TRUE(press(kFree));

    EXPECT_EQ(binding(), kFreeBinding);
    ASSERT_TRUE(saved());
    EXPECT_EQ(saved()->bindings.at("center"), kFreeBinding);
    EXPECT_EQ(announcements, 1);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(title(), "Ctrl+Opt+B");
    EXPECT_FALSE(recorder->isRecording());
}

TEST_F(RecorderButtonTest, StoresAndShowsTheHotKeyBeforeTheChangeCallback) {
    std::string shown;
    recorder->onChange = [&] { shown = title(); };
    recorder->click();

    press(kFree);

    EXPECT_EQ(shown, "Ctrl+Opt+B");
}

TEST_F(RecorderButtonTest, WorksWithoutAChangeCallback) {
    recorder->onChange = nullptr;
    recorder->click();

    press(kFree);

    EXPECT_EQ(binding(), kFreeBinding);
}

TEST_F(RecorderButtonTest, ANewHotKeyReplacesTheOldOneAtOnce) {
    services.hotKeys.registerAll();
    const auto follow =
        services.store.tessarelSettingsChanged.connect([this] { services.hotKeys.registerAll(); });
    recorder->click();

    press(kFree);

    EXPECT_TRUE(desktop.hotKeys().press(11, 4096 + 2048));
    EXPECT_FALSE(desktop.hotKeys().press(8, 4096 + 2048));
}

TEST_F(RecorderButtonTest, EscapeCancels) {
    recorder->click();

    EXPECT_TRUE(press(kEscape));

    EXPECT_EQ(title(), "Ctrl+Opt+C");
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_FALSE(saved());
    EXPECT_EQ(announcements, 0);
    EXPECT_EQ(changes, 0);
}

TEST_F(RecorderButtonTest, EscapeWithModifiersCancelsToo) {
    recorder->click();

    EXPECT_TRUE(press({53, kControlFlag | kOptionFlag}));

    EXPECT_EQ(binding(), ActionID(ActionID::center).defaultBinding());
    EXPECT_FALSE(recorder->isRecording());
}

TEST_F(RecorderButtonTest, ASecondClickCancels) {
    recorder->click();
    recorder->click();

    EXPECT_EQ(title(), "Ctrl+Opt+C");
    EXPECT_EQ(desktop.localKeys().monitors(), 0U);
    EXPECT_FALSE(saved());
}

TEST_F(RecorderButtonTest, AKeyWithoutModifiersIsRejectedWithABeep) {
    recorder->click();

    EXPECT_TRUE(press({11}));

    EXPECT_EQ(desktop.beeps(), 1);
    EXPECT_EQ(title(), "Add Ctrl, Opt or Cmd");
    EXPECT_TRUE(recorder->isRecording());
    EXPECT_FALSE(saved());
}

TEST_F(RecorderButtonTest, OtherModifierFlagsDoNotCount) {
    recorder->click();

    press({11, 0x10000 | 0x800000}); // Caps Lock and Fn

    EXPECT_EQ(desktop.beeps(), 1);
    EXPECT_TRUE(recorder->isRecording());
}

TEST_F(RecorderButtonTest, ShiftAloneIsEnough) {
    recorder->click();

    press({11, kShiftFlag});

    EXPECT_EQ(binding(), (Binding{11, kShiftKey}));
    EXPECT_EQ(title(), "Shift+B");
    EXPECT_EQ(desktop.beeps(), 0);
}

TEST_F(RecorderButtonTest, AKeyWithoutANameIsShownByItsKeyCode) {
    recorder->click();

    press({105, kCommandFlag});

    EXPECT_EQ(title(), "Cmd+Key105");
}

TEST_F(RecorderButtonTest, KeysHaveTheNamesOfTheKeyboardAndFollowItsChanges) {
    desktop.keyNames().rename(8, "Ц");
    EXPECT_EQ(title(), "Ctrl+Opt+Ц");

    recorder->click();
    desktop.keyNames().rename(8, "C");
    EXPECT_EQ(title(), "Press keys...");
    press(kEscape);
    EXPECT_EQ(title(), "Ctrl+Opt+C");

    recorder.reset();
    desktop.keyNames().rename(8, "X");
}

TEST_F(RecorderButtonTest, DeleteWithAModifierIsRecorded) {
    recorder->click();

    press({51, kCommandFlag});

    EXPECT_EQ(title(), "Cmd+Delete");
}

TEST_F(RecorderButtonTest, ACombinationInUseIsRejectedAndItsActionNamed) {
    recorder->click();

    EXPECT_TRUE(press(kZone1Default));

    EXPECT_EQ(title(), "In use: Snap to Zone 1");
    EXPECT_TRUE(recorder->isRecording());
    EXPECT_EQ(desktop.beeps(), 0);
    EXPECT_FALSE(saved());
    EXPECT_EQ(changes, 0);
}

TEST_F(RecorderButtonTest, OfTwoActionsWithTheSameKeysTheFirstIsNamed) {
    services.store.setBinding(kFreeBinding, ActionID::arrangeAll);
    services.store.setBinding(kFreeBinding, ActionID::leftHalf);
    recorder->click();

    press(kFree);

    EXPECT_EQ(title(), "In use: Left half");
}

TEST_F(RecorderButtonTest, ItsOwnCombinationIsAccepted) {
    recorder->click();

    press(kCenterDefault);

    EXPECT_EQ(title(), "Ctrl+Opt+C");
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_EQ(announcements, 1);
    EXPECT_EQ(changes, 1);
}

TEST_F(RecorderButtonTest, TheSameKeyWithOtherModifiersIsFree) {
    recorder->click();

    press({18, kControlFlag | kOptionFlag | kShiftFlag});

    EXPECT_EQ(title(), "Ctrl+Opt+Shift+1");
}

TEST_F(RecorderButtonTest, AnotherAttemptNeedsNoClick) {
    recorder->click();
    press({11});
    press(kZone1Default);

    press(kFree);

    EXPECT_EQ(binding(), kFreeBinding);
    EXPECT_EQ(title(), "Ctrl+Opt+B");
}

TEST_F(RecorderButtonTest, AMessageIsShownFor1300Milliseconds) {
    recorder->click();
    press(kZone1Default);

    desktop.advance(1299ms);
    EXPECT_EQ(title(), "In use: Snap to Zone 1");

    desktop.advance(1ms);
    EXPECT_EQ(title(), "Press keys...");
}

TEST_F(RecorderButtonTest, ANewMessageIsShownForItsFullTime) {
    recorder->click();
    press({11});
    desktop.advance(1s);
    press(kZone1Default);

    desktop.advance(1299ms);
    EXPECT_EQ(title(), "In use: Snap to Zone 1");

    desktop.advance(1ms);
    EXPECT_EQ(title(), "Press keys...");
}

TEST_F(RecorderButtonTest, AMessageOfAnEarlierRecordingDoesNotEndTheNextOne) {
    recorder->click();
    press(kZone1Default);
    desktop.advance(1s);
    press(kEscape);
    recorder->click();
    press({11});

    desktop.advance(1s);

    EXPECT_EQ(title(), "Add Ctrl, Opt or Cmd");
}

TEST_F(RecorderButtonTest, AKeyThatCannotBeBoundIsRejectedWithABeep) {
    recorder->click();

    EXPECT_TRUE(press({std::nullopt, kControlFlag | kOptionFlag}));

    EXPECT_EQ(desktop.beeps(), 1);
    EXPECT_EQ(title(), "Cannot use this key");
    EXPECT_TRUE(recorder->isRecording());
    EXPECT_FALSE(saved());
    desktop.advance(1300ms);
    EXPECT_EQ(title(), "Press keys...");
}

TEST_F(RecorderButtonTest, AMessageThatDoesNotFitEndsAfterAWholeWord) {
    for (int width = 80; width <= 200; ++width) {
        RecorderButton narrow(view, {0, 0, width, 26}, context);
        narrow.configure(ActionID::zone1);
        for (const ActionID action : ActionID::allCases) {
            if (action == ActionID::zone1)
                continue;
            narrow.click();
            const Binding taken = action.defaultBinding();
            ModifierFlags flags = kControlFlag | kOptionFlag;
            if ((taken.mods & kCmdKey) != 0)
                flags |= kCommandFlag;
            press({taken.keyCode, flags});
            const QString whole = fullText(narrow);
            ASSERT_TRUE(whole.startsWith("In use: ")) << whole.toStdString();
            const QString shown = narrow.text();
            EXPECT_LE(narrow.fontMetrics().horizontalAdvance(shown), width);
            if (shown != whole) {
                EXPECT_TRUE(shown.endsWith(QChar(0x2026))) << shown.toStdString();
                EXPECT_TRUE(whole.startsWith(shown.chopped(1) + ' ')) << shown.toStdString();
            }
            press(kEscape);
        }
    }
}

TEST_F(RecorderButtonTest, AMessageThatIsCutShortByEscapeDoesNotComeBack) {
    recorder->click();
    press(kZone1Default);
    desktop.advance(1s);
    press(kEscape);
    EXPECT_EQ(title(), "Ctrl+Opt+C");

    desktop.advance(1s);

    EXPECT_EQ(title(), "Ctrl+Opt+C");
}

TEST_F(RecorderButtonTest, TheButtonMayBeDestroyedWhileAMessageIsShown) {
    recorder->click();
    press(kZone1Default);

    recorder.reset();

    desktop.advance(2s);
    EXPECT_EQ(desktop.localKeys().monitors(), 0U);
}

TEST_F(RecorderButtonTest, DestroyingTheButtonEndsTheRecording) {
    recorder->click();

    recorder.reset();

    EXPECT_FALSE(press(kFree));
    EXPECT_EQ(binding(), ActionID(ActionID::center).defaultBinding());
}

TEST_F(RecorderButtonTest, TheSpaceBarIsReleasedWithTheFocus) {
    QTest::keyPress(recorder.get(), Qt::Key_Space);
    ASSERT_TRUE(recorder->isDown());

    QFocusEvent focusOut(QEvent::FocusOut);
    QApplication::sendEvent(recorder.get(), &focusOut);

    EXPECT_FALSE(recorder->isDown());
}

TEST_F(RecorderButtonTest, HidingAButtonWithoutTheFocusEndsTheRecording) {
    recorder->click();
    ASSERT_TRUE(recorder->isRecording());
    ASSERT_FALSE(recorder->hasFocus());

    QHideEvent hidden;
    QApplication::sendEvent(recorder.get(), &hidden);

    EXPECT_FALSE(recorder->isRecording());
}

TEST_F(RecorderButtonTest, RefreshLeavesTheTitleAloneWhileRecording) {
    recorder->click();
    recorder->refresh();
    EXPECT_EQ(title(), "Press keys...");

    press(kZone1Default);
    recorder->refresh();
    EXPECT_EQ(title(), "In use: Snap to Zone 1");
}

TEST_F(RecorderButtonTest, ConfiguringEndsTheRecordingEvenForTheSameAction) {
    for (const ActionID action : {ActionID::maximize, ActionID::maximize}) {
        recorder->click();

        recorder->configure(action);

        EXPECT_FALSE(recorder->isRecording());
        EXPECT_EQ(title(), "Ctrl+Opt+Return");
        EXPECT_EQ(desktop.localKeys().monitors(), 0U);
    }
}

TEST_F(RecorderButtonTest, AConfiguredRecorderRecordsForTheNewAction) {
    recorder->configure(ActionID::maximize);
    recorder->click();

    press(kFree);

    EXPECT_EQ(binding(ActionID::maximize), kFreeBinding);
    EXPECT_EQ(binding(ActionID::center), ActionID(ActionID::center).defaultBinding());
}

TEST_F(RecorderButtonTest, TwoRecordersForOneActionAgreeAfterARefresh) {
    const auto other = makeRecorder(ActionID::center);
    recorder->click();
    press(kFree);
    EXPECT_EQ(fullText(*other), "Ctrl+Opt+C");

    other->refresh();

    EXPECT_EQ(fullText(*other), "Ctrl+Opt+B");
}

TEST_F(RecorderButtonTest, ALongMessageIsShownInFullInTheTooltip) {
    recorder->click();

    press({0, kControlFlag | kOptionFlag});

    EXPECT_EQ(title(), "In use: Arrange windows into zones");
    EXPECT_TRUE(recorder->text() == title().c_str() || recorder->toolTip() == title().c_str());
}

TEST_F(RecorderButtonTest, TheAccessibleNameIsTheActionAndTheDescriptionItsHotKey) {
    EXPECT_EQ(recorder->accessibleName(), "Center");
    EXPECT_EQ(recorder->accessibleDescription(), "Ctrl+Opt+C");

    recorder->click();
    EXPECT_EQ(recorder->accessibleName(), "Center");
    EXPECT_EQ(recorder->accessibleDescription(), "Press keys...");

    recorder->configure(ActionID::zone3);
    EXPECT_EQ(recorder->accessibleName(), "Snap to Zone 3");
}

} // namespace
} // namespace tessarel
