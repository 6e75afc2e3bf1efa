// SPDX-License-Identifier: MIT

#include "engine/engine_session.h"

#include "engine/random_desktop.h"
#include "model/action_id.h"
#include "model/settings/settings_codec.h"

#include <algorithm>
#include <chrono>
#include <sstream>

namespace tessarel {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t kMostScreens = 4;
constexpr std::size_t kMostWindows = 7;
constexpr std::size_t kMostApplications = 4;

ReferenceEngine::Ports portsOf(JournalDesktop& desktop) {
    return {desktop.accessibility(),
            desktop.journalAlertSound(),
            desktop.displays(),
            desktop.journalHotKeys(),
            desktop.journalTrust(),
            desktop.windowList(),
            desktop.workspace(),
            [&desktop](const AppSettings& settings) {
                if (const auto document = encodeSettings(settings))
                    desktop.journalPreferences().setData("tessarel.settings.v1", *document);
            }};
}

void print(std::ostream& out, const char* title, const std::vector<std::string>& journal) {
    out << title << "\n";
    for (const std::string& line : journal)
        out << "  " << line << "\n";
}

std::string text(const Rect& rect) {
    std::ostringstream out;
    out << rect.x << "," << rect.y << " " << rect.width << "x" << rect.height;
    return out.str();
}

} // namespace

EngineSession::EngineSession(std::uint64_t seed) : m_dice(seed), m_reference(portsOf(m_referenceDesktop)) {
    for (std::size_t n = m_dice.below(3) + 1; n > 0; --n)
        addScreen();
    for (int n = 0; n < 3; ++n)
        openWindow();
    m_hotKeys.registerAll();
    m_reference.registerAll();
}

void EngineSession::onBoth(const Work& work) {
    work(m_desktop);
    work(m_referenceDesktop);
}

void EngineSession::step() {
    if (m_dice.oneIn(8)) { // otherwise most hot keys would do nothing
        m_runtime.paused = m_reference.paused = false;
        onBoth([](JournalDesktop& desktop) { desktop.trust().trusted = true; });
    }
    if (m_dice.oneIn(2) || m_windows.empty()) {
        if (m_windows.empty())
            openWindow();
        useHotKey();
    } else {
        switch (m_dice.below(18)) {
        case 0:
            m_what = "a window is placed after a drag";
            placeDirectly(anyWindow());
            break;
        case 1:
            placeOrRestoreLate();
            break;
        case 2:
            correct(anyWindow());
            break;
        case 3:
        case 4:
        case 5:
        case 6:
            changeWindow();
            break;
        case 7:
        case 8:
        case 9:
        case 10:
        case 11:
            changeStack();
            break;
        case 12:
            changeDisplays();
            break;
        case 13:
            changeApplication();
            break;
        case 14:
            changeSettingsAndRegister();
            break;
        default:
            changeProgram();
            break;
        }
    }
    forgetWhatHasGone();
}

std::optional<std::string> EngineSession::difference() {
    const auto journal = m_desktop.takeJournal();
    const auto expected = m_referenceDesktop.takeJournal();
    std::ostringstream frames;
    for (const sim::WindowId window : m_windows) {
        if (m_desktop.isOpen(window) != m_referenceDesktop.isOpen(window))
            frames << "window " << static_cast<unsigned>(window) << " is open on one desktop only\n";
        else if (m_desktop.frame(window) != m_referenceDesktop.frame(window))
            frames << "window " << static_cast<unsigned>(window) << " at " << text(m_desktop.frame(window))
                   << " instead of " << text(m_referenceDesktop.frame(window)) << "\n";
    }
    if (m_store.settings != m_reference.settings)
        frames << "the settings differ\n";
    if (journal == expected && frames.str().empty())
        return {};
    std::ostringstream out;
    out << "after: " << m_what << "\n" << frames.str();
    print(out, "the engine:", journal);
    print(out, "the reference engine:", expected);
    return out.str();
}

/// Sets both clocks to the same time: each read from an unresponsive program takes time.
void EngineSession::alignClocks() {
    const auto behind = m_desktop.clock().now() - m_referenceDesktop.clock().now();
    m_desktop.advance(std::max(-behind, 0ns));
    m_referenceDesktop.advance(std::max(behind, 0ns));
}

void EngineSession::forgetWhatHasGone() {
    alignClocks();
    for (JournalDesktop* desktop : {&m_desktop, &m_referenceDesktop})
        desktop->withoutIncident();
    std::erase_if(m_windows,
                  [&](sim::WindowId id) { return !m_desktop.isOpen(id) && !m_referenceDesktop.isOpen(id); });
    std::erase_if(m_pids, [&](ProcessId pid) { return !m_desktop.isRunning(pid); });
}

// Steps

void EngineSession::useHotKey() {
    if (m_dice.oneIn(10)) {
        const int number = m_dice.between(1, 7);
        const Work work = incident();
        onBoth([&](JournalDesktop& desktop) { desktop.afterWrite(number, work); });
    }
    const auto zone = static_cast<ActionID::Case>(m_dice.below(kZoneSlots));
    const auto half = static_cast<ActionID::Case>(m_dice.between(ActionID::leftHalf, ActionID::maximize));
    const ActionID action = m_dice.pick<ActionID>(
        {zone, zone, zone, zone, half, half, ActionID::center, ActionID::restore, ActionID::restore,
         ActionID::nextDisplay, ActionID::previousDisplay, ActionID::arrangeAll, ActionID::arrangeAll});
    m_what = action.title().data(); // a string literal, so it is null-terminated
    const auto binding = m_store.binding(action);
    if (!binding || m_dice.oneIn(5)) {
        const auto id = m_dice.oneIn(40) ? static_cast<std::uint32_t>(m_dice.between(19, 40))
                                         : static_cast<std::uint32_t>(action);
        m_hotKeys.handle(id);
        m_reference.handle(id);
        return;
    }
    onBoth([&](JournalDesktop& desktop) {
        desktop.pressKeys(static_cast<std::uint32_t>(binding->keyCode),
                          static_cast<std::uint32_t>(binding->mods));
    });
}

void EngineSession::placeDirectly(sim::WindowId window) {
    const ProcessId pid = m_desktop.window(window).pid;
    const Rect frame = randomFrame(m_dice, screens());
    const auto within = m_dice.oneIn(2) ? std::optional(randomFrame(m_dice, screens())) : std::nullopt;
    const auto previous =
        m_dice.oneIn(2) ? std::optional(randomlyMoved(m_dice, m_desktop.frame(window))) : std::nullopt;
    m_requested[window] = frame;
    m_engine.place(m_desktop.element(window), pid, frame, within, previous);
    m_reference.place(m_referenceDesktop.element(window), pid, frame, within, previous);
}

void EngineSession::placeOrRestoreLate() {
    m_what = "placements or restores are late";
    const sim::WindowId window = anyWindow();
    std::vector<Rect> frames{m_desktop.frame(window)};
    onBoth([&](JournalDesktop& desktop) { desktop.focus(window); });
    for (int times = m_dice.between(1, 4); times > 0 && m_desktop.isOpen(window); --times) {
        carryOutLate(window, [&] {
            if (m_dice.oneIn(2))
                return placeDirectly(window);
            m_hotKeys.handle(ActionID::restore);
            m_reference.handle(ActionID::restore);
        });
        alignClocks();
        if (!m_desktop.isOpen(window))
            return;
        frames.push_back(m_desktop.frame(window));
        if (m_dice.oneIn(3))
            continue; // carried out, but too late to be read
        onBoth([&, frame = m_dice.pick(frames)](JournalDesktop& desktop) {
            if (desktop.isOpen(window))
                desktop.window(window).axFrame = frame;
        });
    }
    if (m_dice.oneIn(2))
        correct(window);
}

void EngineSession::correct(sim::WindowId window) {
    m_what = "a program or the desktop corrects a frame";
    for (int times = m_dice.between(1, 3); times > 0; --times) {
        const auto requested = m_requested.find(window);
        Rect frame =
            m_dice.oneIn(2) || requested == m_requested.end() ? m_desktop.frame(window) : requested->second;
        if (m_dice.oneIn(2))
            frame = randomlyMoved(m_dice, frame);
        else if (m_dice.oneIn(2)) // the program refuses the size
            frame.width += m_dice.between(60, 1600);
        const bool isFullScreen = m_dice.oneIn(8);
        const auto report = [&] {
            onBoth([&](JournalDesktop& desktop) {
                if (isFullScreen && desktop.isOpen(window))
                    desktop.window(window).overrides["AXFullScreen"] = true;
                desktop.accessibility().correct(window, frame);
                if (isFullScreen && desktop.isOpen(window))
                    desktop.window(window).overrides.erase("AXFullScreen");
            });
        };
        if (m_dice.oneIn(2))
            carryOutLate(window, report);
        else
            report();
        alignClocks();
    }
}

/// Calls `work`, during which the window has no frame once it has been written.
void EngineSession::carryOutLate(sim::WindowId window, const std::function<void()>& work) {
    onBoth([&](JournalDesktop& desktop) {
        desktop.afterWrite(1, [window](JournalDesktop& late) {
            if (late.isOpen(window))
                late.window(window).overrides["AXPosition"] = std::nullopt;
        });
    });
    work();
    onBoth([&](JournalDesktop& desktop) {
        desktop.withoutIncident();
        if (desktop.isOpen(window))
            desktop.window(window).overrides.erase("AXPosition");
    });
}

void EngineSession::changeWindow() {
    const sim::WindowId id = anyWindow();
    switch (m_dice.below(6)) {
    case 0: {
        m_what = "a window changes its kind";
        sim::SimWindow traits = m_desktop.window(id);
        giveRandomTraits(m_dice, traits);
        onBoth([&](JournalDesktop& desktop) { desktop.window(id) = traits; });
        return;
    }
    case 1: {
        m_what = "two windows share a key";
        const auto key = static_cast<std::uintptr_t>(m_dice.below(3));
        onBoth([&](JournalDesktop& desktop) { desktop.setKey(id, key); });
        return;
    }
    case 2: {
        m_what = "the window list is wrong";
        const ListedWindow listed = randomlyListed(m_dice, m_desktop.window(id));
        return onBoth([&](JournalDesktop& desktop) { desktop.window(id).listed = listed; });
    }
    default: {
        m_what = "the user moves a window";
        const Rect from = m_desktop.frame(m_dice.oneIn(4) ? anyWindow() : id);
        const Rect to = m_dice.oneIn(3) ? randomFrame(m_dice, screens()) : randomlyMoved(m_dice, from);
        onBoth([&](JournalDesktop& desktop) { desktop.drag(id, to); });
    }
    }
}

void EngineSession::changeStack() {
    const sim::WindowId id = anyWindow();
    switch (m_dice.below(9)) {
    case 0:
        m_what = "a window closes";
        return onBoth([&](JournalDesktop& desktop) { desktop.close(id); });
    case 1:
    case 2:
        m_what = "a window opens";
        if (m_windows.size() < kMostWindows)
            openWindow();
        return;
    case 3: {
        m_what = "a program comes to the front";
        const ProcessId pid = m_desktop.window(id).pid;
        return onBoth([&](JournalDesktop& desktop) { desktop.activate(pid); });
    }
    default:
        m_what = "a window gets the focus";
        return onBoth([&](JournalDesktop& desktop) { desktop.focus(id); });
    }
}

void EngineSession::changeDisplays() {
    m_what = "the displays change";
    const auto now = screens();
    if (now.empty() || (now.size() < kMostScreens && m_dice.oneIn(3)))
        return addScreen();
    const Screen& screen = m_dice.pick(now);
    switch (m_dice.below(6)) {
    case 0:
        return onBoth([&](JournalDesktop& desktop) { desktop.removeScreen(screen.id); });
    case 1:
        return onBoth([&](JournalDesktop& desktop) { desktop.makePrimary(screen.id); });
    case 2:
        return onBoth([&](JournalDesktop& desktop) { desktop.setMainScreen(screen); });
    default: {
        Screen changed = randomScreen(m_dice, now);
        changed.id = screen.id;
        return onBoth([&](JournalDesktop& desktop) { desktop.changeScreen(changed); });
    }
    }
}

void EngineSession::changeApplication() {
    m_what = "a program changes";
    if (m_pids.empty())
        return;
    const ProcessId pid = m_dice.pick(m_pids);
    if (m_dice.oneIn(4))
        return onBoth([&](JournalDesktop& desktop) { desktop.kill(pid); });
    sim::SimApplication changed = randomApplication(m_dice);
    changed.focusedWindow = m_desktop.application(pid).focusedWindow;
    onBoth([&](JournalDesktop& desktop) { desktop.application(pid) = changed; });
}

void EngineSession::changeSettingsAndRegister() {
    m_what = "the settings change";
    changeSettings(m_dice, m_store.settings);
    m_reference.settings = m_store.settings;
    if (m_dice.oneIn(10))
        return; // the engine reads settings at the moment of use, so these take effect without a registration
    m_hotKeys.registerAll();
    m_reference.registerAll();
}

void EngineSession::changeProgram() {
    switch (m_dice.below(8)) {
    case 0:
        m_what = "pause";
        m_runtime.paused = !m_runtime.paused;
        m_reference.paused = m_runtime.paused;
        return;
    case 1: {
        m_what = "trust";
        return onBoth([](JournalDesktop& desktop) { desktop.trust().trusted = !desktop.trust().trusted; });
    }
    case 2: {
        m_what = "another program claims keys";
        const Binding binding =
            ActionID::allCases.at(m_dice.below(ActionID::allCases.size())).defaultBinding();
        m_heldByOthers.clear();
        return onBoth([&](JournalDesktop& desktop) {
            m_heldByOthers.push_back(desktop.hotKeys().holdByAnotherProgram(
                static_cast<std::uint32_t>(binding.keyCode), static_cast<std::uint32_t>(binding.mods)));
        });
    }
    case 3:
        m_what = "nobody is in front";
        return onBoth([](JournalDesktop& desktop) { desktop.deactivateAll(); });
    case 4: {
        m_what = "a window of this program opens";
        const Rect frame = randomFrame(m_dice, screens());
        if (!m_desktop.isRunning(m_desktop.workspace().ownProcessIdentifier()) || m_dice.oneIn(6)) {
            m_windows.push_back(m_desktop.openOwnWindow(frame));
            (void)m_referenceDesktop.openOwnWindow(frame);
        }
        return;
    }
    default: {
        m_what = "time passes";
        const auto time = m_dice.pick({1ms, 60ms, 500ms});
        return onBoth([&](JournalDesktop& desktop) { desktop.advance(time); });
    }
    }
}

void EngineSession::openWindow() {
    if (m_pids.empty() || (m_pids.size() < kMostApplications && m_dice.oneIn(3))) {
        const sim::SimApplication application = randomApplication(m_dice);
        m_pids.push_back(m_desktop.launch(application));
        (void)m_referenceDesktop.launch(application);
    }
    const ProcessId pid = m_dice.pick(m_pids);
    sim::SimWindow window;
    window.axFrame = m_windows.empty() || !m_dice.oneIn(6)
                         ? randomFrame(m_dice, screens())
                         : randomlyMoved(m_dice, m_desktop.frame(anyWindow()));
    window.pid = pid;
    if (m_dice.oneIn(2))
        giveRandomTraits(m_dice, window);
    m_windows.push_back(m_desktop.openWindow(pid, window));
    (void)m_referenceDesktop.openWindow(pid, window);
}

void EngineSession::addScreen() {
    Screen screen = randomScreen(m_dice, screens());
    onBoth([&](JournalDesktop& desktop) {
        screen.id = desktop.addScreen({.frame = screen.frame}).id;
        desktop.changeScreen(screen);
    });
}

EngineSession::Work EngineSession::incident() {
    const sim::WindowId id = anyWindow();
    const ProcessId pid = m_desktop.window(id).pid;
    switch (m_dice.below(6)) {
    case 0:
        return [id](JournalDesktop& desktop) { desktop.close(id); };
    case 1:
        return [pid](JournalDesktop& desktop) { desktop.kill(pid); };
    case 2:
        return [id, to = randomFrame(m_dice, screens())](JournalDesktop& desktop) {
            if (desktop.isOpen(id))
                desktop.drag(id, to);
        };
    case 3:
        return [id, attribute = m_dice.pick({"AXPosition", "AXSize"})](JournalDesktop& desktop) {
            if (desktop.isOpen(id))
                desktop.window(id).overrides[attribute] = std::nullopt;
        };
    case 4:
        return [](JournalDesktop& desktop) {
            for (const Screen& screen : desktop.displays().screens())
                desktop.removeScreen(screen.id);
        };
    default:
        return [screen = randomScreen(m_dice, {})](JournalDesktop& desktop) {
            for (const Screen& connected : desktop.displays().screens())
                desktop.changeScreen({connected.id, screen.frame, screen.visibleFrame});
        };
    }
}

} // namespace tessarel
