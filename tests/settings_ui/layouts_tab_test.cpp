// SPDX-License-Identifier: MIT

#include "settings_ui/layouts_tab_test.h"

#include "settings_ui/looks.h"

#include <QLabel>

#include <string>
#include <utility>
#include <vector>

namespace tessarel {
namespace {

// Controls

TEST_F(LayoutsTabTest, EveryControlHasItsFrameTextAndStyle) {
    EXPECT_EQ(tab->view()->size(), QSize(780, 480));
    EXPECT_EQ(looks(*tab->view()),
              "16 15 50x18 label 13: Layout:\n"
              "70 11 250x26 control 13\n"
              "330 11 90x28 button 13: Save as...\n"
              "426 11 70x28 button 13: Delete\n"
              "16 56 500x312 control\n"
              "16 382 90x18 label 13: Snap to grid:\n"
              "110 378 90x26 control 13\n"
              "16 414 500x44 wrap 12 secondary: Click a zone to select it. Drag it to move, drag its edges "
              "or corners to resize. Hold Shift to turn snapping off. Press Delete to remove the selected "
              "zone.\n"
              "540 56 100x20 label 14 bold: Zone\n"
              "540 82 230x26 control\n"
              "540 120 120x20 box 13: Enabled\n"
              "540 152 230x16 label 11 secondary: Position and size (% of screen)\n"
              "540 179 16x18 label 13: X\n"
              "558 176 76x24 control 13\n"
              "658 179 16x18 label 13: Y\n"
              "676 176 76x24 control 13\n"
              "540 213 16x18 label 13: W\n"
              "558 210 76x24 control 13\n"
              "658 213 16x18 label 13: H\n"
              "676 210 76x24 control 13\n"
              "540 246 230x16 label 11 secondary: Hotkey for this zone\n"
              "540 268 150x26 button 13: Ctrl+Opt+1\n"
              "698 266 60x28 button 13: Clear\n"
              "540 316 110x28 button 13: Add zone\n"
              "540 356 230x50 wrap 12 secondary: Zones are percentages of the usable screen area (below the "
              "menu bar, beside the Dock).\n");
}

TEST_F(LayoutsTabTest, TheGridOffersItsSteps) {
    const std::pair<const char*, double> steps[] = {
        {"Off", 0}, {"1%", 1}, {"2.5%", 2.5}, {"5%", 5}, {"10%", 10}};
    ASSERT_EQ(gridPopUp()->count(), 5);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(gridPopUp()->itemText(i), steps[i].first);
        EXPECT_EQ(gridPopUp()->itemData(i).toDouble(), steps[i].second);
    }
}

TEST_F(LayoutsTabTest, LayoutsAreListedWithTheirTags) {
    settings.userLayouts = {{"Code", {}}, {"Mail & <b>more</b>", {}}};
    tab->refresh();

    const PopUpButton& list = *popUp();
    ASSERT_EQ(list.count(), 1 + 1 + 9 + 1 + 2);
    EXPECT_EQ(list.itemText(0), "Custom (current)");
    EXPECT_EQ(list.itemData(0), -1);
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(list.itemText(2 + i).toStdString(), Presets::all().at(static_cast<std::size_t>(i)).name);
        EXPECT_EQ(list.itemData(2 + i), i);
    }
    EXPECT_EQ(list.itemText(12), "Mine: Code");
    EXPECT_EQ(list.itemData(12), 1000);
    EXPECT_EQ(list.itemText(13), "Mine: Mail & <b>more</b>");
    EXPECT_EQ(list.itemData(13), 1001);
    for (const int separator : {1, 11})
        EXPECT_EQ(list.itemData(separator, Qt::AccessibleDescriptionRole), "separator");
}

TEST_F(LayoutsTabTest, WithoutUserLayoutsThereIsOneSeparator) {
    EXPECT_EQ(popUp()->count(), 1 + 1 + 9);
}

TEST_F(LayoutsTabTest, TheTabKeyVisitsTheNamedControlsInReadingOrder) {
    settings.userLayouts = {{"Mine", std::vector<Zone>(9, Presets::z(1, 2, 3, 4))}};
    settings.zones = settings.userLayouts[0].zones; // so that all controls are enabled
    tab->refresh();
    const std::vector<QWidget*> order = {
        popUp(), saveAs(), deleteLayout(), editor(), gridPopUp(), segment(0), enabledBox(), x(), y(),
        w(),     h(),      recorder(),     clear(),  addZone()};
    popUp()->setFocus();
    for (QWidget* const control : order) {
        EXPECT_EQ(tab->view()->focusWidget(), control) << control->accessibleName().toStdString();
        EXPECT_TRUE(!control->accessibleName().isEmpty() || control == segment(0));
        QTest::keyClick(tab->view()->focusWidget(), Qt::Key_Tab);
    }
}

TEST_F(LayoutsTabTest, ControlsWithoutATextHaveAnAccessibleName) {
    EXPECT_EQ(popUp()->accessibleName(), "Layout");
    EXPECT_EQ(gridPopUp()->accessibleName(), "Snap to grid");
    EXPECT_EQ(segments()->accessibleName(), "Zone");
    EXPECT_EQ(clear()->accessibleName(), "Clear hotkey");
}

TEST_F(LayoutsTabTest, TheTextsUseTheWordsOfTheSystem) {
    PlatformWords words;
    words.usableArea = "without the panels";
    words.modifierNames.opt = "Alt";
    const Ports here = simPorts(desktop, copy, words);
    tab = std::make_unique<LayoutsTab>(TabContext{services, here, {}});

    EXPECT_EQ(fullText(*at<QLabel>(540, 356, 230, 50)),
              "Zones are percentages of the usable screen area (without the panels).");
    EXPECT_EQ(fullText(*recorder()), "Ctrl+Alt+1");
}

// The layout that is shown

TEST_F(LayoutsTabTest, TheActivePresetIsShown) {
    EXPECT_EQ(chosen(), "3 top + 2 bottom");

    settings.zones = Presets::all()[3].zones;
    tab->refresh();

    EXPECT_EQ(chosen(), "Quarters");
    EXPECT_FALSE(deleteLayout()->isEnabled());
}

TEST_F(LayoutsTabTest, AUserLayoutIsShownAndCanBeDeleted) {
    settings.userLayouts = {{"Code", {Presets::z(0, 0, 70, 100)}}};
    settings.zones = Presets::pad(settings.userLayouts[0].zones);
    tab->refresh();

    EXPECT_EQ(chosen(), "Mine: Code");
    EXPECT_TRUE(deleteLayout()->isEnabled());
}

TEST_F(LayoutsTabTest, AUserLayoutThatEqualsAPresetIsShownAsThePreset) {
    settings.userLayouts = {{"My halves", Presets::all()[1].zones}};
    settings.zones = Presets::all()[1].zones;
    tab->refresh();

    EXPECT_EQ(chosen(), "Halves");
}

TEST_F(LayoutsTabTest, ZonesThatMatchNoLayoutAreShownAsCustom) {
    zone(8).w = 49;
    tab->refresh();

    EXPECT_EQ(chosen(), "Custom (current)") << "disabled zones count too";
    EXPECT_FALSE(deleteLayout()->isEnabled());
}

// Choosing a layout

TEST_F(LayoutsTabTest, AChosenPresetIsAppliedSavedAndAnnounced) {
    clickSegment(3);

    choose(popUp(), "Halves");

    EXPECT_EQ(settings.zones, Presets::all()[1].zones);
    EXPECT_EQ(saved()->zones, Presets::all()[1].zones);
    EXPECT_EQ(announcements, 1);
    EXPECT_EQ(tab->selected(), 0) << "the first zone is selected";
    EXPECT_EQ(editor()->selected(), 0);
    EXPECT_EQ(w()->text(), "50");
}

TEST_F(LayoutsTabTest, AChosenUserLayoutIsPadded) {
    settings.userLayouts = {{"Code", {Presets::z(0, 0, 70, 100)}}};
    tab->refresh();

    choose(popUp(), "Mine: Code");

    EXPECT_EQ(settings.zones, Presets::pad({Presets::z(0, 0, 70, 100)}));
    EXPECT_EQ(chosen(), "Mine: Code");
}

TEST_F(LayoutsTabTest, ALayoutRemovedMeanwhileIsNotApplied) {
    settings.userLayouts = {{"Code", {Presets::z(0, 0, 70, 100)}}};
    tab->refresh();
    settings.userLayouts.clear();
    const AppSettings before = settings;

    choose(popUp(), "Mine: Code");

    EXPECT_EQ(settings, before);
    EXPECT_EQ(announcements, 0);
}

TEST_F(LayoutsTabTest, ChoosingCustomDoesNothing) {
    const AppSettings before = settings;

    choose(popUp(), "Custom (current)");

    EXPECT_EQ(settings, before);
    EXPECT_EQ(saved(), std::nullopt);
    EXPECT_EQ(chosen(), "3 top + 2 bottom") << "unchanged";
}

TEST_F(LayoutsTabTest, SeparatorsCannotBeChosen) {
    EXPECT_FALSE(popUp()->model()->flags(popUp()->model()->index(1, 0)).testFlag(Qt::ItemIsEnabled));
}

// Saving and deleting layouts

TEST_F(LayoutsTabTest, ALayoutIsSavedUnderItsTrimmedName) {
    zone(0) = Presets::z(1, 2, 30, 40);
    desktop.alerts().texts = {" \t Coding \n"};
    int activations = 0;
    desktop.alerts().whileShown = [&] { activations = desktop.ownApplication().activations; };

    click(saveAs());

    EXPECT_EQ(desktop.alerts().shown,
              (std::vector<Alert>{{"Save layout", "Name for this layout:", {"Save", "Cancel"}}}));
    EXPECT_EQ(activations, 1) << "the program is in front before the dialog opens";
    EXPECT_EQ(saved()->userLayouts, (std::vector<Layout>{{"Coding", settings.zones}}));
    EXPECT_EQ(announcements, 1);
    EXPECT_EQ(chosen(), "Mine: Coding");
    EXPECT_TRUE(deleteLayout()->isEnabled());
}

TEST_F(LayoutsTabTest, ALayoutThatEqualsAPresetIsSavedAndThePresetShown) {
    desktop.alerts().texts = {"Coding"};

    click(saveAs());

    EXPECT_EQ(settings.userLayouts.size(), 1U);
    EXPECT_EQ(chosen(), "3 top + 2 bottom");
    EXPECT_GE(popUp()->findText("Mine: Coding"), 0);
}

TEST_F(LayoutsTabTest, AnExistingNameReplacesTheLayoutInPlace) {
    settings.userLayouts = {{"A", {}}, {"B", {}}, {"B", {}}, {"b", {}}};
    zone(0) = Presets::z(1, 2, 30, 40);
    desktop.alerts().texts = {"B"};

    click(saveAs());

    EXPECT_EQ(settings.userLayouts,
              (std::vector<Layout>{{"A", {}}, {"B", settings.zones}, {"B", {}}, {"b", {}}}));
}

TEST_F(LayoutsTabTest, NamesAreCaseSensitive) {
    settings.userLayouts = {{"code", {}}};
    desktop.alerts().texts = {"Code"};

    click(saveAs());

    ASSERT_EQ(settings.userLayouts.size(), 2U);
    EXPECT_EQ(settings.userLayouts[1].name, "Code");
}

TEST_F(LayoutsTabTest, WithoutANameNothingIsSaved) {
    desktop.alerts().texts = {"", " \n\t "};
    click(saveAs());
    click(saveAs());
    click(saveAs()); // the user cancels

    EXPECT_EQ(desktop.alerts().shown.size(), 3U) << "no message follows";
    EXPECT_TRUE(settings.userLayouts.empty());
    EXPECT_EQ(saved(), std::nullopt);
    EXPECT_EQ(announcements, 0);
}

TEST_F(LayoutsTabTest, NamesAreSavedUnchanged) {
    const std::string name = "Büro & \"Größe\" \xf0\x9f\x92\xbb";
    desktop.alerts().texts = {name};

    click(saveAs());

    EXPECT_EQ(saved()->userLayouts.at(0).name, name);
}

TEST_F(LayoutsTabTest, DeletingALayoutKeepsTheZones) {
    settings.userLayouts = {{"A", {}}, {"Code", {Presets::z(0, 0, 70, 100)}}, {"C", {}}};
    settings.zones = Presets::pad(settings.userLayouts[1].zones);
    tab->refresh();
    const std::vector<Zone> zones = settings.zones;

    click(deleteLayout());

    EXPECT_EQ(saved()->userLayouts, (std::vector<Layout>{{"A", {}}, {"C", {}}}));
    EXPECT_EQ(settings.zones, zones);
    EXPECT_EQ(announcements, 1);
    EXPECT_EQ(chosen(), "Custom (current)");
    EXPECT_FALSE(deleteLayout()->isEnabled());
}

TEST_F(LayoutsTabTest, OfTwoLayoutsWithEqualZonesTheOneJustSavedIsShownAndDeleted) {
    zone(0) = Presets::z(1, 2, 30, 40);
    settings.userLayouts = {{"First", settings.zones}};
    desktop.alerts().texts = {"Second"};
    click(saveAs());
    EXPECT_EQ(chosen(), "Mine: Second");

    click(deleteLayout());

    EXPECT_EQ(saved()->userLayouts, (std::vector<Layout>{{"First", settings.zones}}));
    EXPECT_EQ(chosen(), "Mine: First");
}

TEST_F(LayoutsTabTest, OfTwoLayoutsWithEqualZonesTheOneJustChosenIsShownAndDeleted) {
    const std::vector<Zone> zones = Presets::pad({Presets::z(1, 2, 30, 40)});
    settings.userLayouts = {{"First", zones}, {"Second", zones}, {"Third", zones}};
    tab->refresh();
    choose(popUp(), "Mine: Second");
    EXPECT_EQ(chosen(), "Mine: Second");
    tab->refresh();
    EXPECT_EQ(chosen(), "Mine: Second") << "and stays shown";

    click(deleteLayout());

    EXPECT_EQ(saved()->userLayouts, (std::vector<Layout>{{"First", zones}, {"Third", zones}}));
}

TEST_F(LayoutsTabTest, TheLayoutChosenLastIsNotShownForOtherZones) {
    const std::vector<Zone> zones = Presets::pad({Presets::z(1, 2, 30, 40)});
    settings.userLayouts = {{"First", zones}, {"Second", zones}, {"Wide", {Presets::z(0, 0, 100, 50)}}};
    tab->refresh();
    choose(popUp(), "Mine: Wide");

    settings.zones = zones;
    tab->refresh();

    EXPECT_EQ(chosen(), "Mine: First");
}

TEST_F(LayoutsTabTest, APresetCannotBeDeleted) {
    settings.userLayouts = {{"A", {}}};
    tab->refresh();
    deleteLayout()->setEnabled(true); // so that the click gets through

    click(deleteLayout());

    EXPECT_EQ(settings.userLayouts.size(), 1U);
    EXPECT_EQ(announcements, 0);
}

TEST_F(LayoutsTabTest, ALayoutRemovedMeanwhileIsNotDeletedAgain) {
    settings.userLayouts = {{"Code", {Presets::z(0, 0, 70, 100)}}};
    settings.zones = Presets::pad(settings.userLayouts[0].zones);
    tab->refresh();
    settings.userLayouts.clear();

    click(deleteLayout());

    EXPECT_EQ(announcements, 0);
}

// The grid

TEST_F(LayoutsTabTest, AGridStepIsSavedWithoutANotification) {
    choose(gridPopUp(), "2.5%");

    EXPECT_EQ(settings.gridStep, 2.5);
    EXPECT_EQ(saved()->gridStep, 2.5);
    EXPECT_EQ(announcements, 0);
}

TEST_F(LayoutsTabTest, AStoredStepIsShownWithinATolerance) {
    EXPECT_EQ(gridPopUp()->currentText(), "5%");
    settings.gridStep = 2.5004;
    tab->refresh();
    EXPECT_EQ(gridPopUp()->currentText(), "2.5%");
    settings.gridStep = 0;
    tab->refresh();
    EXPECT_EQ(gridPopUp()->currentText(), "Off");
    settings.gridStep = 9.9991;
    tab->refresh();
    EXPECT_EQ(gridPopUp()->currentText(), "10%");
    settings.gridStep = 1.0011;
    tab->refresh();
    EXPECT_EQ(gridPopUp()->currentText(), "10%") << "beyond a thousandth";
}

TEST_F(LayoutsTabTest, AStepThatIsNotListedLeavesTheShownStep) {
    settings.gridStep = 10;
    tab->refresh();
    settings.gridStep = 3;
    tab->refresh();

    EXPECT_EQ(gridPopUp()->currentText(), "10%");
    EXPECT_EQ(settings.gridStep, 3);
}

} // namespace
} // namespace tessarel
