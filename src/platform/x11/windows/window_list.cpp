// SPDX-License-Identifier: MIT

#include "platform/x11/windows/window_list.h"

#include "platform/x11/displays/conversions.h"
#include "platform/x11/server/property.h"
#include "platform/x11/windows/stacking.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <unordered_map>

namespace tessarel::x11 {

namespace {

constexpr std::int64_t kApplicationLayer = 0;
constexpr std::int64_t kFloatingLayer = 3; // any value other than 0 will do

/// The pending requests for the desktop and the opacity of a window. `collect` must be called once, before
/// the other functions.
class AppearanceRequest {
public:
    AppearanceRequest(Connection& connection, xcb_window_t window)
        : m_connection(connection), m_desktop(requestNumber(connection, window, Atom::NetWmDesktop)),
          m_opacity(requestNumber(connection, window, Atom::NetWmWindowOpacity)) {}

    /// Waits for the replies.
    void collect() {
        const auto desktop = propertyReply(m_connection, m_desktop);
        const auto opacity = propertyReply(m_connection, m_opacity);
        m_desktopNumber = value(desktop);
        if (const auto opaque = value(opacity))
            m_alpha = *opaque / static_cast<double>(std::numeric_limits<std::uint32_t>::max());
    }

    /// Returns whether the window is on desktop `current`. Returns true when either desktop is unknown,
    /// because some windows and window managers do not set them.
    [[nodiscard]] bool isOn(std::optional<std::uint32_t> current) const {
        return !current || !m_desktopNumber || m_desktopNumber == current || m_desktopNumber == kAllDesktops;
    }
    /// Returns the opacity from 0 (transparent) to 1 (opaque), or `std::nullopt` when it is not set.
    [[nodiscard]] std::optional<double> alpha() const { return m_alpha; }

private:
    Connection& m_connection;
    xcb_get_property_cookie_t m_desktop;
    xcb_get_property_cookie_t m_opacity;
    std::optional<std::uint32_t> m_desktopNumber;
    std::optional<double> m_alpha;
};

/// Returns layer 0 for windows that a user works in, another layer for the rest.
std::int64_t layerOf(WindowType type) {
    switch (type) {
    case WindowType::Unspecified:
    case WindowType::Normal:
    case WindowType::Dialog:
    case WindowType::Utility:
        return kApplicationLayer;
    case WindowType::Splash:
    case WindowType::Toolbar:
    case WindowType::Menu:
    case WindowType::Other:
        break;
    }
    return kFloatingLayer;
}

} // namespace

X11WindowList::X11WindowList(Connection& connection, Monitors& monitors, ClientWindows& windows)
    : m_connection(connection), m_monitors(monitors), m_windows(windows) {}

std::vector<ListedWindow> X11WindowList::onScreenWindows() {
    const std::vector<xcb_window_t> announced = m_windows.frontToBack(); // the first round trip
    // All requests below are sent before the first reply is read: the second round trip.
    StackingRequest stacking(m_connection, announced);
    const auto currentCookie = requestNumber(m_connection, m_connection.root(), Atom::NetCurrentDesktop);
    std::unordered_map<xcb_window_t, AppearanceRequest> appearances;
    for (const xcb_window_t window : announced)
        appearances.try_emplace(window, m_connection, window);
    m_windows.learnAll(announced);
    const auto currentReply = propertyReply(m_connection, currentCookie);
    const auto current = value(currentReply);

    std::vector<ListedWindow> listed;
    for (const xcb_window_t window : stacking.collect()) {
        AppearanceRequest& appearance = appearances.at(window);
        appearance.collect();
        const auto frame = m_windows.frame(window);
        if (!frame || frame->isMinimized || !appearance.isOn(current))
            continue;
        const auto pid = m_windows.pid(window);
        listed.push_back({layerOf(m_windows.traits(window).type), pid,
                          axFromRoot(frame->outer(), m_monitors.primaryOrigin()), appearance.alpha(),
                          pid ? std::optional(elementKey(*pid, window)) : std::nullopt});
    }
    return listed;
}

} // namespace tessarel::x11
