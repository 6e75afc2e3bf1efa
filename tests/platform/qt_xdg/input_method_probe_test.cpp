// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/input_method_probe.h"

#include "support/hanging_bus.h"
#include "support/scratch_folder.h"
#include "support/ticks.h"

#include <QByteArray>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <unistd.h>

namespace tessarel::qt {
namespace {

TEST(InputMethodProbeTest, TheAddressIsThatOfADaemonThatRuns) {
    const std::string announcement = "# IBUS_ADDRESS=unix:path=/comment\n"
                                     "IBUS_ADDRESS=unix:abstract=/daemon,guid=0123\n"
                                     "IBUS_DAEMON_PID=" +
                                     std::to_string(::getpid()) + "\n";

    EXPECT_EQ(InputMethodProbe::addressIn(announcement), "unix:abstract=/daemon,guid=0123");
}

TEST(InputMethodProbeTest, ADaemonThatIsNotKnownToRunHasNoAddress) {
    for (const char* const process : {"", "IBUS_DAEMON_PID=\n", "IBUS_DAEMON_PID=-1\n",
                                      "IBUS_DAEMON_PID=2147483647\n"}) // more than Linux gives
        EXPECT_EQ(InputMethodProbe::addressIn(std::string("IBUS_ADDRESS=unix:path=/daemon\n") + process), "")
            << process;
}

/// The input method ibus, chosen by the environment.
class ChosenInputMethodTest : public testing::Test {
protected:
    ChosenInputMethodTest() {
        ScratchFolder::write(folder.path() / "announcement",
                             "IBUS_ADDRESS=unix:path=" + bus() +
                                 "\nIBUS_DAEMON_PID=" + std::to_string(::getpid()) + "\n");
        qputenv(kModule, "ibus");
        qputenv(kFile, (folder.path() / "announcement").c_str());
    }
    ~ChosenInputMethodTest() override {
        qunsetenv(kFile);
        if (moduleBefore.isNull())
            qunsetenv(kModule);
        else
            qputenv(kModule, moduleBefore);
    }
    ChosenInputMethodTest(const ChosenInputMethodTest&) = delete;
    ChosenInputMethodTest& operator=(const ChosenInputMethodTest&) = delete;

    [[nodiscard]] std::string bus() const { return folder.path() / "bus"; }
    [[nodiscard]] static QByteArray moduleForQt() { return qgetenv(kModule); }

    static constexpr const char* kModule = "QT_IM_MODULE";
    static constexpr const char* kFile = "IBUS_ADDRESS_FILE";
    ScratchFolder folder;
    QByteArray moduleBefore = qgetenv(kModule);
};

TEST_F(ChosenInputMethodTest, QtUsesOneThatReplies) {
    const HangingBus daemon(bus(), 1);
    InputMethodProbe probe;

    EXPECT_FALSE(probe.beforeQt(std::chrono::seconds(30)));

    EXPECT_EQ(moduleForQt(), "ibus");
}

TEST_F(ChosenInputMethodTest, OneThatHangsIsWaitedForBrieflyAndHiddenFromQt) {
    const HangingBus daemon(bus(), 0);
    InputMethodProbe probe;
    const Ticks ticks(std::chrono::milliseconds(100));

    auto hidden = probe.beforeQt();

    EXPECT_LT(ticks.count(), 10) << "periods, of which one is expected";
    EXPECT_NE(moduleForQt(), "ibus");
    hidden.reset();
    EXPECT_EQ(moduleForQt(), "ibus");
}

} // namespace
} // namespace tessarel::qt
