// SPDX-License-Identifier: MIT

#include "macos/mac_application_test.h"
#include "platform/macos/shell/single_instance.h"
#include "settings_ui/recorder_button.h"
#include "support/main_queue.h"

#include <QClipboard>
#include <QDialog>
#include <QEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

#include <memory>

namespace tessarel {
namespace {

using Launch = AppDelegate::Launch;
using Lines = std::vector<std::string>;

class MacApplicationShellTest : public MacApplicationTest {
protected:
    static constexpr const char* kPrivacySettings =
        "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";

    /// Returns the recorder of the first zone's shortcut; null when the window does not show one.
    [[nodiscard]] static RecorderButton* firstRecorder() {
        for (auto* const button : settingsWindow()->findChildren<QPushButton*>()) {
            auto* const recorder = dynamic_cast<RecorderButton*>(button);
            if (recorder && recorder->actionID() == ActionID::allCases.front())
                return recorder;
        }
        return nullptr;
    }

    /// Returns the message that is shown; null if there is none.
    [[nodiscard]] static QDialog* message() {
        for (QWidget* const window : QApplication::topLevelWidgets()) {
            auto* const dialog = qobject_cast<QDialog*>(window);
            if (dialog && dialog->isVisible())
                return dialog;
        }
        return nullptr;
    }

    /// Waits for a message and clicks its button called `title`.
    static void answer(const QString& title) {
        ASSERT_TRUE(until([] { return message() != nullptr; }));
        for (auto* const button : message()->findChildren<QPushButton*>()) {
            if (button->text() == title)
                button->click();
        }
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // no event loop does it
    }
};

TEST_F(MacApplicationShellTest, LaunchingInstallsStatusItemMonitorsHotKeysAndMainMenu) {
    EXPECT_EQ(launch(), Launch::Running);

    EXPECT_EQ(fakemac::statusItems(), (std::vector<fakemac::StatusItemSight>{{.symbol = "rectangle.3.group",
                                                                              .description = "Tessarel",
                                                                              .isTemplate = true,
                                                                              .title = "",
                                                                              .appearsDisabled = false}}));
    EXPECT_EQ(fakemac::globalMonitors(), 3U);
    EXPECT_EQ(fakemac::claims().size(), 15U) << "expected all actions but those of the four unused zones";
    EXPECT_FALSE(fakemac::mainMenuRows().empty());
    EXPECT_EQ(fakemac::mac().activationPolicy, 1) << "the program has a Dock icon";
    EXPECT_EQ(fakemac::mac().prompted, Lines());
}

TEST_F(MacApplicationShellTest, QuittingLeavesNothingBehind) {
    launch();
    openEditorWindow();
    choose({"Settings..."});
    EXPECT_TRUE(until([] { return settingsWindow() != nullptr; }));

    async(program->mainQueue(), [] { choose({"Quit Tessarel"}); });
    EXPECT_EQ(QApplication::exec(), 0);
    program.reset();

    EXPECT_EQ(fakemac::statusItems().size(), 0U);
    EXPECT_EQ(fakemac::globalMonitors(), 0U);
    EXPECT_EQ(fakemac::claims(), Lines());
    EXPECT_EQ(fakemac::mainMenuRows(), Lines());
    EXPECT_EQ(QApplication::topLevelWidgets().size(), 0);
    windows.reset();
    EXPECT_EQ(fakemac::heldObjects(), Lines());
}

TEST_F(MacApplicationShellTest, TheFirstLaunchShowsTheWelcomeAndThenRequestsThePermission) {
    fakemac::mac().defaults.clear();
    fakemac::mac().trusted = false;
    launch();
    EXPECT_EQ(fakemac::mac().prompted, Lines());

    answer(QStringLiteral("Open Settings"));

    EXPECT_TRUE(until([] { return settingsWindow() != nullptr; }));
    EXPECT_EQ(fakemac::mac().prompted.size(), 1U);
    EXPECT_GT(fakemac::mac().activations, 0);
    EXPECT_NE(fakemac::mac().defaults[kSettingsKey].find(R"("hasOnboarded":true)"), std::string::npos)
        << fakemac::mac().defaults[kSettingsKey];
}

TEST_F(MacApplicationShellTest, ThePermissionIsRequestedAndHotKeysWorkOnceItIsGranted) {
    fakemac::mac().trusted = false;
    launch();
    EXPECT_TRUE(until([] { return fakemac::mac().prompted.size() == 1U; }));
    const auto window = openEditorWindow();
    fakemac::pressKeys(kKey1, kCtrlOpt);
    EXPECT_EQ(frameOf(window), kWindow);

    fakemac::mac().trusted = true;
    fakemac::pressKeys(kKey1, kCtrlOpt);

    EXPECT_NE(frameOf(window), kWindow);
}

TEST_F(MacApplicationShellTest, TheMenuRequestsThePermissionUntilItIsGranted) {
    fakemac::mac().trusted = false;
    launch();

    choose({"Grant Accessibility access..."});
    EXPECT_TRUE(until([] { return fakemac::mac().opened == Lines{kPrivacySettings}; }));
    EXPECT_EQ(fakemac::mac().prompted.size(), 2U);

    fakemac::mac().trusted = true;
    ASSERT_FALSE(fakemac::openStatusMenu().empty());
    EXPECT_FALSE(fakemac::clickAt({"Grant Accessibility access..."}));
}

TEST_F(MacApplicationShellTest, StartingASecondCopyShowsTheSettingsOfTheFirst) {
    launch();

    fakemac::mac().ownPid = 4343;
    fakemac::launch(4343, {.bundleIdentifier = kOwnIdentifier});
    EXPECT_EQ(macos::MacSingleInstance().claim([] {}, [] {}), nullptr);

    EXPECT_TRUE(until([] { return settingsWindow() != nullptr; }));
}

TEST_F(MacApplicationShellTest, TheSettingsComeToTheFrontWhenActivationIsRefused) {
    launch();
    openEditorWindow();
    fakemac::mac().grantsActivation = false;

    choose({"Settings..."});
    ASSERT_TRUE(until([] { return settingsWindow() != nullptr; }));
    drain();

    EXPECT_GT(fakemac::mac().activationRequests, 0);
    EXPECT_TRUE(windows->sight(*settingsWindow()).isInFront);
    EXPECT_TRUE(windows->sight(*settingsWindow()).hasKeyboard);
}

TEST_F(MacApplicationShellTest, AnOpenSettingsWindowComesToTheFrontAgain) {
    launch();
    choose({"Settings..."});
    ASSERT_TRUE(until([] { return settingsWindow() != nullptr; }));
    openEditorWindow();
    drain();
    EXPECT_FALSE(windows->sight(*settingsWindow()).isInFront);
    fakemac::mac().grantsActivation = false;

    choose({"Settings..."});

    EXPECT_TRUE(until([&] { return windows->sight(*settingsWindow()).isInFront; }));
}

TEST_F(MacApplicationShellTest, AMessageComesToTheFrontWhenActivationIsRefused) {
    fakemac::mac().defaults.clear();
    fakemac::mac().grantsActivation = false;
    launch();
    openEditorWindow();

    ASSERT_TRUE(until([] { return message() != nullptr; }));
    EXPECT_TRUE(windows->sight(*message()).isInFront);
    EXPECT_TRUE(windows->sight(*message()).hasKeyboard);
    answer(QStringLiteral("Continue"));

    EXPECT_NE(fakemac::mac().defaults[kSettingsKey].find(R"("hasOnboarded":true)"), std::string::npos);
}

TEST_F(MacApplicationShellTest, MenuAndSettingsCanBeUsedWhileTheWelcomeStands) {
    fakemac::mac().defaults.clear();
    launch();
    ASSERT_TRUE(until([] { return message() != nullptr; }));

    choose({"Pause Tessarel"});
    EXPECT_TRUE(until([] { return fakemac::statusItems().at(0).appearsDisabled; }));
    EXPECT_TRUE(fakemac::openAgain());
    ASSERT_TRUE(until([] { return settingsWindow() != nullptr; }));
    drain();

    EXPECT_FALSE(message()->isModal());
    EXPECT_TRUE(windows->sight(*settingsWindow()).isInFront) << "the message covers the settings";
    EXPECT_TRUE(windows->sight(*settingsWindow()).hasKeyboard);
}

TEST_F(MacApplicationShellTest, AModalMessageBecomesTheKeyWindowInsteadOfTheSettings) {
    launch();
    choose({"Settings..."});
    ASSERT_TRUE(until([] { return settingsWindow() != nullptr; }));
    QDialog message;
    message.setModal(true);
    message.show();

    choose({"Settings..."});
    drain();

    EXPECT_TRUE(windows->sight(message).hasKeyboard);
}

TEST_F(MacApplicationShellTest, OpeningTheProgramAgainShowsTheSettings) {
    launch();

    EXPECT_TRUE(fakemac::openAgain());

    EXPECT_TRUE(until([] { return settingsWindow() != nullptr; }));
}

TEST_F(MacApplicationShellTest, ASecondCopyRegistersNothing) {
    fakemac::launch(1, {.startedAt = 1, .bundleIdentifier = kOwnIdentifier});

    EXPECT_EQ(launch(), Launch::AnotherCopyRuns);

    EXPECT_EQ(fakemac::claims(), Lines());
    EXPECT_EQ(fakemac::globalMonitors(), 0U);
    EXPECT_EQ(fakemac::statusItems().size(), 0U);
    EXPECT_EQ(fakemac::mac().prompted, Lines());
}

TEST_F(MacApplicationShellTest, TheEditMenuActsOnTextFieldsOfOwnWindows) {
    launch();
    QLineEdit field(QStringLiteral("zone"));
    field.show();
    field.activateWindow();
    field.setFocus();
    drain();

    EXPECT_TRUE(fakemac::pressMenuKey('a'));
    EXPECT_TRUE(fakemac::pressMenuKey('c'));

    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("zone"));
    EXPECT_EQ(fakemac::mac().actions, Lines()) << "an action was sent along the responder chain";
}

TEST_F(MacApplicationShellTest, ARecordedShortcutWorksAtOnce) {
    constexpr std::uint32_t kKeyK = 40;
    launch();
    const auto window = openEditorWindow();
    choose({"Settings..."});
    ASSERT_TRUE(until([] { return settingsWindow() != nullptr; }));
    settingsWindow()->findChild<QTabWidget*>()->setCurrentIndex(1);
    fakemac::focus(fakemac::openWindow({.pid = fakemac::mac().ownPid, .axFrame = {0, 0, 400, 300}}));

    ASSERT_NE(firstRecorder(), nullptr);
    firstRecorder()->click();
    fakemac::pressKeys(kKeyK, kCtrlOpt);
    fakemac::focus(window);
    fakemac::pressKeys(kKeyK, kCtrlOpt);

    EXPECT_EQ(frameOf(window), (Rect{0, 25, 480, 438}));
}

TEST_F(MacApplicationShellTest, CloseWindowIsSentAlongTheResponderChain) {
    launch();

    EXPECT_TRUE(fakemac::pressMenuKey('w'));

    EXPECT_EQ(fakemac::mac().actions, Lines{"performClose:"});
}

} // namespace
} // namespace tessarel
