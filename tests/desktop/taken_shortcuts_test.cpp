// SPDX-License-Identifier: MIT

#include "desktop/settings_fixture.h"

#include <string>

namespace tessarel::x11test {
namespace {

constexpr xcb_keycode_t kTabKey = 23;
constexpr Combination kTakenZone{key::kDigit1, kControlAlt};
constexpr Combination kTakenHalf{key::kLeft, kControlAlt};
constexpr const char* kTakenNote = ". Another program uses this combination";

/// The program starts while another client has two of its shortcuts.
class TakenShortcutsTest : public SettingsDesktopTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(program->waitUntilReady(observer, keyboard)) << program->errors();
        ASSERT_EQ(program->terminate(), 0);
        ASSERT_TRUE(keyboard.waitUntilNotHeld(kTakenZone) && keyboard.waitUntilNotHeld(kTakenHalf));
        ASSERT_TRUE(other.grabKey(kTakenZone) && other.grabKey(kTakenHalf));
        program.emplace(reader.environment());
        ASSERT_TRUE(program->waitUntilReady(observer, keyboard)) << program->errors();
    }

    TestClient other{server};
};

TEST_F(TakenShortcutsTest, TheShortcutsTabMarksThemUntilTheyAreFree) {
    ASSERT_NO_FATAL_FAILURE(openSettings());
    ASSERT_NO_FATAL_FAILURE(showTab("Shortcuts"));
    const Accessible zone1 = button("Snap to Zone 1");
    const Accessible leftHalf = button("Left half");
    EXPECT_TRUE(comesToSay(zone1, std::string("Ctrl+Alt+1") + kTakenNote));
    EXPECT_TRUE(comesToSay(leftHalf, std::string("Ctrl+Alt+Left") + kTakenNote));
    EXPECT_TRUE(comesToSay(button("Right half"), "Ctrl+Alt+Right"));

    // The user makes the other program release a shortcut and returns.
    keyboard.press({kTabKey});
    ASSERT_TRUE(waitUntil([&] { return reader.look(zone1).isFocused; }));
    const xcb_window_t elsewhere = other.open();
    ASSERT_TRUE(waitUntil([&] { return observer.activeWindow() == elsewhere; }));
    // Qt takes a focus that returns within 0.4 s for one that has stayed.
    ASSERT_TRUE(waitUntil([&] { return !reader.look(zone1).isFocused; }));
    other.ungrabKey(kTakenHalf);
    observer.activate(window);
    ASSERT_TRUE(waitUntil([&] { return observer.activeWindow() == window; }));

    EXPECT_TRUE(comesToSay(leftHalf, "Ctrl+Alt+Left"));
    EXPECT_TRUE(waitUntil([&] { return keyboard.held(kTakenHalf); }));
    EXPECT_TRUE(comesToSay(zone1, std::string("Ctrl+Alt+1") + kTakenNote));
}

TEST_F(TakenShortcutsTest, TheRecorderOfTheZoneMarksIt) {
    ASSERT_NO_FATAL_FAILURE(openSettings());
    ASSERT_NO_FATAL_FAILURE(showTab("Layouts"));

    EXPECT_TRUE(comesToSay(button("Snap to Zone 1"), std::string("Ctrl+Alt+1") + kTakenNote));
}

} // namespace
} // namespace tessarel::x11test
