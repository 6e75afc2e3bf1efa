// SPDX-License-Identifier: MIT

#include "model/json.h"
#include "platform/plasma/scripts.h"
#include "support/plasma/plasma_session.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::plasmatest {
namespace {

using testing::ElementsAre;

/// Stand-ins for the objects of a script with the names that they have in Plasma 6. A window takes every
/// frame at once, and is then asked for another one by something else.
constexpr const char* kPlasma6 = R"js(
function signal() {
    const handlers = [];
    return { connect: (handler) => handlers.push(handler), emit: (value) => handlers.forEach((one) => one(value)) };
}
function later(work) {
    callDBus("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId", work);
}
function open(name, className, more) {
    let frame = { x: 100, y: 100, width: 500, height: 400 };
    const window = {
        internalId: name, pid: 42, desktopFileName: "org.example.test", resourceClass: "test", opacity: 1,
        managed: true, deleted: false, normalWindow: true, moveable: true, resizeable: true, fullScreen: false,
        minimized: false, onAllDesktops: true, activities: [], tile: null, bufferGeometry: frame,
        minSize: { width: 0, height: 0 }, maxSize: { width: 10000, height: 10000 }, setMaximize: () => {},
        frameGeometryAboutToChange: signal(), frameGeometryChanged: signal(),
        interactiveMoveResizeStarted: signal(), interactiveMoveResizeStepped: signal(),
        interactiveMoveResizeFinished: signal(),
        toString: () => "KWin::" + className + "(0x1234)",
        get frameGeometry() { return frame; },
        set frameGeometry(wanted) {
            window.frameGeometryAboutToChange.emit();
            frame = wanted;
            window.frameGeometryChanged.emit();
            later(() => window.frameGeometryAboutToChange.emit());
        }
    };
    return Object.assign(window, more);
}
const workspace6 = {
    stackingOrder: [open("wayland", "XdgToplevelWindow"), open("x", "X11Window"),
                    open("fixed", "X11Window", { resizeable: false }),
                    open("closing", "XdgToplevelWindow", { deleted: true }),
                    open("menu", "X11Window", { managed: false }), open("outline", "InternalWindow")],
    windowList: () => workspace6.stackingOrder, screens: [], activeWindow: null, currentActivity: "",
    clientArea: () => ({ x: 0, y: 0, width: 1600, height: 900 }),
    windowAdded: signal(), windowRemoved: signal(), windowActivated: signal()
};
)js";

/// The script in KWin, with stand-ins for the objects of Plasma 6 and the test in the place of the program.
class Plasma6Test : public testing::Test {
protected:
    /// Runs the script, then these statements.
    void run(const std::string& statements = {}) {
        std::string script = plasma::kBridgeScript;
        const auto fill = [&script](const std::string& placeholder, const std::string& value) {
            script.replace(script.find(placeholder), placeholder.size(), value);
        };
        fill("@SERVICE@", link.uniqueName());
        fill("@PID@", "1");
        session.probe().run(kPlasma6 + ("(function(workspace) {" + script + "})(workspace6);") + statements);
        ASSERT_TRUE(session.probe().waitUntil([this] { return waiting != 0; }));
    }
    void handle(const wayland::BusMessage& call) {
        if (call.member == "next")
            waiting = call.token;
        else
            reports.push_back(readJson(call.value<std::string>(0)).value());
    }
    /// Makes the script place the windows in this order.
    void place(const std::vector<std::string>& names) {
        Json commands = Json::array();
        for (const std::string& name : names)
            commands.push_back({{"serial", 1}, {"name", name}, {"frame", {0, 0, 800, 900}}});
        link.answer(waiting, writeJson(commands).value());
    }
    /// Returns the first report of this event for the window; empty if there is none.
    [[nodiscard]] std::optional<Json> find(const std::string& event, const std::string& name) const {
        const auto report = std::ranges::find_if(reports, [&](const Json& one) {
            return one.at("event") == event && one.value("name", "") == name;
        });
        return report == reports.end() ? std::nullopt : std::optional(*report);
    }
    [[nodiscard]] std::optional<Json> waitFor(const std::string& event, const std::string& name) {
        (void)session.probe().waitUntil([&] { return find(event, name).has_value(); });
        return find(event, name);
    }

    PlasmaSession session;
    wayland::BusLink& link = session.probe().link();
    std::uint64_t waiting = 0; ///< the token of the script's call for commands
    std::vector<Json> reports;
    SubscriptionPtr calls = link.serve(
        "/org/tessarel/Bridge", [this](const wayland::BusMessage& call) { handle(call); },
        wayland::BusLink::Delivery::Urgent);
};

TEST_F(Plasma6Test, WindowsThatAreClosingOrNotManagedOrKWinsOwnAreLeftOut) {
    run(R"js(
        workspace6.windowAdded.emit(workspace6.stackingOrder[4]);
        workspace6.windowRemoved.emit(workspace6.stackingOrder[4]);
        workspace6.windowAdded.emit(workspace6.stackingOrder[5]);
        workspace6.stackingOrder.push(open("new", "XdgToplevelWindow"));
        workspace6.windowAdded.emit(workspace6.stackingOrder[6]);)js");

    const auto order = [](const Json& names) { return names.get<std::vector<std::string>>(); };
    ASSERT_TRUE(session.probe().waitUntil([this] { return reports.back().at("event") == "order"; }));
    EXPECT_THAT(order(reports.back().at("names")), ElementsAre("wayland", "x", "fixed", "new"));
    EXPECT_EQ(reports.front().at("windows").size(), 3);
    EXPECT_EQ(find("window", "menu"), std::nullopt);
    EXPECT_EQ(find("removed", "menu"), std::nullopt);
    EXPECT_EQ(find("window", "outline"), std::nullopt);
}

TEST_F(Plasma6Test, WhatAnXProgramAsksForDoesNotReplaceThePlacementOfItsWindow) {
    run();

    place({"x", "wayland"});

    EXPECT_TRUE(waitFor("replaced", "wayland"));
    EXPECT_EQ(find("replaced", "x"), std::nullopt);
    EXPECT_EQ(find("placed", "x").value().at("frame"), Json({0, 0, 800, 900}));
}

TEST_F(Plasma6Test, AWindowOfAFixedSizeOfAnXProgramKeepsIt) {
    run();

    place({"fixed"});

    EXPECT_EQ(waitFor("placed", "fixed").value().at("frame"), Json({0, 0, 500, 400}));
}

} // namespace
} // namespace tessarel::plasmatest
