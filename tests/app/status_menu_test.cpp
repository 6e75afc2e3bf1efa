// SPDX-License-Identifier: MIT

#include "app/status_menu.h"

#include "model/config.h"
#include "model/presets.h"
#include "platform/sim/sim_desktop.h"
#include "support/menu_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace tessarel {
namespace {

/// Fixture: the menu on a simulated desktop that trusts the program. Only the first five zones are enabled.
class StatusMenuTest : public ::testing::Test {
protected:
    using Titles = std::vector<std::string>;

    StatusMenuTest() { desktop.trust().trusted = true; }

    static Titles titles(const Menu& menu) {
        Titles result;
        for (const MenuItem& item : menu)
            result.push_back(item.isSeparator ? "-" : item.title);
        return result;
    }

    static const MenuItem& rowOf(const Menu& menu, const std::string& title) {
        return *std::find_if(menu.begin(), menu.end(),
                             [&](const MenuItem& item) { return item.title == title; });
    }

    Menu layouts() { return rowOf(statusMenu.rebuild(), "Layouts").submenu; }

    Titles checkedLayouts() {
        Menu menu = layouts();
        std::erase_if(menu, [](const MenuItem& item) { return !item.isChecked; });
        return titles(menu);
    }

    sim::SimDesktop desktop;
    Store store{desktop.preferences()};
    Runtime runtime;
    Permissions permissions{desktop.trust()};
    std::vector<ActionID> taken; ///< actions whose combinations another program has
    StatusMenu::IsTaken isTaken = [this](ActionID action) {
        return std::ranges::find(taken, action) != taken.end();
    };
    StatusMenu statusMenu{store, permissions, runtime, {}, desktop.keyNames(), isTaken};
};

TEST_F(StatusMenuTest, AFreshInstallationShowsTheWholeMenu) {
    const Menu menu = statusMenu.rebuild();

    EXPECT_EQ(titles(menu),
              (Titles{"Tessarel " + std::string(Config::version), "-", "Snap to Zone 1   (Ctrl+Opt+1)",
                      "Snap to Zone 2   (Ctrl+Opt+2)", "Snap to Zone 3   (Ctrl+Opt+3)",
                      "Snap to Zone 4   (Ctrl+Opt+4)", "Snap to Zone 5   (Ctrl+Opt+5)",
                      "Arrange windows into zones", "Move window", "Layouts", "-", "Pause Tessarel",
                      "Settings...", "Check for updates...", "-", "Quit Tessarel"}));
    EXPECT_EQ(
        titles(rowOf(menu, "Move window").submenu),
        (Titles{"Left half   (Ctrl+Opt+Left)", "Right half   (Ctrl+Opt+Right)", "Top half   (Ctrl+Opt+Up)",
                "Bottom half   (Ctrl+Opt+Down)", "Maximize   (Ctrl+Opt+Return)", "Center   (Ctrl+Opt+C)",
                "Restore previous size   (Ctrl+Opt+Delete)", "Move to next display   (Ctrl+Opt+Cmd+Right)",
                "Move to previous display   (Ctrl+Opt+Cmd+Left)"}));
    EXPECT_EQ(
        titles(rowOf(menu, "Layouts").submenu),
        (Titles{"3 top + 2 bottom", "Halves", "Thirds", "Quarters", "Two thirds + one third",
                "One third + two thirds", "Grid 3 x 2", "Main + two stacked", "Ultrawide 25 / 50 / 25"}));
}

TEST_F(StatusMenuTest, EveryRowHasItsTitleCommandTagAndState) {
    desktop.trust().trusted = false;
    runtime.paused = true;
    store.settings.zones = Presets::pad({Presets::z(0, 0, 30, 100), {}, Presets::z(30, 0, 70, 100)});
    store.settings.bindings = {{"zone3", {20, 6144}}, {"restore", {51, 6144}}, {"arrangeAll", {0, 6144}}};
    store.settings.userLayouts = {{"Mine", store.settings.zones}};
    MenuItem heading = row("Tessarel " + std::string(Config::version), MenuCommand::None);
    heading.isEnabled = false;
    Menu layouts;
    for (const Layout& layout : Presets::all())
        layouts.push_back(row(layout.name, MenuCommand::ApplyLayout, static_cast<int>(layouts.size())));
    layouts.push_back(MenuItem::separator());
    layouts.push_back(row("Mine", MenuCommand::ApplyLayout, 1000));
    layouts.back().isChecked = true;
    MenuItem pause = row("Pause Tessarel", MenuCommand::TogglePause);
    pause.isChecked = true;
    MenuItem settings = row("Settings...", MenuCommand::OpenSettings);
    settings.keyEquivalent = ",";
    MenuItem quit = row("Quit Tessarel", MenuCommand::Quit);
    quit.keyEquivalent = "q";
    constexpr auto kAction = MenuCommand::RunMenuAction;

    EXPECT_EQ(statusMenu.rebuild(),
              (Menu{heading, MenuItem::separator(),
                    row("Grant Accessibility access...", MenuCommand::GrantAccess), MenuItem::separator(),
                    row("Snap to Zone 1", kAction, 0), row("Snap to Zone 3   (Ctrl+Opt+3)", kAction, 2),
                    row("Arrange windows into zones", kAction, 18),
                    submenu("Move window", {row("Left half", kAction, 9), row("Right half", kAction, 10),
                                            row("Top half", kAction, 11), row("Bottom half", kAction, 12),
                                            row("Maximize", kAction, 13), row("Center", kAction, 14),
                                            row("Restore previous size   (Ctrl+Opt+Delete)", kAction, 15),
                                            row("Move to next display", kAction, 16),
                                            row("Move to previous display", kAction, 17)}),
                    submenu("Layouts", layouts), MenuItem::separator(), pause, settings,
                    row("Check for updates...", MenuCommand::CheckUpdates), MenuItem::separator(), quit}));
}

TEST_F(StatusMenuTest, RowsHaveTheirCommandsAndKeyEquivalents) {
    const Menu menu = statusMenu.rebuild();
    const auto command = [&](const std::string& title) { return rowOf(menu, title).command; };

    EXPECT_EQ(menu.front().command, MenuCommand::None);
    EXPECT_EQ(command("Snap to Zone 1   (Ctrl+Opt+1)"), MenuCommand::RunMenuAction);
    EXPECT_EQ(command("Arrange windows into zones"), MenuCommand::RunMenuAction);
    EXPECT_EQ(command("Move window"), MenuCommand::None);
    EXPECT_EQ(command("Layouts"), MenuCommand::None);
    EXPECT_EQ(command("Pause Tessarel"), MenuCommand::TogglePause);
    EXPECT_EQ(command("Settings..."), MenuCommand::OpenSettings);
    EXPECT_EQ(command("Check for updates..."), MenuCommand::CheckUpdates);
    EXPECT_EQ(command("Quit Tessarel"), MenuCommand::Quit);
    EXPECT_EQ(rowOf(menu, "Settings...").keyEquivalent, ",");
    EXPECT_EQ(rowOf(menu, "Quit Tessarel").keyEquivalent, "q");
    const auto withKey = std::count_if(menu.begin(), menu.end(),
                                       [](const MenuItem& item) { return !item.keyEquivalent.empty(); });
    EXPECT_EQ(withKey, 2);
}

TEST_F(StatusMenuTest, OnlyTheTitleIsDisabled) {
    const Menu menu = statusMenu.rebuild();

    EXPECT_FALSE(menu.front().isEnabled);
    EXPECT_TRUE(
        std::all_of(menu.begin() + 1, menu.end(), [](const MenuItem& item) { return item.isEnabled; }));
}

TEST_F(StatusMenuTest, WithoutTrustTheMenuOffersToGrantIt) {
    desktop.trust().trusted = false;
    const Menu menu = statusMenu.rebuild();

    EXPECT_TRUE(menu[1].isSeparator);
    EXPECT_EQ(menu[2].title, "Grant Accessibility access...");
    EXPECT_EQ(menu[2].command, MenuCommand::GrantAccess);
    EXPECT_TRUE(menu[3].isSeparator);
}

TEST_F(StatusMenuTest, WithAllZonesDisabledWindowsCanStillBeArranged) {
    for (Zone& zone : store.settings.zones)
        zone.enabled = false;

    const Titles all = titles(statusMenu.rebuild());

    EXPECT_EQ(Titles(all.begin() + 1, all.begin() + 3), (Titles{"-", "Arrange windows into zones"}));
}

TEST_F(StatusMenuTest, ZonesMissingFromTheSettingsCountAsDisabled) {
    store.settings.zones.resize(2);

    const Titles all = titles(statusMenu.rebuild());

    EXPECT_EQ(Titles(all.begin() + 2, all.begin() + 5),
              (Titles{"Snap to Zone 1   (Ctrl+Opt+1)", "Snap to Zone 2   (Ctrl+Opt+2)",
                      "Arrange windows into zones"}));
}

TEST_F(StatusMenuTest, EachZoneKeepsItsTagWhenOneBeforeItIsDisabled) {
    for (Zone& zone : store.settings.zones)
        zone.enabled = true;
    store.settings.zones[2].enabled = false;

    const Menu menu = statusMenu.rebuild();

    EXPECT_EQ(menu[4].title, "Snap to Zone 4   (Ctrl+Opt+4)");
    std::vector<int> tags;
    for (std::size_t index = 2; index < 10; ++index)
        tags.push_back(menu[index].tag);
    EXPECT_EQ(tags, (std::vector<int>{0, 1, 3, 4, 5, 6, 7, 8}));
}

TEST_F(StatusMenuTest, TagsOfTheOtherActionsAreTheirPositions) {
    const Menu menu = statusMenu.rebuild();
    std::vector<int> tags;
    for (const MenuItem& item : rowOf(menu, "Move window").submenu)
        tags.push_back(item.tag);

    EXPECT_EQ(tags, (std::vector<int>{9, 10, 11, 12, 13, 14, 15, 16, 17}));
    EXPECT_EQ(rowOf(menu, "Arrange windows into zones").tag, 18);
}

TEST_F(StatusMenuTest, AnUnboundActionShowsOnlyItsTitle) {
    store.setBinding({}, ActionID::zone1);
    store.setBinding({}, ActionID::center);

    const Menu menu = statusMenu.rebuild();

    EXPECT_EQ(menu[2].title, "Snap to Zone 1");
    EXPECT_EQ(rowOf(menu, "Move window").submenu[5].title, "Center");
}

TEST_F(StatusMenuTest, ArrangingShowsNoShortcutEvenWhenBound) {
    ASSERT_TRUE(store.binding(ActionID::arrangeAll));

    EXPECT_EQ(titles(statusMenu.rebuild())[7], "Arrange windows into zones");
}

TEST_F(StatusMenuTest, ModifiersHaveTheNamesOfTheSystem) {
    const StatusMenu elsewhere{store,
                               permissions,
                               runtime,
                               {.modifierNames = {"Ctrl", "Alt", "Shift", "Super"}},
                               desktop.keyNames(),
                               isTaken};

    EXPECT_EQ(rowOf(elsewhere.rebuild(), "Move window").submenu[7].title,
              "Move to next display   (Ctrl+Alt+Super+Right)");
}

TEST_F(StatusMenuTest, AShortcutThatAnotherProgramHasIsNotShown) {
    taken = {ActionID::zone1, ActionID::leftHalf};

    const Menu menu = statusMenu.rebuild();

    EXPECT_EQ(titles(menu)[2], "Snap to Zone 1");
    EXPECT_EQ(titles(menu)[3], "Snap to Zone 2   (Ctrl+Opt+2)");
    EXPECT_EQ(rowOf(menu, "Move window").submenu[0].title, "Left half");
}

TEST_F(StatusMenuTest, KeysHaveTheNamesOfTheKeyboard) {
    desktop.keyNames().rename(18, "&");

    EXPECT_EQ(titles(statusMenu.rebuild())[2], "Snap to Zone 1   (Ctrl+Opt+&)");
}

TEST_F(StatusMenuTest, PauseIsCheckedWhilePaused) {
    EXPECT_FALSE(rowOf(statusMenu.rebuild(), "Pause Tessarel").isChecked);

    runtime.paused = true;

    EXPECT_TRUE(rowOf(statusMenu.rebuild(), "Pause Tessarel").isChecked);
}

TEST_F(StatusMenuTest, SavedLayoutsFollowTheBuiltInOnes) {
    EXPECT_EQ(layouts().size(), 9U);
    store.settings.userLayouts = {{"Mine", {Presets::z(0, 0, 30, 100)}}, {"Yours", {}}};

    const Menu menu = layouts();

    ASSERT_EQ(menu.size(), 12U);
    EXPECT_TRUE(menu[9].isSeparator);
    EXPECT_EQ(menu[10].title, "Mine");
    EXPECT_EQ(menu[10].tag, 1000);
    EXPECT_EQ(menu[11].title, "Yours");
    EXPECT_EQ(menu[11].tag, 1001);
    for (std::size_t index = 0; index < 9; ++index)
        EXPECT_EQ(menu[index].tag, static_cast<int>(index));
}

TEST_F(StatusMenuTest, TheActiveLayoutIsChecked) {
    EXPECT_EQ(checkedLayouts(), Titles{"3 top + 2 bottom"});

    store.settings.zones = Presets::pad({Presets::z(0, 0, 50, 100), Presets::z(50, 0, 50, 100)});

    EXPECT_EQ(checkedLayouts(), Titles{"Halves"});
}

TEST_F(StatusMenuTest, LayoutsWithEqualZonesAreAllChecked) {
    store.settings.userLayouts = {{"Mine", {Presets::z(0, 0, 50, 100), Presets::z(50, 0, 50, 100)}}};
    store.settings.zones = Presets::all()[1].zones;

    EXPECT_EQ(checkedLayouts(), (Titles{"Halves", "Mine"}));
}

TEST_F(StatusMenuTest, NoLayoutIsCheckedWhenTheZonesMatchNoLayout) {
    store.settings.zones[0].w += 0.001;

    EXPECT_EQ(checkedLayouts(), Titles{});
}

TEST_F(StatusMenuTest, TagsWithoutAnActionAreRejected) {
    EXPECT_EQ(StatusMenu::action(-1), std::nullopt);
    EXPECT_EQ(StatusMenu::action(19), std::nullopt);
    EXPECT_EQ(StatusMenu::action(0), ActionID(ActionID::zone1));
    EXPECT_EQ(StatusMenu::action(18), ActionID(ActionID::arrangeAll));
}

TEST_F(StatusMenuTest, TagsWithoutALayoutAreRejected) {
    store.settings.userLayouts = {{"Mine", {Presets::z(0, 0, 30, 100)}}};

    EXPECT_FALSE(statusMenu.layoutZones(-1));
    EXPECT_FALSE(statusMenu.layoutZones(9));
    EXPECT_FALSE(statusMenu.layoutZones(999));
    EXPECT_FALSE(statusMenu.layoutZones(1001));
    EXPECT_EQ(statusMenu.layoutZones(1), Presets::all()[1].zones);
    EXPECT_EQ(statusMenu.layoutZones(1000), (std::vector<Zone>{Presets::z(0, 0, 30, 100)}));
}

} // namespace
} // namespace tessarel
