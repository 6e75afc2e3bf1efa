// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/input_method_probe.h"

#include "support/hanging_bus.h"
#include "support/scratch_folder.h"
#include "support/ticks.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QtGlobal>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
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

/// Fixture: an input method whose daemon hangs, so that a probe that finds its announcement keeps Qt off it.
class InputMethodEnvironmentTest : public testing::Test {
protected:
    InputMethodEnvironmentTest() {
        set("QT_IM_MODULE", "ibus");
        set("XDG_CONFIG_HOME", folder.path().c_str());
        for (const char* const variable : {"DISPLAY", "WAYLAND_DISPLAY", "IBUS_ADDRESS_FILE"})
            set(variable, nullptr);
    }
    ~InputMethodEnvironmentTest() override {
        for (const auto& [variable, value] : before)
            value.isNull() ? qunsetenv(variable.c_str()) : qputenv(variable.c_str(), value);
    }
    InputMethodEnvironmentTest(const InputMethodEnvironmentTest&) = delete;
    InputMethodEnvironmentTest& operator=(const InputMethodEnvironmentTest&) = delete;

    /// Sets a variable of the environment, or removes it if `value` is null.
    void set(const char* variable, const char* value) {
        before.try_emplace(variable, qgetenv(variable));
        value == nullptr ? qunsetenv(variable) : qputenv(variable, value);
    }

    /// Announces in `file` a daemon at `bus`.
    static void announce(const std::filesystem::path& file, const std::filesystem::path& bus) {
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << "IBUS_ADDRESS=unix:path=" << bus.string() << "\nIBUS_DAEMON_PID=" << ::getpid()
                            << '\n';
    }
    /// Returns whether the announcement is found if it is in `file` and nowhere else.
    [[nodiscard]] bool isFoundIn(const std::filesystem::path& file) const {
        announce(file, socket);
        const bool isFound = InputMethodProbe().beforeQt(std::chrono::milliseconds(1)) != nullptr;
        std::filesystem::remove(file);
        return isFound;
    }
    /// Returns the file for this display in the user's configuration folder.
    [[nodiscard]] std::filesystem::path fileFor(const std::string& display) const {
        return folder.path() / "ibus" / "bus" /
               (QDBusConnection::localMachineId().toStdString() + "-" + display);
    }

    [[nodiscard]] static QByteArray moduleForQt() { return qgetenv("QT_IM_MODULE"); }

    ScratchFolder folder;
    std::filesystem::path socket = folder.path() / "socket";
    HangingBus daemon{socket.string(), 0};
    std::map<std::string, QByteArray> before; ///< the environment; null for variables that were not set
};

TEST_F(InputMethodEnvironmentTest, TheFileIsThatOfTheXDisplay) {
    set("DISPLAY", ":0");
    EXPECT_TRUE(isFoundIn(fileFor("unix-0")));
    EXPECT_FALSE(isFoundIn(fileFor("unix-1")));

    set("DISPLAY", ":12.1");
    EXPECT_TRUE(isFoundIn(fileFor("unix-12")));

    set("DISPLAY", "example.org:3.0");
    EXPECT_TRUE(isFoundIn(fileFor("example.org-3")));
}

TEST_F(InputMethodEnvironmentTest, TheFileIsThatOfTheWaylandDisplayIfThereIsOne) {
    set("DISPLAY", ":0");
    set("WAYLAND_DISPLAY", "wayland-1");

    EXPECT_TRUE(isFoundIn(fileFor("unix-wayland-1")));
    EXPECT_FALSE(isFoundIn(fileFor("unix-0")));
}

TEST_F(InputMethodEnvironmentTest, TheEnvironmentMayNameTheFile) {
    const std::filesystem::path file = folder.path() / "announcement";
    set("DISPLAY", ":0");
    set("IBUS_ADDRESS_FILE", file.c_str());

    EXPECT_TRUE(isFoundIn(file));
    EXPECT_FALSE(isFoundIn(fileFor("unix-0")));
}

TEST_F(InputMethodEnvironmentTest, OnlyFcitxUsesTheSessionBus) {
    EXPECT_FALSE(InputMethodProbe::usesSessionBus());

    for (const char* const name : {"fcitx", "fcitx5"}) {
        set("QT_IM_MODULE", name);
        EXPECT_TRUE(InputMethodProbe::usesSessionBus()) << name;
    }
}

TEST_F(InputMethodEnvironmentTest, NoOtherInputMethodHasIt) {
    set("DISPLAY", ":0");
    set("QT_IM_MODULE", "compose");

    EXPECT_FALSE(isFoundIn(fileFor("unix-0")));
}

TEST_F(InputMethodEnvironmentTest, QtUsesADaemonThatReplies) {
    const std::filesystem::path file = folder.path() / "announcement";
    const std::filesystem::path bus = folder.path() / "bus";
    const HangingBus replying(bus.string(), 1);
    announce(file, bus);
    set("IBUS_ADDRESS_FILE", file.c_str());
    InputMethodProbe probe;

    EXPECT_FALSE(probe.beforeQt(std::chrono::seconds(30)));

    EXPECT_EQ(moduleForQt(), "ibus");
}

TEST_F(InputMethodEnvironmentTest, ADaemonThatHangsIsWaitedForBrieflyAndHiddenFromQt) {
    const std::filesystem::path file = folder.path() / "announcement";
    announce(file, socket);
    set("IBUS_ADDRESS_FILE", file.c_str());
    InputMethodProbe probe;
    const Ticks ticks(std::chrono::milliseconds(100));

    auto hidden = probe.beforeQt();

    EXPECT_LT(ticks.count(), 40) << "periods, of which one is expected";
    EXPECT_NE(moduleForQt(), "ibus");
    hidden.reset();
    EXPECT_EQ(moduleForQt(), "ibus");
}

} // namespace
} // namespace tessarel::qt
