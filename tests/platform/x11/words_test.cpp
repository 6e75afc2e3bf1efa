// SPDX-License-Identifier: MIT

#include "platform/x11/words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessarel::x11 {
namespace {

using testing::AllOf;
using testing::Each;
using testing::HasSubstr;
using testing::Not;

std::vector<std::string> texts(const PlatformWords& words) {
    const ModifierNames& names = words.modifierNames;
    return {std::string(names.ctrl), std::string(names.opt), std::string(names.shift), std::string(names.cmd),
            words.welcomeFirst,      words.welcomeDragNote,  words.statusItem,         words.grantAccess,
            words.usableArea,        words.otherEdgeTiling,  words.controlKey,         words.commandKey,
            words.permission,        words.trusted,          words.openPermission,     words.notTrusted,
            words.thisComputer};
}

TEST(WordsTest, DoNotMentionFeaturesOfMacOS) {
    EXPECT_THAT(texts(words()),
                Each(AllOf(Not(HasSubstr("Mac")), Not(HasSubstr("macOS")), Not(HasSubstr("Dock")),
                           Not(HasSubstr("menu bar")), Not(HasSubstr("Opt")), Not(HasSubstr("Cmd")),
                           Not(HasSubstr("Command")), Not(HasSubstr("System Settings")),
                           Not(HasSubstr("Accessibility")), Not(HasSubstr("ranted")))));
}

TEST(WordsTest, AreAllPresent) {
    EXPECT_THAT(texts(words()), Each(Not("")));
}

} // namespace
} // namespace tessarel::x11
