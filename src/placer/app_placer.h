// SPDX-License-Identifier: MIT

#pragma once

#include "engine/ax.h"
#include "engine/geo.h"
#include "engine/permissions.h"
#include "engine/runtime.h"
#include "engine/window_engine.h"
#include "model/settings/store.h"
#include "model/subscription.h"
#include "ports/deferred_work.h"
#include "ports/desktop/accessibility_port.h"
#include "ports/desktop/process_id.h"
#include "ports/desktop/workspace_port.h"
#include "ports/main_queue_port.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace tessarel {

/// Places new windows of an application in the zone that it used last.
///
/// A window is placed only once, shortly after it has opened, so it stays where the user moves it afterwards.
/// Only standard windows are placed, on the screen where they open. All failures are silent: what cannot be
/// observed, read or moved is left alone.
class AppPlacer {
public:
    /// What this class works with. All of it must outlive this object.
    struct Uses {
        WorkspacePort& workspace;
        MainQueuePort& mainQueue;
        Store& store;
        const Runtime& runtime;
        const Permissions& permissions;
        const Geo& geo;
        const AX& ax;
        WindowEngine& engine;
    };

    explicit AppPlacer(const Uses& uses);
    AppPlacer(const AppPlacer&) = delete;
    AppPlacer& operator=(const AppPlacer&) = delete;
    /// Discards pending placements.
    ~AppPlacer() = default;

    /// Starts to observe applications, including those already running. Call once.
    void start();

    /// Observes every running application that can be observed. Tries again for those that could not be
    /// observed earlier because access was missing.
    void watchAll();

private:
    void watch(const RunningApplication& app);
    void windowCreated(const Element& window);
    void placeExisting(const RunningApplication& app);
    void placeWindows(const RunningApplication& app, bool isWanted);
    void placeIdentified(const Element& window, const RunningApplication& app,
                         std::optional<std::size_t> index);
    [[nodiscard]] std::optional<std::size_t> zoneIndex(const RunningApplication& app) const;
    [[nodiscard]] std::optional<std::int64_t> rememberedZone(const RunningApplication& app) const;
    void place(const Element& window, const RunningApplication& app, std::size_t index);
    [[nodiscard]] bool isPlaceable(const Element& window) const;
    void notePlaced(WindowEngine::WindowKey window);

    Uses m_uses;
    /// Observers of new windows, by application.
    std::unordered_map<ProcessId, SubscriptionPtr> m_observers;
    /// Windows that are not placed again.
    std::unordered_set<WindowEngine::WindowKey> m_placed;
    /// Subscriptions made by `start`.
    std::vector<SubscriptionPtr> m_events;
    /// Pending placements.
    DeferredWork m_placements;
};

} // namespace tessarel
