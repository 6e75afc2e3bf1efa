// SPDX-License-Identifier: MIT

#include "app/main_menu.h"
#include "macos/fake/fake_menus.h"
#include "macos/mac_test.h"

#include <stdexcept>
#include <utility>

namespace tessarel::macos {
namespace {

class MacMainMenuTest : public MacTest {
protected:
    /// Makes the back end with `toolkit` and sets the program's main menu.
    void startWith(MacMainMenu::Toolkit toolkit) {
        makeDesktop(std::move(toolkit));
        desktop->mainMenu.setMainMenu(mainMenu());
    }
};

TEST_F(MacMainMenuTest, TheMenuBarShowsTheRowsWithTheirKeyEquivalents) {
    EXPECT_EQ(fakemac::mainMenuRows(), Lines());

    desktop->mainMenu.setMainMenu(mainMenu());

    EXPECT_EQ(fakemac::mainMenuRows(),
              (Lines{"Tessarel > Close Window Cmd+w", "Tessarel > Quit Tessarel Cmd+q", "Edit > Undo Cmd+z",
                     "Edit > Redo Shift+Cmd+z", "Edit > -", "Edit > Cut Cmd+x", "Edit > Copy Cmd+c",
                     "Edit > Paste Cmd+v", "Edit > Select All Cmd+a"}));
}

TEST_F(MacMainMenuTest, WithoutAToolkitActionsAreSentAlongTheResponderChain) {
    desktop->mainMenu.setMainMenu(mainMenu());

    for (const char key : {'w', 'q', 'z', 'x', 'c', 'v', 'a'})
        EXPECT_TRUE(fakemac::pressMenuKey(key));
    EXPECT_TRUE(fakemac::pressMenuKey('z', true));

    EXPECT_EQ(
        fakemac::mac().actions,
        (Lines{"performClose:", "terminate:", "undo:", "cut:", "copy:", "paste:", "selectAll:", "redo:"}));
}

TEST_F(MacMainMenuTest, TheToolkitIsCalledBeforeTheResponderChain) {
    std::vector<MainMenuItem> asked;
    startWith([&](const MainMenuItem& row) {
        asked.push_back(row);
        return row.action == "copy:";
    });

    fakemac::pressMenuKey('c');
    fakemac::pressMenuKey('w');

    EXPECT_EQ(asked,
              (std::vector<MainMenuItem>{{"Copy", "copy:", 'c'}, {"Close Window", "performClose:", 'w'}}));
    EXPECT_EQ(fakemac::mac().actions, Lines{"performClose:"});
}

TEST_F(MacMainMenuTest, ALaterMenuReplacesTheFirst) {
    desktop->mainMenu.setMainMenu(mainMenu());

    desktop->mainMenu.setMainMenu({{"Only", {{"Row", "row:"}}}});

    EXPECT_EQ(fakemac::mainMenuRows(), Lines{"Only > Row"});
}

TEST_F(MacMainMenuTest, DestroyingTheBackEndRemovesTheMenuBar) {
    desktop->mainMenu.setMainMenu(mainMenu());

    desktop.reset();

    EXPECT_EQ(fakemac::mainMenuRows(), Lines());
}

TEST_F(MacMainMenuTest, ARowMayDestroyTheBackEnd) {
    startWith([this](const MainMenuItem&) {
        desktop.reset();
        return true;
    });

    fakemac::pressMenuKey('q');

    EXPECT_EQ(fakemac::mainMenuRows(), Lines());
}

TEST_F(MacMainMenuTest, NoExceptionLeavesARow) {
    startWith([](const MainMenuItem&) -> bool { throw std::runtime_error("of a test"); });

    EXPECT_NO_THROW(fakemac::pressMenuKey('q'));
    EXPECT_EQ(fakemac::mac().actions, Lines());
}

} // namespace
} // namespace tessarel::macos
