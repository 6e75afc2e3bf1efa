// SPDX-License-Identifier: MIT

#include "support/x11/window_manager.h"

#include "support/x11/observer.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>

namespace tessarel::x11test {

namespace {

namespace fs = std::filesystem;

struct Traits {
    WindowManagerKind kind;
    std::string_view name;
    std::vector<std::string> command;
    bool needsBus;
};

const std::vector<Traits>& allTraits() {
    using enum WindowManagerKind;
    static const std::vector<Traits> traits = {
        {Openbox, "openbox", {"openbox", "--sm-disable"}, false},
        {Xfwm4, "xfwm4", {"xfwm4", "--compositor=off"}, true},
        {Metacity, "metacity", {"metacity", "--sm-disable", "--no-composite"}, true},
        {Marco, "marco", {"marco", "--sm-disable", "--no-composite"}, true},
        {Icewm, "icewm", {"icewm"}, false},
        {Fluxbox, "fluxbox", {"fluxbox"}, false},
        {Kwin, "kwin", {"kwin_x11"}, true},
        {Mutter, "mutter", {"mutter", "--x11", "--sm-disable"}, true},
        {Jwm, "jwm", {"jwm"}, false},
        {Fvwm3, "fvwm3", {"fvwm3"}, false},
        {Awesome, "awesome", {"awesome"}, false},
        {WindowMaker, "windowmaker", {"wmaker", "--for-real"}, false},
        {Pekwm, "pekwm", {"pekwm"}, false},
        {Blackbox, "blackbox", {"blackbox"}, false},
        {Herbstluftwm, "herbstluftwm", {"herbstluftwm", "--autostart=/bin/true"}, false},
        {I3, "i3", {"i3"}, false},
    };
    return traits;
}

const Traits& traitsOf(WindowManagerKind kind) {
    return allTraits().at(static_cast<std::size_t>(kind));
}

bool drawsWithGl(WindowManagerKind kind, Compositing compositing) {
    return kind == WindowManagerKind::Mutter ||
           (kind == WindowManagerKind::Kwin && compositing == Compositing::On);
}

std::string readFile(const fs::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const fs::path& path, std::string_view text) {
    fs::create_directories(path.parent_path());
    std::ofstream(path) << text;
}

/// Writes openbox's installed configuration without its key bindings.
void dropOpenboxKeys(const XServer& server) {
    std::string settings = readFile("/etc/xdg/openbox/rc.xml");
    const std::size_t begin = settings.find("<keyboard>");
    const std::size_t end = settings.find("</keyboard>");
    if (begin != std::string::npos && end != std::string::npos)
        settings.erase(begin, end + std::string_view("</keyboard>").size() - begin);
    // Openbox moves a window that is held at a screen edge to the next virtual desktop; disable that.
    if (const std::size_t warp = settings.find("<screenEdgeWarpTime>400<"); warp != std::string::npos)
        settings.replace(settings.find("400", warp), 3, "0");
    writeFile(server.configHome() / "openbox/rc.xml", settings);
}

void dropIcewmKeys(const XServer& server) {
    std::string settings;
    for (const char* key : {"Last", "Next", "Prev", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10"})
        for (const char* suffix : {"", "TakeWin"})
            settings += std::string("KeySysWorkspace") + key + suffix + "=\"\"\n";
    settings += "Win95Keys=0\n";
    writeFile(server.home() / ".icewm/preferences", settings);
    writeFile(server.home() / ".icewm/keys", "");
}

/// Writes fluxbox's installed key bindings without those on Ctrl+Alt.
void dropFluxboxKeys(const XServer& server) {
    std::ifstream installed("/etc/X11/fluxbox/keys");
    std::string keys;
    for (std::string line; std::getline(installed, line);)
        if (!line.starts_with("Control Mod1") && !line.starts_with("Mod1 Control"))
            keys += line + "\n";
    writeFile(server.home() / ".fluxbox/keys", keys);
    // Fluxbox moves a window at a screen edge to the next virtual desktop, and shades a window at a double
    // click; disable both. Its default wallpaper script reports failures in a window, possibly on a new
    // server that reuses the display number; disable it, too.
    writeFile(server.home() / ".fluxbox/overlay", "background: none\n");
    writeFile(server.home() / ".fluxbox/init", "session.keyFile: ~/.fluxbox/keys\n"
                                               "session.styleOverlay: ~/.fluxbox/overlay\n"
                                               "session.screen0.workspacewarping: false\n"
                                               "session.doubleClickInterval: 0\n");
}

/// Writes jwm's installed configuration without the menu that opens wherever a button is released over the
/// root window, also at the end of a drag.
void dropJwmMenu(const XServer& server) {
    std::string settings = readFile("/etc/jwm/system.jwmrc");
    const std::string_view opens = "onroot=\"12\"";
    if (const std::size_t menu = settings.find(opens); menu != std::string::npos)
        settings.replace(menu, opens.size(), "onroot=\"\"");
    writeFile(server.home() / ".jwmrc", settings);
}

/// Copies Window Maker's installed settings, as its set-up program does, without the keys on Ctrl+Alt and
/// without double clicks.
void copyWindowMakerSettings(const XServer& server) {
    std::ifstream installed("/etc/GNUstep/Defaults/WindowMaker");
    std::string settings;
    for (std::string line; std::getline(installed, line);)
        if (line.find("Mod1+Control") == std::string::npos && line.find("DoubleClick") == std::string::npos)
            settings += line + "\n";
    // Two presses on a title bar within this time shade the window.
    if (const std::size_t start = settings.find('{'); start != std::string::npos)
        settings.insert(start + 1, "\n  DoubleClickTime = 1;");
    writeFile(server.home() / "GNUstep/Defaults/WindowMaker", settings);
}

/// Writes settings of the GNOME and MATE window managers to the file of GSettings' keyfile backend.
void dropGSettingsKeys(const XServer& server) {
    std::string settings = "[org/gnome/desktop/wm/keybindings]\n";
    for (const char* direction : {"left", "right", "up", "down"})
        settings += std::string("switch-to-workspace-") + direction + "=@as []\n";
    settings += "[org/mate/marco/global-keybindings]\n";
    for (const char* direction : {"left", "right", "up", "down"})
        settings += std::string("switch-to-workspace-") + direction + "='disabled'\n";
    writeFile(server.configHome() / "glib-2.0/settings/keyfile", settings);
}

void dropKeys(const XServer& server, WindowManagerKind kind) {
    switch (kind) {
    case WindowManagerKind::Openbox:
        return dropOpenboxKeys(server);
    case WindowManagerKind::Icewm:
        return dropIcewmKeys(server);
    case WindowManagerKind::Fluxbox:
        return dropFluxboxKeys(server);
    case WindowManagerKind::Metacity:
    case WindowManagerKind::Marco:
    case WindowManagerKind::Mutter:
        return dropGSettingsKeys(server);
    case WindowManagerKind::Jwm:
        return dropJwmMenu(server);
    case WindowManagerKind::WindowMaker:
        return copyWindowMakerSettings(server);
    case WindowManagerKind::Pekwm:
        return writeFile(server.home() / ".pekwm/keys",
                         "Global {}\nMoveResize {}\nInputDialog {}\nMenu {}\n");
    case WindowManagerKind::Fvwm3:
        // Replaces the installed configuration, which opens windows of its own.
        return writeFile(server.home() / ".fvwm/config",
                         "OpaqueMoveSize unlimited\nStyle * ResizeOpaque, ClickToFocus\n");
    case WindowManagerKind::I3:
        // Replaces the installed configuration, which runs a wizard and starts a bar.
        return writeFile(server.configHome() / "i3/config", "font pango:monospace 8\n");
    case WindowManagerKind::Xfwm4: // stores its keys in a daemon that the private bus does not start
    case WindowManagerKind::Kwin:  // likewise
    case WindowManagerKind::Awesome:
    case WindowManagerKind::Blackbox:
    case WindowManagerKind::Herbstluftwm:
        return;
    }
}

std::vector<std::string> commandOf(const Traits& traits, Compositing compositing) {
    std::vector<std::string> command = traits.command;
    if (compositing == Compositing::On)
        std::ranges::replace(command, "--compositor=off", "--compositor=on");
    return command;
}

Environment environmentFor(const XServer& server, const SessionBus* bus, Compositing compositing) {
    Environment environment = server.environment();
    environment["GSETTINGS_BACKEND"] = "keyfile";
    if (compositing == Compositing::Off)
        environment["KWIN_COMPOSE"] = "N";
    environment["QT_QPA_PLATFORM"] = "xcb";
    environment["DBUS_SESSION_BUS_ADDRESS"] = bus != nullptr ? bus->address() : "disabled:";
    return environment;
}

constexpr std::string_view kBusConfiguration = R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir=FOLDER</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

std::vector<std::string> busCommand(const fs::path& folder, OwnKeys keys) {
    std::string configuration(kBusConfiguration);
    // Some window managers store their keys in a service that the bus starts on demand.
    if (keys == OwnKeys::Kept)
        configuration.insert(configuration.find("  <auth>"), "  <standard_session_servicedirs/>\n");
    const std::string_view placeholder = "FOLDER";
    configuration.replace(configuration.find(placeholder), placeholder.size(), folder.string());
    writeFile(folder / "bus.conf", configuration);
    return {"dbus-daemon", "--config-file=" + (folder / "bus.conf").string(), "--nofork",
            "--print-address=1"};
}

/// Opens windows until one is managed or `isOver`. A window that is mapped while a window manager starts may
/// be overlooked, or managed without being listed.
bool takesCharge(Observer& observer, const Deadline& deadline, const std::function<bool()>& isOver) {
    std::chrono::milliseconds patience{500}; // doubled for each window, for busy machines
    xcb_connection_t* x = observer.x().get();
    xcb_window_t window = XCB_WINDOW_NONE;
    bool listed = false;
    while (!listed && !isOver() && !deadline.passed()) {
        window = xcb_generate_id(x);
        xcb_create_window(x, XCB_COPY_FROM_PARENT, window, observer.root(), 0, 0, 200, 100, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_map_window(x, window);
        listed = observer.waitUntil([&] { return observer.managed(window); }, Deadline(patience));
        xcb_destroy_window(x, window);
        patience *= 2;
    }
    return listed && observer.waitUntil([&] { return isOver() || !observer.managed(window); }, deadline) &&
           observer.settle(deadline);
}

} // namespace

std::string_view name(WindowManagerKind kind) {
    return traitsOf(kind).name;
}

std::ostream& operator<<(std::ostream& stream, WindowManagerKind kind) {
    return stream << name(kind);
}

XServerOptions serverFor(WindowManagerKind kind, XServerOptions options, Compositing compositing) {
    options.offersGl = drawsWithGl(kind, compositing);
    return options;
}

SessionBus::SessionBus(const Environment& environment, OwnKeys keys)
    : m_process(busCommand(m_folder.path(), keys), environment), m_address(m_process.readLine()) {}

WindowManager::WindowManager(const XServer& server, WindowManagerKind kind, OwnKeys keys,
                             Compositing compositing)
    : m_kind(kind) {
    const Traits& traits = traitsOf(kind);
    if (drawsWithGl(kind, compositing) && !server.offersGl())
        throw std::runtime_error(std::string(traits.name) + " needs a server with GL");
    if (keys == OwnKeys::Dropped)
        dropKeys(server, kind);
    if (traits.needsBus)
        m_bus = std::make_unique<SessionBus>(server.environment(), keys);
    // Window Maker crashes in about one of 40 starts on a busy machine, at one of its first windows.
    const int starts = kind == WindowManagerKind::WindowMaker ? 4 : 1;
    for (int start = 1; !runs(server, compositing); ++start)
        if (m_process->running() || start == starts)
            throw std::runtime_error(std::string(traits.name) + " does not start\n" + m_process->errors());
}

bool WindowManager::runs(const XServer& server, Compositing compositing) {
    const Traits& traits = traitsOf(m_kind);
    m_process = std::make_unique<ChildProcess>(commandOf(traits, compositing),
                                               environmentFor(server, m_bus.get(), compositing));
    const Deadline deadline;
    Observer observer(server.display());
    const auto announced = [&] {
        return !m_process->running() ||
               (!observer.windowManagerName().empty() && observer.supports("_NET_CLIENT_LIST"));
    };
    const auto composes = [&] {
        return compositing == Compositing::Off || observer.selectionOwner("_NET_WM_CM_S0") != XCB_WINDOW_NONE;
    };
    const auto takesChargeOrEnds = [&] {
        const auto isOver = [&] { return !m_process->running(); };
        return takesCharge(observer, deadline, isOver) && !isOver();
    };
    return observer.waitUntil(announced, deadline) && observer.waitUntil(composes, deadline) &&
           takesChargeOrEnds() && (m_kind != WindowManagerKind::WindowMaker || takesChargeOrEnds());
}

} // namespace tessarel::x11test
