// SPDX-License-Identifier: MIT

#include "platform/x11/instance/single_instance.h"

#include "platform/x11/server/server_time.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace tessarel::x11 {

namespace {

/// Set on the type of every event that another client has sent.
constexpr std::uint8_t kSentByAClient = 0x80;

/// Requests an atom without waiting for the reply.
xcb_intern_atom_cookie_t askForAtom(Connection& connection, std::string_view name) {
    return xcb_intern_atom(connection.xcb(), 0, static_cast<std::uint16_t>(name.size()), name.data());
}

std::string nameOfSelection(const Connection& connection) {
    return "_TESSAREL_INSTANCE_S" + std::to_string(connection.screenNumber());
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

} // namespace

/// The claim of this copy: an unmapped window that owns the selection and receives the client messages of
/// copies that start later. If the claim is refused, the window receives the reply of the owner.
class X11SingleInstance::Instance : public Subscription {
public:
    struct Callbacks {
        std::function<void()> reopened;
        std::function<void()> lost;
    };

    Instance(Connection& connection, Callbacks callbacks);
    ~Instance() override;

    /// Claims the selection. If another copy owns it, sends that copy the reopen message instead and returns
    /// false. Returns false also when another program owns it and when the connection is lost.
    [[nodiscard]] bool takeSelection();

    /// Waits for the reply to the reopen message.
    [[nodiscard]] Reaction awaitReaction();

private:
    [[nodiscard]] xcb_window_t owner();
    [[nodiscard]] std::optional<std::uint32_t> processOf(xcb_window_t copy);
    [[nodiscard]] bool watch(xcb_window_t owner);
    xcb_void_cookie_t send(xcb_window_t window, xcb_atom_t type);
    [[nodiscard]] bool isSentTo(const Connection::Event& event, xcb_atom_t type) const;
    void handle(const Connection::Event& event);
    void takeReaction(const Connection::Event& event);

    Connection& m_connection;
    Callbacks m_callbacks;
    xcb_window_t m_window;
    xcb_atom_t m_selection = XCB_ATOM_NONE;
    xcb_atom_t m_reopen = XCB_ATOM_NONE;
    xcb_atom_t m_reopened = XCB_ATOM_NONE;
    /// The owner that has refused this claim, and its process if it is a copy of the program.
    xcb_window_t m_owner = XCB_WINDOW_NONE;
    std::optional<std::uint32_t> m_ownersProcess;
    std::optional<Reaction::Kind> m_reaction;
    SubscriptionPtr m_events;
    SubscriptionPtr m_reactions;
};

X11SingleInstance::Instance::Instance(Connection& connection, Callbacks callbacks)
    : m_connection(connection), m_callbacks(std::move(callbacks)),
      m_window(xcb_generate_id(connection.xcb())),
      m_events(connection.onEvent([this](const Connection::Event& event) { handle(event); })),
      m_reactions(connection.onRead([this](const Connection::Event& event) { takeReaction(event); })) {
    xcb_create_window(connection.xcb(), XCB_COPY_FROM_PARENT, m_window, connection.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    const auto selection = askForAtom(connection, nameOfSelection(connection));
    const auto reopen = askForAtom(connection, "_TESSAREL_REOPEN");
    const auto reopened = askForAtom(connection, "_TESSAREL_REOPENED");
    if (const auto reply = connection.reply<xcb_intern_atom_reply>(selection))
        m_selection = reply->atom;
    if (const auto reply = connection.reply<xcb_intern_atom_reply>(reopen))
        m_reopen = reply->atom;
    if (const auto reply = connection.reply<xcb_intern_atom_reply>(reopened))
        m_reopened = reply->atom;
    // Tells a copy of the program from other clients; see `processOf`.
    const auto process = static_cast<std::uint32_t>(::getpid());
    xcb_change_property(connection.xcb(), XCB_PROP_MODE_REPLACE, m_window, m_selection, XCB_ATOM_CARDINAL, 32,
                        1, &process);
}

/// The server releases a selection when its owner window is destroyed.
X11SingleInstance::Instance::~Instance() {
    xcb_destroy_window(m_connection.xcb(), m_window);
    m_connection.flush();
}

bool X11SingleInstance::Instance::takeSelection() {
    const ServerGrab nobodyElse(m_connection);
    // ICCCM wants a selection claimed with a time, and no event has led to this claim.
    const xcb_timestamp_t now = serverTime(m_connection);
    const xcb_window_t present = owner();
    if (present != XCB_WINDOW_NONE && watch(present)) {
        m_owner = present;
        m_ownersProcess = processOf(present);
        if (m_ownersProcess)
            send(present, m_reopen);
        return false;
    }
    xcb_set_selection_owner(m_connection.xcb(), m_window, m_selection, now);
    return owner() == m_window;
}

xcb_window_t X11SingleInstance::Instance::owner() {
    const auto reply = m_connection.reply<xcb_get_selection_owner_reply>(
        xcb_get_selection_owner(m_connection.xcb(), m_selection));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

/// Returns the process of a copy that owns the selection; empty if the owner is not a copy of the program.
std::optional<std::uint32_t> X11SingleInstance::Instance::processOf(xcb_window_t copy) {
    const auto reply = m_connection.reply<xcb_get_property_reply>(
        xcb_get_property(m_connection.xcb(), 0, copy, m_selection, XCB_ATOM_CARDINAL, 0, 1));
    if (!reply || xcb_get_property_value_length(reply.get()) != sizeof(std::uint32_t))
        return std::nullopt;
    return *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
}

/// Selects the event that reports the end of `owner`. Returns false when the window does not exist.
bool X11SingleInstance::Instance::watch(xcb_window_t owner) {
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    return m_connection.succeeds(
        xcb_change_window_attributes_checked(m_connection.xcb(), owner, XCB_CW_EVENT_MASK, &events));
}

/// Sends a client message that names our window.
xcb_void_cookie_t X11SingleInstance::Instance::send(xcb_window_t window, xcb_atom_t type) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = type;
    message.data.data32[0] = m_window;
    // With an empty event mask the server delivers the message to the client that created the window.
    return xcb_send_event(m_connection.xcb(), 0, window, XCB_EVENT_MASK_NO_EVENT,
                          reinterpret_cast<const char*>(&message));
}

bool X11SingleInstance::Instance::isSentTo(const Connection::Event& event, xcb_atom_t type) const {
    const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
    return event.response_type == (XCB_CLIENT_MESSAGE | kSentByAClient) && message.window == m_window &&
           message.type == type;
}

void X11SingleInstance::Instance::handle(const Connection::Event& event) {
    const auto& clear = reinterpret_cast<const xcb_selection_clear_event_t&>(event);
    if (event.response_type == XCB_SELECTION_CLEAR && clear.owner == m_window &&
        clear.selection == m_selection) {
        const auto lost = m_callbacks.lost; // a copy, because the callback may destroy this claim
        lost();
        return;
    }
    if (!isSentTo(event, m_reopen))
        return;
    send(reinterpret_cast<const xcb_client_message_event_t&>(event).data.data32[0], m_reopened);
    m_connection.flush();
    const auto reopened = m_callbacks.reopened; // a copy, because the callback may destroy this claim
    reopened();
}

void X11SingleInstance::Instance::takeReaction(const Connection::Event& event) {
    const auto& destruction = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
    if (isSentTo(event, m_reopened))
        m_reaction = Reaction::Kind::Reopened;
    else if (event.response_type == XCB_DESTROY_NOTIFY && destruction.window == m_owner)
        m_reaction = Reaction::Kind::Ended;
}

SingleInstancePort::Reaction X11SingleInstance::Instance::awaitReaction() {
    if (m_owner == XCB_WINDOW_NONE)
        return {Reaction::Kind::Missing, "cannot claim the X display"};
    if (!m_ownersProcess)
        return {Reaction::Kind::Missing,
                "another program owns the selection " + nameOfSelection(m_connection)};
    if (!m_reaction)
        m_connection.waitFor([this](const Connection::Event&) { return m_reaction.has_value(); }, kPatience);
    if (m_reaction)
        return {*m_reaction};
    return {Reaction::Kind::Missing, "the running copy (process " + std::to_string(*m_ownersProcess) +
                                         ") does not react; end it and start again"};
}

X11SingleInstance::X11SingleInstance(Connection& connection) : m_connection(connection) {}

X11SingleInstance::~X11SingleInstance() = default;

SubscriptionPtr X11SingleInstance::claim(std::function<void()> reopened, std::function<void()> lost) {
    m_refused.reset();
    auto instance =
        std::make_unique<Instance>(m_connection, Instance::Callbacks{std::move(reopened), std::move(lost)});
    if (instance->takeSelection())
        return instance;
    m_refused = std::move(instance);
    return nullptr;
}

SingleInstancePort::Reaction X11SingleInstance::awaitReaction() {
    return m_refused->awaitReaction();
}

} // namespace tessarel::x11
