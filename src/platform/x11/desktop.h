#pragma once

#include "model/config.h"
#include "platform/x11/accessibility.h"
#include "platform/x11/application_watch.h"
#include "platform/x11/applications.h"
#include "platform/x11/bell.h"
#include "platform/x11/client_windows.h"
#include "platform/x11/connection.h"
#include "platform/x11/conversions.h"
#include "platform/x11/displays.h"
#include "platform/x11/file_preferences.h"
#include "platform/x11/hot_keys.h"
#include "platform/x11/login_item.h"
#include "platform/x11/main_menu.h"
#include "platform/x11/monitors.h"
#include "platform/x11/mouse.h"
#include "platform/x11/single_instance.h"
#include "platform/x11/trust.h"
#include "platform/x11/window_list.h"
#include "platform/x11/words.h"
#include "platform/x11/workspace.h"
#include "ports/alerts_port.h"
#include "ports/main_queue_port.h"
#include "ports/open_url_port.h"

namespace tessarel::x11 {

/// An X11 desktop: every port of this back end, on one connection.
struct X11Desktop {
    /// All references outlive the desktop.
    X11Desktop(Connection& connection, Session session, MainQueuePort& queue, AlertsPort& alerts,
               OpenUrlPort& openUrl)
        : monitors(connection), windows(connection), applications(windows),
          watch(connection, windows, applications), accessibility(connection, monitors, windows, watch),
          alertSound(connection), displays(connection, monitors, windows), hotKeys(connection),
          loginItem(XdgLoginItem::ofThisProgram(std::string(Config::appName))),
          mouse(connection, monitors, windows, queue), preferences(FilePreferences::userFolder()),
          singleInstance(connection), trust(connection, session, queue, alerts, openUrl),
          windowList(connection, monitors, windows), workspace(applications, watch) {}
    X11Desktop(const X11Desktop&) = delete;
    X11Desktop& operator=(const X11Desktop&) = delete;

    /// The pixels of the root window, y down, that a rectangle in screen coordinates covers.
    [[nodiscard]] Rect rootPixels(const Rect& screenFrame) {
        const auto& all = monitors.all();
        return rootFromScreen(screenFrame, all.empty() ? Rect{} : all.front().rootFrame);
    }

    Monitors monitors;
    ClientWindows windows;
    Applications applications;
    ApplicationWatch watch;
    X11Accessibility accessibility;
    X11Bell alertSound;
    X11Displays displays;
    X11HotKeys hotKeys;
    XdgLoginItem loginItem;
    X11MainMenu mainMenu;
    X11Mouse mouse;
    FilePreferences preferences;
    X11SingleInstance singleInstance;
    X11Trust trust;
    X11WindowList windowList;
    X11Workspace workspace;
    PlatformWords words = x11::words();
};

} // namespace tessarel::x11
