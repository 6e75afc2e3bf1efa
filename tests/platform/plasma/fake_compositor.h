// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/wayland/bus_link.h"
#include "support/x11/child_process.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::plasma {

/// Plays KWin on the bus: takes scripts, and sends what a script would.
class FakeCompositor {
public:
    FakeCompositor(const std::string& address, bool acceptsScripts) : m_link(address) {
        std::optional<wayland::BusMessage> reply;
        m_scripts = m_link.serve(
            "/Scripting",
            [this, acceptsScripts](const wayland::BusMessage& call) { take(call, acceptsScripts); },
            Delivery::Urgent);
        m_link.call(
            {"org.freedesktop.DBus",
             "/org/freedesktop/DBus",
             "org.freedesktop.DBus",
             "RequestName",
             "su",
             {std::string("org.kde.KWin"), std::int64_t{0}}},
            [&](const wayland::BusMessage& message) { reply = message; }, Delivery::Urgent);
        EXPECT_TRUE(waitUntil([&] { return reply.has_value(); }));
    }

    bool waitUntil(const std::function<bool()>& holds,
                   std::chrono::milliseconds patience = x11test::kPatience) {
        return m_link.waitUntil(holds, patience);
    }

    /// Handles what arrives here and at the program until `holds` returns true. Returns false if it does not.
    bool exchangeUntil(wayland::BusLink& program, const std::function<bool()>& holds) {
        constexpr std::chrono::milliseconds kTurn{1};
        const x11test::Deadline deadline;
        while (!holds() && !deadline.passed()) {
            program.waitUntil(holds, kTurn);
            waitUntil(holds, kTurn);
        }
        return holds();
    }

    /// Sends a report of the script.
    void report(const std::string& service, const std::string& text) {
        m_link.call({service, "/org/tessarel/Bridge", "org.tessarel.Bridge", "report", "s", {text}});
    }
    /// Asks for commands, as the script does.
    void next(const std::string& service) {
        m_link.call(
            {service, "/org/tessarel/Bridge", "org.tessarel.Bridge", "next"},
            [this](const wayland::BusMessage& reply) { commands.push_back(reply.value<std::string>(0)); },
            Delivery::Urgent);
    }

    std::vector<std::string> requests;
    std::vector<std::string> commands; ///< what `next` has returned

private:
    using Delivery = wayland::BusLink::Delivery;

    void take(const wayland::BusMessage& call, bool acceptsScripts) {
        requests.push_back(call.member);
        if (acceptsScripts)
            m_link.answer(call.token, "");
    }

    wayland::BusLink m_link;
    SubscriptionPtr m_scripts;
};

} // namespace tessarel::plasma
