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

#include <cstdint>
#include <ratio>
#include <thread>
#include <utility>

namespace tessarel::macos {

/// The ports that this back end implements. Main queue, alerts and overlay are implemented with Qt instead.
struct MacDesktop {
    /// `queue` must outlive the desktop. `toolkit` performs menu actions in the toolkit's own windows; see
    /// `MacMainMenu::Toolkit`. `wait` blocks the calling thread for the given time; see `LateFrames`.
    explicit MacDesktop(MainQueuePort& queue, MacMainMenu::Toolkit toolkit = nullptr,
                        LateFrames::Wait wait = std::this_thread::sleep_for<std::int64_t, std::milli>)
        : accessibility(workspace, queue, std::move(wait)), mainMenu(std::move(toolkit)), statusItem(queue) {}
    MacDesktop(const MacDesktop&) = delete;
    MacDesktop& operator=(const MacDesktop&) = delete;

    // A member follows those that it refers to: `workspace`, `localKeys` and `openUrl` are used by others.
    MacWorkspace workspace;
    MacAccessibility accessibility;
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
