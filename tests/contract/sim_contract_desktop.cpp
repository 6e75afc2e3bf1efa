// SPDX-License-Identifier: MIT

#include "contract/contract_desktop.h"
#include "platform/sim/sim_desktop.h"

#include <algorithm>
#include <vector>

namespace tessarel::contract {

namespace {

/// The contract's desktop on the simulation.
class SimContractDesktop : public ContractDesktop {
public:
    SimContractDesktop() {
        m_desktop.addScreen({.frame = kPrimary});
        m_second = m_desktop.addScreen({.frame = {1440, -124, 1120, 1024}}).id;
    }

    AccessibilityPort& accessibility() override { return m_desktop.accessibility(); }
    AlertSoundPort& alertSound() override { return m_desktop.alertSound(); }
    DisplaysPort& displays() override { return m_desktop.displays(); }
    HotKeyPort& hotKeys() override { return m_desktop.hotKeys(); }
    KeyNamesPort& keyNames() override { return m_desktop.keyNames(); }
    LocalKeysPort& localKeys() override { return m_desktop.localKeys(); }
    MousePort& mouse() override { return m_desktop.mouse(); }
    TrustPort& trust() override { return m_desktop.trust(); }
    WorkspacePort& workspace() override { return m_desktop.workspace(); }
    std::unique_ptr<MainQueuePort> makeMainQueue() override {
        return std::make_unique<sim::SimMainQueue>(m_desktop.clock());
    }
    std::unique_ptr<PreferencesPort> makePreferences() override {
        return std::make_unique<sim::SimPreferences>(m_desktop.preferencesStorage());
    }
    std::unique_ptr<SingleInstancePort> makeCopy() override {
        return std::make_unique<sim::SimSingleInstance>(m_desktop.makeCopy());
    }

    void installApplication(const std::string& bundleIdentifier, const std::string& displayName) override {
        m_desktop.install(bundleIdentifier, displayName);
    }
    AppHandle launchApplication(const std::optional<std::string>& bundleIdentifier) override {
        return {m_desktop.launch({.bundleIdentifier = bundleIdentifier})};
    }
    ProcessId pid(AppHandle application) override { return application.number; }
    Element element(WindowHandle window) override { return m_desktop.element(id(window)); }
    Rect actualFrame(WindowHandle window) override { return m_desktop.frame(id(window)); }

    WindowHandle openWindow(AppHandle application, const WindowOptions& options) override {
        sim::SimWindow window{.axFrame = options.axFrame};
        window.minimum.width = std::max(window.minimum.width, options.minimumSize.width);
        window.minimum.height = std::max(window.minimum.height, options.minimumSize.height);
        if (!options.resizable)
            window.minimum = window.maximum = options.axFrame.size();
        return {static_cast<int>(m_desktop.openWindow(application.number, window))};
    }
    void focus(WindowHandle window) override { m_desktop.focus(id(window)); }
    void focusOwnWindow() override { m_desktop.openOwnWindow({100, 100, 400, 300}); }
    void minimize(WindowHandle window) override { m_desktop.window(id(window)).minimized = true; }
    void enterFullScreen(WindowHandle window) override { m_desktop.window(id(window)).fullScreen = true; }
    void closeWindow(WindowHandle window) override { m_desktop.close(id(window)); }
    void killApplication(AppHandle application) override { m_desktop.kill(application.number); }

    void addPanel(double height) override { m_desktop.setMenuBar(height); }
    void disconnectSecondDisplay() override { m_desktop.removeScreen(m_second); }

    void pressKeys(std::uint32_t keyCode, std::uint32_t mods) override { m_desktop.pressKeys(keyCode, mods); }
    void movePointer(const Point& axPoint) override { m_desktop.mouse().moveTo(axPoint); }
    void pressLeftButton() override { m_desktop.mouse().press(); }
    void releaseLeftButton() override { m_desktop.mouse().release(); }
    void holdModifiers(std::uint64_t modifierFlags) override { m_desktop.mouse().hold(modifierFlags); }
    SubscriptionPtr holdByAnotherProgram(std::uint32_t keyCode, std::uint32_t mods) override {
        return m_desktop.hotKeys().holdByAnotherProgram(keyCode, mods);
    }

    std::optional<std::string> rejectedCopy(std::string_view key) override {
        const auto& rejected = m_desktop.preferencesStorage().rejected;
        const auto found = rejected.find(key);
        return found == rejected.end() ? std::nullopt : std::optional(found->second);
    }

    void settle() override { m_desktop.advance({}); }
    void advance(MainQueuePort::Duration duration) override { m_desktop.advance(duration); }

private:
    [[nodiscard]] static sim::WindowId id(WindowHandle window) {
        return static_cast<sim::WindowId>(window.number);
    }

    sim::SimDesktop m_desktop;
    std::uint64_t m_second = 0;
};

} // namespace

std::unique_ptr<ContractDesktop> makeContractDesktop() {
    return std::make_unique<SimContractDesktop>();
}

} // namespace tessarel::contract
