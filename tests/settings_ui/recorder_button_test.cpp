// SPDX-License-Identifier: MIT

#include "settings_ui/recorder_button_test.h"

#include <QApplication>
#include <QColor>
#include <QFocusEvent>
#include <QHideEvent>
#include <QPalette>
#include <QTest>
#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace tessarel {
namespace {

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
