// SPDX-License-Identifier: MIT

#include "model/drag_trigger.h"

#include <gtest/gtest.h>

namespace tessarel {
namespace {

TEST(DragTriggerTest, EveryTriggerIsFoundByItsName) {
    EXPECT_EQ(dragTrigger("shift"), DragTrigger::Shift);
    EXPECT_EQ(dragTrigger("control"), DragTrigger::Control);
    EXPECT_EQ(dragTrigger("command"), DragTrigger::Command);
    EXPECT_EQ(dragTrigger("always"), DragTrigger::Always);
}

TEST(DragTriggerTest, AnUnknownNameMeansShift) {
    for (const char* name : {"", "option", "Control", "command "})
        EXPECT_EQ(dragTrigger(name), DragTrigger::Shift) << name;
}

TEST(DragTriggerTest, ATriggerNeedsItsOwnKeyAndIgnoresOthers) {
    EXPECT_TRUE(isHeld(DragTrigger::Shift, kShiftFlag));
    EXPECT_TRUE(isHeld(DragTrigger::Control, kControlFlag | kShiftFlag | 0x10000));
    EXPECT_TRUE(isHeld(DragTrigger::Command, kAllModifierFlags));
    EXPECT_FALSE(isHeld(DragTrigger::Shift, kAllModifierFlags & ~kShiftFlag));
    EXPECT_FALSE(isHeld(DragTrigger::Control, kShiftFlag));
    EXPECT_FALSE(isHeld(DragTrigger::Command, 0));
}

TEST(DragTriggerTest, AlwaysNeedsNoKey) {
    EXPECT_TRUE(isHeld(DragTrigger::Always, 0));
    EXPECT_TRUE(isHeld(DragTrigger::Always, kOptionFlag));
}

} // namespace
} // namespace tessarel
