// SPDX-License-Identifier: MIT

// Measures the same as `flood`, while a client calls the icon in a StatusNotifierHost on the session bus.
//
//   call_flood DIRECTORY [PRESSES] [CALLS_PER_SECOND]

#include "support/await.h"
#include "support/flooded_desktop.h"

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <systemd/sd-bus.h>
#include <utility>

namespace tessarel::bench {

namespace {

using Bus = std::unique_ptr<sd_bus, decltype(&sd_bus_close_unref)>;

constexpr const char* kItem = "org.kde.StatusNotifierItem";
constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";

/// Calls the icon with this name on the bus. Wants a reply unless `replied` is null.
using Call = void (*)(sd_bus* bus, const char* icon, sd_bus_message_handler_t replied);

void getAllProperties(sd_bus* bus, const char* icon, sd_bus_message_handler_t replied) {
    sd_bus_call_method_async(bus, nullptr, icon, "/StatusNotifierItem", "org.freedesktop.DBus.Properties",
                             "GetAll", replied, nullptr, "s", kItem);
}

void getWholeMenu(sd_bus* bus, const char* icon, sd_bus_message_handler_t replied) {
    constexpr int kRoot = 0;
    constexpr int kAllLevels = -1;
    constexpr int kAllProperties = 0; // none is named
    sd_bus_call_method_async(bus, nullptr, icon, "/MenuBar", "com.canonical.dbusmenu", "GetLayout", replied,
                             nullptr, "iias", kRoot, kAllLevels, kAllProperties);
}

int discard(sd_bus_message* /*reply*/, void* /*data*/, sd_bus_error* /*error*/) {
    return 0;
}

struct Row {
    const char* name;
    Call call;
    sd_bus_message_handler_t replied;
};

constexpr std::array kRows = {Row{"all properties of the icon", getAllProperties, nullptr},
                              Row{"the whole menu", getWholeMenu, nullptr},
                              Row{"the whole menu, with replies", getWholeMenu, discard}};

Bus openBus() {
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0)
        throw std::runtime_error("there is no session bus");
    return {bus, &sd_bus_close_unref};
}

/// A client that makes the same call all the time.
class CallFlood final : public x11test::Flood {
public:
    CallFlood(const Row& row, std::string icon, int perSecond) : m_row(row), m_icon(std::move(icon)) {
        start(perSecond);
    }
    CallFlood(const CallFlood&) = delete;
    CallFlood& operator=(const CallFlood&) = delete;
    ~CallFlood() override { stop(); }

private:
    void send() override { m_row.call(m_bus.get(), m_icon.c_str(), m_row.replied); }
    void flush() override {
        sd_bus_flush(m_bus.get());
        while (sd_bus_process(m_bus.get(), nullptr) > 0) {
            // The replies are of no use here, but would fill the buffers of the bus.
        }
    }

    Bus m_bus = openBus();
    Row m_row;
    std::string m_icon;
};

/// Returns the name on the bus of the icon at the watcher, once there is one.
std::string awaitIcon() {
    const Bus bus = openBus();
    std::string icon;
    await("an icon at the watcher", [&] {
        sd_bus_message* reply = nullptr;
        sd_bus_get_property(bus.get(), kWatcher, "/StatusNotifierWatcher", kWatcher,
                            "RegisteredStatusNotifierItems", nullptr, &reply, "as");
        const std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)> icons(reply,
                                                                                     &sd_bus_message_unref);
        const char* name = nullptr;
        if (sd_bus_message_enter_container(reply, SD_BUS_TYPE_ARRAY, "s") > 0 &&
            sd_bus_message_read(reply, "s", &name) > 0)
            icon = name;
        return !icon.empty();
    });
    return icon;
}

void measure(const std::string& directory, const Row& row, int count, int perSecond, Table& table) {
    const ChildProcess watcher({directory + "/status_notifier_watcher"});
    FloodedDesktop desktop(directory);
    const std::string icon = awaitIcon();
    const auto start = [&] { return std::make_unique<CallFlood>(row, icon, perSecond); };
    desktop.measure(row.name, count, start, table);
}

void measureAll(const std::string& directory, int count, int perSecond) {
    Table table = floodTable();
    for (const Row& row : kRows)
        measure(directory, row, count, perSecond, table);
    table.print("Key press to placed window during a flood of calls on the session bus, " +
                std::to_string(count) + " presses each");
}

} // namespace

} // namespace tessarel::bench

int main(int count, char** arguments) {
    return tessarel::bench::runFloodProgram(count, arguments, tessarel::bench::measureAll);
}
