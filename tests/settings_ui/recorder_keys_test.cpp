// SPDX-License-Identifier: MIT

#include "platform/qt_x11/qt_local_keys.h"
#include "platform/x11/input/key_lookup.h"
#include "settings_ui/kit/kit.h"
#include "settings_ui/recorder_button.h"
#include "settings_ui/settings_ui_test.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>

namespace tessarel {
namespace {

using namespace std::chrono_literals;

/// A key as Qt reports it under X11.
struct Key {
    int key = 0;
    quint32 keycode = 0;
};

constexpr Key kB{Qt::Key_B, 56};
constexpr Key kDigit1{Qt::Key_1, 10};
constexpr Key kEscape{Qt::Key_Escape, 9};
constexpr Key kTab{Qt::Key_Tab, 23};
constexpr Key kReturn{Qt::Key_Return, 36};
constexpr Key kSpace{Qt::Key_Space, 65};
constexpr Key kControlKey{Qt::Key_Control, 37};
constexpr Key kAltKey{Qt::Key_Alt, 64};
constexpr Key kPrint{Qt::Key_Print, 107};
constexpr Key kPause{Qt::Key_Pause, 127};
constexpr Key kVolumeUp{Qt::Key_VolumeUp, 123};
constexpr Key kAltGr{Qt::Key_AltGr, 108};
constexpr quint32 kControl = 4;
constexpr quint32 kControlAlt = 4 + 8;
constexpr quint32 kNumLock = 16;

/// Fixture: a recorder in a window that has the keyboard focus.
class RecorderKeysTest : public SettingsUiTest {
protected:
    void SetUp() override {
        recorder.configure(ActionID::center);
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    void send(QEvent::Type type, const Key& key, quint32 state, bool isRepetition = false) {
        QKeyEvent event(type, key.key, Qt::NoModifier, key.keycode, 0, state, {}, isRepetition);
        QApplication::sendEvent(window.windowHandle(), &event);
    }
    void press(const Key& key, quint32 state = 0) {
        held = key.keycode;
        send(QEvent::KeyPress, key, state);
    }
    void release(const Key& key, quint32 state = 0) {
        held = 0;
        send(QEvent::KeyRelease, key, state);
    }
    void type(const Key& key, quint32 state = 0) {
        press(key, state);
        release(key, state);
    }
    void repeat(const Key& key, quint32 state = 0) {
        send(QEvent::KeyRelease, key, state, true);
        send(QEvent::KeyPress, key, state, true);
    }
    void record() { QTest::mouseClick(&recorder, Qt::LeftButton); }

    [[nodiscard]] std::string title() const { return fullText(recorder).toStdString(); }

    quint32 held = 0; ///< keycode of the key that is down; 0 for none
    qt::QtLocalKeys localKeys{x11::keyDown, [this](std::uint32_t keycode) { return held == keycode; }};
    Ports keyPorts = simPorts(desktop, copy, localKeys);
    TabContext keyContext{services, keyPorts, context.refreshAll};
    QWidget window;
    RecorderButton recorder{window, {0, 0, 200, 26}, keyContext};
    QPushButton other{&window};
};

TEST_F(RecorderKeysTest, AClickAndAKeyCombinationRecordAHotKey) {
    record();

    press(kControlKey);
    press(kAltKey, kControl);
    type(kB, kControlAlt);

    EXPECT_EQ(title(), "Ctrl+Opt+B");
    EXPECT_EQ(services.store.binding(ActionID::center), (Binding{11, kCtrlKey + kOptKey}));
}

TEST_F(RecorderKeysTest, ModifierKeysAloneDoNotEndTheRecording) {
    record();

    type(kControlKey);
    type(kAltKey);

    EXPECT_EQ(title(), "Press keys...");
    EXPECT_EQ(desktop.beeps(), 0);
}

TEST_F(RecorderKeysTest, AKeyThatCannotBeBoundIsAnswered) {
    record();

    for (const Key& key : {kPrint, kPause, kVolumeUp, kAltGr}) {
        desktop.advance(1300ms);
        ASSERT_EQ(title(), "Press keys...");
        type(key);
        EXPECT_EQ(title(), "Cannot use this key") << key.keycode;
        EXPECT_TRUE(recorder.isRecording());
    }
    EXPECT_EQ(desktop.beeps(), 4);
}

TEST_F(RecorderKeysTest, LockKeysAreNoModifiers) {
    record();

    type(kB, kNumLock);

    EXPECT_EQ(title(), "Add Ctrl, Opt or Cmd");
    EXPECT_EQ(desktop.beeps(), 1);
}

TEST_F(RecorderKeysTest, ACombinationInUseIsNamedForAMoment) {
    record();

    type(kDigit1, kControlAlt);
    EXPECT_EQ(title(), "In use: Snap to Zone 1");

    desktop.advance(1300ms);
    EXPECT_EQ(title(), "Press keys...");
}

TEST_F(RecorderKeysTest, EscapeCancels) {
    record();

    type(kEscape);

    EXPECT_EQ(title(), "Ctrl+Opt+C");
    EXPECT_FALSE(recorder.isRecording());
}

TEST_F(RecorderKeysTest, SpaceAndReturnStartARecordingWithoutBeingRecorded) {
    for (const Key& key : {kSpace, kReturn}) {
        recorder.setFocus();

        type(key);

        EXPECT_EQ(title(), "Press keys...") << key.key;
        EXPECT_EQ(desktop.beeps(), 0);
        type(kEscape);
    }
}

TEST_F(RecorderKeysTest, AHeldKeyThatHasStartedTheRecordingIsNotRecorded) {
    for (const Key& key : {kSpace, kReturn}) {
        recorder.setFocus();
        press(key);
        repeat(key);
        repeat(key);
        release(key);

        EXPECT_EQ(title(), "Press keys...") << key.key;
        EXPECT_EQ(desktop.beeps(), 0);
        type(kEscape);
    }
}

TEST_F(RecorderKeysTest, SpaceReturnAndTabAreRecordedLikeOtherKeys) {
    const std::pair<Key, std::string> expected[] = {
        {kSpace, "Ctrl+Space"}, {kReturn, "Ctrl+Return"}, {kTab, "Ctrl+Tab"}};
    for (const auto& [key, name] : expected) {
        record();

        type(key, kControl);

        EXPECT_EQ(title(), name);
        EXPECT_FALSE(recorder.isRecording());
        EXPECT_TRUE(recorder.hasFocus());
    }
}

TEST_F(RecorderKeysTest, AHeldCombinationIsRecordedOnceAndStartsNoOtherRecording) {
    for (const Key& key : {kB, kSpace, kReturn}) {
        record();
        const int before = announcements;

        press(key, kControl);
        repeat(key, kControl);
        repeat(key, kControl);
        release(key, kControl);

        EXPECT_EQ(announcements, before + 1);
        EXPECT_FALSE(recorder.isRecording()) << key.key;
    }
}

TEST_F(RecorderKeysTest, AHeldKeyIsRejectedOnce) {
    record();

    press(kB);
    repeat(kB);
    repeat(kB);

    EXPECT_EQ(desktop.beeps(), 1);
}

TEST_F(RecorderKeysTest, LosingTheFocusEndsTheRecording) {
    record();

    other.setFocus();

    EXPECT_FALSE(recorder.isRecording());
    EXPECT_EQ(title(), "Ctrl+Opt+C");
}

TEST_F(RecorderKeysTest, ARecordingEndsWhenAnotherRecorderStartsOne) {
    RecorderButton second(window, {0, 40, 200, 26}, keyContext);
    second.configure(ActionID::maximize);
    second.show();
    record();

    QTest::mouseClick(&second, Qt::LeftButton);
    type(kB, kControlAlt);

    EXPECT_EQ(title(), "Ctrl+Opt+C");
    EXPECT_EQ(fullText(second), "Ctrl+Opt+B");
}

TEST_F(RecorderKeysTest, AProgrammaticClickFocusesTheRecorder) {
    other.setFocus();

    recorder.click();

    EXPECT_TRUE(recorder.hasFocus());
    EXPECT_TRUE(recorder.isRecording());
}

TEST_F(RecorderKeysTest, HidingTheRecorderEndsTheRecording) {
    record();
    recorder.hide();
    EXPECT_FALSE(recorder.isRecording());

    recorder.show();
    EXPECT_EQ(title(), "Ctrl+Opt+C");
}

TEST_F(RecorderKeysTest, ClosingTheWindowEndsTheRecording) {
    record();

    window.close();

    EXPECT_FALSE(recorder.isRecording());
}

TEST_F(RecorderKeysTest, AnotherWindowInFrontEndsTheRecording) {
    record();
    QWidget front;
    front.show();
    front.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&front));

    EXPECT_FALSE(recorder.isRecording());
    EXPECT_EQ(title(), "Ctrl+Opt+C");
}

} // namespace
} // namespace tessarel
