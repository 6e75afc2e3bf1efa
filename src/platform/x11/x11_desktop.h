// SPDX-License-Identifier: MIT

#pragma once

#include "model/config.h"
#include "platform/x11/applications/accessibility.h"
#include "platform/x11/applications/application_watch.h"
#include "platform/x11/applications/applications.h"
#include "platform/x11/applications/refusal_notice.h"
#include "platform/x11/applications/workspace.h"
#include "platform/x11/displays/conversions.h"
#include "platform/x11/displays/displays.h"
#include "platform/x11/displays/monitors.h"
#include "platform/x11/input/hot_keys.h"
#include "platform/x11/input/key_names.h"
#include "platform/x11/input/mouse.h"
#include "platform/x11/instance/single_instance.h"
#include "platform/x11/main_menu.h"
#include "platform/x11/server/bell.h"
#include "platform/x11/server/connection.h"
#include "platform/x11/server/trust.h"
#include "platform/x11/windows/client_windows.h"
#include "platform/x11/windows/window_list.h"
#include "platform/x11/words.h"
#include "platform/xdg/applications/login_item.h"
#include "platform/xdg/file_preferences.h"
#include "ports/alerts_port.h"
#include "ports/main_queue_port.h"

#include <utility>

namespace tessarel::x11 {

/// All ports of the X11 back end, on one connection.
///
/// The members are in order of dependency: each refers only to members above it.
struct X11Desktop {
    /// All referenced objects must outlive the desktop. `onReadable` adds a file descriptor to the event
    /// loop; `report` shows the user a line about a problem with the settings document.
    X11Desktop(Connection& connection, Session session, MainQueuePort& queue, AlertsPort& alerts,
               xdg::OnReadable onReadable, xdg::FilePreferences::Report report)
        : monitors(connection), windows(connection), applications(windows),
          watch(connection, windows, applications),
          accessibility(connection, monitors, windows, applications, watch, queue),
          refusalNotice(accessibility, windows, queue, alerts), alertSound(connection),
          displays(connection, monitors, [this] { return windows.activeFrame(); }), hotKeys(connection),
          keyNames(connection), loginItem(xdg::XdgLoginItem::ofThisProgram(std::string(Config::appName))),
          mouse(connection, monitors, windows, queue),
          preferences(xdg::FilePreferences::userFolder(), std::move(onReadable), std::move(report)),
          singleInstance(connection), trust(connection, session, queue, alerts),
          windowList(connection, monitors, windows), workspace(applications, watch) {
        applications.readEntriesOn(queue);
    }
    X11Desktop(const X11Desktop&) = delete;
    X11Desktop& operator=(const X11Desktop&) = delete;

    /// Converts a rectangle in screen coordinates (y up) to pixels of the root window (y down). Without a
    /// monitor it assumes an empty primary display at the root window's origin.
    [[nodiscard]] Rect rootPixels(const Rect& screenFrame) {
        const auto& all = monitors.all();
        return rootFromScreen(screenFrame, all.empty() ? Rect{} : all.front().rootFrame);
    }

    Monitors monitors;
    ClientWindows windows;
    Applications applications;
    ApplicationWatch watch;
    X11Accessibility accessibility;
    RefusalNotice refusalNotice;
    X11Bell alertSound;
    X11Displays displays;
    X11HotKeys hotKeys;
    X11KeyNames keyNames;
    xdg::XdgLoginItem loginItem;
    X11MainMenu mainMenu;
    X11Mouse mouse;
    xdg::FilePreferences preferences;
    X11SingleInstance singleInstance;
    X11Trust trust;
    X11WindowList windowList;
    X11Workspace workspace;
    PlatformWords words = x11::words();
};

} // namespace tessarel::x11
