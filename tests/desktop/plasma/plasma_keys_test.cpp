// SPDX-License-Identifier: MIT

#include "support/plasma/plasma_session.h"

#include <gtest/gtest.h>

namespace tessarel::plasmatest {
namespace {

constexpr const char* kUsualSettings = R"({"hasOnboarded":true,"rememberApps":false})";

class PlasmaKeysTest : public testing::Test {
protected:
    void SetUp() override {
        session.writeSettings(kUsualSettings);
        ASSERT_TRUE(session.startProgram()) << session.program().errors();
    }

    PlasmaSession session;
};

TEST_F(PlasmaKeysTest, AHotKeyMovesTheActiveWindowExactlyIntoItsZone) {
    session.open({"kwrite"}, kEditor);

    session.input().press({key::kLeftControl, key::kLeftAlt, key::kDigit1 + 3});
    const Rect fourth{0, 450, 800, 450};
    EXPECT_EQ(session.settledFrame(kEditor, fourth), fourth);

    session.input().press({key::kLeftControl, key::kLeftAlt, key::kRight});
    const Rect rightHalf{800, 0, 800, 900};
    EXPECT_EQ(session.settledFrame(kEditor, rightHalf), rightHalf);

    session.input().press({key::kLeftControl, key::kLeftAlt, key::kLeftMeta, key::kRight});
    const Rect onSecond{2400, 0, 800, 900};
    EXPECT_EQ(session.settledFrame(kEditor, onSecond), onSecond);

    EXPECT_EQ(session.endProgram(), 0) << session.program().errors();
    EXPECT_TRUE(session.shortcuts().empty());
}

} // namespace
} // namespace tessarel::plasmatest
