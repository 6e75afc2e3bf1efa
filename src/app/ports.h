// SPDX-License-Identifier: MIT

#pragma once

#include "model/settings/preferences_port.h"
#include "ports/alert_sound_port.h"
#include "ports/alerts_port.h"
#include "ports/application_port.h"
#include "ports/desktop/accessibility_port.h"
#include "ports/desktop/displays_port.h"
#include "ports/desktop/hot_key_port.h"
#include "ports/desktop/key_names_port.h"
#include "ports/desktop/local_keys_port.h"
#include "ports/desktop/mouse_port.h"
#include "ports/desktop/overlay_port.h"
#include "ports/desktop/window_list_port.h"
#include "ports/desktop/workspace_port.h"
#include "ports/login_item_port.h"
#include "ports/main_menu_port.h"
#include "ports/main_queue_port.h"
#include "ports/open_panel_port.h"
#include "ports/open_url_port.h"
#include "ports/platform_words.h"
#include "ports/single_instance_port.h"
#include "ports/status_item_port.h"
#include "ports/trust_port.h"
#include "ports/url_loading_port.h"
#include "ports/wall_clock_port.h"

namespace tessarel {

/// References to all ports of one back end. The ports must outlive the objects that use them.
struct Ports {
    AccessibilityPort& accessibility;
    AlertSoundPort& alertSound;
    AlertsPort& alerts;
    ApplicationPort& application;
    DisplaysPort& displays;
    HotKeyPort& hotKeys;
    KeyNamesPort& keyNames;
    LocalKeysPort& localKeys;
    LoginItemPort& loginItem;
    MainMenuPort& mainMenu;
    MainQueuePort& mainQueue;
    MousePort& mouse;
    OpenPanelPort& openPanel;
    OpenUrlPort& openUrl;
    OverlayPort& overlay;
    PreferencesPort& preferences;
    SingleInstancePort& singleInstance;
    StatusItemPort& statusItem;
    TrustPort& trust;
    UrlLoadingPort& urlLoading;
    WallClockPort& wallClock;
    WindowListPort& windowList;
    WorkspacePort& workspace;
    const PlatformWords& words;
};

} // namespace tessarel
