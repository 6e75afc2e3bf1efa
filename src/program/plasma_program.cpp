// SPDX-License-Identifier: MIT

#include "program/plasma_program.h"

#include "platform/plasma/command_service.h"
#include "platform/plasma/local_keys.h"
#include "platform/plasma/own_application.h"
#include "platform/plasma/plasma_desktop.h"
#include "platform/plasma/session.h"
#include "platform/qt/qt_messages.h"
#include "platform/qt/qt_own_application.h"
#include "platform/qt_wayland/layer_overlay.h"
#include "platform/qt_wayland/seat_keymap.h"
#include "platform/qt_x11/qt_local_keys.h"
#include "platform/x11/input/key_lookup.h"
#include "platform/xdg/environment.h"
#include "program/linux_program.h"
#include "program/report.h"

#include <QApplication>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <unistd.h>
#include <utility>

namespace tessarel {

namespace {

/// The alert sound as Qt plays it, which on Wayland may be no sound.
class QtBeep : public AlertSoundPort {
public:
    void beep() override { QApplication::beep(); }
};

/// Returns the user's folder for files of the session. KWin runs what is in it, so it is never a folder that
/// other users can write to.
std::filesystem::path runtimeFolder() {
    const auto folder = xdg::folderFrom("XDG_RUNTIME_DIR");
    return folder.empty() ? std::filesystem::path("/run/user") / std::to_string(::getuid()) : folder;
}

/// Replaces this process with a new one of the program once another KWin than `compositor` runs. Qt ends
/// every program whose compositor has gone.
[[noreturn]] void startAgain(wayland::BusLink& link, const std::string& compositor,
                             const std::string& busAddress, std::string programName) {
    if (plasma::awaitNewCompositor(link, compositor)) {
        ::setenv("DBUS_SESSION_BUS_ADDRESS", busAddress.c_str(), 1); // which `SessionBus` may hide
        std::array<char*, 2> arguments{programName.data(), nullptr};
        ::execv("/proc/self/exe", arguments.data());
    }
    say("lost the connection to the compositor");
    std::_Exit(EXIT_FAILURE);
}

} // namespace

std::optional<int> runOnPlasma(const char* programName) {
    if (!plasma::mayBeWayland(std::getenv("WAYLAND_DISPLAY"), std::getenv("XDG_SESSION_TYPE")))
        return std::nullopt;
    const std::string busAddress = wayland::sessionBusAddress();
    wayland::BusLink link(busAddress);
    if (!plasma::hasCompositor(link))
        return std::nullopt;

    LinuxProgram program(programName);
    qt::QtMainQueue& queue = program.queue();
    plasma::PlasmaDesktop desktop(
        link, queue, runtimeFolder(),
        [&queue](int fd, std::function<void()> readable) {
            return queue.onReadable(fd, std::move(readable));
        },
        say);
    qt::installMessageHandler(
        [&] { startAgain(link, desktop.bridge.compositorName(), busAddress, programName); },
        [] { return false; });
    QtBeep alertSound;
    qt::QtLocalKeys windowKeys(x11::keyDown, [](std::uint32_t) { return false; });
    plasma::LocalKeys localKeys(windowKeys, desktop.hotKeys);
    qt::QtOwnApplication windows;
    plasma::OwnApplication application(windows, desktop.bridge);
    qt::LayerOverlay overlay(
        queue, {.place = [&desktop](const Rect& screenFrame) { return desktop.compositorFrame(screenFrame); },
                .accent = [&program] { return program.appearance().accent(); }});
    return program.run(desktop, {alertSound, application, localKeys, overlay},
                       {.qtPlatforms = "wayland;xcb",
                        .events = link.fileDescriptor(),
                        .dispatch = [&link] { link.dispatch(); },
                        .beforeQt = [] { return nullptr; },
                        .withQt =
                            [&] {
                                return std::make_shared<qt::SeatKeymap>(
                                    queue, [&desktop](const std::string& description) {
                                        desktop.keyboardLayout.setKeymap(xkb::Keymap::parsed(description));
                                    });
                            },
                        .receiveCommands =
                            [&link](LinuxProgram::RunCommand run) {
                                return std::make_shared<plasma::CommandService>(link, std::move(run));
                            }});
}

} // namespace tessarel
