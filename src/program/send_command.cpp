// SPDX-License-Identifier: MIT

#include "program/send_command.h"

#include "platform/plasma/command_service.h"
#include "platform/plasma/session.h"
#include "platform/x11/instance/command_sender.h"

#include <cstdlib>

namespace tessarel {

SentCommand sendToRunningCopy(const std::vector<std::string>& words) {
    using Outcome = SentCommand::Outcome;
    if (plasma::mayBeWayland(std::getenv("WAYLAND_DISPLAY"), std::getenv("XDG_SESSION_TYPE"))) {
        wayland::BusLink link(wayland::sessionBusAddress());
        SentCommand sent = plasma::sendCommand(link, words);
        if (sent.outcome != Outcome::NoReceiver || !plasma::compositorName(link).value_or("").empty())
            return sent;
    }
    return x11::sendCommand(nullptr, words);
}

} // namespace tessarel
