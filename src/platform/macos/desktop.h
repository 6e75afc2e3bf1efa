// SPDX-License-Identifier: MIT

#pragma once

#include "platform/macos/input/hot_keys.h"
#include "platform/macos/input/key_names.h"
#include "platform/macos/input/local_keys.h"
#include "platform/macos/input/mouse.h"
#include "platform/macos/shell/main_menu.h"
#include "platform/macos/shell/open_panel.h"
#include "platform/macos/shell/preferences.h"
#include "platform/macos/shell/services.h"
#include "platform/macos/shell/single_instance.h"
#include "platform/macos/shell/status_item.h"
#include "platform/macos/shell/trust.h"
#include "platform/macos/shell/words.h"
#include "platform/macos/windows/accessibility.h"
#include "platform/macos/windows/displays.h"
#include "platform/macos/windows/window_list.h"
#include "platform/macos/windows/workspace.h"

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
    MacKeyNames keyNames;
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
