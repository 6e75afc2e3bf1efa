// SPDX-License-Identifier: MIT

#pragma once

#include "model/lifetime.h"
#include "model/signal.h"
#include "model/subscription.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <variant>
#include <vector>

namespace tessarel::wayland {

/// A value in a message: any integer or boolean, a string or an object path, a list of integers, a list of
/// strings.
using BusValue = std::variant<std::int64_t, std::string, std::vector<std::int64_t>, std::vector<std::string>>;

/// A message that has arrived from the bus.
struct BusMessage {
    std::string sender; ///< unique name; empty for messages of the link itself
    std::string member;
    std::vector<BusValue> values; ///< values of types other than those of `BusValue` are left out
    std::string error;            ///< name of the error; only for replies
    std::uint64_t token = 0;      ///< for `BusLink::answer`; 0 if no answer is expected

    /// Returns the value at `index`, or an empty value if it is missing or of another type.
    template <typename Value>
    [[nodiscard]] Value value(std::size_t index) const {
        const auto* const typed = index < values.size() ? std::get_if<Value>(&values[index]) : nullptr;
        return typed ? *typed : Value();
    }
};

/// A method call to send.
struct BusCall {
    std::string destination;
    std::string path;
    std::string interface;
    std::string member;
    std::string signature = {}; ///< of `values`: s, i, u, b, as, ai
    std::vector<BusValue> values = {};
};

/// Which signals a handler receives. An empty string matches everything.
struct BusMatch {
    std::string sender;
    std::string path;
    std::string interface;
    std::string member;
    std::string firstArgument = {}; ///< of a signal whose first value is a string
};

/// A connection to a message bus on a thread of its own, so that the main thread never waits for the bus and
/// never runs a nested event loop.
///
/// All functions are for the main thread, and all handlers are called on it: from `dispatch`, or, if they are
/// urgent, from `waitUntil`, too. The destructor sends what is unsent, with a bound.
class BusLink {
public:
    using Handler = std::function<void(const BusMessage&)>;

    enum class Delivery : std::uint8_t {
        InLoop, ///< only from `dispatch`
        Urgent, ///< also while the main thread waits in `waitUntil`
    };

    /// Starts to connect to the bus at `address`.
    explicit BusLink(std::string address);
    BusLink(const BusLink&) = delete;
    BusLink& operator=(const BusLink&) = delete;
    ~BusLink();

    /// Returns a descriptor that is readable while messages wait for `dispatch`.
    [[nodiscard]] int fileDescriptor() const { return m_arrivedEvent; }
    /// Calls the handlers of all messages that have arrived.
    void dispatch();
    /// Waits until `isDone` returns true, at most for `patience`. Only urgent messages are handled meanwhile;
    /// all others wait for `dispatch`. Returns the last result of `isDone`.
    bool waitUntil(const std::function<bool()>& isDone, std::chrono::milliseconds patience);
    /// Calls `handler` in each dispatch, after every message and after those of a wait, until the returned
    /// subscription is destroyed.
    [[nodiscard]] SubscriptionPtr onDelivered(std::function<void()> handler);

    /// Returns the unique name of this connection; empty until the bus has accepted it.
    [[nodiscard]] const std::string& uniqueName() const { return m_uniqueName; }
    /// Returns whether the bus has refused or closed the connection.
    [[nodiscard]] bool isLost() const { return m_isLost; }
    /// Calls `lost` once when the connection has been refused or closed.
    [[nodiscard]] SubscriptionPtr onLost(std::function<void()> lost);

    /// Sends a call. `replied` is called once with the reply or the error, which is a timeout after 25 s.
    /// Without `replied`, the receiver sends no reply.
    void call(BusCall call, Handler replied = {}, Delivery delivery = Delivery::InLoop);
    /// Calls `handler` with every signal that matches, until the returned subscription is destroyed.
    [[nodiscard]] SubscriptionPtr onSignal(BusMatch match, Handler handler,
                                           Delivery delivery = Delivery::InLoop);
    /// Calls `handler` with every method call to the object at `path`, until the returned subscription is
    /// destroyed. A call that expects an answer has a token.
    ///
    /// A caller may renew a call of the member `renewable` before it times out. If the earlier call still
    /// waits for its answer, it gets an empty one and the new call takes over its token, without waking the
    /// main thread.
    [[nodiscard]] SubscriptionPtr serve(std::string path, Handler handler, Delivery delivery,
                                        std::string renewable = {});
    /// Answers a method call with a string.
    void answer(std::uint64_t token, std::string value);

private:
    class Connection;
    using Task = std::function<void(Connection&)>;

    /// A message on its way to its handler.
    struct Arrival {
        std::uint64_t handler = 0;
        BusMessage message;
    };
    struct Receiver {
        Handler handler;
        Delivery delivery = Delivery::InLoop;
        bool isOnce = false;
    };

    // In the place of the handler of a message.
    static constexpr std::uint64_t kLinkItself = 0;
    static constexpr std::uint64_t kNobody = 1;

    void run();
    void post(Task task);
    void arrive(std::uint64_t handler, BusMessage message);
    std::uint64_t add(Receiver receiver);
    [[nodiscard]] SubscriptionPtr removal(std::uint64_t handler);
    [[nodiscard]] std::deque<Arrival> takeArrived();
    [[nodiscard]] bool isUrgent(const Arrival& arrival) const;
    void deliver(const Arrival& arrival);
    void deliverUrgent(std::deque<Arrival> arrivals);
    void noteStateOfLink(const BusMessage& message);

    std::string m_address;
    std::string m_uniqueName;
    bool m_isLost = false;
    std::uint64_t m_nextHandler = kNobody + 1;
    std::map<std::uint64_t, Receiver> m_receivers;
    std::deque<Arrival> m_pending; ///< not handled yet, in the order of arrival
    Signal<> m_delivered;
    Signal<> m_lostSignal;
    Lifetime m_lifetime; // watched by subscriptions, which may outlive the link

    std::mutex m_mutex; // guards the members below
    std::condition_variable m_hasArrived;
    std::deque<Arrival> m_arrived;
    std::deque<Task> m_tasks;
    bool m_isEnding = false;

    int m_arrivedEvent;
    int m_taskEvent;
    std::thread m_thread;
};

/// Returns the address of the user's session bus, as the environment gives it; empty if there is none.
[[nodiscard]] std::string sessionBusAddress();

} // namespace tessarel::wayland
