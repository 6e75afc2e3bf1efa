// SPDX-License-Identifier: MIT

#include "app/command_address.h"

#include "app/command.h"
#include "model/action_id.h"
#include "ports/command_exchange.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessarel {
namespace {

using Words = std::vector<std::string>;

TEST(CommandAddressTest, EveryActionHasAnAddress) {
    for (const ActionID action : ActionID::allCases)
        EXPECT_EQ(commandInAddress("tessarel://" + commandName(action)), Words{commandName(action)});
}

TEST(CommandAddressTest, AZoneHasItsNumberAsAPartOfItsOwn) {
    EXPECT_EQ(commandInAddress("tessarel://zone/3"), Words{"zone-3"});
}

TEST(CommandAddressTest, LayoutsAndThePauseHaveAnAddress) {
    EXPECT_EQ(commandInAddress("tessarel://layout/Halves"), (Words{"layout", "Halves"}));
    EXPECT_EQ(commandInAddress("tessarel://layout/My%20desk%2F%C3%a4"),
              (Words{"layout", "My desk/\xC3\xA4"}));
    EXPECT_EQ(commandInAddress("tessarel://pause/toggle"), (Words{"pause", "toggle"}));
}

TEST(CommandAddressTest, AWebPageCanNeitherQuitTheProgramNorReadALayoutsName) {
    EXPECT_EQ(commandInAddress("tessarel://quit"), std::nullopt);
    EXPECT_EQ(commandInAddress("tessarel://list/layouts"), std::nullopt);
    EXPECT_EQ(commandInAddress("tessarel://list/layouts/--json"), std::nullopt);
}

TEST(CommandAddressTest, NothingElseHasAMeaning) {
    for (const char* const address : {"",
                                      "tessarel:",
                                      "tessarel://",
                                      "tessarel:zone-1",
                                      "https://zone-1",
                                      "Tessarel://zone-1",
                                      "zone-1",
                                      "tessarel://zone",
                                      "tessarel://zone/",
                                      "tessarel://zone/10",
                                      "tessarel://zone/3/",
                                      "tessarel://zone//3",
                                      "tessarel://left/half",
                                      "tessarel://zone-1?x",
                                      "tessarel://zone-1#x",
                                      "tessarel://zone-1/x",
                                      "tessarel://pause",
                                      "tessarel://pause/now",
                                      "tessarel://layout",
                                      "tessarel://zone-%31%",
                                      "tessarel://zone-%3",
                                      "tessarel://zone-%g1",
                                      "tessarel://zone-%1g",
                                      "tessarel://layout/a%00b"})
        EXPECT_EQ(commandInAddress(address), std::nullopt) << address;
}

TEST(CommandAddressTest, ALongAddressIsIgnored) {
    const std::string start = "tessarel://layout/";
    const std::string longest(kLongestCommand - start.size(), 'a');

    EXPECT_EQ(commandInAddress(start + longest), (Words{"layout", longest}));
    EXPECT_EQ(commandInAddress(start + longest + "a"), std::nullopt);
}

TEST(CommandAddressTest, EveryByteCanBeEncoded) {
    EXPECT_EQ(commandInAddress("tessarel://%7a%6F%6E%65-1"), Words{"zone-1"});
    EXPECT_EQ(commandInAddress("tessarel://layout/%01%10%fF"), (Words{"layout", "\x01\x10\xFF"}));
}

} // namespace
} // namespace tessarel
