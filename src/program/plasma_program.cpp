// SPDX-License-Identifier: MIT

#include "program/plasma_program.h"

#include "platform/plasma/command_service.h"
#include "platform/plasma/keys/local_keys.h"
#include "platform/plasma/own_application.h"
#include "platform/plasma/plasma_desktop.h"
#include "platform/plasma/session.h"
#include "platform/plasma/single_instance.h"
#include "platform/qt/qt_messages.h"
#include "platform/qt/qt_own_application.h"
#include "platform/qt_wayland/frame_thread_guard.h"
#include "platform/qt_wayland/layer_overlay.h"
#include "platform/qt_wayland/seat_keymap.h"
#include "platform/qt_x11/qt_local_keys.h"
#include "platform/x11/input/key_lookup.h"
#include "platform/xdg/environment.h"
#include "platform/xkb/keymap.h"
#include "program/linux_program.h"
#include "program/report.h"

#include <QApplication>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>
#include <wayland-client.h>

namespace tessarel {

namespace {

/// How long the first message waits until KWin has reported its windows, which it may also do later.
constexpr std::chrono::milliseconds kPatience{250};

/// How long Qt's start waits until KWin has registered the hot keys, which need the same processors.
constexpr std::chrono::milliseconds kPatienceWithKeys{20};

/// The alert sound as Qt plays it, which on Wayland may be no sound.
class QtBeep : public AlertSoundPort {
public:
    void beep() override { QApplication::beep(); }
};

/// What needs Qt's application object and its connection to the compositor.
class BesideQt {
public:
    BesideQt(qt::QtMainQueue& queue, std::function<void(const std::string& keymap)> keymapChanged)
        : m_keymap(queue, std::move(keymapChanged)) {}

private:
    qt::FrameThreadGuard m_frameThreadGuard;
    qt::SeatKeymap m_keymap;
};

/// Returns the user's folder for files of the session. KWin runs what is in it, so it is never a folder that
/// other users can write to.
std::filesystem::path runtimeFolder() {
    const auto folder = xdg::folderFrom("XDG_RUNTIME_DIR");
    return folder.empty() ? std::filesystem::path("/run/user") / std::to_string(::getuid()) : folder;
}

/// Replaces this process with a new one of the program, because Qt ends every program whose compositor has
/// gone. Qt says so on one of its own threads, on the main thread, or on both at once.
class Restart {
public:
    /// `compositor` is the unique name of the KWin that runs now. The new process gets the present
    /// environment, because `SessionBus` hides addresses in it.
    Restart(std::string busAddress, std::string compositor, std::string programName)
        : m_busAddress(std::move(busAddress)), m_compositor(std::move(compositor)),
          m_programName(std::move(programName)) {
        for (const char* const* variable = environ; *variable != nullptr; ++variable)
            m_environment.emplace_back(*variable);
    }

    /// Waits for another KWin, with a bound. Exits if there is none.
    [[noreturn]] void run() {
        while (m_hasBegun.exchange(true))
            ::pause();                       // until the other thread replaces or ends the process
        wayland::BusLink link(m_busAddress); // the main thread may be using its own
        if (!plasma::awaitCompositor(link, m_compositor).empty()) {
            std::array<char*, 2> arguments{m_programName.data(), nullptr};
            std::vector<char*> environment;
            for (std::string& variable : m_environment)
                environment.push_back(variable.data());
            environment.push_back(nullptr);
            ::execve("/proc/self/exe", arguments.data(), environment.data());
        }
        say("lost the connection to the compositor");
        std::_Exit(EXIT_FAILURE);
    }

    /// Returns whether KWin has gone, so that Qt could not connect to it.
    [[nodiscard]] bool isNeeded() const {
        if (wl_display* const display = wl_display_connect(nullptr)) {
            wl_display_disconnect(display);
            wayland::BusLink link(m_busAddress);
            const auto name = plasma::compositorName(link);
            return name && *name != m_compositor;
        }
        return true;
    }

private:
    std::string m_busAddress;
    std::string m_compositor;
    std::string m_programName;
    std::vector<std::string> m_environment;
    std::atomic<bool> m_hasBegun = false;
};

/// Returns the unique name of KWin on the bus; empty if it does not run. In a session of Plasma it is waited
/// for, because the bus or KWin may only be starting. Signals have their default effect meanwhile.
std::string findCompositor(wayland::BusLink& link) {
    const auto desktops = xdg::currentDesktops();
    return std::ranges::find(desktops, "KDE") != desktops.end() ? plasma::awaitCompositor(link)
                                                                : plasma::compositorName(link).value_or("");
}

} // namespace

std::optional<int> runOnPlasma(const char* programName) {
    if (!plasma::mayBeWayland(std::getenv("WAYLAND_DISPLAY"), std::getenv("XDG_SESSION_TYPE")))
        return std::nullopt;
    const std::string busAddress = wayland::sessionBusAddress();
    wayland::BusLink link(busAddress);
    plasma::SingleInstance singleInstance(link);
    singleInstance.request();
    xkb::Keymap usKeymap = xkb::Keymap::us(); // while the link connects, which takes as long
    const std::string compositor = findCompositor(link);
    if (compositor.empty())
        return std::nullopt;
    Restart restart(busAddress, compositor, programName);

    LinuxProgram program(programName);
    qt::QtMainQueue& queue = program.queue();
    plasma::PlasmaDesktop desktop(
        link, singleInstance, std::move(usKeymap), queue, program.alerts(), runtimeFolder(),
        [&queue](int fd, std::function<void()> readable) {
            return queue.onReadable(fd, std::move(readable));
        },
        say);
    qt::installMessageHandler([&restart] { restart.run(); }, [&restart] { return restart.isNeeded(); });
    // Qt may have connected to a new KWin without having noticed that the first one had gone.
    const auto replaced = plasma::onNewCompositor(link, compositor, [&restart] { restart.run(); });
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
                        .dispatch =
                            [&link, &desktop, isFirst = true]() mutable {
                                // So that commands that are waiting already find the windows.
                                if (std::exchange(isFirst, false))
                                    desktop.bridge.awaitWindows(kPatience);
                                link.dispatch();
                            },
                        .beforeQt =
                            [&desktop] {
                                // KWin does one thing after another: first the hot keys, which take it less
                                // time, then the script, while Qt starts here, then the effects.
                                desktop.hotKeys.releaseLeftovers(kPatienceWithKeys);
                                desktop.bridge.load();
                                return nullptr;
                            },
                        .withQt =
                            [&] {
                                auto beside =
                                    std::make_shared<BesideQt>(queue, [&desktop](const std::string& keymap) {
                                        desktop.keyboardLayout.setKeymap(xkb::Keymap::parsed(keymap));
                                    });
                                desktop.dragModifiers.load();
                                return beside;
                            },
                        .receiveCommands =
                            [&link](LinuxProgram::RunCommand run) {
                                return std::make_shared<plasma::CommandService>(link, std::move(run));
                            }});
}

} // namespace tessarel
