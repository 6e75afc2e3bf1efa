// SPDX-License-Identifier: MIT

#include "macos/fake/fake_menus.h"
#include "macos/mac_test.h"
#include "support/menu_rows.h"

#include <stdexcept>
#include <utility>

namespace tessarel::macos {
namespace {

using fakemac::StatusItemSight;

Menu everyKindOfRow() {
    MenuItem heading = row("Tessarel 1.0", MenuCommand::None);
    heading.isEnabled = false;
    MenuItem pause = row("Pause Tessarel", MenuCommand::TogglePause);
    pause.isChecked = true;
    MenuItem settings = row("Settings...", MenuCommand::OpenSettings);
    settings.keyEquivalent = ",";
    MenuItem halves = row("Halves", MenuCommand::ApplyLayout, 0);
    halves.isChecked = true;
    return {heading, MenuItem::separator(),
            submenu("Layouts",
                    {halves, MenuItem::separator(), row("Mine & <b>yours", MenuCommand::ApplyLayout, 1000)}),
            pause, settings};
}

/// Returns the rows as the user sees them: without command and tag.
Menu looksOf(Menu rows) {
    for (MenuItem& item : rows) {
        item.command = MenuCommand::None;
        item.tag = 0;
        item.submenu = looksOf(std::move(item.submenu));
    }
    return rows;
}

class MacStatusItemTest : public MacTest {
protected:
    void SetUp() override { fakemac::mac().symbols = {"square.grid.2x2", "rectangle.split.3x1"}; }

    [[nodiscard]] SubscriptionPtr create() {
        return desktop->statusItem.create({[this] {
                                               ++asked;
                                               return menu;
                                           },
                                           [this](const MenuItem& item) { chosen.push_back(item); }});
    }

    Menu menu = everyKindOfRow();
    int asked = 0;
    std::vector<MenuItem> chosen;
};

TEST_F(MacStatusItemTest, DestroyingTheSubscriptionRemovesTheItem) {
    auto item = create();
    EXPECT_EQ(fakemac::statusItems(), std::vector<StatusItemSight>{{}});

    item.reset();

    EXPECT_TRUE(fakemac::statusItems().empty());
}

TEST_F(MacStatusItemTest, ASymbolIsShownAsATemplateImage) {
    const auto item = create();

    EXPECT_TRUE(desktop->statusItem.setSymbol("square.grid.2x2", "Tessarel"));

    EXPECT_EQ(fakemac::statusItems(),
              (std::vector<StatusItemSight>{
                  {.symbol = "square.grid.2x2", .description = "Tessarel", .isTemplate = true}}));
}

TEST_F(MacStatusItemTest, AnUnknownSymbolChangesNothing) {
    const auto item = create();
    ASSERT_TRUE(desktop->statusItem.setSymbol("square.grid.2x2", "Tessarel"));

    EXPECT_FALSE(desktop->statusItem.setSymbol("rectangle.3.group", "Tessarel"));
    EXPECT_FALSE(desktop->statusItem.setSymbol("\xff", "Tessarel"));

    EXPECT_EQ(fakemac::statusItems().at(0).symbol, "square.grid.2x2");
}

TEST_F(MacStatusItemTest, ATitleReplacesTheSymbol) {
    const auto item = create();
    ASSERT_TRUE(desktop->statusItem.setSymbol("square.grid.2x2", "Tessarel"));

    desktop->statusItem.clearImage();
    desktop->statusItem.setTitle("TS");

    EXPECT_EQ(fakemac::statusItems(), std::vector<StatusItemSight>{{.title = "TS"}});
}

TEST_F(MacStatusItemTest, TheItemCanBeDimmedAndRestored) {
    const auto item = create();

    desktop->statusItem.setAppearsDisabled(true);
    EXPECT_TRUE(fakemac::statusItems().at(0).appearsDisabled);

    desktop->statusItem.setAppearsDisabled(false);
    EXPECT_FALSE(fakemac::statusItems().at(0).appearsDisabled);
}

TEST_F(MacStatusItemTest, CallsWithoutAnItemHaveNoEffect) {
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE(desktop->statusItem.setSymbol("square.grid.2x2", "Tessarel"));
        desktop->statusItem.clearImage();
        desktop->statusItem.setTitle("TS");
        desktop->statusItem.setAppearsDisabled(true);
        EXPECT_TRUE(fakemac::statusItems().empty());
        create().reset();
    }
}

TEST_F(MacStatusItemTest, AnItemWithoutAButtonIsLeftAlone) {
    fakemac::mac().hasStatusButtons = false;
    const auto item = create();

    EXPECT_TRUE(desktop->statusItem.setSymbol("square.grid.2x2", "Tessarel"));
    desktop->statusItem.setTitle("TS");
    desktop->statusItem.setAppearsDisabled(true);

    EXPECT_EQ(fakemac::statusItems(), std::vector<StatusItemSight>{{}});
}

TEST_F(MacStatusItemTest, EveryKindOfRowIsShown) {
    const auto item = create();

    EXPECT_EQ(fakemac::openStatusMenu(), looksOf(everyKindOfRow()));
}

TEST_F(MacStatusItemTest, TheMenuIsRequestedEachTimeItOpensAndNotBefore) {
    const auto item = create();
    EXPECT_EQ(asked, 0);
    (void)fakemac::openStatusMenu();

    menu = {row("another")};

    EXPECT_EQ(fakemac::openStatusMenu(), looksOf({row("another")}));
    EXPECT_EQ(asked, 2);
}

TEST_F(MacStatusItemTest, ChoosingARowReportsThatRow) {
    const auto item = create();
    (void)fakemac::openStatusMenu();

    fakemac::clickAt({"Layouts", "Mine & <b>yours"})();
    fakemac::clickAt({"Pause Tessarel"})();
    turn();

    EXPECT_EQ(chosen, (std::vector<MenuItem>{menu[2].submenu[2], menu[3]}));
}

TEST_F(MacStatusItemTest, ARowIsReportedInTheNextIterationWhenTheMenuHasGone) {
    const auto item = create();
    (void)fakemac::openStatusMenu();

    fakemac::clickAt({"Pause Tessarel"})();
    EXPECT_TRUE(chosen.empty());
    turn();

    EXPECT_EQ(chosen, std::vector<MenuItem>{menu[3]});
}

TEST_F(MacStatusItemTest, ARowIsNotReportedOnceItsItemIsDestroyed) {
    auto item = create();
    (void)fakemac::openStatusMenu();
    fakemac::clickAt({"Pause Tessarel"})();

    item.reset();
    turn();

    EXPECT_TRUE(chosen.empty());
}

TEST_F(MacStatusItemTest, HeadingsSeparatorsAndParentsCannotBeChosen) {
    const auto item = create();
    (void)fakemac::openStatusMenu();

    EXPECT_FALSE(fakemac::clickAt({"Tessarel 1.0"}));
    EXPECT_FALSE(fakemac::clickAt({"Layouts"}));
    EXPECT_FALSE(fakemac::clickAt({""}));
}

TEST_F(MacStatusItemTest, ARowOfAnEarlierMenuIsReportedAsItWas) {
    const auto item = create();
    (void)fakemac::openStatusMenu();
    const auto click = fakemac::clickAt({"Layouts", "Mine & <b>yours"});
    const MenuItem stale = menu[2].submenu[2];
    menu = {};
    (void)fakemac::openStatusMenu();

    click();
    turn();

    EXPECT_EQ(chosen, std::vector<MenuItem>{stale});
}

TEST_F(MacStatusItemTest, ARowChosenAfterItsItemIsDestroyedIsNotReported) {
    auto item = create();
    (void)fakemac::openStatusMenu();
    const auto click = fakemac::clickAt({"Pause Tessarel"});

    item.reset();
    click();
    turn();

    EXPECT_TRUE(chosen.empty());
}

TEST_F(MacStatusItemTest, ARowMayDestroyTheItem) {
    SubscriptionPtr item =
        desktop->statusItem.create({[] { return Menu{row("Quit Tessarel", MenuCommand::Quit)}; },
                                    [&](const MenuItem&) { item.reset(); }});
    (void)fakemac::openStatusMenu();

    fakemac::clickAt({"Quit Tessarel"})();
    turn();

    EXPECT_TRUE(fakemac::statusItems().empty());
}

TEST_F(MacStatusItemTest, RequestingTheMenuMayDestroyTheItem) {
    SubscriptionPtr item = desktop->statusItem.create({[&] {
                                                           item.reset();
                                                           return everyKindOfRow();
                                                       },
                                                       [](const MenuItem&) {}});

    (void)fakemac::openStatusMenu();

    EXPECT_TRUE(fakemac::statusItems().empty());
}

TEST_F(MacStatusItemTest, CallsApplyToTheItemCreatedLast) {
    const auto first = create();
    const auto second = create();

    desktop->statusItem.setTitle("TS");

    EXPECT_EQ(fakemac::statusItems(), (std::vector<StatusItemSight>{{}, {.title = "TS"}}));
}

TEST_F(MacStatusItemTest, AnItemMayOutliveTheBackEnd) {
    const auto item = create();
    desktop.reset();

    (void)fakemac::openStatusMenu();
    fakemac::clickAt({"Settings..."})();
    turn();

    EXPECT_EQ(chosen, std::vector<MenuItem>{menu[4]});
}

TEST_F(MacStatusItemTest, AnyTitleIsShownOnOneLine) {
    menu = {row("a\nb\tc\x7f"), row("caf\xe9"), row("Größe 🪟"), row("")};
    const auto item = create();

    const Menu shown = fakemac::openStatusMenu();

    EXPECT_EQ(shown, looksOf({row("a b c "), row("café"), row("Größe 🪟"), row("")}));
}

TEST_F(MacStatusItemTest, NoExceptionLeavesTheMenu) {
    bool fails = false;
    const auto item = desktop->statusItem.create({[&] {
                                                      if (fails)
                                                          throw std::runtime_error("of a test");
                                                      return everyKindOfRow();
                                                  },
                                                  [](const MenuItem&) { throw 1; }});
    (void)fakemac::openStatusMenu();
    fails = true;

    EXPECT_EQ(fakemac::openStatusMenu(), looksOf(everyKindOfRow()));
    EXPECT_NO_THROW(fakemac::clickAt({"Settings..."})());
    testing::internal::CaptureStderr();
    EXPECT_NO_THROW(turn());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "tessarel: an event was not dealt with\n");
}

} // namespace
} // namespace tessarel::macos
