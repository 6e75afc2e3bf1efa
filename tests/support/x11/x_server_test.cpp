// SPDX-License-Identifier: MIT

#include "support/x11/x_server.h"

#include "support/x11/child_process.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace tessarel::x11test {
namespace {

TEST(XServerTest, AProgramWithoutTheCookieIsRejected) {
    const XServer server;
    Environment stranger = server.environment();
    stranger.erase("XAUTHORITY");

    EXPECT_NO_THROW(runToEnd({"xprop", "-root"}, server.environment()));
    EXPECT_THROW(runToEnd({"xprop", "-root"}, stranger), std::runtime_error);
}

} // namespace
} // namespace tessarel::x11test
