// SPDX-License-Identifier: MIT

#include "look/control_style.h"
#include "macos/fake/fake_mac.h"
#include "macos/fake/fake_menus.h"

#include <QApplication>
#include <QString>
#include <gtest/gtest.h>

#include <array>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// The program's main(), compiled under another name.
int mainOfProgram(int argumentCount, char** arguments);

namespace tessarel {
namespace {

/// Called once, while the application object is being created.
std::function<void()> atStartup;

void callAtStartup() {
    if (const auto once = std::exchange(atStartup, nullptr))
        once();
}

/// Runs main() on a fake Mac.
class MacMainTest : public ::testing::Test {
protected:
    static constexpr const char* kIdentifier = "org.example.Tessarel";

    static void SetUpTestSuite() { qAddPreRoutine(callAtStartup); }

    MacMainTest() {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        fakemac::reset();
        fakemac::mac().ownBundleIdentifier = kIdentifier;
        fakemac::mac().displays = {
            {.number = 1, .frame = {0, 0, 1440, 900}, .visibleFrame = {0, 0, 1440, 875}}};
        fakemac::launch(fakemac::mac().ownPid, {.bundleIdentifier = kIdentifier, .isRegular = false});
        // The welcome has been shown, and the next update check is due in the year 2100.
        fakemac::mac().defaults["tessarel.settings.v1"] =
            R"({"hasOnboarded": true, "lastUpdateCheck": 4102444800})";
    }
    ~MacMainTest() override {
        atStartup = nullptr;
        EXPECT_EQ(fakemac::heldObjects(), std::vector<std::string>());
    }

    /// Runs main(), with `first` as the first event of its loop, and returns its exit status.
    static int run(std::function<void()> first) {
        atStartup = [first = std::move(first)] {
            QMetaObject::invokeMethod(QCoreApplication::instance(), first, Qt::QueuedConnection);
        };
        return run();
    }
    static int run() {
        std::array<char, 9> name{"Tessarel"};
        std::array<char*, 2> arguments{name.data(), nullptr};
        return mainOfProgram(1, arguments.data());
    }
};

TEST_F(MacMainTest, QtIsToldNotToActivateTheProgramBeforeTheApplicationObjectIsCreated) {
    const std::array names{"QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "QT_MAC_SET_RAISE_PROCESS"};
    for (const char* name : names)
        qunsetenv(name);
    std::vector<QByteArray> values;
    atStartup = [&] {
        for (const char* name : names)
            values.push_back(qgetenv(name));
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [] { QCoreApplication::quit(); }, Qt::QueuedConnection);
    };

    EXPECT_EQ(run(), EXIT_SUCCESS);

    EXPECT_EQ(values, (std::vector<QByteArray>{"1", "0"}));
}

TEST_F(MacMainTest, TheProgramRunsUntilItIsAskedToEnd) {
    std::size_t statusItems = 0;

    EXPECT_EQ(run([&] {
                  statusItems = fakemac::statusItems().size();
                  std::raise(SIGTERM);
              }),
              EXIT_SUCCESS);

    EXPECT_EQ(statusItems, 1U);
}

TEST_F(MacMainTest, NumbersAreNotWrittenInTheUsersLocale) {
    qputenv("LC_ALL", "C.UTF-8"); // exists on every machine, and differs from "C" in its name
    std::string locale;

    EXPECT_EQ(run([&] {
                  locale = std::setlocale(LC_NUMERIC, nullptr);
                  QCoreApplication::quit();
              }),
              EXIT_SUCCESS);
    qunsetenv("LC_ALL");

    EXPECT_EQ(locale, "C");
}

TEST_F(MacMainTest, AStyleNamedInTheEnvironmentIsNotUsed) {
    qputenv("QT_STYLE_OVERRIDE", "Windows");
    bool isOwn = false;

    EXPECT_EQ(run([&] {
                  isOwn = dynamic_cast<const ControlStyle*>(QApplication::style()) != nullptr;
                  QCoreApplication::quit();
              }),
              EXIT_SUCCESS);
    qunsetenv("QT_STYLE_OVERRIDE");

    EXPECT_TRUE(isOwn);
}

TEST_F(MacMainTest, QtKnowsTheProgramAndReportsItsMessagesToIt) {
    QCoreApplication::setApplicationVersion({});
    qInstallMessageHandler(nullptr);
    const QtMessageHandler handlerOfQt = qInstallMessageHandler(nullptr);
    QtMessageHandler handler = handlerOfQt;

    EXPECT_EQ(run([&] {
                  handler = qInstallMessageHandler(nullptr);
                  QCoreApplication::quit();
              }),
              EXIT_SUCCESS);

    EXPECT_NE(QCoreApplication::applicationVersion(), QString());
    EXPECT_NE(handler, handlerOfQt);
}

TEST_F(MacMainTest, ASecondCopyEndsAtOnce) {
    fakemac::launch(1, {.startedAt = 1, .bundleIdentifier = kIdentifier});

    EXPECT_EQ(run([] { ADD_FAILURE() << "the event loop runs"; }), EXIT_SUCCESS);
}

} // namespace
} // namespace tessarel
