#pragma once

#include "macos/fake/fake_mac.h"
#include "platform/macos/desktop.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace tessarel::macos {

using Lines = std::vector<std::string>;

/// The back end on a fresh fake Mac with one display and an editor, of which nothing may be left at the end.
class MacTest : public ::testing::Test {
protected:
    static constexpr ProcessId kEditor = 7;

    MacTest() {
        fakemac::reset();
        fakemac::mac().displays = {
            {.number = 1, .frame = {0, 0, 1440, 900}, .visibleFrame = {0, 0, 1440, 875}}};
        fakemac::launch(kEditor, {.bundleIdentifier = "org.example.editor"});
        desktop.emplace();
    }
    ~MacTest() override {
        desktop.reset();
        EXPECT_EQ(fakemac::heldObjects(), Lines());
    }

    std::optional<MacDesktop> desktop;
};

} // namespace tessarel::macos
