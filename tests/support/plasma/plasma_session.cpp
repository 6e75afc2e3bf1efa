// SPDX-License-Identifier: MIT

#include "support/plasma/plasma_session.h"

#include "platform/plasma/drag_modifiers.h"
#include "platform/wayland/bus_names.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace tessarel::plasmatest {

namespace {

using namespace std::chrono_literals;

constexpr const char* kSocket = "wayland-0";
constexpr const char* kShortcuts = "org.kde.kglobalaccel";

x11test::Environment environmentIn(const std::filesystem::path& folder) {
    for (const char* const name : {"home", "config", "data", "cache", "run"})
        std::filesystem::create_directories(folder / name);
    std::filesystem::permissions(folder / "run", std::filesystem::perms::owner_all);
    const auto path = [&](const char* name) { return (folder / name).string(); };
    x11test::Environment environment{{"HOME", path("home")},
                                     {"XDG_CONFIG_HOME", path("config")},
                                     {"XDG_DATA_HOME", path("data")},
                                     {"XDG_CACHE_HOME", path("cache")},
                                     {"XDG_RUNTIME_DIR", path("run")},
                                     {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + path("run") + "/bus"},
                                     {"XDG_CURRENT_DESKTOP", "KDE"},
                                     {"XDG_SESSION_TYPE", "wayland"},
                                     {"LANG", "C.UTF-8"}};
    environment.merge(x11test::inheritedEnvironment());
    return environment;
}

} // namespace

bool PlasmaSession::waitFor(const std::function<bool()>& holds) {
    const x11test::Deadline deadline;
    while (!holds()) {
        if (deadline.passed())
            return false;
        std::this_thread::sleep_for(5ms);
    }
    return true;
}

PlasmaSession::PlasmaSession(Drawing drawing, const Size& display, Extra extra)
    : m_drawing(drawing), m_display(display), m_extra(extra), m_environment(environmentIn(m_folder.path())) {
    m_bus.emplace(std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--nopidfile",
                                           "--print-address",
                                           "--address=" + m_environment.at("DBUS_SESSION_BUS_ADDRESS")},
                  m_environment);
    (void)m_bus->readLine();

    permitInput();
    if (m_extra == Extra::ScaledXServer)
        writeXScale();
    startCompositor();
    m_environment["WAYLAND_DISPLAY"] = kSocket;
    m_environment["QT_QPA_PLATFORM"] = "wayland";
    m_environment["GDK_BACKEND"] = "wayland";
    m_environment["GSK_RENDERER"] = "cairo"; // OpenGL without a GPU takes seconds to start
}

/// Lets the program of FakeInput inject input. Without any check of permissions, which KWin can do, too, it
/// would read the whole executable of every program that connects to it, not only of that one.
void PlasmaSession::permitInput() const {
    const auto folder = std::filesystem::path(m_environment.at("XDG_DATA_HOME")) / "applications";
    std::filesystem::create_directories(folder);
    ScratchFolder::write(folder / "test.desktop", "[Desktop Entry]\nType=Application\nName=Test\nExec=" +
                                                      FakeInput::program().string() +
                                                      "\nX-KDE-Wayland-Interfaces=org_kde_kwin_fake_input\n");
}

/// Returns a folder with the data of the system, but for the entries and types of installed programs: whoever
/// asks KWin for a permission would wait until it has read all of them.
std::filesystem::path PlasmaSession::dataWithoutPrograms() const {
    const std::filesystem::path folder = m_folder.path() / "share";
    if (!std::filesystem::create_directory(folder))
        return folder;
    for (const auto& entry : std::filesystem::directory_iterator("/usr/share")) {
        const auto name = entry.path().filename();
        if (name != "applications" && name != "mime" && name != "fonts") // which would be found twice
            std::filesystem::create_directory_symlink(entry.path(), folder / name);
    }
    return folder;
}

/// Sets the scale that the system settings give KWin's X server with the scale of a display.
void PlasmaSession::writeXScale() const {
    ScratchFolder::write(std::filesystem::path(m_environment.at("XDG_CONFIG_HOME")) / "kwinrc",
                         "[Xwayland]\nScale=" + std::to_string(kXScale) + "\n");
}

void PlasmaSession::startCompositor() {
    // As an earlier session leaves them: in its first 30 s KWin finds no new ones.
    if (m_drawing == Drawing::OpenGl)
        plasma::DragModifiers::write(m_environment.at("XDG_DATA_HOME"));

    auto environment = m_environment;
    environment["XDG_DATA_DIRS"] = dataWithoutPrograms();
    for (const char* const client : {"WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "GDK_BACKEND"})
        environment.erase(client);
    environment["KWIN_COMPOSE"] = m_drawing == Drawing::OpenGl ? "O2" : "Q";
    environment["LIBGL_ALWAYS_SOFTWARE"] = "1";
    if (m_drawing == Drawing::OpenGl) // effects that need OpenGL would abort KWin without it
        environment["KWIN_EFFECTS_FORCE_ANIMATIONS"] = "1"; // although OpenGL has no GPU here
    environment["KWIN_SCREENSHOT_NO_PERMISSION_CHECKS"] = "1";
    m_compositor.emplace(compositorCommand(), environment);
    const std::string socket = m_environment.at("XDG_RUNTIME_DIR") + "/" + kSocket;
    if (!waitFor([&] {
            return std::filesystem::exists(socket) && replies(kShortcuts, "/kglobalaccel") &&
                   replies("org.kde.KWin", "/Scripting");
        }))
        throw std::runtime_error("KWin does not start: " + m_compositor->errors());
    try {
        m_probe.emplace(m_environment.at("DBUS_SESSION_BUS_ADDRESS"), m_folder.path());
    } catch (const std::exception& problem) {
        throw std::runtime_error(problem.what() + std::string(": ") + m_compositor->errors());
    }
    // The input devices come last: Xwayland never gets ready if the seat gets new ones while it starts.
    if (hasXServer())
        readXDisplay();
    m_input.emplace(socket, m_environment);
    m_outputs.emplace(socket);
}

std::vector<std::string> PlasmaSession::compositorCommand() const {
    const auto pixels = [](double length) { return std::to_string(std::lround(length)); };
    std::vector<std::string> command{TESSAREL_KWIN_WAYLAND,
                                     "--virtual",
                                     "--width",
                                     pixels(m_display.width),
                                     "--height",
                                     pixels(m_display.height),
                                     "--output-count",
                                     "2",
                                     "--socket",
                                     kSocket};
    if (m_extra != Extra::ScreenLocker)
        command.emplace_back("--no-lockscreen");
    if (hasXServer()) {
        const std::filesystem::path script = m_folder.path() / "tell-x-display";
        const std::string file = xDisplayFile().string();
        ScratchFolder::write(script, "#!/bin/sh\necho \"$DISPLAY $XAUTHORITY\" > " + file + ".new\nmv " +
                                         file + ".new " + file + "\n");
        std::filesystem::permissions(script, std::filesystem::perms::owner_all);
        command.insert(command.end(), {"--xwayland", script.string()});
    }
    return command;
}

/// Waits until KWin's X server takes programs.
void PlasmaSession::readXDisplay() {
    if (!waitFor([this] { return std::filesystem::exists(xDisplayFile()); }))
        throw std::runtime_error("KWin starts no X server: " + m_compositor->errors());
    std::istringstream words(ScratchFolder::read(xDisplayFile()).value_or(""));
    words >> m_environment["DISPLAY"] >> m_environment["XAUTHORITY"];
}

bool PlasmaSession::lock() {
    const auto callOf = [](const std::string& member) {
        return wayland::BusCall{"org.freedesktop.ScreenSaver", "/ScreenSaver", "org.freedesktop.ScreenSaver",
                                member};
    };
    (void)replyTo(callOf("Lock"));
    return waitUntilTrue(callOf("GetActive"));
}

bool PlasmaSession::resetGraphics() {
    constexpr const char* kCompositing = "org.kde.kwin.Compositing";
    bool isReset = false;
    const auto resets = m_probe->link().onSignal(
        {"org.kde.KWin", "/Compositor", kCompositing, "compositingToggled"},
        [&](const wayland::BusMessage& signal) { isReset = signal.value<std::int64_t>(0) != 0; },
        wayland::BusLink::Delivery::Urgent);
    m_probe->roundTrip(); // the bus has the subscription
    x11test::runToEnd(
        {"dbus-send", "--session", "--type=signal", "/Compositor", std::string(kCompositing) + ".reinit"},
        m_environment);
    return m_probe->waitUntil([&] { return isReset; }) && waitForEffects();
}

void PlasmaSession::killCompositor() {
    m_editor.reset();
    m_clients.clear();
    m_outputs.reset();
    m_input.reset();
    m_probe.reset();
    m_compositor->kill();
}

PlasmaSession::~PlasmaSession() {
    m_program.reset();
    m_editor.reset();
    m_clients.clear();
    m_outputs.reset();
    m_input.reset();
}

/// Returns whether an object on the bus exists and has replied.
bool PlasmaSession::replies(const std::string& busName, const std::string& path) {
    wayland::BusLink link(m_environment.at("DBUS_SESSION_BUS_ADDRESS"));
    const auto reply = std::make_shared<std::optional<bool>>();
    link.call(
        {busName, path, "org.freedesktop.DBus.Introspectable", "Introspect"},
        [reply](const wayland::BusMessage& message) { *reply = message.error.empty(); },
        wayland::BusLink::Delivery::Urgent);
    link.waitUntil([&] { return reply->has_value() || link.isLost(); }, x11test::kPatience);
    return reply->value_or(false);
}

void PlasmaSession::writeSettings(std::string_view document) {
    const auto folder = std::filesystem::path(m_environment.at("XDG_CONFIG_HOME")) / "tessarel";
    std::filesystem::create_directories(folder);
    ScratchFolder::write(folder / "tessarel.settings.v1.json", document);
}

/// Sends a call and waits for its reply, which is empty if there is none.
wayland::BusMessage PlasmaSession::replyTo(const wayland::BusCall& call) {
    const auto reply = std::make_shared<std::optional<wayland::BusMessage>>();
    m_probe->link().call(
        call, [reply](const wayland::BusMessage& message) { *reply = message; },
        wayland::BusLink::Delivery::Urgent);
    (void)m_probe->waitUntil([&] { return reply->has_value(); });
    return reply->value_or(wayland::BusMessage());
}

bool PlasmaSession::waitUntilTrue(const wayland::BusCall& call) {
    return waitFor([&] { return replyTo(call).value<std::int64_t>(0) != 0; });
}

std::vector<std::string> PlasmaSession::shortcuts() {
    return replyTo({kShortcuts, "/component/tessarel", "org.kde.kglobalaccel.Component", "shortcutNames"})
        .value<std::vector<std::string>>(0);
}

std::vector<std::int64_t> PlasmaSession::keysOf(const std::string& shortcut) {
    const std::vector<std::string> identity{"tessarel", shortcut, "Tessarel", shortcut};
    return replyTo({kShortcuts, "/kglobalaccel", "org.kde.KGlobalAccel", "shortcut", "as", {identity}})
        .value<std::vector<std::int64_t>>(0);
}

void PlasmaSession::setLayouts(const std::string& layouts, int chosen) {
    ScratchFolder::write(std::filesystem::path(m_environment.at("XDG_CONFIG_HOME")) / "kxkbrc",
                         "[Layout]\nUse=true\nLayoutList=" + layouts + "\n");
    x11test::runToEnd(
        {"dbus-send", "--session", "--type=signal", "/Layouts", "org.kde.keyboard.reloadConfig"},
        m_environment);
    const bool isSet = waitUntilTrue({"org.kde.keyboard",
                                      "/Layouts",
                                      "org.kde.KeyboardLayouts",
                                      "setLayout",
                                      "u",
                                      {std::int64_t{chosen}}});
    if (!isSet)
        throw std::runtime_error("KWin does not take the layouts " + layouts);
}

bool PlasmaSession::waitForCommands() {
    return waitFor([this] { return command({"list", "displays"}) == 0; });
}

std::optional<int> PlasmaSession::command(const std::vector<std::string>& words) {
    std::vector<std::string> arguments{TESSAREL_LAUNCHER};
    arguments.insert(arguments.end(), words.begin(), words.end());
    return x11test::ChildProcess(arguments, m_environment).waitForExit();
}

void PlasmaSession::startProgramOnly(const x11test::Environment& more) {
    x11test::Environment environment = more;
    environment.insert(m_environment.begin(), m_environment.end());
    m_program.emplace(std::vector<std::string>{TESSAREL_PROGRAM}, environment, x11test::Alarm::Blocked);
}

bool PlasmaSession::startProgram(const x11test::Environment& more) {
    startProgramOnly(more);
    const std::string last = "arrangeAll"; // the hot key that the program registers last
    const bool areHotKeysRegistered = waitFor([&] {
        const auto names = shortcuts();
        return std::find(names.begin(), names.end(), last) != names.end();
    });
    return areHotKeysRegistered && waitForCommands() && (m_drawing != Drawing::OpenGl || waitForEffects());
}

/// Waits until KWin has loaded the effects of the program, the last of which is the one for Meta. Returns
/// false if it does not.
bool PlasmaSession::waitForEffects() {
    return waitUntilTrue({"org.kde.KWin",
                          "/Effects",
                          "org.kde.kwin.Effects",
                          "isEffectLoaded",
                          "s",
                          {std::string("tessarel_meta")}});
}

void PlasmaSession::startProgramHeld(x11test::Alarm alarm) {
    // Qt reads the rules of its log messages before it connects. A pipe in their place holds it up until the
    // writer closes it, and can only be opened for writing once there is a reader.
    if (::mkfifo(gateFile().c_str(), S_IRUSR | S_IWUSR) != 0)
        throw std::runtime_error("cannot make the pipe that holds the program");
    auto environment = m_environment;
    environment["QT_LOGGING_CONF"] = gateFile().string();
    m_program.emplace(std::vector<std::string>{TESSAREL_PROGRAM}, environment, alarm);
    const bool isHeld = waitFor([this] {
        const int writer = ::open(gateFile().c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
        if (writer >= 0)
            m_gate = writer;
        return m_gate.has_value();
    });
    if (!isHeld)
        throw std::runtime_error("the program does not start: " + m_program->errors());
}

void PlasmaSession::releaseProgram() {
    std::filesystem::remove(gateFile()); // a program that replaces itself must not wait for it again
    ::close(std::exchange(m_gate, std::nullopt).value());
}

bool PlasmaSession::waitForScript() {
    return waitUntilTrue({"org.kde.KWin",
                          "/Scripting",
                          "org.kde.kwin.Scripting",
                          "isScriptLoaded",
                          "s",
                          {std::string("tessarel")}});
}

std::optional<int> PlasmaSession::endProgram() {
    m_program->signal(SIGTERM);
    return m_program->waitForExit();
}

const SeenWindow* PlasmaSession::find(const std::string& windowClass) {
    const auto& windows = m_probe->windows();
    const auto found = std::find_if(windows.begin(), windows.end(), [&](const SeenWindow& window) {
        return window.windowClass == windowClass;
    });
    return found == windows.end() ? nullptr : &*found;
}

void PlasmaSession::open(const std::vector<std::string>& command, const std::string& windowClass) {
    m_clients.push_back(std::make_unique<x11test::ChildProcess>(command, m_environment));
    if (!waitForActive(windowClass))
        throw std::runtime_error(command.front() + " opens no window: " + m_clients.back()->errors());
}

void PlasmaSession::openEditor(const Size& minimum) {
    m_editor.emplace(m_environment);
    m_editor->open(1, {.applicationId = kEditor, .isDecorated = true, .minimum = minimum});
    if (!waitForActive(kEditor))
        throw std::runtime_error("the editor opens no window: " + m_editor->process().errors());
}

bool PlasmaSession::waitForActive(const std::string& windowClass) {
    const bool isActive = m_probe->waitUntil([&] {
        const SeenWindow* const window = find(windowClass);
        return window != nullptr && window->isActive && window->frame.width > 0;
    });
    m_probe->roundTrip(); // KWin has told the program, too
    return isActive;
}

std::optional<Rect> PlasmaSession::frame(const std::string& windowClass) {
    const SeenWindow* const window = find(windowClass);
    return window == nullptr ? std::nullopt : std::optional(window->frame);
}

Rect PlasmaSession::settledFrame(const std::string& windowClass, const Rect& expected) {
    (void)m_probe->waitUntil([&] { return frame(windowClass) == expected; });
    return frame(windowClass).value_or(Rect::null());
}

} // namespace tessarel::plasmatest
