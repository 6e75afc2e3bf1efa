#pragma once

#include "model/preferences_port.h"
#include "ports/accessibility_port.h"
#include "ports/alert_sound_port.h"
#include "ports/displays_port.h"
#include "ports/hot_key_port.h"
#include "ports/single_instance_port.h"
#include "ports/trust_port.h"
#include "ports/window_list_port.h"
#include "ports/workspace_port.h"

namespace tessarel {

/// All that the program asks of a desktop, from one back end. What they refer to outlives the program.
struct Ports {
    AccessibilityPort& accessibility;
    AlertSoundPort& alertSound;
    DisplaysPort& displays;
    HotKeyPort& hotKeys;
    PreferencesPort& preferences;
    SingleInstancePort& singleInstance;
    TrustPort& trust;
    WindowListPort& windowList;
    WorkspacePort& workspace;
};

} // namespace tessarel
