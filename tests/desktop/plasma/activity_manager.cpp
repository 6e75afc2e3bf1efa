// SPDX-License-Identifier: MIT

// Plays Plasma's activity manager, as far as KWin needs it. There are two activities, "first" and "second";
// "first" is the current one until another is chosen.

#include <cstdlib>
#include <string>
#include <systemd/sd-bus.h>

namespace {

constexpr const char* kService = "org.kde.ActivityManager";
constexpr const char* kPath = "/ActivityManager/Activities";
constexpr const char* kInterface = "org.kde.ActivityManager.Activities";
constexpr int kRuns = 2;

std::string current = "first";

int replyVersion(sd_bus_message* call, void*, sd_bus_error*) {
    return sd_bus_reply_method_return(call, "s", "99.0.0"); // one older than KWin's library is refused
}

int replyList(sd_bus_message* call, void*, sd_bus_error*) {
    return sd_bus_reply_method_return(call, "a(ssssi)", 2, "first", "First", "", "", kRuns, "second",
                                      "Second", "", "", kRuns);
}

int replyCurrent(sd_bus_message* call, void*, sd_bus_error*) {
    return sd_bus_reply_method_return(call, "s", current.c_str());
}

int choose(sd_bus_message* call, void*, sd_bus_error*) {
    const char* chosen = nullptr;
    if (const int result = sd_bus_message_read(call, "s", &chosen); result < 0)
        return result;
    current = chosen;
    sd_bus_emit_signal(sd_bus_message_get_bus(call), kPath, kInterface, "CurrentActivityChanged", "s",
                       chosen);
    return sd_bus_reply_method_return(call, "b", 1);
}

constexpr sd_bus_vtable kApplication[]{
    SD_BUS_VTABLE_START(0), SD_BUS_METHOD("serviceVersion", "", "s", replyVersion, 0), SD_BUS_VTABLE_END};

constexpr sd_bus_vtable kActivities[]{
    SD_BUS_VTABLE_START(0), SD_BUS_METHOD("ListActivitiesWithInformation", "", "a(ssssi)", replyList, 0),
    SD_BUS_METHOD("CurrentActivity", "", "s", replyCurrent, 0),
    SD_BUS_METHOD("SetCurrentActivity", "s", "b", choose, 0), SD_BUS_VTABLE_END};

} // namespace

int main() {
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0)
        return EXIT_FAILURE;
    sd_bus_add_object_vtable(bus, nullptr, "/ActivityManager", "org.kde.ActivityManager.Application",
                             kApplication, nullptr);
    sd_bus_add_object_vtable(bus, nullptr, kPath, kInterface, kActivities, nullptr);
    sd_bus_request_name(bus, kService, 0);
    while (sd_bus_wait(bus, UINT64_MAX) >= 0)
        while (sd_bus_process(bus, nullptr) > 0) {
        }
    return EXIT_SUCCESS;
}
