#pragma once

#include "engine/ax.h"
#include "engine/geo.h"
#include "engine/permissions.h"
#include "engine/runtime.h"
#include "engine/window_engine.h"
#include "model/store.h"
#include "model/subscription.h"
#include "ports/accessibility_port.h"
#include "ports/main_queue_port.h"
#include "ports/process_id.h"
#include "ports/workspace_port.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace tessarel {

/// Puts new windows of an application into the zone that one of its windows was last snapped into.
///
/// A window is placed once, a moment after it has been opened; what the user does to it afterwards stays.
/// Only standard windows are placed, on the screen where they opened. Every failure is silent: what cannot
/// be watched, read or moved is left alone.
class AppPlacer {
public:
    /// What it works with; all of it outlives it.
    struct Uses {
        WorkspacePort& workspace;
        AccessibilityPort& accessibility;
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
    /// Safe at any moment; a placement that waits does not happen any more.
    ~AppPlacer();

    /// Begins to watch applications, those that run already included. To be called once.
    void start();

    /// Watches every application that runs and can be watched. An application that could not be, because
    /// access was missing, is tried again.
    void watchAll();

private:
    void watch(const RunningApplication& app);
    void windowCreated(const Element& window);
    void placeExisting(const RunningApplication& app);
    void placeWindows(const RunningApplication& app);
    [[nodiscard]] std::optional<std::size_t> zoneIndex(const RunningApplication& app) const;
    void place(const Element& window, const RunningApplication& app, std::size_t index);
    [[nodiscard]] bool isPlaceable(const Element& window) const;
    void notePlaced(WindowEngine::WindowKey window);
    void later(MainQueuePort::Duration delay, std::function<void(AppPlacer&)> work);

    Uses m_uses;
    std::unordered_map<ProcessId, SubscriptionPtr> m_observers; ///< of new windows
    std::unordered_set<WindowEngine::WindowKey> m_placed;       ///< windows that are never placed again
    std::vector<SubscriptionPtr> m_events;                      ///< what `start` has registered
    std::shared_ptr<AppPlacer*> m_self; // shared with work on the main queue, which may outlive us
};

} // namespace tessarel
