// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/input_method_probe.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace tessarel::qt
