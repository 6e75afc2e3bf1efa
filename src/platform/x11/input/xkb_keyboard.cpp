// SPDX-License-Identifier: MIT

#include "platform/x11/input/xkb_keyboard.h"

#include "platform/x11/input/xcb_xkb.h"

#include <xcb/xcb.h>

namespace tessarel::x11 {

XkbKeyboard::XkbKeyboard(Connection& connection) {
    xcb_connection_t* const xcb = connection.xcb();
    const auto* const extension = xcb_get_extension_data(xcb, &xcb_xkb_id);
    if (!extension || !extension->present)
        return;
    m_eventNumber = extension->first_event;

    constexpr std::uint32_t kRepeatFlag = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    constexpr std::uint16_t kEvents = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr std::uint16_t kMaps = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
    constexpr xcb_xkb_device_spec_t kKeyboard = XCB_XKB_ID_USE_CORE_KBD;
    // The replies are of no interest: without detectable auto-repeat the program still works.
    const auto use = xcb_xkb_use_extension(xcb, 1, 0);
    const auto flags = xcb_xkb_per_client_flags(xcb, kKeyboard, kRepeatFlag, kRepeatFlag, 0, 0, 0);
    xcb_discard_reply(xcb, use.sequence);
    xcb_discard_reply(xcb, flags.sequence);
    xcb_xkb_select_events(xcb, kKeyboard, kEvents, 0, kEvents, kMaps, kMaps, nullptr);
}

void XkbKeyboard::selectLayoutChanges(Connection& connection) const {
    if (!m_eventNumber)
        return;
    xcb_xkb_select_events_details_t details{};
    details.affectState = details.stateDetails = XCB_XKB_STATE_PART_GROUP_STATE;
    xcb_xkb_select_events_aux(connection.xcb(), XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0,
                              0, 0, 0, &details);
}

bool XkbKeyboard::isLayoutChange(const Connection::Event& event) const {
    return event.response_type == m_eventNumber && event.pad0 == XCB_XKB_STATE_NOTIFY;
}

bool XkbKeyboard::isMappingChange(const Connection::Event& event) const {
    // All XKB events share one event type; the second byte holds their XKB type.
    if (event.response_type == m_eventNumber)
        return event.pad0 == XCB_XKB_NEW_KEYBOARD_NOTIFY || event.pad0 == XCB_XKB_MAP_NOTIFY;
    return event.response_type == XCB_MAPPING_NOTIFY &&
           reinterpret_cast<const xcb_mapping_notify_event_t&>(event).request != XCB_MAPPING_POINTER;
}

} // namespace tessarel::x11
