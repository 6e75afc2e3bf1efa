// SPDX-License-Identifier: MIT

#include "support/x11/program.h"
#include "support/x11/window_manager.h"
#include "support/x11/x_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace tessarel::x11test {
namespace {

using testing::HasSubstr;
using testing::Not;

/// The whole program, installed in a folder with a helper that is a shell script.
class UpdateCheckTest : public testing::Test {
protected:
    UpdateCheckTest() {
        std::filesystem::copy_file(TESSAREL_PROGRAM, program());
        // Responds with the feed {"version":"1.0.0"}.
        std::ofstream(folder.path() / "tessarel-update-check")
            << "#!/bin/sh\ncat >" + path("request") + "\nls -l /proc/self/fd >" + path("descriptors") +
                   "\nenv >" + path("environment") +
                   "\necho '{\"statusCode\":200,\"body\":\"eyJ2ZXJzaW9uIjoiMS4wLjAifQ==\"}'\n";
        std::filesystem::permissions(folder.path() / "tessarel-update-check",
                                     std::filesystem::perms::owner_all);
    }

    [[nodiscard]] std::string path(const std::string& name) const { return folder.path() / name; }
    [[nodiscard]] std::string program() const { return path("tessarel"); }
    [[nodiscard]] std::string content(const std::string& name) const {
        std::ifstream stream(path(name));
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    /// Returns the resident memory of the process in KiB.
    static long memory(Program& running) {
        std::ifstream lines("/proc/" + std::to_string(running.process().pid()) + "/status");
        std::string line;
        while (std::getline(lines, line)) {
            if (line.starts_with("VmRSS:"))
                return std::stol(line.substr(line.find_first_of("0123456789")));
        }
        return 0;
    }

    TemporaryFolder folder;
    XServer server;
    Observer observer{server.display()};
    Keyboard keyboard{server, observer};
    WindowManager manager{server, WindowManagerKind::Openbox};
};

constexpr const char* kNotDue = R"({"hasOnboarded": true, "lastUpdateCheck": 99999999999})";
constexpr const char* kDue = R"({"hasOnboarded": true})";

TEST_F(UpdateCheckTest, ADueCheckRunsTheHelperAndStoresItsTime) {
    Environment environment = server.environment();
    environment["TESSAREL_TEST_SECRET"] = "secret";
    writeSettings(server, kDue);
    Program running(environment, program());

    EXPECT_TRUE(waitUntilStored(observer, server, "lastUpdateCheck"));

    EXPECT_THAT(content("request"), HasSubstr("\"url\":\"https://"));
    EXPECT_THAT(content("environment"), Not(HasSubstr("SECRET")));
    EXPECT_THAT(content("environment"), Not(HasSubstr("DISPLAY")));
    EXPECT_THAT(content("descriptors"), HasSubstr(" 0 -> ")) << "it has been listed";
    EXPECT_THAT(content("descriptors"), Not(HasSubstr("socket:")))
        << "such as the connection to the X server";
    EXPECT_EQ(running.terminate(), 0);
    EXPECT_EQ(running.errors(), "");
}

TEST_F(UpdateCheckTest, ACheckThatIsNotDueDoesNotRunTheHelper) {
    writeSettings(server, kNotDue);
    Program running(server.environment(), program());
    ASSERT_TRUE(running.waitUntilReady(observer, keyboard));
    EXPECT_TRUE(running.waitUntilAtRest(observer));

    EXPECT_FALSE(std::filesystem::exists(path("request")));
}

TEST_F(UpdateCheckTest, ACheckLeavesTheMemoryOfTheProgramAsItWas) {
    constexpr double kMost = 1.1;
    const auto memoryWith = [this](const char* settings) {
        writeSettings(server, settings);
        Program running(server.environment(), program());
        EXPECT_TRUE(running.waitUntilReady(observer, keyboard));
        EXPECT_TRUE(waitUntilStored(observer, server, "lastUpdateCheck"));
        EXPECT_TRUE(running.waitUntilAtRest(observer));
        const long resident = memory(running);
        EXPECT_EQ(running.terminate(), 0);
        return static_cast<double>(resident);
    };
    const double before = memoryWith(kNotDue);

    const double after = memoryWith(kDue);

    EXPECT_GT(before, 0);
    EXPECT_LE(after, before * kMost) << "from " << before << " KiB to " << after << " KiB";
    RecordProperty("ratio", std::to_string(after / before));
}

} // namespace
} // namespace tessarel::x11test
