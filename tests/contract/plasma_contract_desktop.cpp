// SPDX-License-Identifier: MIT

#include "contract/contract_desktop.h"
#include "contract/plasma_contract_stage.h"
#include "model/key_names.h"
#include "platform/plasma/bridge.h"
#include "platform/plasma/keys/global_shortcuts.h"
#include "platform/plasma/keys/key_names.h"
#include "platform/plasma/keys/keyboard_layout.h"
#include "platform/plasma/single_instance.h"
#include "platform/plasma/trust.h"
#include "platform/sim/sim_services.h"
#include "platform/wayland/accessibility.h"
#include "platform/wayland/desktop_ports.h"
#include "platform/wayland/drag_mouse.h"
#include "platform/xdg/file_preferences.h"
#include "platform/xkb/keycode_table.h"
#include "support/qt_loop.h"
#include "support/scratch_folder.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <sstream>
#include <utility>
#include <vector>

namespace tessarel::contract {

namespace {

using plasmatest::SeenWindow;
using plasmatest::WaylandClient;

/// Keys by the kernel's codes.
constexpr std::pair<std::uint64_t, std::uint32_t> kModifierKeys[] = {
    {256, plasmatest::key::kLeftMeta},
    {512, plasmatest::key::kLeftShift},
    {2048, plasmatest::key::kLeftAlt},
    {4096, plasmatest::key::kLeftControl},
};

/// The contract's desktop on KDE Plasma: real client processes in a private session. The destructor ends all
/// of them.
/// The compositor of the tests draws without OpenGL, so no modifier is ever reported.
class NoDragKeys : public wayland::DragKeys {
public:
    [[nodiscard]] ModifierFlags held() const override { return 0; }
    void readAtEnd(std::function<void()> done) override { done(); }
};

class PlasmaContractDesktop : public ContractDesktop {
public:
    PlasmaContractDesktop() {
        m_stage.reset();
        require(PlasmaStage::runLoopUntil([this] { return !m_line.link().uniqueName().empty(); }),
                "connection to the bus");
        m_bridge.load();
        m_bridge.awaitWindows(x11test::kPatience);
        require(m_mirror.isReady(), "report from KWin");
        settle();
    }

    ~PlasmaContractDesktop() override {
        m_stage.closeOwnWindow();
        m_applications.clear();
        m_panel.reset();
        (void)m_stage.session().probe().waitUntil(
            [this] { return m_stage.session().probe().windows().empty(); });
    }

    AccessibilityPort& accessibility() override { return m_accessibility; }
    AlertSoundPort& alertSound() override { return m_silence; }
    DisplaysPort& displays() override { return m_displays; }
    HotKeyPort& hotKeys() override { return m_hotKeys; }
    KeyNamesPort& keyNames() override { return m_keyNames; }
    LocalKeysPort& localKeys() override { throw std::logic_error("not of this back end"); }
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
        m_copies.push_back(std::make_unique<PlasmaLine>(address()));
        return std::make_unique<plasma::SingleInstance>(m_copies.back()->link());
    }

    Rect second() const override { return {1440, 0, 1440, 900}; }

    void installApplication(const std::string& bundleIdentifier, const std::string& displayName) override {
        std::ofstream(m_entries.path() / (bundleIdentifier + ".desktop"))
            << "[Desktop Entry]\nType=Application\nName=" << displayName << '\n';
    }
    AppHandle launchApplication(const std::optional<std::string>& bundleIdentifier) override {
        m_applications.push_back(
            {std::make_unique<WaylandClient>(m_stage.session().environment()), bundleIdentifier});
        return {static_cast<int>(m_applications.size()) - 1};
    }
    ProcessId pid(AppHandle application) override { return client(application).process().pid(); }
    std::optional<std::string> identifierOfNameless() const override { return "tessarel_wayland_client"; }
    Element element(WindowHandle window) override;
    Rect actualFrame(WindowHandle window) override {
        m_stage.session().probe().roundTrip();
        return seen(window).frame;
    }

    WindowHandle openWindow(AppHandle application, const WindowOptions& options) override;
    void focus(WindowHandle window) override {
        m_stage.change(title(window), "workspace.activeClient = w");
        waitFor("focus in the window on top", [&] {
            return seen(window).isActive && m_stage.session().probe().windows().back().title == title(window);
        });
    }
    void focusOwnWindow() override {
        m_stage.focusOwnWindow();
        settle();
    }
    void minimize(WindowHandle window) override {
        m_stage.change(title(window), "w.minimized = true");
        waitFor("minimised window", [&] { return seen(window).isMinimized; });
    }
    void enterFullScreen(WindowHandle window) override {
        m_stage.change(title(window), "w.fullScreen = true");
        waitFor("full-screen window", [&] { return seen(window).isFullScreen; });
    }
    void closeWindow(WindowHandle window) override {
        client({m_owners.at(window.number)}).close(window.number);
        waitFor("closed window", [&] { return m_stage.find(title(window)) == nullptr; });
    }
    void killApplication(AppHandle application) override {
        client(application).process().kill();
        waitFor("closed windows of the killed application", [&] {
            const auto& all = m_stage.session().probe().windows();
            return std::none_of(all.begin(), all.end(),
                                [&](const SeenWindow& one) { return one.pid == pid(application); });
        });
    }

    void addPanel(double height) override {
        m_panel = std::make_unique<WaylandClient>(m_stage.session().environment());
        m_panel->openPanel(static_cast<int>(std::lround(height)));
        waitFor("panel", [this] { return !m_stage.session().probe().windows().empty(); });
    }
    void disconnectSecondDisplay() override {
        m_stage.disconnectSecondDisplay();
        settle();
    }

    void pressKeys(std::uint32_t keyCode, std::uint32_t mods) override;
    void movePointer(const Point& axPoint) override {
        m_stage.session().input().moveTo(axPoint.x, axPoint.y);
        settle();
    }
    void pressLeftButton() override {
        m_stage.session().input().setLeftButton(true);
        settle();
    }
    void releaseLeftButton() override {
        m_stage.session().input().setLeftButton(false);
        settle();
    }
    void holdModifiers(std::uint64_t /*modifierFlags*/) override {
        throw std::logic_error("not of this back end");
    }
    SubscriptionPtr holdByAnotherProgram(std::uint32_t keyCode, std::uint32_t mods) override {
        return m_holder.hold(keyCode, mods);
    }

    std::optional<std::string> rejectedCopy(std::string_view key) override {
        return ScratchFolder::read(m_folder.path() / (std::string(key) + ".json.rejected"));
    }

    void settle() override;
    void advance(MainQueuePort::Duration duration) override;

private:
    struct Application {
        std::unique_ptr<WaylandClient> client;
        std::optional<std::string> bundleIdentifier;
    };

    [[nodiscard]] std::string address() const {
        return m_stage.session().environment().at("DBUS_SESSION_BUS_ADDRESS");
    }
    [[nodiscard]] static std::string title(WindowHandle window) {
        return WaylandClient::titleOf(window.number);
    }
    [[nodiscard]] WaylandClient& client(AppHandle application) {
        return *m_applications.at(static_cast<std::size_t>(application.number)).client;
    }
    [[nodiscard]] const SeenWindow& seen(WindowHandle window) {
        const SeenWindow* const found = m_stage.find(title(window));
        require(found != nullptr, "window with this title");
        return *found;
    }
    void waitFor(const char* what, const std::function<bool()>& holds) {
        require(m_stage.session().probe().waitUntil(holds), what);
        settle();
    }

    PlasmaStage& m_stage = PlasmaStage::shared();
    ScratchFolder m_folder;
    qt::QtMainQueue m_files; // reports changes of the preferences
    ScratchFolder m_entries; // desktop entries of installed applications
    PlasmaLine m_line{address()};
    std::vector<std::unique_ptr<PlasmaLine>> m_copies;
    std::vector<Application> m_applications;
    std::map<int, int> m_owners; // window -> application
    std::unique_ptr<WaylandClient> m_panel;
    ShortcutHolder m_holder{m_stage.session().probe().link()};

    wayland::Mirror m_mirror;
    plasma::Bridge m_bridge{m_line.link(), m_mirror, m_line.queue(), m_folder.path(),
                            [](const std::string& problem) { throw std::runtime_error(problem); }};
    wayland::Applications m_applicationsSeen{
        m_mirror, m_line.queue(), {m_entries.path()}, [](ProcessId) { return xdg::ProcessFacts(); }};
    wayland::ApplicationWatch m_watch{m_mirror, m_applicationsSeen};
    wayland::Accessibility m_accessibility{m_mirror, m_bridge, m_applicationsSeen, m_watch, m_line.queue()};
    wayland::Displays m_displays{m_mirror};
    plasma::KeyboardLayout m_keyboardLayout{m_line.link(), xkb::Keymap::us()};
    plasma::GlobalShortcuts m_hotKeys{m_line.link(), m_keyboardLayout};
    plasma::LayoutKeyNames m_keyNames{m_keyboardLayout};
    NoDragKeys m_dragKeys;
    wayland::DragMouse m_mouse{m_mirror, m_dragKeys};
    sim::SimAlerts m_alerts;
    plasma::Trust m_trust{m_bridge, m_mirror, m_line.queue(), m_alerts};
    wayland::Workspace m_workspace{m_applicationsSeen, m_watch};
    sim::SimAlertSound m_silence;
};

Element PlasmaContractDesktop::element(WindowHandle window) {
    const wayland::WindowId id = m_mirror.named(seen(window).name);
    const Element application = m_accessibility.application(pid({m_owners.at(window.number)}));
    const auto value = m_accessibility.copyAttribute(application, attribute::kWindows);
    const auto* const windows = value ? std::get_if<std::vector<Element>>(&*value) : nullptr;
    require(windows != nullptr, "list of windows");
    const auto found = std::find_if(windows->begin(), windows->end(), [&](const Element& element) {
        return m_accessibility.key(element) / 2 == id;
    });
    require(found != windows->end(), "element for the window");
    return *found;
}

WindowHandle PlasmaContractDesktop::openWindow(AppHandle application, const WindowOptions& options) {
    const WindowHandle window{static_cast<int>(m_owners.size()) + 1};
    m_owners[window.number] = application.number;
    const auto& owner = m_applications.at(static_cast<std::size_t>(application.number));
    WaylandClient::WindowOptions made{.applicationId = owner.bundleIdentifier.value_or(""),
                                      .size = options.axFrame.size(),
                                      .minimum = options.minimumSize};
    if (!options.resizable)
        made.minimum = made.maximum = options.axFrame.size();
    owner.client->open(window.number, made);
    require(m_stage.session().probe().waitUntil([&] { return m_stage.find(title(window)) != nullptr; }),
            "new window");
    std::ostringstream move;
    move << "w.frameGeometry = { x: " << options.axFrame.x << ", y: " << options.axFrame.y
         << ", width: " << options.axFrame.width << ", height: " << options.axFrame.height << " }";
    m_stage.change(title(window), move.str());
    waitFor("window at its position", [&] { return seen(window).frame == options.axFrame; });
    return window;
}

void PlasmaContractDesktop::pressKeys(std::uint32_t keyCode, std::uint32_t mods) {
    constexpr std::uint32_t kFirstKeycode = 8; // of X11
    const auto keycode = xkb::keycodeOf(keyCode);
    require(keycode.has_value(), "key with this virtual key code");
    plasmatest::FakeInput& input = m_stage.session().input();
    const auto setModifiers = [&](bool arePressed) {
        for (const auto& [bit, key] : kModifierKeys) {
            if ((mods & bit) != 0)
                input.setKey(key, arePressed);
        }
    };
    m_line.roundTrip(); // the combinations are registered
    setModifiers(true);
    input.press({*keycode - kFirstKeycode});
    setModifiers(false);
}

void PlasmaContractDesktop::settle() {
    advance({}); // sends what was written
    const auto isSettled = [this](wayland::WindowId window) {
        return m_bridge.waitUntilSettled(window, x11test::kPatience);
    };
    const auto windows = m_mirror.frontToBack();
    require(std::all_of(windows.begin(), windows.end(), isSettled), "settled windows");
    m_line.roundTrip();
    for (int times = 0; times < 2; ++times) { // also for what one copy has sent to another
        for (const auto& copy : m_copies)
            copy->roundTrip();
    }
    m_line.roundTrip();
}

void PlasmaContractDesktop::advance(MainQueuePort::Duration duration) {
    runQtLoop(duration);
}

} // namespace

std::unique_ptr<ContractDesktop> makeContractDesktop() {
    return std::make_unique<PlasmaContractDesktop>();
}

} // namespace tessarel::contract
