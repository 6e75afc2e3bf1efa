// SPDX-License-Identifier: MIT

#include "desktop/desktop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <utility>

namespace tessarel::x11test {

namespace {

constexpr int kPanelHeight = 30;

std::vector<Monitor> monitorsOf(const XServerOptions& options) {
    if (!options.monitors.empty())
        return options.monitors;
    return {{.name = "", .x = 0, .y = 0, .width = options.width, .height = options.height, .primary = true}};
}

const Monitor& rightmost(const std::vector<Monitor>& monitors) {
    return *std::max_element(monitors.begin(), monitors.end(),
                             [](const Monitor& a, const Monitor& b) { return a.x < b.x; });
}

/// Returns the options of a panel along the bottom edge of `monitor`, in a root window of height
/// `rootHeight`.
WindowOptions panelOptions(const Monitor& monitor, int rootHeight) {
    const int top = monitor.y + monitor.height - kPanelHeight;
    const auto value = [](int pixels) { return static_cast<std::uint32_t>(pixels); };
    std::vector<std::uint32_t> strut(12, 0);
    strut[3] = value(rootHeight - top);
    strut[10] = value(monitor.x);
    strut[11] = value(monitor.x + monitor.width - 1);
    return {.title = "panel",
            .className = "Panel",
            .client = {monitor.x, top, monitor.width, kPanelHeight},
            .decorated = false,
            .type = "_NET_WM_WINDOW_TYPE_DOCK",
            .strut = strut};
}

bool reportsSanitizer(const std::string& errors) {
    return errors.find("Sanitizer") != std::string::npos || errors.find("runtime error") != std::string::npos;
}

/// Owns the shared desktops and stops them before the test program exits.
class SharedDesktops : public testing::Environment {
public:
    Desktop& desktop(WindowManagerKind kind, std::string_view settings) {
        std::unique_ptr<Desktop>& desktop = m_desktops[{kind, std::string(settings)}];
        if (!desktop) {
            desktop = std::make_unique<Desktop>(DesktopOptions{.manager = kind, .settings = settings});
            EXPECT_TRUE(desktop->start());
        }
        return *desktop;
    }

    void TearDown() override {
        for (auto& [key, desktop] : m_desktops)
            EXPECT_TRUE(desktop->stop()) << key.first;
        m_desktops.clear();
    }

private:
    std::map<std::pair<WindowManagerKind, std::string>, std::unique_ptr<Desktop>> m_desktops;
};

SharedDesktops& sharedDesktops() {
    // The test framework takes ownership here.
    static auto* const desktops = new SharedDesktops;
    static const bool added = testing::AddGlobalTestEnvironment(desktops) != nullptr;
    static_cast<void>(added);
    return *desktops;
}

[[maybe_unused]] const SharedDesktops& kRegistered = sharedDesktops();

} // namespace

Desktop::Desktop(const DesktopOptions& options)
    : m_server(serverFor(options.manager, options.server, options.compositing)),
      m_monitors(monitorsOf(options.server)),
      m_manager(std::make_unique<WindowManager>(m_server, options.manager, options.managersKeys,
                                                options.compositing)),
      m_observer(m_server.display()), m_keyboard(m_server, m_observer), m_panel(m_server) {
    writeSettings(m_server, options.settings);
    m_panelWindow = m_panel.open(panelOptions(rightmost(m_monitors), options.server.height));
    EXPECT_TRUE(waitForPanel());
    m_ownWindows = m_observer.clients();
}

bool Desktop::waitForPanel() {
    const int free = m_monitors.front().height - kPanelHeight;
    const auto takesEffect = [this, free] {
        const std::optional<Frame> area = m_observer.workArea();
        return m_monitors.size() > 1 ? m_observer.managed(m_panelWindow) : area && area->bottom() <= free;
    };
    return m_observer.waitUntil(takesEffect) && m_observer.settle();
}

bool Desktop::start() {
    m_program = std::make_unique<Program>(m_server);
    if (m_program->waitUntilReady(m_observer, m_keyboard))
        return true;
    std::cerr << m_program->errors();
    return false;
}

bool Desktop::startForCommands() {
    return start() && m_observer.waitUntil([this] {
        return m_observer.selectionOwner("_TESSAREL_COMMANDS_S0") != XCB_WINDOW_NONE;
    });
}

bool Desktop::stop() {
    const std::optional<int> exitCode = m_program->terminate();
    const std::string errors = m_program->errors();
    if (exitCode == 0 && !reportsSanitizer(errors))
        return true;
    std::cerr << "exit code " << exitCode.value_or(-1) << "\n" << errors;
    return false;
}

bool Desktop::restart(std::string_view settings) {
    const bool hasEnded = stop();
    writeSettings(m_server, settings);
    return startForDrags() && hasEnded;
}

bool Desktop::startForDrags() {
    if (!start())
        return false;
    TestClient client(m_server);
    const xcb_window_t window = open(client);
    const Frame before = frame(window);
    press(hotkey::kMaximize);
    const bool answers = m_observer.waitUntil([&] { return frame(window) != before; });
    client.process().kill();
    const bool hasGone = m_observer.waitUntil([&] { return !m_observer.managed(window); });
    return answers && hasGone && waitUntilProgramRests();
}

bool Desktop::waitUntilProgramRests(long timesAsleep) {
    return !m_program || !m_program->running() || m_program->waitUntilAtRest(m_observer, timesAsleep);
}

void Desktop::replaceManager(WindowManagerKind kind) {
    m_manager.reset();
    m_manager = std::make_unique<WindowManager>(m_server, kind);
    EXPECT_TRUE(waitForPanel());
}

Frame Desktop::usableArea(std::size_t index) {
    const Monitor& monitor = m_monitors.at(index);
    if (m_monitors.size() == 1)
        return m_observer.workArea().value_or(Frame{});
    const bool hasPanel = &monitor == &rightmost(m_monitors);
    return {monitor.x, monitor.y, monitor.width, monitor.height - (hasPanel ? kPanelHeight : 0)};
}

xcb_window_t Desktop::open(TestClient& client, const WindowOptions& options) {
    const xcb_window_t window = client.open(options);
    EXPECT_TRUE(m_observer.waitUntil([&] { return m_observer.hasTakenCharge(window); }));
    EXPECT_TRUE(activate(window));
    // awesome decorates and places a window only once it has processed all requests.
    const auto isPlaced = [&] {
        const Frame before = frame(window);
        return !m_observer.values(window, "_NET_FRAME_EXTENTS").empty() && m_observer.settle() &&
               m_observer.settle() && frame(window) == before;
    };
    EXPECT_TRUE(manager() != WindowManagerKind::Awesome || m_observer.waitUntil(isPlaced));
    m_observer.watch(window);
    return window;
}

Desktop::Opened Desktop::openUnseen(TestClient& client, const WindowOptions& options) {
    const Program::Hold hold = m_program->hold();
    const xcb_window_t window = open(client, options);
    return {window, frame(window)};
}

bool Desktop::activate(xcb_window_t window) {
    return m_observer.activateAndWait(window) && m_observer.settle();
}

bool Desktop::addStates(xcb_window_t window, const std::vector<std::string>& states) {
    const auto has = [&](const std::string& state) { return m_observer.hasState(window, state); };
    m_observer.changeState(window, StateChange::Add, states.front(),
                           states.size() > 1 ? states.back() : std::string());
    const auto hasAll = [&] { return std::all_of(states.begin(), states.end(), has); };
    // Some window managers set _NET_WM_STATE first and resize the window later.
    return m_observer.waitUntil([&] { return hasAll() && isAsLargeAsItsStates(window); }) &&
           m_observer.settle();
}

bool Desktop::isAsLargeAsItsStates(xcb_window_t window) {
    const Frame area = usableArea();
    const Frame now = frame(window);
    constexpr int kNear = 3; // pekwm leaves a pixel or two at the edges of the screen
    const bool isWide = now.x <= area.x + kNear && now.right() >= area.right() - kNear;
    const bool isHigh = now.y <= area.y + kNear && now.bottom() >= area.bottom() - kNear;
    const bool isRolledUp = m_observer.topLevelFrame(window).value_or(Frame{}).height < now.height / 2;
    const Frame client = m_observer.clientFrame(window).value_or(Frame{}); // may keep a hidden decoration
    const bool isFull = std::ranges::any_of(m_monitors, [&](const Monitor& monitor) {
        return client == Frame{monitor.x, monitor.y, monitor.width, monitor.height};
    });
    return (isFull || !m_observer.hasState(window, "_NET_WM_STATE_FULLSCREEN")) &&
           (isWide || !m_observer.hasState(window, "_NET_WM_STATE_MAXIMIZED_HORZ")) &&
           (isHigh || !m_observer.hasState(window, "_NET_WM_STATE_MAXIMIZED_VERT")) &&
           (isRolledUp || !m_observer.hasState(window, "_NET_WM_STATE_SHADED"));
}

bool Desktop::waitUntilWithout(xcb_window_t window, const std::vector<std::string>& states) {
    const auto has = [&](const std::string& state) { return m_observer.hasState(window, state); };
    return m_observer.waitUntil([&] { return std::none_of(states.begin(), states.end(), has); });
}

Frame Desktop::settledFrame(xcb_window_t window, const Frame& expected) {
    // A frame can match by chance while the window manager changes decoration and size one after the other.
    const auto settled = [&] {
        return frame(window) == expected && m_observer.settle() && waitUntilProgramRests() &&
               frame(window) == expected;
    };
    return m_observer.waitUntil(settled) ? expected : frame(window);
}

bool Desktop::waitUntilOnlyPanel() {
    return m_observer.waitUntil([this] {
        const std::vector<xcb_window_t> clients = m_observer.clients();
        return std::ranges::all_of(clients, [this](xcb_window_t window) {
            return window == m_panelWindow || std::ranges::find(m_ownWindows, window) != m_ownWindows.end();
        });
    });
}

Desktop& sharedDesktop(WindowManagerKind kind, std::string_view settings) {
    return sharedDesktops().desktop(kind, settings);
}

} // namespace tessarel::x11test
