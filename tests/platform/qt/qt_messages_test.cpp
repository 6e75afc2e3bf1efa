// SPDX-License-Identifier: MIT

#include "platform/qt/qt_messages.h"

#include <QtGlobal>
#include <gtest/gtest.h>

#include <cstdlib>

namespace tessarel::qt {
namespace {

class QtMessagesTest : public testing::Test {
protected:
    QtMessagesTest() {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        installMessageHandler(
            [this] {
                ++losses;
                if (isDisplayLost)
                    std::_Exit(kLossCode);
            },
            [this] { return isDisplayLost; });
    }
    ~QtMessagesTest() override { qInstallMessageHandler(nullptr); }

    static constexpr int kLossCode = 3;
    bool isDisplayLost = false;
    int losses = 0;
};

TEST_F(QtMessagesTest, WarningsAreNotPrinted) {
    testing::internal::CaptureStderr();

    qWarning("something is odd");

    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(losses, 0);
}

TEST_F(QtMessagesTest, BothMessagesAboutALostDisplayAreRecognised) {
    qWarning("The X11 connection broke (error %d). Did the X11 server die?", 1);
    qWarning("The X11 connection broke: %s (code %d)", "I/O error", 1);

    EXPECT_EQ(losses, 2);
}

TEST_F(QtMessagesTest, AFatalMessageWithoutADisplayIsReportedAsItsLoss) {
    isDisplayLost = true;

    EXPECT_EXIT(qFatal("no platform plugin"), testing::ExitedWithCode(kLossCode), "^$");
}

TEST_F(QtMessagesTest, AFatalMessageEndsTheProgramWithOneLineAndNoCoreDump) {
    EXPECT_EXIT(qFatal("no platform plugin\ncould be found\n"), testing::ExitedWithCode(1),
                "^tessarel: no platform plugin could be found\n$");
}

} // namespace
} // namespace tessarel::qt
