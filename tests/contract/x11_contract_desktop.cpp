// SPDX-License-Identifier: MIT

#include "contract/contract_desktop.h"
#include "contract/x11_contract_stage.h"
#include "model/call_on_end.h"
#include "platform/qt_x11/qt_local_keys.h"
#include "platform/sim/sim_services.h"
#include "platform/x11/applications/accessibility.h"
#include "platform/x11/applications/workspace.h"
#include "platform/x11/displays/displays.h"
#include "platform/x11/displays/monitors.h"
#include "platform/x11/input/hot_keys.h"
#include "platform/x11/input/key_lookup.h"
#include "platform/x11/input/key_names.h"
#include "platform/x11/input/mouse.h"
#include "platform/x11/instance/single_instance.h"
#include "platform/x11/server/bell.h"
#include "platform/x11/server/trust.h"
#include "platform/x11/windows/client_windows.h"
#include "platform/xdg/file_preferences.h"
#include "platform/xkb/keycode_table.h"
#include "support/qt_loop.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace tessarel::contract {

namespace {

using x11test::Extents;
using x11test::Frame;
using x11test::Observer;
using x11test::StateChange;
using x11test::TestClient;

int pixels(double value) {
    return static_cast<int>(std::lround(value));
}

Frame frameFrom(const Rect& rect) {
    return {pixels(rect.x), pixels(rect.y), pixels(rect.width), pixels(rect.height)};
}

x11test::WindowOptions::Pair clientSize(const Size& outer, const Extents& decoration) {
    return {pixels(outer.width) - decoration.left - decoration.right,
            pixels(outer.height) - decoration.top - decoration.bottom};
}

std::uint16_t modifierMask(std::uint64_t modifierFlags) {
    static const std::map<std::uint64_t, std::uint16_t> kModifiers = {{kShiftFlag, XCB_MOD_MASK_SHIFT},
                                                                      {kControlFlag, XCB_MOD_MASK_CONTROL},
                                                                      {kOptionFlag, XCB_MOD_MASK_1},
                                                                      {kCommandFlag, XCB_MOD_MASK_4}};
    unsigned mask = 0;
    for (const auto& [flag, bit] : kModifiers)
        mask |= (modifierFlags & flag) != 0 ? bit : 0U;
    return static_cast<std::uint16_t>(mask);
}

/// The contract's desktop on X11: real client processes on a private server. The destructor ends all of them.
class X11ContractDesktop : public ContractDesktop {
public:
    X11ContractDesktop() {
        m_stage.reset();
        settle();
    }

    ~X11ContractDesktop() override {
        m_stage.mouse.release();
        m_stage.mouse.hold(0);
        m_program.closeWindow();
        m_applications.clear();
        m_panel.reset();
        m_holder.reset();
        (void)m_observer.waitUntil([this] { return m_observer.clients().empty(); });
    }

    AccessibilityPort& accessibility() override { return m_accessibility; }
    AlertSoundPort& alertSound() override { return m_bell; }
    DisplaysPort& displays() override { return m_displays; }
    HotKeyPort& hotKeys() override { return m_hotKeys; }
    KeyNamesPort& keyNames() override { return m_keyNames; }
    LocalKeysPort& localKeys() override { return m_localKeys; }
    MousePort& mouse() override { return m_mouse; }
    TrustPort& trust() override { return m_trust; }
    WorkspacePort& workspace() override { return m_workspace; }
    std::unique_ptr<MainQueuePort> makeMainQueue() override { return std::make_unique<qt::QtMainQueue>(); }
    std::unique_ptr<PreferencesPort> makePreferences() override {
        return std::make_unique<xdg::FilePreferences>(m_folder.path(),
                                                      [this](int fd, std::function<void()> readable) {
                                                          return m_files.onReadable(fd, std::move(readable));
                                                      });
    }
    std::unique_ptr<SingleInstancePort> makeCopy() override {
        m_copies.push_back(std::make_unique<Line>(m_stage.server.display()));
        return std::make_unique<x11::X11SingleInstance>(m_copies.back()->connection());
    }

    void installApplication(const std::string& bundleIdentifier, const std::string& displayName) override {
        std::ofstream(m_entries.path() / (bundleIdentifier + ".desktop"))
            << "[Desktop Entry]\nType=Application\nName=" << displayName << '\n';
    }
    AppHandle launchApplication(const std::optional<std::string>& bundleIdentifier) override {
        m_applications.push_back({std::make_unique<TestClient>(m_stage.server), bundleIdentifier, {}});
        return {static_cast<int>(m_applications.size()) - 1};
    }
    ProcessId pid(AppHandle application) override { return client(application).pid(); }
    Element element(WindowHandle window) override;
    Rect actualFrame(WindowHandle window) override {
        const auto frame = m_observer.outerFrame(id(window)).value_or(Frame{});
        return {static_cast<double>(frame.x), static_cast<double>(frame.y), static_cast<double>(frame.width),
                static_cast<double>(frame.height)};
    }

    WindowHandle openWindow(AppHandle application, const WindowOptions& options) override;
    void focus(WindowHandle window) override;
    void focusOwnWindow() override {
        m_program.focusOwnWindow();
        settle();
    }
    void minimize(WindowHandle window) override;
    void enterFullScreen(WindowHandle window) override;
    void closeWindow(WindowHandle window) override;
    void killApplication(AppHandle application) override;

    void addPanel(double height) override;
    void disconnectSecondDisplay() override {
        m_stage.disconnectSecondDisplay();
        settle();
    }

    void pressKeys(std::uint32_t keyCode, std::uint32_t mods) override {
        m_stage.keyboard.press(combination(keyCode, mods));
    }
    void movePointer(const Point& axPoint) override {
        m_stage.mouse.moveTo(pixels(axPoint.x), pixels(axPoint.y));
        settle();
    }
    void pressLeftButton() override {
        m_stage.mouse.press();
        settle();
    }
    void releaseLeftButton() override {
        m_stage.mouse.release();
        settle();
    }
    void holdModifiers(std::uint64_t modifierFlags) override {
        m_stage.mouse.hold(modifierMask(modifierFlags));
        settle();
    }
    SubscriptionPtr holdByAnotherProgram(std::uint32_t keyCode, std::uint32_t mods) override;

    std::optional<std::string> rejectedCopy(std::string_view key) override;

    void settle() override;
    void advance(MainQueuePort::Duration duration) override;

private:
    struct Application {
        std::unique_ptr<TestClient> client;
        std::optional<std::string> bundleIdentifier;
        std::vector<xcb_window_t> windows;

        [[nodiscard]] bool has(xcb_window_t window) const {
            return std::find(windows.begin(), windows.end(), window) != windows.end();
        }
    };

    [[nodiscard]] static xcb_window_t id(WindowHandle window) {
        return static_cast<xcb_window_t>(window.number);
    }
    [[nodiscard]] TestClient& client(AppHandle application) {
        return *m_applications.at(static_cast<std::size_t>(application.number)).client;
    }
    [[nodiscard]] Application& owner(xcb_window_t window);
    /// Returns whether a test has opened the window; the window manager may list windows of its own.
    [[nodiscard]] bool isOurs(xcb_window_t window) const;
    [[nodiscard]] static x11test::Combination combination(std::uint32_t keyCode, std::uint32_t mods);
    void waitFor(const char* what, const std::function<bool()>& holds);

    Stage& m_stage = Stage::shared();
    Program& m_program = Program::shared();
    Observer& m_observer = m_stage.observer;
    x11test::TemporaryFolder m_folder;
    qt::QtMainQueue m_files;            // reports changes of the preferences
    x11test::TemporaryFolder m_entries; // desktop entries of installed applications
    Line m_line{m_stage.server.display()};
    std::vector<std::unique_ptr<Line>> m_copies;
    std::vector<Application> m_applications;
    std::unique_ptr<TestClient> m_panel;
    std::unique_ptr<TestClient> m_holder; // the client that grabs key combinations

    sim::SimAlerts m_alerts;
    x11::Monitors m_monitors{m_line.connection()};
    x11::ClientWindows m_windows{m_line.connection()};
    x11::X11Displays m_displays{m_line.connection(), m_monitors, [this] { return m_windows.activeFrame(); }};
    x11::Applications m_applicationsSeen{
        m_windows, {m_entries.path()}, [](ProcessId) { return xdg::ProcessFacts(); }};
    x11::ApplicationWatch m_watch{m_line.connection(), m_windows, m_applicationsSeen};
    x11::X11Accessibility m_accessibility{m_line.connection(), m_monitors, m_windows,
                                          m_applicationsSeen,  m_watch,    m_line.queue()};
    x11::X11Workspace m_workspace{m_applicationsSeen, m_watch};
    x11::X11HotKeys m_hotKeys{m_line.connection()};
    x11::X11KeyNames m_keyNames{m_line.connection()};
    qt::QtLocalKeys m_localKeys{
        x11::keyDown, [this](std::uint32_t keycode) { return x11::isKeyHeld(m_line.connection(), keycode); }};
    x11::X11Mouse m_mouse{m_line.connection(), m_monitors, m_windows, m_line.queue()};
    x11::X11Bell m_bell{m_line.connection()};
    x11::X11Trust m_trust{m_line.connection(), x11::Session::X11, m_line.queue(), m_alerts};
};

X11ContractDesktop::Application& X11ContractDesktop::owner(xcb_window_t window) {
    const auto found = std::find_if(m_applications.begin(), m_applications.end(),
                                    [&](const Application& one) { return one.has(window); });
    require(found != m_applications.end(), "application that owns the window");
    return *found;
}

bool X11ContractDesktop::isOurs(xcb_window_t window) const {
    return std::any_of(m_applications.begin(), m_applications.end(),
                       [&](const Application& one) { return one.has(window); });
}

void X11ContractDesktop::waitFor(const char* what, const std::function<bool()>& holds) {
    require(m_observer.waitUntil(holds), what);
    settle();
}

Element X11ContractDesktop::element(WindowHandle window) {
    const Element application = m_accessibility.application(owner(id(window)).client->pid());
    const auto value = m_accessibility.copyAttribute(application, attribute::kWindows);
    const auto* const windows = value ? std::get_if<std::vector<Element>>(&*value) : nullptr;
    require(windows != nullptr, "list of windows");
    const auto found = std::find_if(windows->begin(), windows->end(), [&](const Element& element) {
        return static_cast<xcb_window_t>(m_accessibility.key(element)) == id(window);
    });
    require(found != windows->end(), "element for the window");
    return *found;
}

WindowHandle X11ContractDesktop::openWindow(AppHandle application, const WindowOptions& options) {
    const Extents decoration = options.resizable ? m_stage.decoration : m_stage.fixedDecoration;
    const auto size = clientSize(options.axFrame.size(), decoration);
    x11test::WindowOptions made{.className = {}, .client = {10, 10, size.width, size.height}};
    if (options.minimumSize.width > 0)
        made.minimum = clientSize(options.minimumSize, decoration);
    if (!options.resizable)
        made.minimum = made.maximum = size;
    Application& opener = m_applications.at(static_cast<std::size_t>(application.number));
    made.className = opener.bundleIdentifier.value_or("");

    const xcb_window_t window = opener.client->open(made);
    opener.windows.push_back(window);
    m_observer.watch(window);
    waitFor("managed window", [&] { return m_observer.managed(window); });
    m_observer.moveOuterFrame(window, frameFrom(options.axFrame));
    waitFor("window at its position",
            [&] { return m_observer.outerFrame(window) == frameFrom(options.axFrame); });
    return {static_cast<int>(window)};
}

void X11ContractDesktop::focus(WindowHandle window) {
    constexpr std::uint32_t kPager = 2;
    m_observer.activate(id(window));
    // Not every window manager raises the window that it activates.
    m_observer.sendToRoot(id(window), "_NET_RESTACK_WINDOW",
                          {kPager, XCB_WINDOW_NONE, XCB_STACK_MODE_ABOVE, 0, 0});
    waitFor("focus in the window on top", [&] {
        const auto stack = m_observer.values(m_observer.root(), "_NET_CLIENT_LIST_STACKING");
        const auto top =
            std::find_if(stack.rbegin(), stack.rend(), [&](xcb_window_t one) { return isOurs(one); });
        // Some window managers list no stacking order for a single window.
        const bool isOnTop = top == stack.rend() || *top == id(window);
        return m_observer.activeWindow() == id(window) && isOnTop;
    });
    m_program.waitUntilWithoutFocus();
}

void X11ContractDesktop::minimize(WindowHandle window) {
    m_observer.iconify(id(window));
    waitFor("minimised window", [&] { return m_observer.hasState(id(window), "_NET_WM_STATE_HIDDEN"); });
}

void X11ContractDesktop::enterFullScreen(WindowHandle window) {
    m_observer.changeState(id(window), StateChange::Add, "_NET_WM_STATE_FULLSCREEN");
    waitFor("full-screen window",
            [&] { return m_observer.hasState(id(window), "_NET_WM_STATE_FULLSCREEN"); });
}

void X11ContractDesktop::closeWindow(WindowHandle window) {
    owner(id(window)).client->destroy(id(window));
    waitFor("closed window", [&] { return !m_observer.managed(id(window)); });
}

void X11ContractDesktop::killApplication(AppHandle application) {
    // The server may reuse their window ids for the next client.
    const auto windows =
        std::exchange(m_applications.at(static_cast<std::size_t>(application.number)).windows, {});
    client(application).process().kill();
    waitFor("closed windows of the killed application", [&] {
        return std::none_of(windows.begin(), windows.end(),
                            [&](xcb_window_t window) { return m_observer.managed(window); });
    });
}

void X11ContractDesktop::addPanel(double height) {
    m_panel = std::make_unique<TestClient>(m_stage.server);
    const auto depth = static_cast<std::uint32_t>(height);
    const auto lastPixel = static_cast<std::uint32_t>(kPrimary.width) - 1;
    const xcb_window_t panel = m_panel->open({.client = {0, 0, pixels(kPrimary.width), pixels(height)},
                                              .type = "_NET_WM_WINDOW_TYPE_DOCK",
                                              .strut = {0, 0, depth, 0, 0, 0, 0, 0, 0, lastPixel, 0, 0}});
    waitFor("panel", [&] { return m_observer.managed(panel); });
}

x11test::Combination X11ContractDesktop::combination(std::uint32_t keyCode, std::uint32_t mods) {
    static const std::map<std::uint32_t, std::uint16_t> kModifiers = {{256, XCB_MOD_MASK_4},
                                                                      {512, XCB_MOD_MASK_SHIFT},
                                                                      {2048, XCB_MOD_MASK_1},
                                                                      {4096, XCB_MOD_MASK_CONTROL}};
    const auto keycode = xkb::keycodeOf(keyCode);
    require(keycode.has_value(), "key with this virtual key code");
    unsigned state = 0;
    for (const auto& [bit, mask] : kModifiers)
        state |= (mods & bit) != 0 ? mask : 0U;
    return {*keycode, static_cast<std::uint16_t>(state)};
}

SubscriptionPtr X11ContractDesktop::holdByAnotherProgram(std::uint32_t keyCode, std::uint32_t mods) {
    if (!m_holder)
        m_holder = std::make_unique<TestClient>(m_stage.server);
    const auto keys = combination(keyCode, mods);
    if (!m_holder->grabKey(keys))
        return nullptr;
    return callOnEnd([this, keys] { m_holder->ungrabKey(keys); });
}

std::optional<std::string> X11ContractDesktop::rejectedCopy(std::string_view key) {
    std::ifstream file(m_folder.path() / (std::string(key) + ".json.rejected"), std::ios::binary);
    if (!file)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

void X11ContractDesktop::settle() {
    require(m_observer.settle(), "reply from the window manager");
    for (const auto& copy : m_copies)
        copy->roundTrip();
    for (const auto& copy : m_copies)
        copy->roundTrip(); // reads what the other copies have sent during the first pass
    m_line.roundTrip();
    m_program.settle();
}

void X11ContractDesktop::advance(MainQueuePort::Duration duration) {
    runQtLoop(duration);
}

} // namespace

std::unique_ptr<ContractDesktop> makeContractDesktop() {
    return std::make_unique<X11ContractDesktop>();
}

} // namespace tessarel::contract
