// SPDX-License-Identifier: MIT

#include "support/plasma/screenshot.h"

#include <array>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <systemd/sd-bus.h>
#include <unistd.h>

namespace tessarel::plasmatest {

namespace {

void require(bool holds) {
    if (!holds)
        throw std::runtime_error("KWin gives no picture");
}

using Bus = std::unique_ptr<sd_bus, decltype(&sd_bus_flush_close_unref)>;
using Message = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;

Bus connect(const std::string& address) {
    sd_bus* opened = nullptr;
    require(sd_bus_new(&opened) >= 0);
    Bus bus(opened, &sd_bus_flush_close_unref);
    require(sd_bus_set_address(opened, address.c_str()) >= 0 && sd_bus_set_bus_client(opened, 1) >= 0 &&
            sd_bus_start(opened) >= 0);
    return bus;
}

/// Asks for the picture. Its pixels come through `pipe`, what is returned describes them.
Message capture(sd_bus& bus, const Rect& area, int pipe) {
    const auto whole = [](double length) { return static_cast<int>(std::lround(length)); };
    sd_bus_message* reply = nullptr;
    sd_bus_error error{};
    const int result =
        sd_bus_call_method(&bus, "org.kde.KWin", "/org/kde/KWin/ScreenShot2", "org.kde.KWin.ScreenShot2",
                           "CaptureArea", &error, &reply, "iiuua{sv}h", whole(area.x), whole(area.y),
                           whole(area.width), whole(area.height), 1, "native-resolution", "b", 1, pipe);
    if (result < 0) {
        const std::string reason = error.message == nullptr ? "no reply" : error.message;
        sd_bus_error_free(&error);
        throw std::runtime_error("KWin takes no picture: " + reason);
    }
    return {reply, &sd_bus_message_unref};
}

/// Returns the numbers in the description.
std::map<std::string, std::size_t> numbersIn(sd_bus_message& description) {
    std::map<std::string, std::size_t> numbers;
    require(sd_bus_message_enter_container(&description, SD_BUS_TYPE_ARRAY, "{sv}") > 0);
    while (sd_bus_message_enter_container(&description, SD_BUS_TYPE_DICT_ENTRY, "sv") > 0) {
        const char* name = nullptr;
        const char* type = nullptr;
        require(sd_bus_message_read(&description, "s", &name) > 0 &&
                sd_bus_message_peek_type(&description, nullptr, &type) > 0);
        std::uint32_t number = 0;
        if (type == std::string_view("u") && sd_bus_message_read(&description, "v", "u", &number) > 0)
            numbers[name] = number;
        else
            sd_bus_message_skip(&description, "v");
        sd_bus_message_exit_container(&description);
    }
    return numbers;
}

std::vector<std::byte> readAll(int file) {
    std::vector<std::byte> all;
    std::array<std::byte, 1 << 16> part{};
    for (;;) {
        const auto count = ::read(file, part.data(), part.size());
        if (count <= 0)
            return all;
        all.insert(all.end(), part.begin(), part.begin() + count);
    }
}

} // namespace

Screenshot takeScreenshot(const std::string& busAddress, const Rect& area) {
    const Bus bus = connect(busAddress);
    std::array<int, 2> pipe{};
    require(::pipe2(pipe.data(), O_CLOEXEC) == 0);
    const Message reply = capture(*bus, area, pipe[1]);
    ::close(pipe[1]);
    const auto bytes = readAll(pipe[0]);
    ::close(pipe[0]);

    auto numbers = numbersIn(*reply);
    Screenshot shot{.width = numbers["width"], .height = numbers["height"]};
    const std::size_t stride = numbers["stride"];
    const std::size_t rowBytes = shot.width * sizeof(std::uint32_t);
    require(stride >= rowBytes && rowBytes > 0 && bytes.size() >= stride * shot.height);
    shot.pixels.resize(shot.width * shot.height);
    for (std::size_t row = 0; row < shot.height; ++row)
        std::memcpy(&shot.pixels[row * shot.width], &bytes[row * stride], rowBytes);
    return shot;
}

} // namespace tessarel::plasmatest
