// SPDX-License-Identifier: MIT

#include "app/app_delegate.h"
#include "engine/random_desktop.h"
#include "fuzz/input.h"
#include "model/settings/store.h"
#include "platform/sim/sim_desktop.h"
#include "support/settings_window_record.h"
#include "support/sim_ports.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace tessarel;

namespace {

using Screens = std::vector<Screen>;

/// Counts the steps of all sequences, and prints their number when the fuzzer ends.
class StepCount {
public:
    StepCount() = default;
    StepCount(const StepCount&) = delete;
    StepCount& operator=(const StepCount&) = delete;
    ~StepCount() { std::fprintf(stderr, "Steps: %lld\n", m_count); }

    void add() { ++m_count; }

private:
    long long m_count = 0;
};

StepCount steps;

/// The whole core on a simulated desktop, and a user and other programs that do what the input says.
class Session {
public:
    explicit Session(fuzz::Input& input) : m_input(input) {
        m_desktop.preferences().setData(Store::key, R"({"hasOnboarded": true})");
        m_desktop.addScreen({.frame = {0, 0, 1440, 900}, .menuBar = 25, .dock = 55, .leftBar = 40});
        m_windows.push_back(m_desktop.openWindow("org.example.editor", {200, 150, 640, 480}));
        m_pids.push_back(m_desktop.window(m_windows.front()).pid);
        m_delegate.emplace(simPorts(m_desktop, m_copy), m_settingsWindow.factory());
        fuzz::require(m_delegate->applicationDidFinishLaunching() == AppDelegate::Launch::Running,
                      "the program starts");
    }

    /// Does one thing, which the next byte names.
    void step() {
        constexpr std::array kSteps = {
            &Session::pressKeys,    &Session::moveMouse,     &Session::pressMouse, &Session::releaseMouse,
            &Session::holdModifier, &Session::wait,          &Session::openWindow, &Session::closeWindow,
            &Session::changeWindow, &Session::changeProgram, &Session::addDisplay, &Session::changeDisplay,
            &Session::useMenu,      &Session::editSettings,  &Session::answerUser, &Session::runCommand};
        (this->*kSteps[m_input.below(kSteps.size())])();
        std::erase_if(m_windows, [this](sim::WindowId id) { return !isOpen(id); });
        for (const sim::WindowId id : m_windows)
            fuzz::require(m_desktop.frame(id).isFinite(), "the frame of a window is finite");
    }

    /// Lets go of the mouse and ends the program.
    void end() {
        m_desktop.mouse().release();
        m_desktop.mouse().moveTo({5, 5}); // brings a release that another program's grab has held back
        m_desktop.advance(std::chrono::seconds(10));
        fuzz::require(!m_desktop.overlay().isVisible, "the overlay is hidden without a drag");
        fuzz::require(Store::shared().settings.zones.size() == 9, "there are nine zones");
        m_delegate.reset();
        fuzz::require(m_desktop.mouse().monitored().empty() && m_desktop.hotKeys().registered().empty() &&
                          !m_desktop.statusItem().isUp() && !m_desktop.overlay().isVisible,
                      "the program leaves nothing behind");
        m_desktop.advance(std::chrono::seconds(10));
    }

private:
    [[nodiscard]] bool isOpen(sim::WindowId id) {
        try {
            return m_desktop.window(id).id == id;
        } catch (const std::out_of_range&) {
            return false;
        }
    }

    [[nodiscard]] sim::SimApplication* running(ProcessId pid) {
        try {
            return &m_desktop.application(pid);
        } catch (const std::out_of_range&) {
            return nullptr;
        }
    }

    /// Returns random choices that depend on the next two bytes.
    [[nodiscard]] Dice dice() { return Dice(m_input.word()); }

    template <typename T>
    [[nodiscard]] std::optional<T> pick(const std::vector<T>& values) {
        return values.empty() ? std::nullopt : std::optional(values[m_input.below(values.size())]);
    }

    // Steps.

    void pressKeys() {
        if (const auto key = pick(m_desktop.hotKeys().registered()))
            m_desktop.pressKeys(key->keyCode, key->mods);
    }

    void moveMouse() {
        const double x = 10.0 * m_input.byte();
        m_desktop.mouse().moveTo({x - 100, 10.0 * m_input.byte() - 100});
    }

    void pressMouse() {
        if (const auto window = pick(m_windows)) {
            const Rect frame = m_desktop.frame(*window);
            m_desktop.mouse().moveTo({frame.midX(), frame.minY() + m_input.byte() % 64});
        }
        m_desktop.mouse().press();
    }

    void releaseMouse() {
        switch (m_input.below(3)) {
        case 0:
            return m_desktop.mouse().release();
        case 1:
            return m_desktop.mouse().cancel();
        default:
            return m_desktop.mouse().loseRelease();
        }
    }

    void holdModifier() { m_desktop.mouse().hold(std::uint64_t{m_input.byte()} << 16U); }

    void wait() { m_desktop.advance(std::chrono::milliseconds(5) * m_input.byte()); }

    void openWindow() {
        Dice dice = this->dice();
        std::erase_if(m_pids, [this](ProcessId pid) { return !running(pid); });
        if (m_pids.empty() || m_input.below(3) == 0)
            m_pids.push_back(m_desktop.launch(randomApplication(dice)));
        sim::SimWindow window{.axFrame = randomFrame(dice, m_desktop.displays().screens())};
        giveRandomTraits(dice, window);
        m_windows.push_back(m_desktop.openWindow(*pick(m_pids), window));
    }

    void closeWindow() {
        if (const auto window = pick(m_windows))
            m_desktop.close(*window);
    }

    void changeWindow() {
        const auto window = pick(m_windows);
        if (!window)
            return;
        switch (m_input.below(4)) {
        case 0:
            return m_desktop.focus(*window);
        case 1:
            m_desktop.window(*window).minimized = m_input.below(2) == 1;
            return;
        case 2:
            m_desktop.window(*window).fullScreen = m_input.below(2) == 1;
            return;
        default:
            Dice dice = this->dice();
            m_desktop.drag(*window, randomlyMoved(dice, m_desktop.frame(*window)));
        }
    }

    void changeProgram() {
        const auto pid = pick(m_pids);
        sim::SimApplication* const application = pid ? running(*pid) : nullptr;
        if (!application)
            return;
        switch (m_input.below(3)) {
        case 0:
            return m_desktop.kill(*pid);
        case 1:
            return m_desktop.activate(*pid);
        default:
            Dice dice = this->dice();
            sim::SimApplication changed = randomApplication(dice);
            changed.focusedWindow = application->focusedWindow;
            *application = changed;
        }
    }

    void addDisplay() {
        Dice dice = this->dice();
        const Screens screens = m_desktop.displays().screens();
        if (screens.size() == 4)
            return;
        Screen added = randomScreen(dice, screens);
        added.id = m_desktop.addScreen({}).id;
        m_desktop.changeScreen(added);
    }

    void changeDisplay() {
        const Screens screens = m_desktop.displays().screens();
        const auto screen = pick(screens);
        if (!screen)
            return;
        switch (m_input.below(3)) {
        case 0:
            return m_desktop.removeScreen(screen->id);
        case 1:
            return m_desktop.makePrimary(screen->id);
        default:
            Dice dice = this->dice();
            Screen changed = randomScreen(dice, screens);
            changed.id = screen->id;
            m_desktop.changeScreen(changed);
        }
    }

    void useMenu() {
        std::vector<MenuItem> rows;
        for (const MenuItem& item : m_desktop.statusItem().openMenu()) {
            rows.push_back(item);
            rows.insert(rows.end(), item.submenu.begin(), item.submenu.end());
        }
        if (const auto row = pick(rows); row && row->isEnabled)
            m_desktop.statusItem().choose(*row);
    }

    void editSettings() {
        if (m_input.below(2) == 0) {
            m_desktop.preferencesStorage().edit(Store::key, m_input.until('\n'));
        } else {
            Dice dice = this->dice();
            changeSettings(dice, Store::shared().settings);
            Store::shared().saveAndNotify();
        }
    }

    void answerUser() {
        switch (m_input.below(3)) {
        case 0:
            m_desktop.trust().trusted = !m_desktop.trust().trusted;
            return;
        case 1:
            m_desktop.alerts().close(m_input.below(2));
            return;
        default:
            m_delegate->applicationShouldHandleReopen();
        }
    }

    void runCommand() {
        std::istringstream line(m_input.until('\n'));
        std::vector<std::string> words;
        for (std::string word; std::getline(line, word, ' ');)
            words.push_back(word);
        (void)m_delegate->runCommand(words);
    }

    fuzz::Input& m_input;
    sim::SimDesktop m_desktop;
    sim::SimSingleInstance m_copy = m_desktop.makeCopy();
    SettingsWindowRecord m_settingsWindow;
    std::vector<sim::WindowId> m_windows;
    std::vector<ProcessId> m_pids;
    std::optional<AppDelegate> m_delegate;
};

} // namespace

/// Reads a sequence of steps.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    Session session(input);
    for (; !input.isAtEnd(); steps.add())
        session.step();
    session.end();
    return 0;
}
