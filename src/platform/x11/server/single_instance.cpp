#include "platform/x11/server/single_instance.h"

#include "platform/x11/server/server_time.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace tessarel::x11 {

namespace {

/// Requests an atom without waiting for the reply.
xcb_intern_atom_cookie_t askForAtom(Connection& connection, std::string_view name) {
    return xcb_intern_atom(connection.xcb(), 0, static_cast<std::uint16_t>(name.size()), name.data());
}

/// Grabs the server while it lives. No other client's request is processed meanwhile, so the selection owner
/// cannot change between reading it and claiming the selection.
class ServerGrab {
public:
    explicit ServerGrab(Connection& connection) : m_connection(connection) {
        xcb_grab_server(connection.xcb());
    }
    ServerGrab(const ServerGrab&) = delete;
    ServerGrab& operator=(const ServerGrab&) = delete;
    ~ServerGrab() {
        xcb_ungrab_server(m_connection.xcb());
        m_connection.flush();
    }

private:
    Connection& m_connection;
};

/// The claim of this copy: an unmapped window that owns the selection and receives the client messages of
/// copies that start later.
class Instance : public Subscription {
public:
    Instance(Connection& connection, std::function<void()> reopened);
    ~Instance() override;

    /// Claims the selection. If another copy owns it, sends that copy the reopen message instead and returns
    /// false. Returns false also when the connection is lost.
    [[nodiscard]] bool takeSelection();

private:
    [[nodiscard]] xcb_window_t owner();
    [[nodiscard]] bool tell(xcb_window_t owner);
    void handle(const Connection::Event& event);

    Connection& m_connection;
    std::function<void()> m_reopened;
    xcb_window_t m_window;
    xcb_atom_t m_selection = XCB_ATOM_NONE;
    xcb_atom_t m_reopen = XCB_ATOM_NONE;
    SubscriptionPtr m_events;
};

Instance::Instance(Connection& connection, std::function<void()> reopened)
    : m_connection(connection), m_reopened(std::move(reopened)), m_window(xcb_generate_id(connection.xcb())),
      m_events(connection.onEvent([this](const Connection::Event& event) { handle(event); })) {
    xcb_create_window(connection.xcb(), XCB_COPY_FROM_PARENT, m_window, connection.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    const auto selection =
        askForAtom(connection, "_TESSAREL_INSTANCE_S" + std::to_string(connection.screenNumber()));
    const auto reopen = askForAtom(connection, "_TESSAREL_REOPEN");
    if (const auto reply = connection.reply<xcb_intern_atom_reply>(selection))
        m_selection = reply->atom;
    if (const auto reply = connection.reply<xcb_intern_atom_reply>(reopen))
        m_reopen = reply->atom;
}

/// The server releases a selection when its owner window is destroyed.
Instance::~Instance() {
    xcb_destroy_window(m_connection.xcb(), m_window);
    m_connection.flush();
}

bool Instance::takeSelection() {
    const ServerGrab nobodyElse(m_connection);
    // ICCCM wants a selection claimed with a time, and no event has led to this claim.
    const xcb_timestamp_t now = serverTime(m_connection);
    const xcb_window_t present = owner();
    if (present != XCB_WINDOW_NONE && tell(present))
        return false;
    xcb_set_selection_owner(m_connection.xcb(), m_window, m_selection, now);
    return owner() == m_window;
}

xcb_window_t Instance::owner() {
    const auto reply = m_connection.reply<xcb_get_selection_owner_reply>(
        xcb_get_selection_owner(m_connection.xcb(), m_selection));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

/// Sends the reopen message to `owner`. Returns false when the window does not exist.
bool Instance::tell(xcb_window_t owner) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = owner;
    message.type = m_reopen;
    // With an empty event mask the server delivers the message to the client that created the window.
    return m_connection.succeeds(xcb_send_event_checked(m_connection.xcb(), 0, owner, XCB_EVENT_MASK_NO_EVENT,
                                                        reinterpret_cast<const char*>(&message)));
}

void Instance::handle(const Connection::Event& event) {
    constexpr std::uint8_t kSentByAClient = 0x80; // set on every event that comes from SendEvent
    if (event.response_type != (XCB_CLIENT_MESSAGE | kSentByAClient))
        return;
    const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
    if (message.window != m_window || message.type != m_reopen)
        return;
    const auto reopened = m_reopened; // a copy, because the callback may destroy this claim
    reopened();
}

} // namespace

SubscriptionPtr X11SingleInstance::claim(std::function<void()> reopened) {
    auto instance = std::make_unique<Instance>(m_connection, std::move(reopened));
    return instance->takeSelection() ? std::move(instance) : nullptr;
}

} // namespace tessarel::x11
