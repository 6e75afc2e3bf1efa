// SPDX-License-Identifier: MIT

#include "support/plasma/probe.h"

#include "model/json.h"
#include "support/x11/deadline.h"

#include <cstdint>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <utility>

namespace tessarel::plasmatest {

namespace {

constexpr const char* kScript = R"js(
function report() {
    const all = workspace.clientList().sort((a, b) => a.stackingOrder - b.stackingOrder);
    callDBus("@NAME@", "/Probe", "org.tessarel.Probe", "windows", JSON.stringify(all.map((c) => ({
        name: String(c.internalId), title: c.caption, class: String(c.resourceClass), pid: c.pid,
        active: c.active, tiled: c.tile !== null, minimized: c.minimized, fullScreen: c.fullScreen,
        activities: c.activities,
        frame: [c.frameGeometry.x, c.frameGeometry.y, c.frameGeometry.width, c.frameGeometry.height]
    }))));
}
function watch(c) {
    for (const signal of ["frameGeometryChanged", "activeChanged", "minimizedChanged", "fullScreenChanged",
                          "stackingOrderChanged", "tileChanged", "activitiesChanged"])
        if (c[signal])
            c[signal].connect(report);
}
workspace.clientAdded.connect((c) => { watch(c); report(); });
workspace.clientRemoved.connect(report);
workspace.clientActivated.connect(report);
workspace.clientList().forEach(watch);
report();
)js";

} // namespace

Probe::Probe(const std::string& busAddress, const std::filesystem::path& folder)
    : m_link(busAddress), m_folder(folder),
      m_reports(m_link.serve(
          "/Probe", [this](const wayland::BusMessage& message) { handle(message.value<std::string>(0)); },
          wayland::BusLink::Delivery::Urgent)) {
    std::string script = kScript;
    const std::string placeholder = "@NAME@";
    if (!waitUntil([this] { return !m_link.uniqueName().empty(); }))
        throw std::runtime_error("the bus does not reply");
    script.replace(script.find(placeholder), placeholder.size(), m_link.uniqueName());
    run(script);
    if (!waitUntil([this] { return m_hasReport; }))
        throw std::runtime_error("KWin does not run the script of the test");
}

bool Probe::waitUntil(const std::function<bool()>& holds) {
    return m_link.waitUntil(holds, x11test::kPatience);
}

void Probe::roundTrip() {
    (void)replyTo({"org.kde.KWin", "/KWin", "org.kde.KWin", "currentDesktop"});
}

wayland::BusMessage Probe::replyTo(wayland::BusCall call) {
    const std::string member = call.member;
    std::optional<wayland::BusMessage> reply;
    m_link.call(
        std::move(call), [&reply](const wayland::BusMessage& message) { reply = message; },
        wayland::BusLink::Delivery::Urgent);
    if (!waitUntil([&] { return reply.has_value(); }))
        throw std::runtime_error("KWin does not reply to " + member);
    if (!reply->error.empty())
        throw std::runtime_error("KWin replies to " + member + ": " + reply->error);
    return *reply;
}

/// KWin reads scripts in threads, so without waiting a later one could run before an earlier one.
void Probe::run(const std::string& script) {
    const std::string name = "probe" + std::to_string(++m_scripts);
    const std::filesystem::path file = m_folder / (name + ".js");
    std::ofstream(file) << script;
    const auto loaded = replyTo(
        {"org.kde.KWin", "/Scripting", "org.kde.kwin.Scripting", "loadScript", "ss", {file.string(), name}});
    const std::string object = "/" + std::to_string(loaded.value<std::int64_t>(0));
    (void)replyTo({"org.kde.KWin", object, "org.kde.kwin.Script", "run"});
}

void Probe::handle(const std::string& report) {
    const auto windows = readJson(report);
    if (!windows)
        return;
    m_windows.clear();
    for (const Json& window : *windows) {
        const auto frame = window.at("frame").get<std::vector<double>>();
        m_windows.push_back({.name = window.at("name").get<std::string>(),
                             .title = window.at("title").get<std::string>(),
                             .windowClass = window.at("class").get<std::string>(),
                             .pid = window.at("pid").get<int>(),
                             .frame = {frame.at(0), frame.at(1), frame.at(2), frame.at(3)},
                             .isActive = window.at("active").get<bool>(),
                             .isTiled = window.at("tiled").get<bool>(),
                             .isMinimized = window.at("minimized").get<bool>(),
                             .isFullScreen = window.at("fullScreen").get<bool>(),
                             .activities = window.at("activities").get<std::vector<std::string>>()});
    }
    m_hasReport = true;
}

} // namespace tessarel::plasmatest
