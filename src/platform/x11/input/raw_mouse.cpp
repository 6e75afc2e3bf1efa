// SPDX-License-Identifier: MIT

#include "platform/x11/input/raw_mouse.h"

#include "platform/x11/input/modifier_flags.h"
#include "platform/x11/server/event.h"

#include <xcb/xinput.h>

namespace tessarel::x11 {

namespace {

// A client must announce its XInput version before it may select events.
constexpr std::uint16_t kMajorVersion = 2;
constexpr std::uint16_t kMinorVersion = 2;

std::uint32_t eventMask(RawMouse::Selection selection) {
    switch (selection) {
    case RawMouse::Selection::Nothing:
        return 0;
    case RawMouse::Selection::Presses:
        return XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS;
    case RawMouse::Selection::Everything:
        return XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE |
               XCB_INPUT_XI_EVENT_MASK_RAW_MOTION | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS |
               XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE;
    }
    return 0;
}

/// Converts a coordinate with 16 fractional bits. The server rounds it down in core events, too.
double wholePixels(xcb_input_fp1616_t coordinate) {
    return coordinate >> 16;
}

} // namespace

RawMouse::RawMouse(Connection& connection) : m_connection(connection) {
    const auto* const extension = xcb_get_extension_data(connection.xcb(), &xcb_input_id);
    if (!extension || !extension->present)
        return;
    const auto version = connection.reply<xcb_input_xi_query_version_reply>(
        xcb_input_xi_query_version(connection.xcb(), kMajorVersion, kMinorVersion));
    if (version && version->major_version >= kMajorVersion)
        m_opcode = extension->major_opcode;
}

void RawMouse::select(Selection selection) {
    if (!m_opcode || m_selection == selection)
        return;
    m_selection = selection;
    // The request is a header followed by the mask words, of which one is enough for all raw events.
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } const wanted{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, eventMask(selection)};
    xcb_input_xi_select_events(m_connection.xcb(), m_connection.root(), 1, &wanted.head);
}

std::optional<RawMouseEvent> RawMouse::read(const Connection::Event& event) const {
    if (!m_opcode || event.response_type != XCB_GE_GENERIC)
        return std::nullopt;
    const auto& raw = eventAs<xcb_input_raw_button_press_event_t>(event); // all raw events have this layout
    if (raw.extension != *m_opcode)
        return std::nullopt;
    switch (raw.event_type) {
    case XCB_INPUT_RAW_BUTTON_PRESS:
        return RawMouseEvent{RawMouseKind::Press, raw.detail, 0, raw.deviceid};
    case XCB_INPUT_RAW_BUTTON_RELEASE:
        return RawMouseEvent{RawMouseKind::Release, raw.detail, 0, raw.deviceid};
    case XCB_INPUT_RAW_MOTION:
        return RawMouseEvent{RawMouseKind::Motion, 0, 0, raw.deviceid};
    case XCB_INPUT_RAW_KEY_PRESS:
        return RawMouseEvent{RawMouseKind::Key, 0, raw.detail, raw.deviceid};
    case XCB_INPUT_RAW_KEY_RELEASE:
        return RawMouseEvent{RawMouseKind::Key, 0, 0, raw.deviceid};
    default:
        return std::nullopt;
    }
}

std::optional<PointerState> RawMouse::query(DeviceId pointer) {
    const auto reply = m_connection.reply<xcb_input_xi_query_pointer_reply>(
        xcb_input_xi_query_pointer(m_connection.xcbWithoutTurn(), m_connection.root(), pointer));
    if (!reply)
        return std::nullopt;
    const bool hasButtons = xcb_input_xi_query_pointer_buttons_length(reply.get()) > 0;
    // The server does not fill in `effective`.
    const std::uint32_t modifiers = reply->mods.base | reply->mods.latched | reply->mods.locked;
    return PointerState{.rootPoint = {wholePixels(reply->root_x), wholePixels(reply->root_y)},
                        .child = reply->child,
                        .buttons = hasButtons ? *xcb_input_xi_query_pointer_buttons(reply.get()) : 0U,
                        .modifiers = modifierFlags(modifiers)};
}

DeviceId RawMouse::keyboardOf(DeviceId pointer) {
    const auto reply = m_connection.reply<xcb_input_xi_query_device_reply>(
        xcb_input_xi_query_device(m_connection.xcbWithoutTurn(), pointer));
    if (!reply || reply->num_infos == 0)
        return 0;
    return xcb_input_xi_query_device_infos_iterator(reply.get()).data->attachment;
}

} // namespace tessarel::x11
