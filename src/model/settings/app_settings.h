// SPDX-License-Identifier: MIT

#pragma once

#include "model/binding.h"
#include "model/layout.h"
#include "model/zone.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tessarel {

/// All settings of the user. A default-constructed value holds the defaults.
struct AppSettings {
    using Bindings = std::map<std::string, Binding, std::less<>>;

    /// The active zones; always nine once loaded.
    std::vector<Zone> zones = defaultZones();
    /// Hot keys by the raw value of their action. An action without an entry has no hot key.
    Bindings bindings = defaultBindings();
    /// Layouts that the user has saved. A layout may have any number of zones.
    std::vector<Layout> userLayouts;
    /// Space between neighbouring zones, in points.
    double gap = 0;
    /// Space between the zones and the edge of the usable area, in points.
    double margin = 0;
    /// Whether windows snap into zones when dragged.
    bool dragEnabled = true;
    /// Name of the `DragTrigger`, which shows the zones during a drag (see `kDragTriggers`). An unknown name
    /// acts as "shift".
    std::string dragTrigger = "shift";
    /// Whether windows also snap when dragged to a screen edge.
    bool edgeSnap = false;
    /// Identifiers of applications whose windows are never moved.
    std::vector<std::string> ignoredApps;
    /// Whether the welcome message has been answered.
    bool hasOnboarded = false;
    /// Grid step of the zone editor, in percent.
    double gridStep = 5;
    /// Unix time of the last successful update check, in seconds.
    double lastUpdateCheck = 0;
    /// Whether to remember the last zone of each application and place its new windows there.
    bool rememberApps = true;
    /// Index (0 to 8) of the last used zone, by application identifier.
    std::map<std::string, std::int64_t, std::less<>> appZones;

    /// Returns the zones of the first preset.
    [[nodiscard]] static std::vector<Zone> defaultZones();
    /// Returns the default binding of every action.
    [[nodiscard]] static Bindings defaultBindings();

    bool operator==(const AppSettings&) const = default;
};

} // namespace tessarel
