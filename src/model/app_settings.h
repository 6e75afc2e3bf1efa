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

/// All user settings; a fresh value holds the defaults.
struct AppSettings {
    using Bindings = std::map<std::string, Binding, std::less<>>;

    /// The active zone set: always nine once loaded.
    std::vector<Zone> zones = defaultZones();
    /// Raw value of an action to its hot key; an action without an entry has none.
    Bindings bindings = defaultBindings();
    /// Layouts that the user saved under a name, as they were saved.
    std::vector<Layout> userLayouts;
    /// Space between neighbouring zones, in points.
    double gap = 0;
    /// Space between zones and the edge of the usable area, in points.
    double margin = 0;
    /// Drag-to-snap on or off.
    bool dragEnabled = true;
    /// Modifier that shows the zones during a drag: "shift", "control", "command" or "always".
    std::string dragTrigger = "shift";
    /// Snapping by dragging a window against a screen edge.
    bool edgeSnap = false;
    /// Identifiers of applications whose windows are left alone.
    std::vector<std::string> ignoredApps;
    /// The first-run welcome has been shown.
    bool hasOnboarded = false;
    /// Snapping step of the zone editor, in percent.
    double gridStep = 5;
    /// Time of the last automatic update check, in seconds since 1970-01-01 00:00 UTC.
    double lastUpdateCheck = 0;
    /// Remember each application's last zone and place its new windows there.
    bool rememberApps = true;
    /// Application identifier to the index (0 to 8) of the zone it used last.
    std::map<std::string, std::int64_t, std::less<>> appZones;

    /// The first preset.
    [[nodiscard]] static std::vector<Zone> defaultZones();
    /// Every action with its default binding.
    [[nodiscard]] static Bindings defaultBindings();

    bool operator==(const AppSettings&) const = default;
};

} // namespace tessarel
