// SPDX-License-Identifier: MIT

#include "desktop/settings_fixture.h"

#include <filesystem>
#include <fstream>
#include <string_view>

namespace tessarel::x11test {
namespace {

/// The settings window while another program changes the document.
class SettingsFollowTest : public SettingsDesktopTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(SettingsDesktopTest::SetUp());
        ASSERT_NO_FATAL_FAILURE(showTab("Shortcuts"));
        recorder = button("Snap to Zone 2");
    }

    void replaceSettings(std::string_view document) {
        const std::filesystem::path replacement = settingsFile(server).parent_path() / "new~";
        std::ofstream(replacement) << document;
        std::filesystem::rename(replacement, settingsFile(server));
    }

    Accessible recorder;
};

TEST_F(SettingsFollowTest, AHotKeyFromOutsideIsShownAndClaimed) {
    replaceSettings(R"({"hasOnboarded":true,"bindings":{"zone2":{"keyCode":11,"mods":6144}}})");

    EXPECT_TRUE(comesToSay(recorder, "Ctrl+Alt+B"));
    constexpr xcb_keycode_t kNewKey = 56; // B
    EXPECT_TRUE(waitUntil([this] { return keyboard.held({kNewKey, kControlAlt}); }));
    EXPECT_TRUE(comesToSay(button("Snap to Zone 1"), "None"));
}

TEST_F(SettingsFollowTest, ARunningRecordingGoesOn) {
    click(recorder);
    ASSERT_TRUE(comesToSay(recorder, "Press keys..."));

    replaceSettings(R"({"hasOnboarded":true,"bindings":{}})");

    EXPECT_TRUE(comesToSay(button("Snap to Zone 1"), "None"));
    EXPECT_TRUE(comesToSay(recorder, "Press keys..."));
    EXPECT_FALSE(keyboard.isFree());
    keyboard.press({key::kC, kControlAlt});
    EXPECT_TRUE(waitUntilStored(observer, server, R"("bindings":{"zone2":{"keyCode":8,"mods":6144}})"))
        << storedSettings(server);
}

} // namespace
} // namespace tessarel::x11test
