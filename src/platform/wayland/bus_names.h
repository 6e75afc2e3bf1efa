// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/wayland/bus_link.h"

#include <functional>
#include <string>
#include <vector>

namespace tessarel::wayland {

/// Returns a call of the bus itself.
[[nodiscard]] BusCall busCall(std::string member, std::string signature, std::vector<BusValue> values);

/// Calls `changed` with the unique name of each new owner of a name on the bus, empty when it has none any
/// more, until the returned subscription is destroyed.
[[nodiscard]] SubscriptionPtr onOwnerChanged(BusLink& link, std::string name,
                                             std::function<void(const std::string& owner)> changed);

} // namespace tessarel::wayland
