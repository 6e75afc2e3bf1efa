// SPDX-License-Identifier: MIT

#pragma once

#include "platform/wayland/bus_link.h"

#include <memory>
#include <string>
#include <systemd/sd-bus.h>
#include <vector>

namespace tessarel::wayland {

struct BusMessageUnref {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
/// A message of the bus library. Only the thread of its connection may use it.
using BusMessagePtr = std::unique_ptr<sd_bus_message, BusMessageUnref>;

struct BusSlotUnref {
    void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};
/// A registration with the bus library, for the thread of its connection.
using BusSlotPtr = std::unique_ptr<sd_bus_slot, BusSlotUnref>;

/// Appends values of the types in `signature` to a message. Returns false if a value is missing or of another
/// type.
[[nodiscard]] bool append(sd_bus_message* message, const std::string& signature,
                          const std::vector<BusValue>& values);

/// Returns the content of a message.
[[nodiscard]] BusMessage decode(sd_bus_message* message);

} // namespace tessarel::wayland
