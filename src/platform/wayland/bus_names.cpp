// SPDX-License-Identifier: MIT

#include "platform/wayland/bus_names.h"

#include <cstddef>
#include <utility>

namespace tessarel::wayland {

namespace {

constexpr const char* kBus = "org.freedesktop.DBus";
constexpr const char* kBusPath = "/org/freedesktop/DBus";

} // namespace

BusCall busCall(std::string member, std::string signature, std::vector<BusValue> values) {
    return {kBus, kBusPath, kBus, std::move(member), std::move(signature), std::move(values)};
}

SubscriptionPtr onOwnerChanged(BusLink& link, std::string name,
                               std::function<void(const std::string& owner)> changed) {
    constexpr std::size_t kNewOwner = 2;
    return link.onSignal({kBus, kBusPath, kBus, "NameOwnerChanged", std::move(name)},
                         [changed = std::move(changed)](const BusMessage& signal) {
                             changed(signal.value<std::string>(kNewOwner));
                         });
}

} // namespace tessarel::wayland
