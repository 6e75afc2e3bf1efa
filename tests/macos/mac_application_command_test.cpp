// SPDX-License-Identifier: MIT

#include "macos/mac_application_test.h"
#include "platform/macos/shell/command_channel.h"

#include <QCoreApplication>
#include <QFileOpenEvent>
#include <QString>
#include <QUrl>

namespace tessarel {
namespace {

using Outcome = SentCommand::Outcome;

/// The running program, to which other processes send commands.
class MacApplicationCommandTest : public MacApplicationTest {
protected:
    /// Sends a command as a process that the user has started in a terminal.
    static SentCommand send(const std::vector<std::string>& words) {
        const ProcessId own = fakemac::mac().ownPid;
        fakemac::mac().ownPid = 4343;
        SentCommand sent = macos::sendCommand(words);
        fakemac::mac().ownPid = own;
        return sent;
    }

    /// Opens an address as Qt does when the system's event arrives.
    static void open(const QUrl& address) {
        QFileOpenEvent event(address);
        QCoreApplication::sendEvent(QCoreApplication::instance(), &event);
    }
    static void open(const char* address) { open(QUrl(QString::fromLatin1(address))); }
};

TEST_F(MacApplicationCommandTest, ACommandSnapsTheFrontWindow) {
    launch();
    const auto window = openEditorWindow();

    const SentCommand sent = send({"zone-1"});

    EXPECT_EQ(sent.outcome, Outcome::Answered);
    EXPECT_EQ(sent.answer, CommandAnswer{});
    EXPECT_EQ(frameOf(window), kZone1) << "when the command is answered";
}

TEST_F(MacApplicationCommandTest, TheAnswerSaysWhyNothingWasDone) {
    launch();

    EXPECT_EQ(send({"zone-1"}).answer, (CommandAnswer{4, "there is no window to move"}));
    EXPECT_EQ(send({"zone-99"}).answer, (CommandAnswer{2, "there is no command \"zone-99\""}));
    EXPECT_EQ(send({}).answer.exitCode, 2);
}

TEST_F(MacApplicationCommandTest, AListIsReturned) {
    launch();

    EXPECT_EQ(send({"list", "displays"}).answer,
              (CommandAnswer{0, "1\t1440x900+0+0\tusable 1440x875+0+25\n"
                                "2\t1120x1024+1440+0\tusable 1120x1024+1440+0"}));
}

TEST_F(MacApplicationCommandTest, QuitEndsTheProgramAfterTheAnswer) {
    launch();
    SentCommand sent;
    async(program->mainQueue(), [&sent] { sent = send({"quit"}); });

    EXPECT_EQ(QApplication::exec(), 0);

    EXPECT_EQ(sent.outcome, Outcome::Answered);
    EXPECT_EQ(sent.answer, CommandAnswer{});
}

TEST_F(MacApplicationCommandTest, ASecondCopyReceivesNoCommands) {
    fakemac::launch(1, {.startedAt = 1, .bundleIdentifier = kOwnIdentifier});
    EXPECT_EQ(launch(), AppDelegate::Launch::AnotherCopyRuns);
    const auto window = openEditorWindow();

    EXPECT_EQ(send({"zone-1"}).outcome, Outcome::NoAnswer) << "the older copy is not a real one";
    open("tessarel://zone/1");

    EXPECT_EQ(frameOf(window), kWindow);
}

TEST_F(MacApplicationCommandTest, AnAddressSnapsTheFrontWindow) {
    launch();
    const auto window = openEditorWindow();

    open("tessarel://zone/1");

    EXPECT_EQ(frameOf(window), kZone1);
}

TEST_F(MacApplicationCommandTest, AnAddressNamesALayoutWithSpaces) {
    settings(
        R"(, "userLayouts": [{"name": "My desk", "zones": [{"enabled": true, "x": 0, "y": 0, "w": 50, "h": 100}]}])");
    launch();
    const auto window = openEditorWindow();

    open("tessarel://layout/My%20desk");
    open("tessarel://zone/1");

    EXPECT_EQ(frameOf(window), (Rect{0, 25, 720, 875}));
}

TEST_F(MacApplicationCommandTest, AnAddressCannotQuitAndAFileHasNoMeaning) {
    launch();
    const auto window = openEditorWindow();

    open("tessarel://quit");
    open("https://example.org/zone/1");
    open(QUrl::fromLocalFile(QStringLiteral("/zone/1")));
    open("tessarel://pause/now");
    drain();
    fakemac::pressKeys(kKey1, kCtrlOpt);

    EXPECT_EQ(fakemac::statusItems().size(), 1U);
    EXPECT_EQ(frameOf(window), kZone1) << "the program still works";
}

} // namespace
} // namespace tessarel
