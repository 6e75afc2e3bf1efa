// SPDX-License-Identifier: MIT

#include "settings_ui/recorder_button_test.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>

namespace tessarel {
namespace {

using namespace std::chrono_literals;

TEST_F(RecorderButtonTest, AKeyWithoutModifiersIsRejectedWithABeep) {
    recorder->click();

    EXPECT_TRUE(press({11}));

    EXPECT_EQ(desktop.beeps(), 1);
    EXPECT_EQ(title(), "Add Ctrl, Opt or Cmd");
    EXPECT_TRUE(recorder->isRecording());
    EXPECT_FALSE(saved());
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

TEST_F(RecorderButtonTest, ALongMessageIsShownInFullInTheTooltip) {
    recorder->click();

    press({0, kControlFlag | kOptionFlag});

    EXPECT_EQ(title(), "In use: Arrange windows into zones");
    EXPECT_TRUE(recorder->text() == title().c_str() || recorder->toolTip() == title().c_str());
}

} // namespace
} // namespace tessarel
