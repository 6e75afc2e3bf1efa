// SPDX-License-Identifier: MIT

#include "settings_ui/about_tab.h"

#include "model/config.h"
#include "settings_ui/looks.h"
#include "settings_ui/settings_ui_test.h"

#include <QLabel>
#include <QPushButton>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessarel {
namespace {

class AboutTabTest : public SettingsUiTest {
protected:
    QLabel& label(const QRect& frame) { return at<QLabel>(*tab.view(), frame); }
    QPushButton& button(const QRect& frame) { return at<QPushButton>(*tab.view(), frame); }

    AboutTab tab{context};
};

TEST_F(AboutTabTest, EveryControlHasItsFrameTextAndStyle) {
    EXPECT_EQ(looks(*tab.view()),
              "16 14 400x34 label 26 bold: Tessarel\n"
              "16 52 300x18 label 13 secondary: Version " +
                  std::string(Config::version) +
                  "\n"
                  "16 82 600x22 wrap 13: Snap windows into layouts you design.\n"
                  "16 120 110x28 button 13: Website\n"
                  "134 120 120x28 button 13: Email support\n"
                  "262 120 150x28 button 13: Check for updates\n"
                  "16 176 200x20 label 14 bold: Privacy\n"
                  "16 202 740x60 wrap 12: Tessarel collects no analytics and sends no usage data. It "
                  "contacts the network only to look for new versions. Your layouts and settings stay on "
                  "this Mac.\n");
}

TEST_F(AboutTabTest, ShowsTheNameInLargeLetters) {
    const QLabel& name = label({16, 14, 400, 34});

    EXPECT_EQ(name.text(), "Tessarel");
    EXPECT_GE(name.font().pixelSize(), 24); // 26, or less when the user's font is too tall
}

TEST_F(AboutTabTest, ShowsTheVersion) {
    EXPECT_EQ(label({16, 52, 300, 18}).text().toStdString(), "Version " + std::string(Config::version));
}

TEST_F(AboutTabTest, ShowsThePurposeOfTheProgram) {
    EXPECT_EQ(label({16, 82, 600, 22}).text(), "Snap windows into layouts you design.");
}

TEST_F(AboutTabTest, ShowsThePrivacyStatement) {
    EXPECT_EQ(label({16, 176, 200, 20}).text(), "Privacy");
    EXPECT_EQ(
        label({16, 202, 740, 60}).text(),
        "Tessarel collects no analytics and sends no usage data. It contacts the network only to look for "
        "new versions. Your layouts and settings stay on this Mac.");
}

TEST_F(AboutTabTest, UsesTheSystemsWordForTheComputer) {
    PlatformWords words;
    words.thisComputer = "this computer";
    const Ports here = simPorts(desktop, copy, words);
    AboutTab elsewhere({services, here, {}});

    EXPECT_TRUE(at<QLabel>(*elsewhere.view(), {16, 202, 740, 60}).text().endsWith("stay on this computer."));
}

TEST_F(AboutTabTest, TheWebsiteButtonOpensTheWebsite) {
    button({16, 120, 110, 28}).click();

    EXPECT_EQ(desktop.openUrl().opened, std::vector<std::string>{std::string(Config::websiteURL)});
}

TEST_F(AboutTabTest, TheSupportButtonOpensAMailThatNamesTheProgramAndItsVersion) {
    button({134, 120, 120, 28}).click();

    const std::string expected =
        "mailto:" + std::string(Config::supportEmail) + "?subject=Tessarel%20" + std::string(Config::version);
    EXPECT_EQ(desktop.openUrl().opened, std::vector<std::string>{expected});
}

TEST_F(AboutTabTest, TheUpdateButtonAlwaysShowsTheResult) {
    button({262, 120, 150, 28}).click();
    ASSERT_EQ(desktop.urlLoading().requests.size(), 1U);

    desktop.urlLoading().answer(0, {});

    ASSERT_EQ(desktop.alerts().shown.size(), 1U);
    EXPECT_EQ(desktop.alerts().shown[0].messageText, "Could not check for updates");
}

TEST_F(AboutTabTest, TheButtonsHaveTheirTitles) {
    EXPECT_EQ(button({16, 120, 110, 28}).text(), "Website");
    EXPECT_EQ(button({134, 120, 120, 28}).text(), "Email support");
    EXPECT_EQ(button({262, 120, 150, 28}).text(), "Check for updates");
}

TEST_F(AboutTabTest, HasTheSizeOfATab) {
    EXPECT_EQ(tab.view()->size(), kTabSize);
}

} // namespace
} // namespace tessarel
