// SPDX-License-Identifier: MIT

#include "platform/x11/displays/monitors.h"

#include "platform/x11/server/event.h"

#include <xcb/randr.h>

#include <algorithm>
#include <optional>

namespace tessarel::x11 {

namespace {

/// Returns whether one of the monitors shows nothing that the other one does not show.
bool areMirrors(const Monitor& a, const Monitor& b) {
    const Rect common = a.rootFrame.intersection(b.rootFrame);
    return common == a.rootFrame || common == b.rootFrame;
}

/// Returns every monitor with a non-empty area, the primary one first, in root coordinates. Of monitors that
/// mirror each other, only the first is listed.
std::vector<Monitor> monitorsIn(const xcb_randr_get_monitors_reply_t* reply) {
    std::vector<Monitor> monitors;
    for (auto infos = xcb_randr_get_monitors_monitors_iterator(reply); infos.rem > 0;
         xcb_randr_monitor_info_next(&infos)) {
        const xcb_randr_monitor_info_t& info = *infos.data;
        if (info.width == 0 || info.height == 0)
            continue;
        const Monitor monitor{info.name,
                              {static_cast<double>(info.x), static_cast<double>(info.y),
                               static_cast<double>(info.width), static_cast<double>(info.height)}};
        monitors.insert(info.primary ? monitors.begin() : monitors.end(), monitor);
    }
    for (auto monitor = monitors.begin(); monitor != monitors.end(); ++monitor) {
        monitors.erase(std::remove_if(monitor + 1, monitors.end(),
                                      [&](const Monitor& later) { return areMirrors(*monitor, later); }),
                       monitors.end());
    }
    return monitors;
}

} // namespace

Monitors::Monitors(Connection& connection)
    : m_connection(connection),
      m_observer(connection.onRead([this](const Connection::Event& event) { note(event); })) {
    // ConfigureNotify of the root window reports a new size also on servers without RandR.
    connection.selectRootEvents(XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    if (connection.extensions().randrMonitors)
        xcb_randr_select_input(connection.xcb(), connection.root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
}

const std::vector<Monitor>& Monitors::all() {
    refresh();
    return m_monitors;
}

Size Monitors::rootSize() {
    refresh();
    return m_rootSize;
}

Point Monitors::primaryOrigin() {
    refresh();
    return m_monitors.empty() ? Point{} : m_monitors.front().rootFrame.origin();
}

/// Invalidates the cache on RandR events and when the root window changes size.
void Monitors::note(const Connection::Event& event) {
    const Extensions& extensions = m_connection.extensions();
    const std::uint8_t type =
        event.response_type; // no window manager sends a ConfigureNotify of the root window
    const bool isRandr =
        extensions.randrMonitors && (type == extensions.randrFirstEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                                     type == extensions.randrFirstEvent + XCB_RANDR_NOTIFY);
    const bool isRoot = type == XCB_CONFIGURE_NOTIFY &&
                        eventAs<xcb_configure_notify_event_t>(event).window == m_connection.root();
    if (isRandr || isRoot)
        m_isCurrent = false;
}

void Monitors::refresh() {
    if (m_isCurrent)
        return;
    m_isCurrent = true; // set first, so that an event read along with the replies can reset it
    const auto geometryCookie = xcb_get_geometry(m_connection.xcb(), m_connection.root());
    std::optional<xcb_randr_get_monitors_cookie_t> monitorsCookie;
    if (m_connection.extensions().randrMonitors)
        monitorsCookie = xcb_randr_get_monitors(m_connection.xcb(), m_connection.root(), 1); // active only
    const auto geometry = m_connection.reply<xcb_get_geometry_reply>(geometryCookie);
    m_rootSize =
        geometry ? Size{static_cast<double>(geometry->width), static_cast<double>(geometry->height)} : Size{};
    m_monitors.clear();
    if (monitorsCookie) {
        if (const auto monitors = m_connection.reply<xcb_randr_get_monitors_reply>(*monitorsCookie))
            m_monitors = monitorsIn(monitors.get());
    }
    if (m_monitors.empty() && geometry)
        m_monitors = {{m_connection.root(), {0, 0, m_rootSize.width, m_rootSize.height}}};
}

} // namespace tessarel::x11
