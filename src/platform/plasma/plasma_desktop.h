// SPDX-License-Identifier: MIT

#pragma once

#include "model/config.h"
#include "platform/plasma/bridge.h"
#include "platform/plasma/drag_modifiers.h"
#include "platform/plasma/keys/global_shortcuts.h"
#include "platform/plasma/keys/key_names.h"
#include "platform/plasma/keys/keyboard_layout.h"
#include "platform/plasma/main_menu.h"
#include "platform/plasma/single_instance.h"
#include "platform/plasma/trust.h"
#include "platform/plasma/words.h"
#include "platform/wayland/accessibility.h"
#include "platform/wayland/application_watch.h"
#include "platform/wayland/applications.h"
#include "platform/wayland/bus_link.h"
#include "platform/wayland/coordinates.h"
#include "platform/wayland/desktop_ports.h"
#include "platform/wayland/drag_mouse.h"
#include "platform/wayland/mirror.h"
#include "platform/xdg/applications/login_item.h"
#include "platform/xdg/file_preferences.h"
#include "platform/xdg/home_folder.h"
#include "ports/alerts_port.h"
#include "ports/main_queue_port.h"

#include <filesystem>
#include <utility>

namespace tessarel::plasma {

/// All ports of the back end for KDE Plasma on Wayland, on one connection to the session bus.
///
/// The members are in order of dependency: each refers only to members above it.
struct PlasmaDesktop {
    /// All referenced objects must outlive the desktop. `keymap` is used until that of the seat is known.
    /// Files for KWin are written to `runtimeFolder`.
    PlasmaDesktop(wayland::BusLink& link, SingleInstance& singleInstance, xkb::Keymap keymap,
                  MainQueuePort& queue, AlertsPort& alerts, const std::filesystem::path& runtimeFolder,
                  xdg::OnReadable onReadable, xdg::FilePreferences::Report report)
        : singleInstance(singleInstance), bridge(link, mirror, queue, runtimeFolder, report),
          applications(mirror, queue), watch(mirror, applications),
          accessibility(mirror, bridge, applications, watch, queue), displays(mirror),
          keyboardLayout(link, std::move(keymap)), hotKeys(link, keyboardLayout),
          loginItem(xdg::XdgLoginItem::ofThisProgram(std::string(Config::appName))),
          dragModifiers(link, mirror, queue, xdg::dataFolder()), mouse(mirror, dragModifiers),
          modifierChanges(dragModifiers.onChange([this] { mouse.modifiersChanged(); })),
          modifiersTried(dragModifiers.onTried([this](bool areReported) {
              words.dragNote = areReported ? kKeysReported : kNoKeysReported;
              words.dragNoteChanged.send();
          })),
          preferences(xdg::FilePreferences::userFolder(), std::move(onReadable), std::move(report)),
          windowsKnown(mirror.onReady([this] { hotKeys.deliver(); })),
          scriptFailed(bridge.onFailed([this] { hotKeys.drop(); })), trust(bridge, mirror, queue, alerts),
          windowList(mirror), workspace(applications, watch), keyNames(keyboardLayout) {
        hotKeys.holdBack();
    }
    PlasmaDesktop(const PlasmaDesktop&) = delete;
    PlasmaDesktop& operator=(const PlasmaDesktop&) = delete;

    /// Converts a rectangle from screen coordinates (y up) to the compositor's (y down).
    [[nodiscard]] Rect compositorFrame(const Rect& screenFrame) const {
        return wayland::compositorFromScreen(screenFrame, mirror.primary());
    }

    SingleInstance& singleInstance;
    wayland::Mirror mirror;
    Bridge bridge;
    wayland::Applications applications;
    wayland::ApplicationWatch watch;
    wayland::Accessibility accessibility;
    wayland::Displays displays;
    KeyboardLayout keyboardLayout;
    GlobalShortcuts hotKeys;
    xdg::XdgLoginItem loginItem;
    DragModifiers dragModifiers;
    wayland::DragMouse mouse;
    SubscriptionPtr modifierChanges;
    SubscriptionPtr modifiersTried;
    xdg::FilePreferences preferences;
    SubscriptionPtr windowsKnown;
    SubscriptionPtr scriptFailed;
    Trust trust;
    wayland::WindowList windowList;
    wayland::Workspace workspace;
    NoMainMenu mainMenu;
    LayoutKeyNames keyNames;
    PlatformWords words = plasma::words();
};

} // namespace tessarel::plasma
