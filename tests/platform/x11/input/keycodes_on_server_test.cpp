// SPDX-License-Identifier: MIT

#include "model/key_names.h"
#include "platform/xkb/keycode_table.h"
#include "support/x11/x_connection.h"
#include "support/x11/x_server.h"

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <cctype>
#include <map>
#include <string>

namespace tessarel::x11 {
namespace {

/// Returns the keysym of a key name as the user sees it.
xcb_keysym_t keysymOf(const std::string& name) {
    static const std::map<std::string, xcb_keysym_t> named{
        {"Return", 0xff0d}, {"Tab", 0xff09}, {"Space", ' '},    {"Delete", 0xff08}, {"Esc", 0xff1b},
        {"Left", 0xff51},   {"Up", 0xff52},  {"Right", 0xff53}, {"Down", 0xff54},
    };
    constexpr xcb_keysym_t kF1 = 0xffbe;
    if (const auto found = named.find(name); found != named.end())
        return found->second;
    if (name.size() == 1)
        return static_cast<xcb_keysym_t>(std::tolower(static_cast<unsigned char>(name.front())));
    return kF1 + static_cast<xcb_keysym_t>(std::stoi(name.substr(1))) - 1;
}

class KeyCodesOnServerTest : public testing::Test {
protected:
    /// Returns the first keysym of a key in the server's default layout, which is the American one.
    [[nodiscard]] xcb_keysym_t onKey(std::uint8_t keycode) {
        const auto reply = x11test::own(
            xcb_get_keyboard_mapping_reply(x.get(), xcb_get_keyboard_mapping(x.get(), keycode, 1), nullptr));
        return *xcb_get_keyboard_mapping_keysyms(reply.get());
    }

    x11test::XServer server;
    x11test::XConnection x{server.display()};
};

TEST_F(KeyCodesOnServerTest, EveryNamedKeyHasItsKeysymOnTheServer) {
    ASSERT_EQ(KeyNames::names.size(), 68U);
    for (const auto& [virtualKey, name] : KeyNames::names) {
        const auto keycode = xkb::keycodeOf(static_cast<std::uint32_t>(virtualKey));
        ASSERT_TRUE(keycode) << name;
        EXPECT_EQ(onKey(*keycode), keysymOf(std::string(name))) << name;
    }
}

} // namespace
} // namespace tessarel::x11
