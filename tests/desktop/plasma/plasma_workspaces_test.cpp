// SPDX-License-Identifier: MIT

#include "desktop/plasma/windows_fixture.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace tessarel::plasmatest {
namespace {

/// With two activities, "first" and "second".
class PlasmaActivitiesTest : public PlasmaWindowsTest {
protected:
    /// Moves the window to the activity, as soon as KWin knows the activities. Returns false if KWin does
    /// not.
    [[nodiscard]] bool move(const std::string& title, const std::string& activity) {
        return PlasmaSession::waitFor([&] {
            session.probe().run("workspace.clientList().filter((c) => c.caption === \"" + title +
                                "\").forEach((c) => { c.activities = [\"" + activity + "\"]; });");
            session.probe().roundTrip();
            return isIn(title, activity);
        });
    }
    [[nodiscard]] bool isIn(const std::string& title, const std::string& activity) {
        const auto& all = session.probe().windows();
        const auto window = std::ranges::find(all, title, &SeenWindow::title);
        return window != all.end() && window->activities == std::vector{activity};
    }

private:
    x11test::ChildProcess m_manager{{TESSAREL_ACTIVITY_MANAGER}, session.environment()};
};

/// With two virtual desktops, and a rule of KWin that forces windows of one class onto both.
class PlasmaDesktopsTest : public PlasmaWindowsTest {
protected:
    static constexpr const char* kOnBoth = "org.example.both";

    void SetUp() override {
        session.killCompositor();
        const std::filesystem::path folder = session.environment().at("XDG_CONFIG_HOME");
        ScratchFolder::write(folder / "kwinrc", "[Desktops]\nNumber=2\nId_1=first\nId_2=second\n");
        ScratchFolder::write(folder / "kwinrulesrc",
                             std::string("[General]\ncount=1\nrules=1\n[1]\nwmclassmatch=1\nwmclass=") +
                                 kOnBoth + "\ndesktopsrule=2\ndesktops=first,second\n");
        session.startCompositor();
        PlasmaWindowsTest::SetUp();
    }
};

TEST_F(PlasmaActivitiesTest, OnlyWindowsOfTheCurrentActivityAreArranged) {
    WaylandClient client(session.environment());
    open(client, 1);
    open(client, 2);
    const Rect opened = session.probe().windows().back().frame;
    ASSERT_TRUE(move(WaylandClient::titleOf(1), "first"));
    ASSERT_TRUE(move(WaylandClient::titleOf(2), "second"));
    activate(1); // KWin leaves the other one active

    pressArrange();
    EXPECT_TRUE(comesTo(1, kFirstZone));
    EXPECT_TRUE(passProgram());
    EXPECT_TRUE(comesTo(2, opened));

    session.probe().run("workspace.currentActivity = \"second\";");
    ASSERT_TRUE(isActivated(2));
    session.probe().roundTrip(); // KWin has told the program, too
    pressArrange();
    EXPECT_TRUE(comesTo(2, kFirstZone));
    EXPECT_TRUE(passProgram());
    EXPECT_TRUE(comesTo(1, kFirstZone));
}

TEST_F(PlasmaActivitiesTest, TheSettingsComeToTheCurrentActivity) {
    const std::string settings = "Tessarel Settings";
    ASSERT_EQ(session.command({}), 0);
    ASSERT_TRUE(move(settings, "second"));

    EXPECT_EQ(session.command({}), 0);

    EXPECT_TRUE(session.probe().waitUntil([&] { return isIn(settings, "first"); }));
}

TEST_F(PlasmaDesktopsTest, AWindowOnSeveralVirtualDesktopsIsArrangedOnEachOfThem) {
    WaylandClient client(session.environment());
    open(client, 1);
    open(client, 2, {.applicationId = kOnBoth});
    pressArrange();
    EXPECT_TRUE(comesTo(2, kFirstZone));
    EXPECT_TRUE(comesTo(1, {533, 0, 533, 450}));
    activate(1);
    pressArrow(key::kRight);
    ASSERT_TRUE(comesTo(1, kRightHalf));

    session.probe().run("workspace.currentDesktop = 2;");
    activate(2);
    pressArrow(key::kLeft);
    ASSERT_TRUE(comesTo(2, kLeftHalf));
    pressArrange();
    EXPECT_TRUE(comesTo(2, kFirstZone));
    EXPECT_TRUE(passProgram());
    EXPECT_TRUE(comesTo(1, kRightHalf));
}

} // namespace
} // namespace tessarel::plasmatest
