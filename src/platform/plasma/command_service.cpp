// SPDX-License-Identifier: MIT

#include "platform/plasma/command_service.h"

#include "platform/plasma/single_instance.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <utility>

namespace tessarel::plasma {

namespace {

using Delivery = wayland::BusLink::Delivery;

constexpr const char* kCommandsPath = "/org/tessarel/Commands";
constexpr const char* kInterface = "org.tessarel.Commands";
constexpr const char* kRun = "Run";

constexpr char kFirstDigit = '0';

std::size_t lengthOf(const std::vector<std::string>& words) {
    std::size_t length = 0;
    for (const std::string& word : words)
        length += word.size() + 1;
    return length;
}

/// Returns whether an error means that no copy runs that receives commands.
bool meansNoReceiver(const std::string& error) {
    return error == "org.freedesktop.DBus.Error.ServiceUnknown" ||
           error == "org.freedesktop.DBus.Error.NameHasNoOwner" ||
           error == "org.freedesktop.DBus.Error.UnknownObject" ||
           error == "org.freedesktop.DBus.Error.UnknownMethod";
}

} // namespace

CommandService::CommandService(wayland::BusLink& link,
                               std::function<CommandAnswer(const std::vector<std::string>& words)> run)
    : m_link(link), m_run(std::move(run)),
      m_calls(link.serve(
          kCommandsPath, [this](const wayland::BusMessage& call) { handle(call); }, Delivery::InLoop)) {}

void CommandService::handle(const wayland::BusMessage& call) {
    const auto words = call.value<std::vector<std::string>>(0);
    if (call.member != kRun || lengthOf(words) > kLongestCommand)
        return m_link.answer(call.token, {}); // counts as no answer
    const CommandAnswer answer = m_run(words);
    m_link.answer(call.token, static_cast<char>(kFirstDigit + answer.exitCode) + answer.text);
}

SentCommand sendCommand(wayland::BusLink& link, const std::vector<std::string>& words) {
    using Outcome = SentCommand::Outcome;
    // Shared, because the reply may come after this function has returned.
    const auto reply = std::make_shared<std::optional<wayland::BusMessage>>();
    link.call(
        {SingleInstance::kName, kCommandsPath, kInterface, kRun, "as", {words}},
        [reply](const wayland::BusMessage& message) { *reply = message; }, Delivery::Urgent);
    link.waitUntil([&] { return reply->has_value() || link.isLost(); }, kCommandPatience);
    if (link.isLost() || (*reply && meansNoReceiver((*reply)->error)))
        return {Outcome::NoReceiver};
    std::string text = *reply ? (*reply)->value<std::string>(0) : std::string();
    if (text.empty())
        return {Outcome::NoAnswer};
    const auto exitCode = static_cast<std::uint8_t>(text.front() - kFirstDigit);
    return {Outcome::Answered, {exitCode, text.erase(0, 1)}};
}

} // namespace tessarel::plasma
