// SPDX-License-Identifier: MIT

#include "platform/plasma/bridge.h"

#include "model/json.h"
#include "platform/plasma/reports.h"
#include "platform/plasma/scripts.h"
#include "platform/wayland/bus_names.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <optional>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tessarel::plasma {

namespace {

using std::chrono::milliseconds;

constexpr const char* kCompositor = "org.kde.KWin";
constexpr const char* kScriptName = "tessarel";
constexpr const char* kBridgePath = "/org/tessarel/Bridge";
constexpr const char* kNext = "next"; ///< the script's call that is answered with commands

/// The script reports all windows as soon as it runs.
constexpr std::chrono::seconds kLongestSilence{10};

/// KWin owns its name before it takes scripts.
constexpr milliseconds kLoadInterval{500};
constexpr int kLoadAttempts = 60;

wayland::BusCall scripting(std::string member, std::string signature = {},
                           std::vector<wayland::BusValue> values = {}) {
    return {kCompositor,       "/Scripting",         "org.kde.kwin.Scripting",
            std::move(member), std::move(signature), std::move(values)};
}

} // namespace

Bridge::Bridge(wayland::BusLink& link, wayland::Mirror& mirror, MainQueuePort& queue,
               std::filesystem::path folder, std::function<void(const std::string&)> report)
    : m_link(link), m_mirror(mirror), m_queue(queue), m_folder(std::move(folder)),
      m_report(std::move(report)),
      m_calls(link.serve(
          kBridgePath, [this](const wayland::BusMessage& message) { handle(message); },
          wayland::BusLink::Delivery::Urgent, kNext)),
      m_delivered(link.onDelivered([this] { m_mirror.deliver(); })) {}

Bridge::~Bridge() {
    if (m_compositorName.empty())
        return;
    m_link.call(scripting("unloadScript", "s", {kScriptName}));
    std::error_code ignored;
    std::filesystem::remove(file(), ignored);
}

void Bridge::load() {
    m_isAccepted = writeScript();
    if (!m_isAccepted) {
        fail("cannot write " + file().string() +
             ", the script by which KWin moves windows: " + std::generic_category().message(errno));
        return;
    }
    m_refusal = m_queue.asyncAfter(kLongestSilence, [this] {
        if (!m_isAccepted) // hot keys have no effect meanwhile
            m_failed.send();
    });
    tryToLoad(kLoadAttempts);
}

void Bridge::awaitWindows(milliseconds patience) {
    m_link.waitUntil([this] { return m_mirror.isReady() || !m_isAccepted || m_link.isLost(); }, patience);
}

void Bridge::tryToLoad(int attempts) {
    using Delivery = wayland::BusLink::Delivery;
    m_link.call(
        wayland::busCall("GetNameOwner", "s", {kCompositor}),
        [this](const wayland::BusMessage& reply) { m_compositorName = reply.value<std::string>(0); },
        Delivery::Urgent);
    m_link.call(scripting("unloadScript", "s", {kScriptName}));
    m_link.call(
        scripting("loadScript", "ss", {file().string(), kScriptName}),
        [this, attempts](const wayland::BusMessage& reply) {
            const bool isTaken = reply.error.empty() && reply.value<std::int64_t>(0) < 0;
            if (isTaken && attempts == kLoadAttempts) {
                tryToLoad(attempts - 1); // a busy KWin deletes an unloaded script after the calls that wait
                return;
            }
            m_isAccepted = reply.error.empty() && !isTaken;
            m_nextAttempt.reset();
            if (m_isAccepted)
                awaitReport();
            else if (attempts > 1)
                m_nextAttempt =
                    m_queue.asyncAfter(kLoadInterval, [this, attempts] { tryToLoad(attempts - 1); });
            else
                fail("KWin does not take the script by which it moves windows");
        },
        Delivery::Urgent);
    m_link.call(scripting("start"));
}

void Bridge::awaitReport() {
    if (m_mirror.isReady())
        return;
    m_overdue = m_queue.asyncAfter(kLongestSilence, [this] {
        m_isOverdue = true;
        fail("KWin has taken the script by which it moves windows, but does not run it");
    });
}

void Bridge::fail(const std::string& problem) {
    m_report(problem);
    m_failed.send();
}

SubscriptionPtr Bridge::onFailed(std::function<void()> failed) {
    return m_failed.connect(std::move(failed));
}

std::filesystem::path Bridge::file() const {
    return m_folder / "tessarel-bridge.js";
}

/// Writes the script with the name of this connection, so that it can only call this copy of the program.
bool Bridge::writeScript() const {
    std::string text = kBridgeScript;
    const auto fill = [&text](const std::string& placeholder, const std::string& value) {
        text.replace(text.find(placeholder), placeholder.size(), value);
    };
    fill("@SERVICE@", m_link.uniqueName());
    fill("@PID@", std::to_string(::getpid()));
    errno = 0;
    std::ofstream out(file(), std::ios::binary | std::ios::trunc);
    out << text;
    return static_cast<bool>(out.flush());
}

void Bridge::handle(const wayland::BusMessage& message) {
    if (message.sender != m_compositorName)
        return;
    if (message.member == "report")
        handleReport(message.value<std::string>(0));
    else if (message.member == kNext)
        keepForCommands(message.token);
}

void Bridge::handleReport(const std::string& text) {
    const auto report = readJson(text);
    if (!report)
        return;
    const auto settled = applyReport(*report, m_mirror);
    if (m_mirror.isReady())
        m_overdue.reset();
    if (settled)
        end(*settled);
}

/// Ends a placement unless a later one of the same window is under way.
void Bridge::end(const Settled& settled) {
    const auto placed = m_underWay.find(settled.window);
    const bool isUnderWay = placed != m_underWay.end();
    if (isUnderWay && placed->second.serial != settled.serial)
        return;
    if (settled.isReplaced)
        m_mirror.replace(settled.window);
    if (!isUnderWay)
        return;
    m_underWay.erase(placed);
    if (settled.isLate || settled.isReplaced)
        m_late.insert(settled.window);
}

/// Keeps the script's call until there are commands. The script renews it before it times out.
void Bridge::keepForCommands(std::uint64_t token) {
    m_waitingCall = token;
    if (!m_unsent.empty())
        sendCommands();
}

void Bridge::sendCommands() {
    m_link.answer(std::exchange(m_waitingCall, 0), "[" + std::exchange(m_unsent, {}) + "]");
}

void Bridge::place(wayland::WindowId window, const Rect& frame) {
    const wayland::WindowState* const state = m_mirror.find(window);
    if (state == nullptr)
        return;
    const std::uint64_t serial = ++m_lastSerial;
    const auto command = writeJson(Json{
        {"serial", serial}, {"name", state->name}, {"frame", {frame.x, frame.y, frame.width, frame.height}}});
    if (!command)
        return;
    const auto hasClosed = [this](wayland::WindowId one) { return m_mirror.find(one) == nullptr; };
    std::erase_if(m_underWay, [&](const auto& one) { return hasClosed(one.first); });
    std::erase_if(m_late, [&](wayland::WindowId one) { return one == window || hasClosed(one); });
    m_underWay[window] = {serial, m_queue.now()};
    send(*command);
}

void Bridge::bringOwnWindows() {
    send(R"({"bringOwnWindows":true})");
}

/// Sends the command as soon as the script waits for one.
void Bridge::send(const std::string& command) {
    m_unsent += (m_unsent.empty() ? "" : ",") + command;
    if (m_waitingCall != 0)
        sendCommands();
}

bool Bridge::waitUntilSettled(wayland::WindowId window, milliseconds patience) {
    const auto isOver = [this, window] {
        return !m_underWay.contains(window) || m_mirror.find(window) == nullptr || m_link.isLost();
    };
    if (!isOver()) {
        const auto waited =
            std::chrono::duration_cast<milliseconds>(m_queue.now() - m_underWay[window].since);
        if (!m_link.waitUntil(isOver, std::max(patience - waited, milliseconds::zero())))
            return false;
    }
    return m_late.erase(window) == 0;
}

} // namespace tessarel::plasma
