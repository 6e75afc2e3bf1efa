// SPDX-License-Identifier: MIT

// A tab that is refreshed, because settings have come from outside, while the user works with it.

#include "settings_ui/general_tab_fixture.h"
#include "settings_ui/layouts_tab_test.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessarel {
namespace {

using OutsideLayoutsTest = LayoutsTabTest;
using OutsideAppsTest = GeneralTabTest;

TEST_F(OutsideLayoutsTest, ARunningRecordingGoesOn) {
    click(recorder());
    ASSERT_EQ(fullText(*recorder()), "Press keys...");

    settings.bindings.clear();
    tab->refresh();

    EXPECT_EQ(fullText(*recorder()), "Press keys...");
    click(recorder());
    EXPECT_EQ(fullText(*recorder()), "None");
}

TEST_F(OutsideLayoutsTest, AnOpenListStaysOpenWhileItsLayoutsAreTheSame) {
    settings.userLayouts = {{"Mine", {}}};
    tab->refresh();
    QTest::keyClick(popUp(), Qt::Key_Down);
    ASSERT_TRUE(popUp()->view()->isVisible());

    settings.gap = 8;
    tab->refresh();
    EXPECT_TRUE(popUp()->view()->isVisible());

    settings.userLayouts.front().name = "Theirs";
    tab->refresh();
    EXPECT_FALSE(popUp()->view()->isVisible()) << "its rows are others now";
    EXPECT_GE(popUp()->findText("Mine: Theirs"), 0);
}

TEST_F(OutsideLayoutsTest, ALayoutThatHasGoneIsNoLongerListed) {
    settings.userLayouts = {{"Mine", {}}};
    tab->refresh();

    settings.userLayouts.clear();
    tab->refresh();

    EXPECT_EQ(popUp()->findText("Mine: Mine"), -1);
}

TEST_F(OutsideLayoutsTest, TheZonesInUseSelectTheirLayout) {
    settings.zones = Presets::all()[3].zones;
    tab->refresh();

    EXPECT_EQ(chosen(), Presets::all()[3].name);
}

TEST_F(OutsideLayoutsTest, TheDescriptionOfThePictureFollows) {
    settings.zones = Presets::all()[1].zones;
    tab->refresh();

    EXPECT_EQ(editor()->accessibleDescription(), "Zone 1: left 0 %, top 0 %, 50 % wide, 100 % high. "
                                                 "Zone 2: left 50 %, top 0 %, 50 % wide, 100 % high");
}

TEST_F(OutsideLayoutsTest, ANumberThatIsBeingTypedStays) {
    type(x(), "12");

    settings.zones[0].y = 7;
    tab->refresh();

    EXPECT_EQ(x()->text(), "12");
    EXPECT_EQ(y()->text(), "7");
}

TEST_F(OutsideLayoutsTest, DisablingTheZoneEndsTheEditOfItsNumbers) {
    type(x(), "12");

    settings.zones[0].enabled = false;
    tab->refresh();

    EXPECT_EQ(announcements, 1);
    EXPECT_FALSE(saved()->zones[0].enabled);
    EXPECT_EQ(saved()->zones[0].x, 12);
    for (const QLineEdit* const field : {x(), y(), w(), h()}) {
        EXPECT_FALSE(field->isEnabled());
        EXPECT_FALSE(field->isModified());
    }
}

TEST_F(OutsideLayoutsTest, ALayoutIsSavedAsItIsWhenItsNameHasBeenTyped) {
    settings.userLayouts = {{"First", {}}, {"Second", {}}};
    tab->refresh();
    desktop.alerts().texts = {"Second"};
    desktop.alerts().whileShown = [this] {
        settings.userLayouts = {{"Second", {}}, {"Third", {}}};
        settings.zones = Presets::pad({Presets::z(1, 2, 30, 40)});
        tab->refresh();
    };

    click(saveAs());

    EXPECT_EQ(saved()->userLayouts, (std::vector<Layout>{{"Second", settings.zones}, {"Third", {}}}));
    EXPECT_EQ(chosen(), "Mine: Second");
}

TEST_F(OutsideLayoutsTest, AZoneThatIsBeingDraggedStaysWithThePointer) {
    settings.zones[0] = Presets::z(10, 10, 40, 40);
    tab->refresh();
    dragInEditor({100, 100}, {150, 100}); // by 10 percent

    settings.zones[1].y = 7;
    tab->refresh();
    dragInEditor({150, 100}, {200, 100});
    releaseInEditor({200, 100});

    EXPECT_GT(settings.zones[0].x, 19);
    EXPECT_EQ(settings.zones[1].y, 7);
}

TEST_F(OutsideAppsTest, TheSelectedApplicationStaysSelectedWhereverItMoves) {
    settings.ignoredApps = {"first", "second"};
    tab.refresh();
    table.setCurrentRow(1);

    settings.ignoredApps = {"new", "first", "second", "last"};
    tab.refresh();
    EXPECT_EQ(table.currentRow(), 2);
    removeButton.click();

    EXPECT_EQ(settings.ignoredApps, (std::vector<std::string>{"new", "first", "last"}));
    EXPECT_EQ(table.currentRow(), 2) << "the next one";
}

} // namespace
} // namespace tessarel
