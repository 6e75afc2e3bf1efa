// SPDX-License-Identifier: MIT

#include "platform/qt_x11/qt_local_keys.h"

#include "support/offscreen_test.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLineEdit>
#include <QShortcut>
#include <QTest>
#include <QWidget>
#include <gtest/gtest.h>
#include <xcb/xproto.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace tessarel::qt {
namespace {

constexpr quint32 kMeaningless = 37;

/// Returns the native key code and modifiers unchanged, except for one key without a translation.
std::optional<KeyDown> translate(std::uint32_t nativeScanCode, std::uint32_t nativeModifiers) {
    if (nativeScanCode == kMeaningless)
        return std::nullopt;
    return KeyDown{nativeScanCode, nativeModifiers};
}

class QtLocalKeysTest : public OffscreenTest {
protected:
    void SetUp() override {
        window.show();
        window.activateWindow();
        field.setFocus();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    [[nodiscard]] SubscriptionPtr monitor(bool consumes = true) {
        return localKeys->monitorKeyDown([this, consumes](const KeyDown& key) {
            keys.push_back(key);
            return consumes;
        });
    }

    /// Sends the key "b" to the native window, where the window system delivers it.
    static void press(const QWidget& target, quint32 nativeScanCode, bool isRepetition = false) {
        pressKey(target, Qt::Key_B, nativeScanCode, Qt::Key_B, isRepetition);
    }

    static void pressKey(const QWidget& target, int key, quint32 nativeScanCode, quint32 keysym,
                         bool isRepetition = false) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, nativeScanCode, keysym, 4, "b", isRepetition);
        QApplication::sendEvent(target.windowHandle(), &event);
    }

    static void release(const QWidget& target, quint32 nativeScanCode) {
        QKeyEvent event(QEvent::KeyRelease, Qt::Key_B, Qt::NoModifier, nativeScanCode, Qt::Key_B, 4);
        QApplication::sendEvent(target.windowHandle(), &event);
    }

    /// Sends a focus event of the X server that Qt itself has not processed yet.
    static void tellOfFocus(std::uint8_t type, const QWidget& target, std::uint8_t mode = 0,
                            std::uint8_t detail = XCB_NOTIFY_DETAIL_NONLINEAR) {
        xcb_focus_in_event_t event{};
        event.response_type = type;
        event.event = static_cast<xcb_window_t>(target.winId());
        event.mode = mode;
        event.detail = detail;
        qintptr result = 0;
        QAbstractEventDispatcher::instance()->filterNativeEvent("xcb_generic_event_t", &event, &result);
    }

    std::optional<QtLocalKeys> localKeys{std::in_place, translate,
                                         [this](std::uint32_t key) { return held == key; }};
    QWidget window;
    QLineEdit field{&window};
    std::vector<KeyDown> keys;
    std::optional<std::uint32_t> held; ///< the key that the server reports as down
};

using Keys = std::vector<KeyDown>;

TEST_F(QtLocalKeysTest, AKeyIsReportedWithItsNativeCodes) {
    const auto monitored = monitor();

    press(window, 56);

    EXPECT_EQ(keys, (Keys{{56, 4}}));
}

TEST_F(QtLocalKeysTest, AConsumedKeyReachesNoControl) {
    const auto monitored = monitor();

    press(window, 56);

    EXPECT_EQ(field.text(), "");
}

TEST_F(QtLocalKeysTest, AnUnconsumedKeyIsReportedOnceAndReachesTheControl) {
    const auto monitored = monitor(false);

    press(window, 56);

    EXPECT_EQ(keys.size(), 1U);
    EXPECT_EQ(field.text(), "b");
}

TEST_F(QtLocalKeysTest, AnAutoRepeatIsConsumedAndNotReported) {
    const auto monitored = monitor(false);

    press(window, 56, true);

    EXPECT_TRUE(keys.empty());
    EXPECT_EQ(field.text(), "");
}

TEST_F(QtLocalKeysTest, AnUntranslatableKeyIsReportedWithoutAKeyCode) {
    const auto monitored = monitor();

    press(window, kMeaningless);

    EXPECT_EQ(keys, (Keys{{std::nullopt, 0}}));
    EXPECT_EQ(field.text(), "");
}

TEST_F(QtLocalKeysTest, ModifierKeysAreConsumedAndNotReported) {
    const auto monitored = monitor(false);

    for (const int key : {Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt, Qt::Key_Meta, Qt::Key_Super_L,
                          Qt::Key_Super_R, Qt::Key_Hyper_L, Qt::Key_Hyper_R})
        pressKey(window, key, kMeaningless, 0);
    for (const quint32 isoNextGroup : {0xFE06U, 0xFE08U, 0xFE0FU})
        pressKey(window, Qt::Key_unknown, kMeaningless, isoNextGroup);

    EXPECT_TRUE(keys.empty());
    EXPECT_EQ(field.text(), "");
}

TEST_F(QtLocalKeysTest, AltGrIsNoModifierOfBindings) {
    constexpr quint32 kIsoLevel3Shift = 0xFE03;
    const auto monitored = monitor();

    pressKey(window, Qt::Key_AltGr, kMeaningless, kIsoLevel3Shift);

    EXPECT_EQ(keys, (Keys{{std::nullopt, 0}}));
}

TEST_F(QtLocalKeysTest, WindowShortcutsAreSuspendedWhileMonitoring) {
    int closed = 0;
    const QShortcut shortcut(QKeySequence(Qt::CTRL | Qt::Key_W), &window, [&] { ++closed; });
    auto monitored = monitor();

    QTest::keyClick(window.windowHandle(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(closed, 0);
    EXPECT_FALSE(keys.empty());

    monitored.reset();
    QTest::keyClick(window.windowHandle(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(closed, 1);
}

TEST_F(QtLocalKeysTest, KeysThatMoveTheFocusAreReportedAndDoNotMoveIt) {
    const QLineEdit next(&window);
    const auto monitored = monitor();

    QTest::keyClick(window.windowHandle(), Qt::Key_Tab);

    EXPECT_EQ(keys.size(), 1U);
    EXPECT_TRUE(field.hasFocus());
}

TEST_F(QtLocalKeysTest, KeysOfEveryWindowAreReported) {
    const auto monitored = monitor();
    QWidget other;
    other.show();

    press(other, 56);
    press(window, 57);

    EXPECT_EQ(keys, (Keys{{56, 4}, {57, 4}}));
}

TEST_F(QtLocalKeysTest, KeysReachControlsAgainAfterTheMonitorEnds) {
    auto monitored = monitor();
    monitored.reset();

    press(window, 56);

    EXPECT_TRUE(keys.empty());
    EXPECT_EQ(field.text(), "b");
}

TEST_F(QtLocalKeysTest, AMonitorMayEndItselfAndTheKeyIsStillConsumed) {
    SubscriptionPtr monitored;
    monitored = localKeys->monitorKeyDown([&](const KeyDown&) {
        monitored.reset();
        return true;
    });

    press(window, 56);
    release(window, 56);
    EXPECT_EQ(field.text(), "");

    press(window, 56);
    EXPECT_EQ(field.text(), "b");
}

TEST_F(QtLocalKeysTest, AConsumedKeyDoesNothingElseUntilItIsReleased) {
    auto monitored = monitor();
    press(window, 56);
    monitored.reset();

    press(window, 56, true);
    EXPECT_EQ(field.text(), "");

    release(window, 56);
    press(window, 56, true);
    EXPECT_EQ(field.text(), "b");
}

TEST_F(QtLocalKeysTest, AnAutoRepeatSentAsReleaseAndPressIsNotANewPress) {
    auto monitored = monitor();
    held = 56;
    press(window, 56);
    release(window, 56);
    press(window, 56);
    EXPECT_EQ(keys.size(), 1U);
    monitored.reset();

    release(window, 56);
    press(window, 56);
    EXPECT_EQ(field.text(), "");

    held.reset();
    release(window, 56);
    press(window, 56);
    EXPECT_EQ(field.text(), "b");
}

TEST_F(QtLocalKeysTest, AKeyReleasedInAnotherWindowIsForgotten) {
    auto monitored = monitor();
    press(window, 56);
    monitored.reset();
    QWidget front;
    front.show();
    front.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&front));

    press(window, 56, true);

    EXPECT_EQ(field.text(), "b");
}

TEST_F(QtLocalKeysTest, KeysTypedAfterTheFocusLeftAreDiscarded) {
    const auto monitored = monitor();
    tellOfFocus(XCB_FOCUS_OUT, window);

    press(window, 56);

    EXPECT_TRUE(keys.empty());
    EXPECT_EQ(field.text(), "");
}

TEST_F(QtLocalKeysTest, KeysAreReportedAgainWhenTheFocusReturnsBeforeQtNotices) {
    const auto monitored = monitor();
    tellOfFocus(XCB_FOCUS_OUT, window);
    tellOfFocus(XCB_FOCUS_IN, window);

    press(window, 56);

    EXPECT_EQ(keys.size(), 1U);
}

TEST_F(QtLocalKeysTest, ALostFocusDoesNotAffectLaterMonitors) {
    auto monitored = monitor();
    tellOfFocus(XCB_FOCUS_OUT, window);
    monitored.reset();
    monitored = monitor();

    press(window, 56);

    EXPECT_EQ(keys.size(), 1U);
}

TEST_F(QtLocalKeysTest, FocusEventsThatKeepTheFocusAreIgnored) {
    const auto monitored = monitor();
    tellOfFocus(XCB_FOCUS_OUT, window, XCB_NOTIFY_MODE_GRAB);
    tellOfFocus(XCB_FOCUS_OUT, window, XCB_NOTIFY_MODE_UNGRAB);
    tellOfFocus(XCB_FOCUS_OUT, window, XCB_NOTIFY_MODE_NORMAL, XCB_NOTIFY_DETAIL_POINTER);
    tellOfFocus(XCB_FOCUS_OUT, window, XCB_NOTIFY_MODE_NORMAL, XCB_NOTIFY_DETAIL_INFERIOR);

    press(window, 56);

    EXPECT_EQ(keys.size(), 1U);
}

TEST_F(QtLocalKeysTest, AMonitorMayOutliveThePort) {
    auto monitored = monitor();
    localKeys.reset();

    press(window, 56);
    EXPECT_EQ(keys.size(), 1U);

    monitored.reset();
    press(window, 56);
    EXPECT_EQ(keys.size(), 1U);
}

} // namespace
} // namespace tessarel::qt
