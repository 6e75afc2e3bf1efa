#pragma once

#include "platform/macos/accessibility.h"
#include "platform/macos/displays.h"
#include "platform/macos/hot_keys.h"
#include "platform/macos/local_keys.h"
#include "platform/macos/main_menu.h"
#include "platform/macos/mouse.h"
#include "platform/macos/open_panel.h"
#include "platform/macos/preferences.h"
#include "platform/macos/services.h"
#include "platform/macos/single_instance.h"
#include "platform/macos/status_item.h"
#include "platform/macos/trust.h"
#include "platform/macos/window_list.h"
#include "platform/macos/words.h"
#include "platform/macos/workspace.h"

#include <utility>

namespace tessarel::macos {

/// A macOS desktop: every port of this back end.
struct MacDesktop {
    explicit MacDesktop(MacMainMenu::Toolkit toolkit = nullptr) : mainMenu(std::move(toolkit)) {}
    MacDesktop(const MacDesktop&) = delete;
    MacDesktop& operator=(const MacDesktop&) = delete;

    MacWorkspace workspace;
    MacAccessibility accessibility{workspace};
    MacAlertSound alertSound;
    MacDisplays displays;
    MacLocalKeys localKeys{workspace};
    MacHotKeys hotKeys{localKeys};
    MacLoginItem loginItem;
    MacMainMenu mainMenu;
    MacMouse mouse;
    MacOpenPanel openPanel;
    MacOpenUrl openUrl;
    MacPreferences preferences;
    MacSingleInstance singleInstance;
    MacStatusItem statusItem;
    MacTrust trust{openUrl};
    MacWindowList windowList;
    PlatformWords words = macos::words();
};

} // namespace tessarel::macos
