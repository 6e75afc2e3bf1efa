#include "settings_ui/general_tab_fixture.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace tessarel {
namespace {

TEST_F(GeneralTabTest, SaysWhatEachControlIs) {
    EXPECT_EQ(fullText(loginBox), "Launch Tessarel at login");
    EXPECT_EQ(fullText(dragBox), "Show zones while dragging a window");
    EXPECT_EQ(fullText(edgeBox), "Also snap at screen edges and corners");
    EXPECT_EQ(fullText(rememberBox), "Reopen apps in their last zone");
    EXPECT_EQ(fullText(accessButton), "Open Accessibility settings");
    EXPECT_EQ(fullText(addButton), "Add app...");
    EXPECT_EQ(fullText(removeButton), "Remove");
}

TEST_F(GeneralTabTest, HasHeadingsInBold) {
    const std::vector<std::pair<QRect, QString>> headings{{{16, 50, 200, 20}, "Spacing"},
                                                          {{16, 154, 200, 20}, "Drag to snap"},
                                                          {{16, 346, 250, 20}, "Accessibility permission"},
                                                          {{470, 50, 200, 20}, "Ignored apps"},
                                                          {{470, 350, 290, 20}, "Remember app positions"}};
    for (const auto& [frame, text] : headings) {
        EXPECT_EQ(label(frame).text(), text);
        EXPECT_EQ(label(frame).font().weight(), QFont::Bold);
    }
}

TEST_F(GeneralTabTest, HasLabelsAndNotes) {
    EXPECT_EQ(fullText(label({16, 78, 170, 18})), "Gap between windows");
    EXPECT_EQ(fullText(label({16, 110, 170, 18})), "Margin around the screen");
    EXPECT_EQ(fullText(label({36, 212, 180, 18})), "Zones appear while you hold:");
    EXPECT_EQ(
        fullText(label({36, 270, 400, 50})),
        "Edges give halves, corners give quarters, the top edge maximizes. macOS has its own edge tiling "
        "(System Settings > Desktop & Dock); turn one of the two off to avoid double snapping.");
    EXPECT_EQ(fullText(label({470, 310, 290, 34})), "Tessarel will not move or snap windows of these apps.");
    EXPECT_EQ(fullText(label({470, 436, 290, 34})),
              "When an app opens a window, it goes to the zone you last snapped that app to.");
}

TEST_F(GeneralTabTest, NothingIsWrittenByShowingSettings) {
    settings.gap = 8;
    settings.dragTrigger = "always";

    tab.refresh();

    EXPECT_EQ(saved(), std::nullopt);
}

TEST_F(GeneralTabTest, TheLoginBoxShowsWhatTheSystemSays) {
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

TEST_F(GeneralTabTest, ALoginItemThatCannotBeChangedIsToldAndTheBoxShowsTheTruth) {
    desktop.loginItem().failure = "The folder cannot be written to.";

    toggle(loginBox);

    EXPECT_EQ(desktop.alerts().shown,
              (std::vector<Alert>{
                  {"Could not change the login item", "The folder cannot be written to.", {"OK"}}}));
    EXPECT_EQ(desktop.ownApplication().activations, 1);
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

TEST_F(GeneralTabTest, AReadoutLeavesFractionsOut) {
    settings.gap = 12.9;
    settings.margin = -0.5;

    tab.refresh();

    EXPECT_EQ(gapLabel.text(), "12 px");
    EXPECT_EQ(marginLabel.text(), "0 px");
}

TEST_F(GeneralTabTest, ValuesBeyondASliderAreStillRead) {
    settings.gap = 1e20;

    tab.refresh();

    EXPECT_EQ(gapSlider.value(), 40);
    EXPECT_EQ(fullText(gapLabel), "100000000000000000000 px");
}

TEST_F(GeneralTabTest, MovingASliderChangesAndSavesBothAtOnceAndTellsNobody) {
    press(gapSlider, Qt::Key_Right);
    press(marginSlider, Qt::Key_End);

    EXPECT_EQ(settings.gap, 1);
    EXPECT_EQ(settings.margin, 60);
    EXPECT_EQ(gapLabel.text(), "1 px");
    EXPECT_EQ(marginLabel.text(), "60 px");
    EXPECT_EQ(saved(), settings);
    EXPECT_EQ(announcements, 0);
}

TEST_F(GeneralTabTest, ASliderStandsOnWholePointsAHalfUp) {
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

TEST_F(GeneralTabTest, ChoosingATriggerSavesItAndTellsNobody) {
    press(triggerPopup, Qt::Key_Down);

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

TEST_F(GeneralTabTest, TellsWhetherThePermissionIsGranted) {
    EXPECT_EQ(fullText(accLabel), "Granted. Tessarel can move and resize windows.");

    desktop.trust().trusted = false;
    tab.refresh();

    EXPECT_EQ(fullText(accLabel), "Not granted yet. Switch Tessarel on in the Accessibility list.");
}

TEST_F(GeneralTabTest, TheAccessButtonPromptsAndOpensTheSystemsSettings) {
    desktop.trust().trusted = false;

    accessButton.click();

    EXPECT_EQ(desktop.trust().prompts, 1);
    EXPECT_EQ(desktop.trust().settingsOpened, 1);
}

TEST_F(GeneralTabTest, SlidersAndListsAreCalledByTheirLabels) {
    EXPECT_EQ(gapSlider.accessibleName(), "Gap between windows");
    EXPECT_EQ(marginSlider.accessibleName(), "Margin around the screen");
    EXPECT_EQ(triggerPopup.accessibleName(), "Zones appear while you hold:");
    EXPECT_EQ(table.accessibleName(), "Ignored apps");
}

TEST_F(GeneralTabTest, TheWordsAreThoseOfTheSystem) {
    PlatformWords words;
    words.otherEdgeTiling = "Your window manager may have its own edge tiling";
    words.commandKey = "Super";
    const Ports here = simPorts(desktop, copy, words);
    GeneralTab elsewhere({services, here, {}});

    EXPECT_EQ(at<QComboBox>(*elsewhere.view(), {222, 208, 150, 26}).itemText(2), "Super");
    EXPECT_EQ(
        fullText(at<QLabel>(*elsewhere.view(), {36, 270, 400, 50})),
        "Edges give halves, corners give quarters, the top edge maximizes. Your window manager may have its "
        "own edge tiling; turn one of the two off to avoid double snapping.");
}

} // namespace
} // namespace tessarel
