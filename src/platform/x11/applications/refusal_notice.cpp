// SPDX-License-Identifier: MIT

#include "platform/x11/applications/refusal_notice.h"

#include "model/config.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

namespace tessarel::x11 {

RefusalNotice::RefusalNotice(X11Accessibility& accessibility, ClientWindows& windows, MainQueuePort& queue,
                             AlertsPort& alerts)
    : m_windows(windows), m_queue(queue), m_alerts(alerts),
      m_refusals(accessibility.onRefusal([this] { refused(); })) {}

void RefusalNotice::refused() {
    const xcb_window_t manager = m_windows.manager().checkWindow;
    if (std::exchange(m_told, manager) == manager)
        return;
    const std::string appName(Config::appName);
    Alert alert{"The window manager keeps this window in place",
                appName +
                    " asked it to move the window, but the window has stayed where it was. Tiling window "
                    "managers arrange windows themselves; " +
                    appName + " moves those that float. You will not be told again.",
                {"OK"}};
    m_pending = m_queue.async([this, alert = std::move(alert)] {
        m_alert = m_alerts.show(alert, [this](std::optional<std::size_t>) { m_alert.reset(); });
    });
}

} // namespace tessarel::x11
