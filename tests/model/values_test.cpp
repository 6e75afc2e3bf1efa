#include "model/binding.h"
#include "model/zone.h"

#include <gtest/gtest.h>

namespace tessarel {
namespace {

TEST(ValuesTest, AZoneIsDisabledAndEmptyUnlessSetOtherwise) {
    EXPECT_EQ(Zone{}, (Zone{false, 0, 0, 0, 0}));
}

TEST(ValuesTest, ABindingHasTheFirstKeyAndNoModifiersUnlessSetOtherwise) {
    EXPECT_EQ(Binding{}, (Binding{0, 0}));
}

} // namespace
} // namespace tessarel
