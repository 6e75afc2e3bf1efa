// SPDX-License-Identifier: MIT

#include "platform/wayland/bus_link.h"

#include "model/call_on_end.h"
#include "platform/wayland/bus_messages.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <poll.h>
#include <string_view>
#include <sys/eventfd.h>
#include <systemd/sd-bus.h>
#include <unistd.h>
#include <utility>

namespace tessarel::wayland {

namespace {

using Clock = std::chrono::steady_clock;

/// How long the end of the link may take to send what is unsent.
constexpr std::chrono::milliseconds kLastWords{200};

/// Members of the messages of the link itself.
constexpr const char* kConnected = "Connected";
constexpr const char* kLost = "Lost";

void notify(int event) {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(event, &one, sizeof one);
}

void acknowledge(int event) {
    std::uint64_t count = 0;
    [[maybe_unused]] const auto read = ::read(event, &count, sizeof count);
}

/// Returns the rule by which the bus chooses the signals.
std::string ruleOf(const BusMatch& wanted) {
    std::string rule = "type='signal'";
    const auto require = [&rule](const char* key, const std::string& value) {
        if (!value.empty())
            rule.append(",").append(key).append("='").append(value).append("'");
    };
    require("sender", wanted.sender);
    require("path", wanted.path);
    require("interface", wanted.interface);
    require("member", wanted.member);
    require("arg0", wanted.firstArgument);
    return rule;
}

} // namespace

/// The bus connection, which only its own thread uses.
class BusLink::Connection {
public:
    Connection(BusLink& link, const std::string& address) : m_link(link) {
        sd_bus* bus = nullptr;
        if (sd_bus_new(&bus) < 0)
            return;
        if (sd_bus_set_address(bus, address.c_str()) < 0 || sd_bus_set_bus_client(bus, 1) < 0 ||
            sd_bus_start(bus) < 0)
            sd_bus_unref(bus);
        else
            m_bus = bus;
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() {
        m_unanswered.clear();
        m_slots.clear();
        sd_bus_close_unref(m_bus);
    }

    /// Returns whether the bus can be reached, as far as is known. Otherwise the calls fail, and everything
    /// else does nothing.
    [[nodiscard]] bool isOpen() const { return m_bus != nullptr && !m_isClosed; }

    /// Handles everything that has arrived.
    void process() {
        int result = 1;
        while (result > 0) {
            result = sd_bus_process(m_bus, nullptr);
            if (!m_hasReportedName && sd_bus_is_ready(m_bus) > 0)
                reportName(); // before the first reply, which may have come with it
        }
        m_isClosed = result < 0;
    }

    [[nodiscard]] pollfd pollState() {
        const int events = sd_bus_get_events(m_bus);
        return {sd_bus_get_fd(m_bus), static_cast<short>(std::max(events, 0)), 0};
    }

    /// Returns the milliseconds until the next timeout of a call; -1 if there is none.
    [[nodiscard]] int patience() {
        std::uint64_t due = 0;
        if (sd_bus_get_timeout(m_bus, &due) < 0 || due == UINT64_MAX)
            return -1;
        const auto now =
            std::chrono::duration_cast<std::chrono::microseconds>(Clock::now().time_since_epoch());
        const auto left = static_cast<std::int64_t>(due) - now.count();
        return static_cast<int>(std::max<std::int64_t>(left + 999, 0) / 1000);
    }

    [[nodiscard]] bool hasUnsent() {
        std::uint64_t count = 0;
        return sd_bus_get_n_queued_write(m_bus, &count) >= 0 && count > 0;
    }

    void call(const BusCall& call, std::uint64_t handler) {
        if (!isOpen()) {
            m_link.arrive(handler, {.sender = {}, .member = {}, .values = {}, .error = "unsent"});
            return;
        }
        sd_bus_message* raw = nullptr;
        sd_bus_message_new_method_call(m_bus, &raw, call.destination.c_str(), call.path.c_str(),
                                       call.interface.c_str(), call.member.c_str());
        const BusMessagePtr message(raw);
        if (!message || !append(raw, call.signature, call.values)) {
            m_link.arrive(handler, {.sender = {}, .member = {}, .values = {}, .error = "unsendable"});
            return;
        }
        sd_bus_message_set_auto_start(raw, 0);
        if (handler == kNobody) {
            sd_bus_call_async(m_bus, nullptr, raw, nullptr, nullptr, 0);
            return;
        }
        const auto [unanswered, isNew] = m_calls.try_emplace(handler, Context{m_link, *this, handler});
        if (sd_bus_call_async(m_bus, nullptr, raw, receiveReply, &unanswered->second, 0) >= 0)
            return;
        m_calls.erase(unanswered);
        m_link.arrive(handler, {.sender = {}, .member = {}, .values = {}, .error = "unsent"});
    }

    void match(const BusMatch& wanted, std::uint64_t handler) {
        if (!isOpen())
            return;
        Receiving& receiving = begin(handler);
        sd_bus_slot* slot = nullptr;
        sd_bus_add_match_async(m_bus, &slot, ruleOf(wanted).c_str(), receiveSignal, nullptr,
                               &receiving.context);
        receiving.slot.reset(slot);
    }

    void serve(const std::string& path, const std::string& renewable, std::uint64_t handler) {
        if (!isOpen())
            return;
        Receiving& receiving = begin(handler);
        receiving.context.renewable = renewable;
        sd_bus_slot* slot = nullptr;
        sd_bus_add_object(m_bus, &slot, path.c_str(), receiveCall, &receiving.context);
        receiving.slot.reset(slot);
    }

    void end(std::uint64_t handler) { m_slots.erase(handler); }

    void answer(std::uint64_t token, const std::string& value) {
        const auto call = m_unanswered.find(token);
        if (call == m_unanswered.end())
            return;
        sd_bus_reply_method_return(call->second.get(), "s", value.c_str());
        m_unanswered.erase(call);
    }

private:
    /// What a callback of the library needs.
    struct Context {
        BusLink& link;
        Connection& connection;
        std::uint64_t handler = 0;
        std::string renewable = {}; ///< the member whose calls may be renewed; empty if there is none
    };
    struct Receiving {
        Context context;
        BusSlotPtr slot;
    };

    Receiving& begin(std::uint64_t handler) {
        auto& receiving = m_slots[handler];
        receiving = std::make_unique<Receiving>(Receiving{{m_link, *this, handler}, nullptr});
        return *receiving;
    }

    void reportName() {
        const char* name = nullptr;
        if (sd_bus_get_unique_name(m_bus, &name) < 0)
            return;
        m_hasReportedName = true;
        m_link.arrive(kLinkItself,
                      {.sender = {}, .member = kConnected, .values = {std::string(name)}, .error = {}});
    }

    static int receiveReply(sd_bus_message* message, void* data, sd_bus_error*) {
        const Context context = *static_cast<Context*>(data);
        context.connection.m_calls.erase(context.handler);
        context.link.arrive(context.handler, decode(message));
        return 1;
    }

    static int receiveSignal(sd_bus_message* message, void* data, sd_bus_error*) {
        const Context& context = *static_cast<Context*>(data);
        context.link.arrive(context.handler, decode(message));
        return 0; // other handlers may have the same signal
    }

    static int receiveCall(sd_bus_message* message, void* data, sd_bus_error*) {
        const Context& context = *static_cast<Context*>(data);
        if (context.renewable == sd_bus_message_get_member(message) && context.connection.renew(message))
            return 1;
        BusMessage decoded = decode(message);
        if (sd_bus_message_get_expect_reply(message) > 0)
            decoded.token = context.connection.keep(message);
        context.link.arrive(context.handler, std::move(decoded));
        return 1;
    }

    /// Puts a call in the place of the caller's earlier one. Returns false if none waits for its answer.
    bool renew(sd_bus_message* message) {
        const auto text = [](const char* string) { return std::string_view(string ? string : ""); };
        const auto earlier = std::find_if(m_unanswered.begin(), m_unanswered.end(), [&](const auto& call) {
            sd_bus_message* const other = call.second.get();
            return text(sd_bus_message_get_sender(other)) == text(sd_bus_message_get_sender(message)) &&
                   text(sd_bus_message_get_path(other)) == text(sd_bus_message_get_path(message)) &&
                   text(sd_bus_message_get_member(other)) == text(sd_bus_message_get_member(message));
        });
        if (earlier == m_unanswered.end())
            return false;
        sd_bus_reply_method_return(earlier->second.get(), "s", "");
        earlier->second.reset(sd_bus_message_ref(message));
        return true;
    }

    std::uint64_t keep(sd_bus_message* message) {
        m_unanswered[++m_lastToken].reset(sd_bus_message_ref(message));
        return m_lastToken;
    }

    BusLink& m_link;
    sd_bus* m_bus = nullptr;
    bool m_isClosed = false;
    bool m_hasReportedName = false;
    std::uint64_t m_lastToken = 0;
    std::map<std::uint64_t, Context> m_calls; ///< sent calls without a reply, by handler
    std::map<std::uint64_t, BusMessagePtr> m_unanswered;
    std::map<std::uint64_t, std::unique_ptr<Receiving>> m_slots;
};

BusLink::BusLink(std::string address)
    : m_address(std::move(address)), m_arrivedEvent(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      m_taskEvent(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    m_thread = std::thread([this] { run(); });
}

BusLink::~BusLink() {
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    notify(m_taskEvent);
    m_thread.join();
    ::close(m_taskEvent);
    ::close(m_arrivedEvent);
}

/// The body of the thread.
void BusLink::run() {
    Connection connection(*this, m_address);
    bool isLost = false;
    std::optional<Clock::time_point> end;
    for (;;) {
        std::deque<Task> tasks;
        {
            const std::lock_guard lock(m_mutex);
            tasks.swap(m_tasks);
            if (m_isEnding && !end)
                end = Clock::now() + kLastWords;
        }
        for (const Task& task : tasks)
            task(connection);
        if (connection.isOpen())
            connection.process();
        const bool isOpen = connection.isOpen();
        if (!isOpen && !std::exchange(isLost, true))
            arrive(kLinkItself, {.sender = {}, .member = kLost, .values = {}, .error = {}});
        if (end && (!isOpen || !connection.hasUnsent() || Clock::now() >= *end))
            return;
        std::array<pollfd, 2> states{pollfd{m_taskEvent, POLLIN, 0}, pollfd{-1, 0, 0}};
        int patience = -1;
        if (isOpen) {
            states[1] = connection.pollState();
            patience = connection.patience();
        }
        constexpr int kWhileEnding = 10;
        ::poll(states.data(), states.size(), end ? kWhileEnding : patience);
        acknowledge(m_taskEvent);
    }
}

void BusLink::post(Task task) {
    {
        const std::lock_guard lock(m_mutex);
        m_tasks.push_back(std::move(task));
    }
    notify(m_taskEvent);
}

/// Hands a message to the main thread. Called on the link's thread.
void BusLink::arrive(std::uint64_t handler, BusMessage message) {
    {
        const std::lock_guard lock(m_mutex);
        m_arrived.push_back({handler, std::move(message)});
    }
    m_hasArrived.notify_one();
    notify(m_arrivedEvent);
}

std::deque<BusLink::Arrival> BusLink::takeArrived() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_arrived, {});
}

bool BusLink::isUrgent(const Arrival& arrival) const {
    if (arrival.handler == kLinkItself)
        return true;
    const auto receiver = m_receivers.find(arrival.handler);
    return receiver != m_receivers.end() && receiver->second.delivery == Delivery::Urgent;
}

void BusLink::deliver(const Arrival& arrival) {
    if (arrival.handler == kLinkItself)
        return noteStateOfLink(arrival.message);
    const auto receiver = m_receivers.find(arrival.handler);
    if (receiver == m_receivers.end())
        return;
    const Handler handler = receiver->second.handler; // a copy, because it may remove itself
    if (receiver->second.isOnce)
        m_receivers.erase(receiver);
    if (handler)
        handler(arrival.message);
}

void BusLink::noteStateOfLink(const BusMessage& message) {
    if (message.member == kConnected) {
        m_uniqueName = message.value<std::string>(0);
        return;
    }
    m_isLost = true;
    m_lostSignal.send();
}

void BusLink::dispatch() {
    acknowledge(m_arrivedEvent);
    for (Arrival& arrival : takeArrived())
        m_pending.push_back(std::move(arrival));
    const auto alive = m_lifetime.watch();
    m_delivered.send(); // for what was handled during a wait
    // Not what a handler sets aside while it waits: that has been announced anew.
    for (std::size_t left = m_pending.size(); left > 0 && !alive.expired() && !m_pending.empty(); --left) {
        const Arrival arrival = std::move(m_pending.front());
        m_pending.pop_front();
        deliver(arrival);
        if (!alive.expired())
            m_delivered.send();
    }
}

bool BusLink::waitUntil(const std::function<bool()>& isDone, std::chrono::milliseconds patience) {
    const auto deadline = Clock::now() + patience;
    deliverUrgent(std::exchange(m_pending, {}));
    while (!isDone()) {
        std::deque<Arrival> arrivals;
        {
            std::unique_lock lock(m_mutex);
            if (!m_hasArrived.wait_until(lock, deadline, [this] { return !m_arrived.empty(); }))
                break;
            arrivals.swap(m_arrived);
        }
        deliverUrgent(std::move(arrivals));
    }
    notify(m_arrivedEvent); // for what was set aside, and for `onDelivered`
    return isDone();
}

/// Handles the urgent messages and sets the others aside.
void BusLink::deliverUrgent(std::deque<Arrival> arrivals) {
    for (Arrival& arrival : arrivals) {
        if (isUrgent(arrival))
            deliver(arrival);
        else
            m_pending.push_back(std::move(arrival));
    }
}

SubscriptionPtr BusLink::onDelivered(std::function<void()> handler) {
    return m_delivered.connect(std::move(handler));
}

SubscriptionPtr BusLink::onLost(std::function<void()> lost) {
    return m_lostSignal.connect(std::move(lost));
}

std::uint64_t BusLink::add(Receiver receiver) {
    const std::uint64_t handler = m_nextHandler++;
    m_receivers.emplace(handler, std::move(receiver));
    return handler;
}

SubscriptionPtr BusLink::removal(std::uint64_t handler) {
    return callOnEnd([this, handler, alive = m_lifetime.watch()] {
        if (alive.expired())
            return;
        m_receivers.erase(handler);
        post([handler](Connection& connection) { connection.end(handler); });
    });
}

void BusLink::call(BusCall call, Handler replied, Delivery delivery) {
    const std::uint64_t handler = replied ? add({std::move(replied), delivery, true}) : kNobody;
    post([call = std::move(call), handler](Connection& connection) { connection.call(call, handler); });
}

SubscriptionPtr BusLink::onSignal(BusMatch match, Handler handler, Delivery delivery) {
    const std::uint64_t id = add({std::move(handler), delivery, false});
    post([match = std::move(match), id](Connection& connection) { connection.match(match, id); });
    return removal(id);
}

SubscriptionPtr BusLink::serve(std::string path, Handler handler, Delivery delivery, std::string renewable) {
    const std::uint64_t id = add({std::move(handler), delivery, false});
    post([path = std::move(path), renewable = std::move(renewable), id](Connection& connection) {
        connection.serve(path, renewable, id);
    });
    return removal(id);
}

void BusLink::answer(std::uint64_t token, std::string value) {
    if (token != 0)
        post([token, value = std::move(value)](Connection& connection) { connection.answer(token, value); });
}

std::string sessionBusAddress() {
    const char* const address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (address != nullptr && *address != '\0')
        return address;
    const char* const folder = std::getenv("XDG_RUNTIME_DIR");
    return folder != nullptr && *folder != '\0' ? "unix:path=" + std::string(folder) + "/bus" : std::string();
}

} // namespace tessarel::wayland
