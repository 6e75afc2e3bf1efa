// SPDX-License-Identifier: MIT

#include "settings_ui/general_tab_fixture.h"
#include "settings_ui/looks.h"

#include <QAbstractItemView>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace tessarel {
namespace {

TEST_F(GeneralTabTest, EveryControlHasItsFrameTextAndStyle) {
    EXPECT_EQ(looks(*tab.view()),
              "16 14 320x20 box 13: Launch Tessarel at login\n"
              "16 50 200x20 label 14 bold: Spacing\n"
              "16 78 170x18 label 13: Gap between windows\n"
              "190 76 190x22 control\n"
              "390 78 60x18 label 13 secondary: 0 px\n"
              "16 110 170x18 label 13: Margin around the screen\n"
              "190 108 190x22 control\n"
              "390 110 60x18 label 13 secondary: 0 px\n"
              "16 154 200x20 label 14 bold: Drag to snap\n"
              "16 182 380x20 box 13: Show zones while dragging a window\n"
              "36 212 180x18 label 13: Zones appear while you hold:\n"
              "222 208 150x26 control 13\n"
              "16 246 380x20 box 13: Also snap at screen edges and corners\n"
              "36 270 400x50 wrap 12 secondary: Edges give halves, corners give quarters, the top edge "
              "maximizes. macOS has its own edge tiling (System Settings > Desktop & Dock); turn one of the "
              "two off to avoid double snapping.\n"
              "16 346 250x20 label 14 bold: Accessibility permission\n"
              "16 374 440x18 label 13: Granted. Tessarel can move and resize windows.\n"
              "16 400 210x28 button 13: Open Accessibility settings\n"
              "470 50 200x20 label 14 bold: Ignored apps\n"
              "469 77 292x192 control\n"
              "472 80 286x186 control 13\n"
              "470 276 100x28 button 13: Add app...\n"
              "576 276 80x28 button 13: Remove\n"
              "470 310 290x34 wrap 12 secondary: Tessarel will not move or snap windows of these apps.\n"
              "470 350 290x20 label 14 bold: Remember app positions\n"
              "470 376 290x20 box 13: Reopen apps in their last zone\n"
              "470 402 200x28 button 13: Forget remembered apps (0)\n"
              "470 436 290x34 wrap 12 secondary: When an app opens a window, it goes to the zone you last "
              "snapped that app to.\n");
}

TEST_F(GeneralTabTest, BeforeTheFirstRefreshItShowsDefaultsAndNoPermission) {
    GeneralTab fresh(context);

    EXPECT_EQ(fresh.view()->size(), kTabSize);
    EXPECT_EQ(at<QLabel>(*fresh.view(), {390, 78, 60, 18}).text(), "0 px");
    EXPECT_EQ(at<QLabel>(*fresh.view(), {16, 374, 440, 18}).text(), "");
    EXPECT_EQ(fullText(at<QPushButton>(*fresh.view(), {470, 402, 200, 28})), "Forget remembered apps");
}

TEST_F(GeneralTabTest, ShowingSettingsWritesNothing) {
    settings.gap = 8;
    settings.dragTrigger = "always";

    tab.refresh();

    EXPECT_EQ(saved(), std::nullopt);
}

TEST_F(GeneralTabTest, TheLoginBoxShowsTheStateOfTheSystem) {
    EXPECT_FALSE(loginBox.isChecked());

    desktop.loginItem().currentStatus = LoginItemPort::Status::Enabled;
    tab.refresh();

    EXPECT_TRUE(loginBox.isChecked());
}

TEST_F(GeneralTabTest, TheLoginBoxTurnsTheLoginItemOnAndOff) {
    toggle(loginBox);
    EXPECT_TRUE(services.loginItem.isEnabled());

    toggle(loginBox);
    EXPECT_FALSE(services.loginItem.isEnabled());
    EXPECT_TRUE(desktop.alerts().shown.empty());
}

TEST_F(GeneralTabTest, ALoginItemThatCannotBeChangedIsReportedAndTheBoxReverts) {
    desktop.loginItem().failure = "The folder cannot be written to.";
    bool wasChecked = false;
    int activations = 0;
    desktop.alerts().whileShown = [&] {
        wasChecked = loginBox.isChecked();
        activations = desktop.ownApplication().activations;
    };

    toggle(loginBox);

    EXPECT_EQ(desktop.alerts().shown,
              (std::vector<Alert>{
                  {"Could not change the login item", "The folder cannot be written to.", {"OK"}}}));
    EXPECT_EQ(activations, 1) << "the program is in front before the message opens";
    EXPECT_TRUE(wasChecked) << "the box reverts only afterwards";
    EXPECT_FALSE(loginBox.isChecked());
}

TEST_F(GeneralTabTest, TheSlidersShowGapAndMargin) {
    settings.gap = 8;
    settings.margin = 60;

    tab.refresh();

    EXPECT_EQ(gapSlider.value(), 8);
    EXPECT_EQ(gapLabel.text(), "8 px");
    EXPECT_EQ(marginSlider.value(), 60);
    EXPECT_EQ(marginLabel.text(), "60 px");
}

TEST_F(GeneralTabTest, TheSlidersHaveTheirRanges) {
    EXPECT_EQ(gapSlider.minimum(), 0);
    EXPECT_EQ(gapSlider.maximum(), 40);
    EXPECT_EQ(marginSlider.minimum(), 0);
    EXPECT_EQ(marginSlider.maximum(), 60);
}

TEST_F(GeneralTabTest, AReadoutTruncatesFractions) {
    settings.gap = 12.9;
    settings.margin = -0.5;

    tab.refresh();

    EXPECT_EQ(gapLabel.text(), "12 px");
    EXPECT_EQ(marginLabel.text(), "0 px");
}

TEST_F(GeneralTabTest, ValuesBeyondTheRangeOfASliderAreStillShown) {
    settings.gap = 1e20;

    tab.refresh();

    EXPECT_EQ(gapSlider.value(), 40);
    EXPECT_EQ(fullText(gapLabel), "100000000000000000000 px");
}

TEST_F(GeneralTabTest, ValuesFarBelowZeroAreStillShown) {
    settings.margin = -1e20;

    tab.refresh();

    EXPECT_EQ(marginSlider.value(), 0);
    EXPECT_EQ(fullText(marginLabel), "-100000000000000000000 px");
}

TEST_F(GeneralTabTest, PageKeysMoveASliderByFive) {
    press(gapSlider, Qt::Key_PageUp);
    press(marginSlider, Qt::Key_PageUp);

    EXPECT_EQ(settings.gap, 5);
    EXPECT_EQ(settings.margin, 5);
}

TEST_F(GeneralTabTest, MovingASliderSavesAtOnceWithoutANotification) {
    press(gapSlider, Qt::Key_Right);
    press(marginSlider, Qt::Key_End);

    EXPECT_EQ(settings.gap, 1);
    EXPECT_EQ(settings.margin, 60);
    EXPECT_EQ(gapLabel.text(), "1 px");
    EXPECT_EQ(marginLabel.text(), "60 px");
    EXPECT_EQ(saved(), settings);
    EXPECT_EQ(announcements, 0);
}

TEST_F(GeneralTabTest, ASliderRoundsToWholePointsHalvesUp) {
    for (const auto& [shown, stored] : {std::pair(12.5, 13), std::pair(12.4, 12)}) {
        settings.gap = shown;
        tab.refresh();

        press(marginSlider, Qt::Key_Right);

        EXPECT_EQ(settings.gap, stored);
        EXPECT_EQ(gapLabel.text(), QString::number(stored) + " px");
    }
}

TEST_F(GeneralTabTest, TheTriggersAreOfferedInOrder) {
    const std::vector<std::pair<QString, QString>> items{
        {"Shift", "shift"}, {"Control", "control"}, {"Command", "command"}, {"Nothing (always)", "always"}};

    ASSERT_EQ(triggerPopup.count(), 4);
    for (int position = 0; position < 4; ++position) {
        EXPECT_EQ(triggerPopup.itemText(position), items[static_cast<std::size_t>(position)].first);
        EXPECT_EQ(triggerPopup.itemData(position).toString(),
                  items[static_cast<std::size_t>(position)].second);
    }
}

TEST_F(GeneralTabTest, ThePopupShowsTheTriggerOfTheSettings) {
    settings.dragTrigger = "command";

    tab.refresh();

    EXPECT_EQ(triggerPopup.currentText(), "Command");
}

TEST_F(GeneralTabTest, ATriggerThatIsNotOfferedLeavesTheSelectionAlone) {
    settings.dragTrigger = "always";
    tab.refresh();

    for (const char* const unknown : {"option", "Shift", ""}) {
        settings.dragTrigger = unknown;
        tab.refresh();
        EXPECT_EQ(triggerPopup.currentText(), "Nothing (always)");
        EXPECT_EQ(settings.dragTrigger, unknown);
    }
}

TEST_F(GeneralTabTest, ChoosingATriggerSavesItWithoutANotification) {
    press(triggerPopup, Qt::Key_Down);
    press(*triggerPopup.view(), Qt::Key_Down);
    press(*triggerPopup.view(), Qt::Key_Return);

    EXPECT_EQ(settings.dragTrigger, "control");
    EXPECT_EQ(saved(), settings);
    EXPECT_EQ(announcements, 0);
}

TEST_F(GeneralTabTest, WithoutDragSnappingItsOptionsAreDisabledButKeepTheirValues) {
    settings.dragTrigger = "always";
    settings.edgeSnap = true;
    tab.refresh();
    ASSERT_TRUE(triggerPopup.isEnabled());

    toggle(dragBox);

    EXPECT_FALSE(settings.dragEnabled);
    EXPECT_EQ(saved(), settings);
    EXPECT_EQ(announcements, 0);
    EXPECT_FALSE(triggerPopup.isEnabled());
    EXPECT_FALSE(edgeBox.isEnabled());
    EXPECT_EQ(triggerPopup.currentText(), "Nothing (always)");
    EXPECT_TRUE(edgeBox.isChecked());
}

TEST_F(GeneralTabTest, TheDragBoxRefreshesTheTab) {
    settings.gap = 8;
    settings.rememberApps = false;

    toggle(dragBox);

    EXPECT_EQ(gapLabel.text(), "8 px");
    EXPECT_FALSE(at<QCheckBox>(*tab.view(), {470, 376, 290, 20}).isChecked());
}

TEST_F(GeneralTabTest, TurningDragSnappingOnEnablesItsOptions) {
    settings.dragEnabled = false;
    tab.refresh();

    toggle(dragBox);

    EXPECT_TRUE(settings.dragEnabled);
    EXPECT_TRUE(triggerPopup.isEnabled());
    EXPECT_TRUE(edgeBox.isEnabled());
}

TEST_F(GeneralTabTest, TheEdgeBoxChangesAndSavesEdgeSnapping) {
    toggle(edgeBox);

    EXPECT_TRUE(settings.edgeSnap);
    EXPECT_EQ(saved(), settings);
    EXPECT_EQ(announcements, 0);
}

TEST_F(GeneralTabTest, ShowsWhetherThePermissionIsGranted) {
    EXPECT_EQ(fullText(accLabel), "Granted. Tessarel can move and resize windows.");

    desktop.trust().trusted = false;
    tab.refresh();

    EXPECT_EQ(fullText(accLabel), "Not granted yet. Switch Tessarel on in the Accessibility list.");
}

TEST_F(GeneralTabTest, TheAccessButtonIsShownWhileThereAreSettingsOrTheProgramIsNotTrusted) {
    for (const bool hasSettings : {true, false})
        for (const bool isTrusted : {true, false}) {
            desktop.trust().systemHasSettings = hasSettings;
            desktop.trust().trusted = isTrusted;
            tab.refresh();
            EXPECT_EQ(accessButton.isHidden(), isTrusted && !hasSettings) << hasSettings << isTrusted;
        }
}

TEST_F(GeneralTabTest, TheAccessButtonPromptsAndOpensTheSystemsSettings) {
    desktop.trust().trusted = false;

    accessButton.click();

    EXPECT_EQ(desktop.trust().prompts, 1);
    EXPECT_EQ(desktop.trust().settingsOpened, 1);
    EXPECT_EQ(desktop.trust().promptsBeforeSettings, 1) << "the prompt comes first";
}

TEST_F(GeneralTabTest, SlidersAndListsAreNamedAfterTheirLabels) {
    EXPECT_EQ(gapSlider.accessibleName(), "Gap between windows");
    EXPECT_EQ(marginSlider.accessibleName(), "Margin around the screen");
    EXPECT_EQ(triggerPopup.accessibleName(), "Zones appear while you hold:");
    EXPECT_EQ(table.accessibleName(), "Ignored apps");
}

TEST_F(GeneralTabTest, ASystemCanAddANoteAboutTheKeysHeldDuringADrag) {
    PlatformWords words;
    words.dragNote = "Shift has a meaning of its own here.";
    const Ports here = simPorts(desktop, copy, words);
    GeneralTab elsewhere({services, here, {}});

    EXPECT_TRUE(fullText(at<QLabel>(*elsewhere.view(), {36, 270, 400, 74}))
                    .endsWith(" to avoid double snapping. Shift has a meaning of its own here."));
}

TEST_F(GeneralTabTest, TheNoteAboutTheKeysFollowsTheSystem) {
    PlatformWords words;
    words.dragNote = "No keys are reported.";
    const Ports here = simPorts(desktop, copy, words);
    GeneralTab elsewhere({services, here, {}});

    words.dragNote = "Keys are reported.";
    words.dragNoteChanged.send();

    EXPECT_TRUE(fullText(at<QLabel>(*elsewhere.view(), {36, 270, 400, 74}))
                    .endsWith(" to avoid double snapping. Keys are reported."));
}

TEST_F(GeneralTabTest, TheTextsUseTheWordsOfTheSystem) {
    PlatformWords words;
    words.otherEdgeTiling = "Your window manager may have its own edge tiling";
    words.controlKey = "Ctrl";
    words.commandKey = "Super";
    words.permission = "Moving windows";
    words.openPermission = "Why not?";
    words.notTrusted = "There is no display.";
    words.trusted = "It works.";
    const Ports here = simPorts(desktop, copy, words);
    GeneralTab elsewhere({services, here, {}});
    desktop.trust().trusted = false;
    elsewhere.refresh();

    EXPECT_EQ(at<QComboBox>(*elsewhere.view(), {222, 208, 150, 26}).itemText(1), "Ctrl");
    EXPECT_EQ(at<QComboBox>(*elsewhere.view(), {222, 208, 150, 26}).itemText(2), "Super");
    EXPECT_EQ(fullText(at<QLabel>(*elsewhere.view(), {16, 346, 250, 20})), "Moving windows");
    EXPECT_EQ(fullText(at<QPushButton>(*elsewhere.view(), {16, 400, 210, 28})), "Why not?");
    QLabel& state = at<QLabel>(*elsewhere.view(), {16, 374, 440, 18});
    EXPECT_EQ(fullText(state), "There is no display.");
    desktop.trust().trusted = true;
    elsewhere.refresh();
    EXPECT_EQ(fullText(state), "It works.");
    EXPECT_EQ(
        fullText(at<QLabel>(*elsewhere.view(), {36, 270, 400, 50})),
        "Edges give halves, corners give quarters, the top edge maximizes. Your window manager may have its "
        "own edge tiling; turn one of the two off to avoid double snapping.");
}

} // namespace
} // namespace tessarel
