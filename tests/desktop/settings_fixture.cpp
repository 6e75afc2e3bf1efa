// SPDX-License-Identifier: MIT

#include "desktop/settings_fixture.h"

#include <stdexcept>

namespace tessarel::x11test {

namespace {

constexpr const char* kApplication = "Tessarel";

} // namespace

SettingsDesktopTest::SettingsDesktopTest() {
    writeSettings(server, R"({"hasOnboarded":true})");
    program.emplace(reader.environment());
}

SettingsDesktopTest::~SettingsDesktopTest() {
    if (program->running()) {
        EXPECT_EQ(program->terminate(), 0) << program->errors();
    }
    EXPECT_EQ(program->errors().find("Sanitizer"), std::string::npos) << program->errors();
}

void SettingsDesktopTest::SetUp() {
    ASSERT_TRUE(program->waitUntilReady(observer, keyboard)) << program->errors();
    // A window that opens sooner waits for the accessibility service, but not for long.
    ASSERT_TRUE(waitUntil([this] { return reader.knows(kApplication); })) << program->errors();
    ASSERT_NO_FATAL_FAILURE(openSettings());
}

void SettingsDesktopTest::openSettings() {
    window = openSettingsWindow(observer, reader.environment());
    ASSERT_NE(window, xcb_window_t{XCB_WINDOW_NONE});
}

void SettingsDesktopTest::showTab(const std::string& name) {
    const Accessible tab = part("page tab", name);
    click(tab);
    ASSERT_TRUE(waitUntil([&] { return reader.look(tab).isFocused; })) << name;
    ASSERT_TRUE(waitUntilAtRest()) << "what is on the tab has no place yet";
}

Accessible SettingsDesktopTest::part(const std::string& role, const std::string& name) {
    std::optional<Accessible> found;
    const auto isFound = [&] {
        found = reader.find(kApplication, role, name);
        return found.has_value();
    };
    if (!waitUntil(isFound))
        throw std::runtime_error("there is no " + role + " called " + name);
    return *found;
}

void SettingsDesktopTest::click(const Accessible& target) {
    mouse.moveTo(target.frame.x + target.frame.width / 2, target.frame.y + target.frame.height / 2);
    mouse.press();
    mouse.release();
}

testing::AssertionResult SettingsDesktopTest::comesToSay(const Accessible& target,
                                                         const std::string& description) {
    if (waitUntil([&] { return reader.look(target).description == description; }))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << target.name << " says " << reader.look(target).description;
}

} // namespace tessarel::x11test
