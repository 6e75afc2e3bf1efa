// SPDX-License-Identifier: MIT

#include "platform/x11/instance/command_channel.h"

#include "platform/x11/instance/command_sender.h"
#include "platform/x11/server/event.h"
#include "platform/x11/server/property.h"
#include "platform/x11/server/server_time.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace tessarel::x11 {

namespace {

constexpr std::uint32_t kBytesPerUnit = 4; // of the length of a property

/// Creates a window that is never mapped.
xcb_window_t createWindow(Connection& connection) {
    const xcb_window_t window = xcb_generate_id(connection.xcb());
    xcb_create_window(connection.xcb(), XCB_COPY_FROM_PARENT, window, connection.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    return window;
}

std::vector<std::string> split(std::string_view text) {
    std::vector<std::string> words;
    while (!text.empty()) {
        const std::size_t end = text.find(kEndOfWord);
        words.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return words;
}

} // namespace

CommandChannel::CommandChannel(Connection& connection, Run run, std::function<void()> readAhead)
    : m_connection(connection), m_run(std::move(run)), m_readAhead(std::move(readAhead)),
      m_window(createWindow(connection)),
      m_selection(connection.internAtom(commandSelection(connection.screenNumber()))),
      m_events(connection.onEvent([this](const Connection::Event& event) { handle(event); })) {
    // ICCCM wants a selection claimed with a time, and no event has led to this claim.
    claim(serverTime(connection));
}

/// The server releases a selection when its owner window is destroyed.
CommandChannel::~CommandChannel() {
    xcb_destroy_window(m_connection.xcb(), m_window);
    m_connection.flush();
}

void CommandChannel::claim(xcb_timestamp_t time) {
    xcb_set_selection_owner(m_connection.xcb(), m_window, m_selection, time);
    m_connection.flush();
}

void CommandChannel::handle(const Connection::Event& event) {
    if (eventType(event) == XCB_SELECTION_CLEAR)
        takeBack(eventAs<xcb_selection_clear_event_t>(event));
    else if (eventType(event) == XCB_SELECTION_REQUEST)
        answer(eventAs<xcb_selection_request_event_t>(event));
}

void CommandChannel::takeBack(const xcb_selection_clear_event_t& loss) {
    if (loss.owner != m_window || loss.selection != m_selection || m_returns >= kMostReturns)
        return;
    ++m_returns;
    claim(XCB_CURRENT_TIME); // another client may have claimed it later than the loss
}

void CommandChannel::answer(const xcb_selection_request_event_t& request) {
    if (request.owner != m_window || request.selection != m_selection)
        return;
    xcb_selection_notify_event_t notice{.response_type = XCB_SELECTION_NOTIFY,
                                        .pad0 = 0,
                                        .sequence = 0,
                                        .time = request.time,
                                        .requestor = request.requestor,
                                        .selection = request.selection,
                                        .target = request.target,
                                        .property = XCB_ATOM_NONE};
    const xcb_atom_t command = m_connection.atom(Atom::TessarelCommand);
    if (request.target == command && request.property == command) {
        const xcb_atom_t text = m_connection.atom(Atom::Utf8String);
        const auto words =
            requestProperty(m_connection, notice.requestor, command, text, kLongestCommand / kBytesPerUnit);
        m_readAhead();
        const CommandAnswer answer = m_run(split(bytes(propertyReply(m_connection, words))));
        std::string value(1, static_cast<char>(answer.exitCode));
        value += answer.text;
        value.resize(std::min<std::size_t>(value.size(), kLongestAnswer));
        xcb_change_property(m_connection.xcb(), XCB_PROP_MODE_REPLACE, notice.requestor, command, text, 8,
                            static_cast<std::uint32_t>(value.size()), value.data());
        notice.property = command;
    }
    // With an empty event mask the server delivers the notice to the client that created the window.
    xcb_send_event(m_connection.xcb(), 0, notice.requestor, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&notice));
    m_connection.flush();
}

} // namespace tessarel::x11
