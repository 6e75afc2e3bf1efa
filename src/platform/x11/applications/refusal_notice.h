// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/x11/applications/accessibility.h"
#include "platform/x11/windows/client_windows.h"
#include "ports/alerts_port.h"
#include "ports/main_queue_port.h"

#include <xcb/xcb.h>

namespace tessarel::x11 {

/// Tells the user, once for each window manager, that it has refused to move a window.
class RefusalNotice {
public:
    /// All referenced objects must outlive this one.
    RefusalNotice(X11Accessibility& accessibility, ClientWindows& windows, MainQueuePort& queue,
                  AlertsPort& alerts);

private:
    void refused();

    ClientWindows& m_windows;
    MainQueuePort& m_queue;
    AlertsPort& m_alerts;
    xcb_window_t m_told = XCB_WINDOW_NONE; // the check window of the window manager that was last reported
    SubscriptionPtr m_pending;
    SubscriptionPtr m_alert; // not null while the notice is shown
    SubscriptionPtr m_refusals;
};

} // namespace tessarel::x11
