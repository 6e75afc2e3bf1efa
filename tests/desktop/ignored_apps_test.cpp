// SPDX-License-Identifier: MIT

#include "desktop/settings_fixture.h"

#include <optional>

namespace tessarel::x11test {
namespace {

constexpr xcb_keycode_t kE = 26;
constexpr xcb_keycode_t kR = 27;
constexpr xcb_keycode_t kT = 28;
constexpr xcb_keycode_t kX = 53;
constexpr xcb_keycode_t kM = 58;
constexpr Combination kLeftHalf{key::kLeft, kControlAlt};
constexpr Combination kRightHalf{key::kRight, kControlAlt};
constexpr const char* kIdentifier = "debian-xterm";

/// The chooser of applications to be ignored, used with the keyboard while a real terminal runs.
class IgnoredAppsTest : public SettingsDesktopTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(SettingsDesktopTest::SetUp());
        ASSERT_TRUE(waitUntil([this] {
            terminalWindow = observer.windowOfClass("XTerm");
            return terminalWindow != XCB_WINDOW_NONE;
        })) << terminal.errors();
        ASSERT_NO_FATAL_FAILURE(showTab("General"));
    }

    /// Opens the chooser and waits until its search field has the focus and the list is complete.
    void openChooser() {
        click(button("Add app..."));
        search = part("text", "Search:");
        ASSERT_TRUE(waitUntil([this] { return reader.look(search).isFocused; }));
        ASSERT_TRUE(waitUntilAtRest());
    }

    /// Activates the terminal and presses a hot key.
    void pressInTerminal(const Combination& combination) {
        ASSERT_TRUE(observer.activateAndWait(terminalWindow));
        keyboard.press(combination);
    }

    [[nodiscard]] std::optional<Frame> terminalFrame() { return observer.outerFrame(terminalWindow); }

    ChildProcess terminal{{"xterm", "-geometry", "60x12+200+150", "-e", "cat"}, server.environment()};
    xcb_window_t terminalWindow = XCB_WINDOW_NONE;
    Accessible search; ///< the field of the chooser
};

TEST_F(IgnoredAppsTest, AnApplicationThatIsChosenWithTheKeyboardIsNoLongerPlaced) {
    const auto before = terminalFrame();
    ASSERT_NO_FATAL_FAILURE(pressInTerminal(kLeftHalf));
    ASSERT_TRUE(waitUntil([&] { return terminalFrame() != before; })) << "nothing to compare with";
    ASSERT_TRUE(waitUntilAtRest());
    ASSERT_TRUE(observer.activateAndWait(window));

    ASSERT_NO_FATAL_FAILURE(openChooser());
    EXPECT_EQ(part("list item", "XTerm").description, "Running");
    for (const xcb_keycode_t letter : {kX, kT, kE, kR, kM})
        keyboard.press({letter, 0});
    EXPECT_TRUE(comesToSay(search, "XTerm"));
    keyboard.press({key::kReturn, 0});

    ASSERT_TRUE(waitUntilStored(observer, server, kIdentifier));
    EXPECT_TRUE(part("list item", std::string("XTerm  (") + kIdentifier + ")").isShowing);
    const auto placed = terminalFrame();
    ASSERT_NO_FATAL_FAILURE(pressInTerminal(kRightHalf));
    ASSERT_TRUE(waitUntilAtRest());
    EXPECT_EQ(terminalFrame(), placed);
}

TEST_F(IgnoredAppsTest, TheArrowKeysMoveThroughTheListAndEscapeClosesIt) {
    const auto list = [this] { return part("list", "Applications"); };

    ASSERT_NO_FATAL_FAILURE(openChooser());
    keyboard.press({key::kDown, 0});
    EXPECT_TRUE(waitUntil([&] { return reader.look(part("list item", "XTerm")).isFocused; }));
    EXPECT_TRUE(list().isShowing);
    keyboard.press({key::kEscape, 0});

    EXPECT_TRUE(waitUntil([this] { return !reader.find("Tessarel", "list", "Applications"); }));
    EXPECT_TRUE(waitUntilAtRest());
    EXPECT_EQ(storedSettings(server).find(kIdentifier), std::string::npos);
}

} // namespace
} // namespace tessarel::x11test
