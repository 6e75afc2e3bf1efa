// SPDX-License-Identifier: MIT

#include "desktop/status_notifier_panel.h"
#include "support/plasma/plasma_session.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <vector>

namespace tessarel::plasmatest {
namespace {

constexpr const char* kUsualSettings = R"({"hasOnboarded":true,"rememberApps":false})";
constexpr const char* kSettings = "Tessarel Settings";
constexpr Rect kLeftHalf{0, 0, 800, 900};
constexpr Rect kRightHalf{800, 0, 800, 900};
constexpr std::uint32_t kKeyK = 37;

/// Where controls are in the settings window, from the top-left corner of its frame.
constexpr Point kShortcutsTab{128, 53};
constexpr Point kGeneralTab{209, 53};
constexpr Point kFirstRecorder{467, 176}; // among the shortcuts
constexpr Point kLoginBox{43, 95};        // among the general settings

/// A global shortcut of another program.
class DesktopKey {
public:
    DesktopKey(PlasmaSession& session, std::int64_t key) : m_session(session) {
        const std::vector<std::string> identity{"another", "something", "Another", "Something"};
        constexpr std::int64_t kSetWithoutAutoloading = 6;
        send("doRegister", "as", {identity});
        send("setShortcut", "asaiu", {identity, std::vector{key}, kSetWithoutAutoloading});
    }

    /// Presses these keys. Returns whether that has triggered the shortcut.
    [[nodiscard]] bool worksWith(std::initializer_list<std::uint32_t> keys) {
        m_isTriggered = false;
        m_session.input().press(keys);
        m_session.probe().roundTrip();
        return m_isTriggered;
    }

private:
    void send(std::string member, std::string signature, std::vector<wayland::BusValue> values) {
        m_session.probe().link().call({"org.kde.kglobalaccel", "/kglobalaccel", "org.kde.KGlobalAccel",
                                       std::move(member), std::move(signature), std::move(values)});
    }

    PlasmaSession& m_session;
    bool m_isTriggered = false;
    SubscriptionPtr m_presses = m_session.probe().link().onSignal(
        {"org.kde.kglobalaccel", "/component/another", "org.kde.kglobalaccel.Component",
         "globalShortcutPressed"},
        [this](const wayland::BusMessage&) { m_isTriggered = true; }, wayland::BusLink::Delivery::Urgent);
};

/// The program with an editor, and with a panel that shows status items.
class PlasmaSettingsTest : public testing::Test {
protected:
    void SetUp() override {
        session.writeSettings(kUsualSettings);
        ASSERT_TRUE(PlasmaSession::waitFor([this] { return panel.isThere(); })) << host.errors();
        ASSERT_TRUE(session.startProgram()) << session.program().errors();
        session.openEditor();
    }

    std::string openedMenu() {
        panel.aboutToShowMenu();
        return panel.menu();
    }
    void choose(const std::string& label) {
        ASSERT_TRUE(PlasmaSession::waitFor([this] { return !panel.item().empty(); }));
        ASSERT_TRUE(PlasmaSession::waitFor([&] { return panel.choose(openedMenu(), label); }));
    }
    [[nodiscard]] bool isMarked(const std::string& label) {
        return x11test::StatusNotifierPanel::isMarked(openedMenu(), label);
    }

    [[nodiscard]] bool waitForWindow(const std::function<bool(const SeenWindow&)>& holds) {
        return session.probe().waitUntil([&] {
            const auto& all = session.probe().windows();
            return std::ranges::any_of(all, holds);
        });
    }
    [[nodiscard]] bool waitForSettings() {
        return waitForWindow(
            [](const SeenWindow& window) { return window.title == kSettings && window.isActive; });
    }
    [[nodiscard]] bool isEditorActive() {
        return std::ranges::any_of(session.probe().windows(), [](const SeenWindow& window) {
            return window.windowClass == kEditor && window.isActive;
        });
    }
    /// Runs JavaScript in KWin for each window that meets the condition.
    void runForWindow(const std::string& condition, const std::string& script) {
        session.probe().run("workspace.clientList().filter((c) => " + condition + ").forEach((c) => { " +
                            script + "; });");
    }
    /// Activates the editor until it is active, because the settings take the focus back once more if KWin
    /// has activated them before the program's request to do so has arrived.
    void activateEditor() {
        ASSERT_TRUE(PlasmaSession::waitFor([this] {
            runForWindow("c.resourceClass == 'org.example.editor'", "workspace.activeClient = c");
            return isEditorActive();
        }));
    }
    void closeSettings() {
        runForWindow("c.caption == 'Tessarel Settings'", "c.closeWindow()");
        ASSERT_TRUE(session.probe().waitUntil([this] {
            const auto& all = session.probe().windows();
            return std::ranges::find(all, kSettings, &SeenWindow::title) == all.end() && isEditorActive();
        }));
    }
    void click(const Point& place) {
        const auto& all = session.probe().windows();
        const auto settings = std::ranges::find(all, kSettings, &SeenWindow::title);
        ASSERT_NE(settings, all.end());
        session.input().moveTo(settings->frame.x + place.x, settings->frame.y + place.y);
        session.input().setLeftButton(true);
        session.input().setLeftButton(false);
    }
    /// Starts the program once more. Returns its exit code.
    [[nodiscard]] std::optional<int> startAgain() { return session.command({}); }

    PlasmaSession session;
    x11test::ChildProcess host{{TESSAREL_STATUS_NOTIFIER_WATCHER}, session.environment()};
    x11test::StatusNotifierPanel panel{session.environment()};
};

TEST_F(PlasmaSettingsTest, TheItemIsOnlyAMenuAndItsRowsMoveTheActiveWindow) {
    choose("Left half   \\(Ctrl\\+Alt\\+Left\\)");

    EXPECT_EQ(session.settledFrame(kEditor, kLeftHalf), kLeftHalf);
    EXPECT_THAT(panel.property("ItemIsMenu"), testing::HasSubstr("true"));
    EXPECT_THAT(panel.property("ToolTip"), testing::HasSubstr("Tessarel"));
}

TEST_F(PlasmaSettingsTest, WhilePausedTheIconIsDimmedAndHotKeysDoNothing) {
    ASSERT_TRUE(PlasmaSession::waitFor([this] { return !panel.property("IconPixmap").empty(); }));
    const std::string icon = panel.property("IconPixmap");

    choose("Pause Tessarel");
    EXPECT_TRUE(PlasmaSession::waitFor([&] { return panel.property("IconPixmap") != icon; }));
    session.input().press({key::kLeftControl, key::kLeftAlt, key::kRight});
    EXPECT_TRUE(isMarked("Pause Tessarel"));

    choose("Pause Tessarel");
    EXPECT_TRUE(PlasmaSession::waitFor([&] { return panel.property("IconPixmap") == icon; }));
    EXPECT_NE(session.frame(kEditor), kRightHalf);
    session.input().press({key::kLeftControl, key::kLeftAlt, key::kLeft});
    EXPECT_EQ(session.settledFrame(kEditor, kLeftHalf), kLeftHalf);
}

TEST_F(PlasmaSettingsTest, TheSettingsComeToTheFrontFromTheMenuAndWithAnotherStart) {
    choose("Settings...");
    ASSERT_TRUE(waitForSettings());

    activateEditor();
    EXPECT_EQ(startAgain(), 0);
    EXPECT_TRUE(waitForSettings());

    closeSettings();
    EXPECT_EQ(startAgain(), 0);
    EXPECT_TRUE(waitForSettings());
    EXPECT_EQ(session.endProgram(), 0) << session.program().errors();
}

TEST_F(PlasmaSettingsTest, TheSettingsCanBeClosedWhileQtHandlesTheirLastFrame) {
    ASSERT_EQ(session.endProgram(), 0);
    ASSERT_TRUE(session.startProgram({{"LD_PRELOAD", TESSAREL_SLOW_FRAME_CALLBACKS}}));

    for (int round = 0; round < 10; ++round) {
        EXPECT_EQ(startAgain(), 0);
        ASSERT_TRUE(waitForSettings());
        closeSettings();
    }

    EXPECT_EQ(session.command({"list", "displays"}), 0);
    EXPECT_EQ(session.endProgram(), 0) << session.program().errors();
}

TEST_F(PlasmaSettingsTest, ARecordedCombinationMovesTheActiveWindow) {
    const auto former = session.keysOf("zone1");
    EXPECT_EQ(startAgain(), 0);
    ASSERT_TRUE(waitForSettings());

    click(kShortcutsTab);
    click(kFirstRecorder);
    // Pressed until it is taken, because no event says that the recorder has the keyboard.
    ASSERT_TRUE(PlasmaSession::waitFor([&] {
        session.input().press({key::kLeftControl, key::kLeftAlt, kKeyK});
        const auto keys = session.keysOf("zone1");
        return !keys.empty() && keys != former;
    }));
    closeSettings();
    session.input().press({key::kLeftControl, key::kLeftAlt, kKeyK});

    const Rect first{0, 0, 533, 450};
    EXPECT_EQ(session.settledFrame(kEditor, first), first);
}

TEST_F(PlasmaSettingsTest, AfterAKillWhileACombinationIsRecordedTheNextStartLetsTheKeysOfTheDesktopWork) {
    DesktopKey key(session, 'K'); // which the recorder does not take, because it has no modifier
    ASSERT_TRUE(PlasmaSession::waitFor([&] { return key.worksWith({kKeyK}); }));
    EXPECT_EQ(startAgain(), 0);
    ASSERT_TRUE(waitForSettings());
    click(kShortcutsTab);
    click(kFirstRecorder);
    // Then the recorder has the keyboard.
    ASSERT_TRUE(PlasmaSession::waitFor([&] { return !key.worksWith({kKeyK}); }));
    session.program().signal(SIGKILL);
    ASSERT_TRUE(session.program().waitForExit());

    ASSERT_TRUE(session.startProgram()) << session.program().errors();

    EXPECT_TRUE(PlasmaSession::waitFor([&] { return key.worksWith({kKeyK}); }));
}

TEST_F(PlasmaSettingsTest, TheMenuLeavesOutAKeyThatTheUserHasGivenAnotherProgramInTheSystemSettings) {
    constexpr std::int64_t kControlAltLeft = 0x0c000000 | 0x01000012; // as Qt numbers keys
    const auto offersKey = [this] { return openedMenu().find("Ctrl+Alt+Left") != std::string::npos; };
    ASSERT_TRUE(PlasmaSession::waitFor([this] { return !panel.item().empty(); }));
    ASSERT_TRUE(PlasmaSession::waitFor(offersKey));

    session.probe().link().call({"org.kde.kglobalaccel",
                                 "/kglobalaccel",
                                 "org.kde.KGlobalAccel",
                                 "setForeignShortcut",
                                 "asai",
                                 {std::vector<std::string>{"tessarel", "leftHalf", "Tessarel", "Left half"},
                                  std::vector<std::int64_t>{}}});
    const DesktopKey key(session, kControlAltLeft);

    EXPECT_TRUE(PlasmaSession::waitFor([&] { return !offersKey(); }));
}

TEST_F(PlasmaSettingsTest, TheBoxWritesAndRemovesTheEntryThatStartsTheProgramAtLogin) {
    const auto entry =
        std::filesystem::path(session.environment().at("XDG_CONFIG_HOME")) / "autostart/tessarel.desktop";
    EXPECT_EQ(startAgain(), 0);
    ASSERT_TRUE(waitForSettings());

    click(kGeneralTab);
    click(kLoginBox);
    EXPECT_TRUE(PlasmaSession::waitFor([&] { return std::filesystem::exists(entry); }));
    click(kLoginBox);
    EXPECT_TRUE(PlasmaSession::waitFor([&] { return !std::filesystem::exists(entry); }));
}

} // namespace
} // namespace tessarel::plasmatest
