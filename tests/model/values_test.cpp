// SPDX-License-Identifier: MIT

#include "model/binding.h"
#include "model/zone.h"

#include <gtest/gtest.h>

namespace tessarel {
namespace {

TEST(ValuesTest, AZoneIsDisabledAndEmptyByDefault) {
    EXPECT_EQ(Zone{}, (Zone{false, 0, 0, 0, 0}));
}

TEST(ValuesTest, ABindingHasKeyCodeZeroAndNoModifiersByDefault) {
    EXPECT_EQ(Binding{}, (Binding{0, 0}));
}

} // namespace
} // namespace tessarel
