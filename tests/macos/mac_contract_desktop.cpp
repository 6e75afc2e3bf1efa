// SPDX-License-Identifier: MIT

#include "contract/contract_desktop.h"
#include "macos/fake/fake_mac.h"
#include "platform/macos/desktop.h"
#include "platform/sim/time/sim_clock.h"
#include "platform/sim/time/sim_main_queue.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace tessarel::contract {

namespace {

constexpr const char* kOwnIdentifier = "com.example.tessarel-under-test";

/// One more copy of the program: a process that starts with its claim, and exits when the claim is refused or
/// destroyed.
class Copy : public SingleInstancePort {
public:
    explicit Copy(ProcessId pid) : m_pid(pid) {}

    SubscriptionPtr claim(std::function<void()> reopened, std::function<void()> lost) override {
        fakemac::mac().ownPid = m_pid;
        fakemac::launch(m_pid, {.bundleIdentifier = kOwnIdentifier});
        auto process = std::make_unique<Process>(m_pid);
        process->claim = macos::MacSingleInstance().claim(std::move(reopened), std::move(lost));
        return process->claim ? std::move(process) : nullptr;
    }
    Reaction awaitReaction() override { return {}; }

private:
    struct Process : Subscription {
        explicit Process(ProcessId number) : pid(number) {}
        ~Process() override {
            claim.reset();
            fakemac::terminate(pid);
        }

        ProcessId pid;
        SubscriptionPtr claim;
    };

    ProcessId m_pid;
};

/// The contract's desktop on the macOS back end over the fake frameworks.
class MacContractDesktop : public ContractDesktop {
public:
    MacContractDesktop() {
        fakemac::reset();
        fakemac::mac().ownBundleIdentifier = kOwnIdentifier;
        fakemac::mac().displays = {{.number = 69733248, .frame = kPrimary, .visibleFrame = kPrimary},
                                   {.number = 724045133,
                                    .frame = {1440, -124, 1120, 1024},
                                    .visibleFrame = {1440, -124, 1120, 1024}}};
        m_mac.emplace(m_queue);
    }
    ~MacContractDesktop() override {
        m_mac.reset();
        EXPECT_EQ(fakemac::heldObjects(), std::vector<std::string>());
    }

    AccessibilityPort& accessibility() override { return m_mac->accessibility; }
    AlertSoundPort& alertSound() override { return m_mac->alertSound; }
    DisplaysPort& displays() override { return m_mac->displays; }
    HotKeyPort& hotKeys() override { return m_mac->hotKeys; }
    KeyNamesPort& keyNames() override { return m_mac->keyNames; }
    LocalKeysPort& localKeys() override { return m_mac->localKeys; }
    MousePort& mouse() override { return m_mac->mouse; }
    TrustPort& trust() override { return m_mac->trust; }
    WorkspacePort& workspace() override { return m_mac->workspace; }
    // On macOS the program uses Qt's main queue, which the X11 run of this suite tests.
    std::unique_ptr<MainQueuePort> makeMainQueue() override {
        return std::make_unique<sim::SimMainQueue>(m_clock);
    }
    std::unique_ptr<PreferencesPort> makePreferences() override {
        return std::make_unique<macos::MacPreferences>();
    }
    bool copiesSharePreferences() const override { return false; }
    std::unique_ptr<SingleInstancePort> makeCopy() override { return std::make_unique<Copy>(++m_lastPid); }

    void installApplication(const std::string& bundleIdentifier, const std::string& displayName) override {
        fakemac::mac().installed[bundleIdentifier] = displayName + ".app";
    }
    AppHandle launchApplication(const std::optional<std::string>& bundleIdentifier) override {
        fakemac::launch(++m_lastPid, {.bundleIdentifier = bundleIdentifier});
        return {m_lastPid};
    }
    ProcessId pid(AppHandle application) override { return application.number; }
    Element element(WindowHandle window) override {
        const auto number = numberOf(window);
        const Element application = m_mac->accessibility.application(fakemac::mac().windows.at(number).pid);
        const auto windows = m_mac->accessibility.copyAttribute(application, attribute::kWindows);
        std::size_t at = 0;
        for (const auto other : fakemac::mac().stacking) {
            if (other == number)
                return std::get<std::vector<Element>>(windows.value()).at(at);
            at += fakemac::mac().windows.at(other).pid == fakemac::mac().windows.at(number).pid ? 1U : 0U;
        }
        throw std::out_of_range("no such window");
    }
    Rect actualFrame(WindowHandle window) override {
        return fakemac::mac().windows.at(numberOf(window)).axFrame;
    }

    WindowHandle openWindow(AppHandle application, const WindowOptions& options) override {
        fakemac::Window window{
            .pid = application.number, .axFrame = options.axFrame, .minimum = options.minimumSize};
        if (!options.resizable)
            window.maximum = window.minimum = options.axFrame.size();
        return {static_cast<int>(fakemac::openWindow(window))};
    }
    void focus(WindowHandle window) override { fakemac::focus(numberOf(window)); }
    void focusOwnWindow() override {
        const ProcessId own = fakemac::mac().ownPid;
        if (!fakemac::mac().applications.contains(own))
            fakemac::launch(own, {.bundleIdentifier = kOwnIdentifier});
        fakemac::focus(fakemac::openWindow({.pid = own, .axFrame = {100, 100, 400, 300}}));
    }
    void minimize(WindowHandle window) override {
        fakemac::mac().windows.at(numberOf(window)).minimized = true;
    }
    void enterFullScreen(WindowHandle window) override {
        fakemac::mac().windows.at(numberOf(window)).fullScreen = true;
    }
    void closeWindow(WindowHandle window) override { fakemac::closeWindow(numberOf(window)); }
    void killApplication(AppHandle application) override { fakemac::terminate(application.number); }

    void addPanel(double height) override { fakemac::mac().displays.at(0).visibleFrame.height -= height; }
    void disconnectSecondDisplay() override { fakemac::mac().displays.pop_back(); }

    void pressKeys(std::uint32_t keyCode, std::uint32_t mods) override { fakemac::pressKeys(keyCode, mods); }
    void movePointer(const Point& axPoint) override { fakemac::movePointer(axPoint); }
    void pressLeftButton() override { fakemac::pressLeftButton(); }
    void releaseLeftButton() override { fakemac::releaseLeftButton(); }
    void holdModifiers(std::uint64_t modifierFlags) override { fakemac::holdModifiers(modifierFlags); }
    [[nodiscard]] bool hotKeysAreExclusive() const override { return false; }
    SubscriptionPtr holdByAnotherProgram(std::uint32_t keyCode, std::uint32_t mods) override {
        fakemac::claimForAnotherProgram(keyCode, mods);
        return std::make_unique<Subscription>();
    }

    std::optional<std::string> rejectedCopy(std::string_view key) override {
        const auto found = fakemac::mac().defaults.find(std::string(key) + ".rejected");
        return found == fakemac::mac().defaults.end() ? std::nullopt : std::optional(found->second);
    }

    void settle() override {
        fakemac::turn();
        m_clock.advance({});
    }
    void advance(MainQueuePort::Duration duration) override { m_clock.advance(duration); }

private:
    [[nodiscard]] static fakemac::WindowNumber numberOf(WindowHandle window) {
        return static_cast<fakemac::WindowNumber>(window.number);
    }

    sim::SimClock m_clock;
    sim::SimMainQueue m_queue{m_clock};
    std::optional<macos::MacDesktop> m_mac;
    ProcessId m_lastPid = 100;
};

} // namespace

std::unique_ptr<ContractDesktop> makeContractDesktop() {
    return std::make_unique<MacContractDesktop>();
}

} // namespace tessarel::contract
