// SPDX-License-Identifier: MIT

#include "platform/x11/server/command_channel.h"

#include "platform/x11/server/event.h"
#include "platform/x11/server/property.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

namespace tessarel::x11 {

namespace {

constexpr char kEndOfWord = '\0';
constexpr std::uint32_t kBytesPerUnit = 4; // of the length of a property
constexpr std::uint32_t kLongestAnswer = 1U << 20U;

/// Creates a window that is never mapped.
xcb_window_t createWindow(Connection& connection, std::uint32_t events) {
    const xcb_window_t window = xcb_generate_id(connection.xcb());
    xcb_create_window(connection.xcb(), XCB_COPY_FROM_PARENT, window, connection.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    return window;
}

void setWindow(Connection& connection, xcb_window_t on, Atom property, xcb_window_t value) {
    xcb_change_property(connection.xcb(), XCB_PROP_MODE_REPLACE, on, connection.atom(property),
                        XCB_ATOM_WINDOW, 32, 1, &value);
}

void setBytes(Connection& connection, xcb_window_t on, Atom property, std::string_view value) {
    xcb_change_property(connection.xcb(), XCB_PROP_MODE_REPLACE, on, connection.atom(property),
                        connection.atom(Atom::Utf8String), 8, static_cast<std::uint32_t>(value.size()),
                        value.data());
}

std::string bytesOf(Connection& connection, xcb_window_t on, Atom property, std::uint32_t most) {
    return bytes(
        propertyReply(connection, requestProperty(connection, on, connection.atom(property),
                                                  connection.atom(Atom::Utf8String), most / kBytesPerUnit)));
}

std::optional<xcb_window_t> windowIn(Connection& connection, xcb_window_t on) {
    return value(
        propertyReply(connection, requestProperty(connection, on, connection.atom(Atom::TessarelCommands),
                                                  XCB_ATOM_WINDOW, 1)));
}

/// Returns the window of the channel. A crashed copy has left its id on the root window, but not the window.
std::optional<xcb_window_t> channelOf(Connection& connection) {
    const auto window = windowIn(connection, connection.root());
    return window && windowIn(connection, *window) == window ? window : std::nullopt;
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

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text.append(word.c_str()).push_back(kEndOfWord);
    return text;
}

} // namespace

CommandChannel::CommandChannel(Connection& connection,
                               std::function<CommandAnswer(const std::vector<std::string>& words)> run)
    : m_connection(connection), m_run(std::move(run)),
      m_window(createWindow(connection, XCB_EVENT_MASK_NO_EVENT)),
      m_events(connection.onEvent([this](const Connection::Event& event) { handle(event); })) {
    setWindow(connection, m_window, Atom::TessarelCommands, m_window);
    setWindow(connection, connection.root(), Atom::TessarelCommands, m_window);
    connection.flush();
}

CommandChannel::~CommandChannel() {
    if (windowIn(m_connection, m_connection.root()) == m_window)
        xcb_delete_property(m_connection.xcb(), m_connection.root(),
                            m_connection.atom(Atom::TessarelCommands));
    xcb_destroy_window(m_connection.xcb(), m_window);
    m_connection.flush();
}

void CommandChannel::handle(const Connection::Event& event) {
    if (eventType(event) != XCB_CLIENT_MESSAGE)
        return;
    const auto& message = eventAs<xcb_client_message_event_t>(event);
    if (message.window != m_window || message.format != 32 ||
        message.type != m_connection.atom(Atom::TessarelCommand))
        return;
    const xcb_window_t sender = message.data.data32[0];
    const CommandAnswer answer =
        m_run(split(bytesOf(m_connection, sender, Atom::TessarelCommand, kLongestCommand)));
    std::string text(1, static_cast<char>(answer.exitCode));
    text += answer.text;
    text.resize(std::min<std::size_t>(text.size(), kLongestAnswer));
    setBytes(m_connection, sender, Atom::TessarelAnswer, text);
    m_connection.flush();
}

SentCommand sendCommand(Connection& connection, const std::vector<std::string>& words) {
    const auto channel = channelOf(connection);
    if (!channel)
        return {SentCommand::Outcome::NoReceiver};
    // Reports the end of the receiver.
    connection.selectEvents(*channel, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    const xcb_window_t own = createWindow(connection, XCB_EVENT_MASK_PROPERTY_CHANGE);
    setBytes(connection, own, Atom::TessarelCommand, joined(words));
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = *channel;
    message.type = connection.atom(Atom::TessarelCommand);
    message.data.data32[0] = own;
    // With an empty event mask the server delivers the message to the client that created the window.
    xcb_send_event(connection.xcb(), 0, *channel, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
    bool isAnswered = false;
    connection.waitFor(
        [&](const Connection::Event& event) {
            isAnswered = changedProperty(event, own) == connection.atom(Atom::TessarelAnswer);
            return isAnswered || (eventType(event) == XCB_DESTROY_NOTIFY &&
                                  eventAs<xcb_destroy_notify_event_t>(event).window == *channel);
        },
        kCommandPatience);
    std::string text =
        isAnswered ? bytesOf(connection, own, Atom::TessarelAnswer, kLongestAnswer) : std::string();
    xcb_destroy_window(connection.xcb(), own);
    if (text.empty())
        return {SentCommand::Outcome::NoAnswer};
    const auto exitCode = static_cast<std::uint8_t>(text.front());
    return {SentCommand::Outcome::Answered, {exitCode, text.erase(0, 1)}};
}

} // namespace tessarel::x11
