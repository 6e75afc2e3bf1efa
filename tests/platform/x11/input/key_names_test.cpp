// SPDX-License-Identifier: MIT

#include "platform/x11/input/key_names.h"

#include "platform/x11/event_loop.h"
#include "platform/xkb/keycode_table.h"
#include "support/x11/keyboard.h"
#include "support/x11/observer.h"
#include "support/x11/x_server.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace tessarel::x11 {
namespace {

// Virtual key codes, named after the keys of a US keyboard.
constexpr std::int64_t kA = 0;
constexpr std::int64_t kZ = 6;
constexpr std::int64_t kY = 16;
constexpr std::int64_t kDigit1 = 18;
constexpr std::int64_t kDigit2 = 19;
constexpr std::int64_t kDigit0 = 29;
constexpr std::int64_t kEqual = 24;
constexpr std::int64_t kMinus = 27;
constexpr std::int64_t kSemicolon = 41;
constexpr std::int64_t kGrave = 50;
constexpr std::int64_t kExtraOfIso = 10;

class X11KeyNamesTest : public testing::Test {
protected:
    void runTool(const std::vector<std::string>& command) {
        x11test::runToEnd(command, server.environment());
        loop.settle();
    }

    x11test::XServer server;
    x11test::Observer observer{server.display()};
    x11test::Keyboard keyboard{server, observer};
    EventLoop loop{server.display()};
    X11KeyNames names{loop.connection()};
};

TEST_F(X11KeyNamesTest, AGermanKeyboardHasItsOwnLetters) {
    runTool({"setxkbmap", "de"});

    EXPECT_EQ(names.name(kZ), "Y");
    EXPECT_EQ(names.name(kY), "Z");
    EXPECT_EQ(names.name(kSemicolon), "Ö");
    EXPECT_EQ(names.name(kEqual), "´") << "a dead key";
    EXPECT_EQ(names.name(kGrave), "^") << "a dead key";
    EXPECT_EQ(names.name(kExtraOfIso), "<");
    EXPECT_EQ(names.name(kDigit1), "1");
}

TEST_F(X11KeyNamesTest, AFrenchKeyboardHasItsDigitsThoughTheyNeedShift) {
    runTool({"setxkbmap", "fr"});

    EXPECT_EQ(names.name(kDigit1), "1");
    EXPECT_EQ(names.name(kDigit2), "2");
    EXPECT_EQ(names.name(kDigit0), "0");
    EXPECT_EQ(names.name(kMinus), ")");
    EXPECT_EQ(names.name(kA), "Q");
}

TEST_F(X11KeyNamesTest, OtherScriptsHaveCapitalsToo) {
    runTool({"setxkbmap", "ru"});
    EXPECT_EQ(names.name(kA), "Ф");

    runTool({"setxkbmap", "gr"});
    EXPECT_EQ(names.name(kA), "Α");
}

TEST_F(X11KeyNamesTest, TheNamesFollowANewMapping) {
    EXPECT_EQ(names.name(kZ), "Z");
    std::string heard;
    const auto changes = names.onChange([&] { heard = names.name(kZ); });

    runTool({"setxkbmap", "de"});
    EXPECT_EQ(heard, "Y");

    runTool({"setxkbmap", "us"});
    EXPECT_EQ(heard, "Z");
}

TEST_F(X11KeyNamesTest, TheNamesFollowASwitchToAnotherLayout) {
    runTool({"setxkbmap", "-layout", "us,ru", "-option", "grp:shifts_toggle"});
    EXPECT_EQ(names.name(kA), "A");
    int changes = 0;
    auto counted = names.onChange([&] { ++changes; });
    constexpr xcb_keycode_t kRightShift = 62;
    const auto switchLayout = [&] {
        keyboard.press({kRightShift, XCB_MOD_MASK_SHIFT});
        loop.settle();
    };

    switchLayout();
    EXPECT_EQ(names.name(kA), "Ф");
    EXPECT_GT(changes, 0);

    counted.reset();
    const int before = changes;
    switchLayout();
    EXPECT_EQ(names.name(kA), "A");
    EXPECT_EQ(changes, before);
}

TEST_F(X11KeyNamesTest, OrdinaryKeysChangeNoName) {
    int changes = 0;
    const auto counted = names.onChange([&] { ++changes; });
    const auto press = [&] {
        keyboard.press({x11test::key::kA, XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL});
        loop.settle();
    };
    press(); // the server switches to the keyboard that the test types on
    changes = 0;

    press();

    EXPECT_EQ(changes, 0);
}

TEST_F(X11KeyNamesTest, EveryKeyThatCanBeBoundIsNamedWithoutItsCode) {
    runTool({"setxkbmap", "-layout", "de", "-model", "pc105"});
    for (const xkb::PhysicalKey& key : xkb::kPhysicalKeys) {
        constexpr std::int64_t kYen = 93; // on Japanese keyboards only
        constexpr std::int64_t kUnderscore = 94;
        if (key.virtualKey == kYen || key.virtualKey == kUnderscore)
            continue;
        const std::string name = names.name(key.virtualKey);
        EXPECT_FALSE(name.starts_with("Key") && !name.starts_with("Keypad")) << name;
    }
}

TEST_F(X11KeyNamesTest, KeysForEditingHaveTheNamesOfAPcKeyboard) {
    constexpr std::pair<std::int64_t, const char*> kNames[] = {
        {51, "Backspace"}, {117, "Delete"},    {114, "Insert"},  {115, "Home"},       {119, "End"},
        {116, "Page Up"},  {121, "Page Down"}, {82, "Keypad 0"}, {76, "Keypad Enter"}};
    for (const auto& [keyCode, name] : kNames)
        EXPECT_EQ(names.name(keyCode), name);
}

TEST_F(X11KeyNamesTest, ReadingTheLayoutLosesNoEvent) {
    int changes = 0;
    const auto counted = names.onChange([&] { ++changes; });
    x11test::runToEnd({"setxkbmap", "fr"}, server.environment());

    EXPECT_EQ(names.name(kZ), "W") << "the events arrive while the layout is read";
    loop.settle();

    EXPECT_GT(changes, 0);
}

TEST_F(X11KeyNamesTest, WithoutAServerTheKeysHaveTheirUsualNames) {
    server.kill();

    EXPECT_EQ(names.name(kZ), "Z");
    EXPECT_EQ(names.name(kExtraOfIso), "Key10");
}

} // namespace
} // namespace tessarel::x11
