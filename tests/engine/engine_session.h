// SPDX-License-Identifier: MIT

#pragma once

#include "engine/action_runner.h"
#include "engine/ax.h"
#include "engine/dice.h"
#include "engine/geo.h"
#include "engine/hot_keys.h"
#include "engine/journal_desktop.h"
#include "engine/permissions.h"
#include "engine/reference_engine.h"
#include "engine/runtime.h"
#include "engine/window_engine.h"
#include "model/settings/store.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tessarel {

/// A random user session that runs twice: with the program's engine and with the reference engine. Each has a
/// simulated desktop of its own, and every step happens on both.
class EngineSession {
public:
    explicit EngineSession(std::uint64_t seed);

    /// Performs one random step on both desktops.
    void step();
    /// Returns a readable report of what the last step did differently on the two desktops, or `std::nullopt`
    /// when they agree.
    [[nodiscard]] std::optional<std::string> difference();

    [[nodiscard]] const ReferenceEngine::Branches& branches() const { return m_reference.branches(); }

private:
    using Work = std::function<void(JournalDesktop&)>;

    void onBoth(const Work& work);
    [[nodiscard]] sim::WindowId anyWindow() { return m_dice.pick(m_windows); }
    [[nodiscard]] std::vector<Screen> screens() { return m_desktop.displays().screens(); }
    void alignClocks();
    void forgetWhatHasGone();

    // Steps.
    void useHotKey();
    void placeDirectly(sim::WindowId window);
    void placeOrRestoreLate();
    void correct(sim::WindowId window);
    void carryOutLate(sim::WindowId window, const std::function<void()>& work);
    void changeWindow();
    void changeStack();
    void changeDisplays();
    void changeApplication();
    void changeSettingsAndRegister();
    void changeProgram();
    void openWindow();
    void addScreen();
    [[nodiscard]] Work incident();

    Dice m_dice;
    JournalDesktop m_desktop;
    Store m_store{m_desktop.journalPreferences()};
    Geo m_geo{m_desktop.displays(), m_store};
    AX m_ax{m_desktop.accessibility(), m_desktop.workspace()};
    WindowEngine m_engine{m_ax,
                          m_geo,
                          m_desktop.displays(),
                          m_desktop.workspace(),
                          m_desktop.windowList(),
                          m_desktop.journalAlertSound(),
                          m_store};
    Runtime m_runtime;
    Permissions m_permissions{m_desktop.journalTrust()};
    ActionRunner m_runner{m_engine, m_store, m_permissions, m_runtime};
    HotKeys m_hotKeys{m_desktop.journalHotKeys(), m_runner, m_store};

    JournalDesktop m_referenceDesktop;
    ReferenceEngine m_reference;

    const char* m_what = "beginning";
    std::vector<sim::WindowId> m_windows;
    std::map<sim::WindowId, Rect> m_requested; ///< the last frame of each window that was placed directly
    std::vector<ProcessId> m_pids;
    std::vector<SubscriptionPtr> m_heldByOthers;
};

} // namespace tessarel
