// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tessarel {

/// A broadcast with arguments within the process. Callbacks are called synchronously, in the order in which
/// they were connected. Not thread-safe.
///
/// A callback may connect and disconnect callbacks, including itself, send the signal again, and destroy it.
/// A callback that is disconnected during a send is skipped; one that is connected during a send is first
/// called by the next send. If a callback throws, the remaining ones are not called, and the exception
/// reaches the sender.
template <class... Args>
class Signal {
public:
    using Callback = std::function<void(Args...)>;

    /// Calls `callback` on every send until the returned subscription is destroyed. The subscription may
    /// outlive the signal.
    [[nodiscard]] SubscriptionPtr connect(Callback callback) {
        auto connection = std::make_shared<Connection>(std::move(callback));
        m_connections->list.push_back(connection);
        return std::make_unique<Handle>(m_connections, std::move(connection));
    }

    /// Calls all callbacks that are connected now, with `args`, before it returns.
    void send(Args... args) const {
        const auto connections = m_connections; // keeps the list alive if a callback destroys this signal
        const Sending sending(*connections);
        const std::size_t present = connections->list.size();
        for (std::size_t i = 0; i < present; ++i) {
            // A copy, because the vector may reallocate while the callback connects others.
            const auto connection = connections->list[i];
            if (connection->isConnected)
                connection->callback(args...);
        }
    }

    /// Returns the number of connected callbacks.
    [[nodiscard]] std::size_t connections() const {
        const auto& list = m_connections->list;
        return static_cast<std::size_t>(std::count_if(
            list.begin(), list.end(), [](const auto& connection) { return connection->isConnected; }));
    }

private:
    struct Connection {
        explicit Connection(Callback function) : callback(std::move(function)) {}
        Callback callback;
        bool isConnected = true;
    };

    struct Connections {
        std::vector<std::shared_ptr<Connection>> list;
        /// Sends in progress, including nested ones. Entries are erased only when this is zero, so that the
        /// indices of a running send stay valid.
        int sendings = 0;

        /// Erases the entries that have been disconnected, unless a send is in progress.
        void sweep() {
            if (sendings == 0)
                std::erase_if(list, [](const auto& connection) { return !connection->isConnected; });
        }
    };

    /// Counts a send as long as it is in progress, also if a callback throws.
    class Sending {
    public:
        explicit Sending(Connections& connections) : m_connections(connections) { ++connections.sendings; }
        Sending(const Sending&) = delete;
        Sending& operator=(const Sending&) = delete;
        ~Sending() {
            --m_connections.sendings;
            m_connections.sweep();
        }

    private:
        Connections& m_connections;
    };

    /// Disconnects its callback on destruction.
    class Handle : public Subscription {
    public:
        Handle(const std::shared_ptr<Connections>& connections, std::shared_ptr<Connection> connection)
            : m_connections(connections), m_connection(std::move(connection)) {}
        ~Handle() override {
            m_connection->isConnected = false;
            if (const auto connections = m_connections.lock())
                connections->sweep();
        }

    private:
        std::weak_ptr<Connections> m_connections;
        std::shared_ptr<Connection> m_connection;
    };

    /// Handles hold weak references, because they may outlive the signal.
    std::shared_ptr<Connections> m_connections = std::make_shared<Connections>();
};

} // namespace tessarel
