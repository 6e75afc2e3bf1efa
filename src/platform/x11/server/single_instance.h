#pragma once

#include "model/subscription.h"
#include "platform/x11/server/connection.h"
#include "ports/single_instance_port.h"

#include <functional>

namespace tessarel::x11 {

/// One copy per screen of the X server: the one that owns the selection "_TESSAREL_INSTANCE_S<screen>".
///
/// The server forgets an owner that has gone, however it went. A copy that asks in vain sends the owner's
/// window a client message "_TESSAREL_REOPEN". Should another program take the selection away, this copy
/// goes on, but is not told of further ones.
class X11SingleInstance : public SingleInstancePort {
public:
    /// `connection` outlives the instance and its claim.
    explicit X11SingleInstance(Connection& connection) : m_connection(connection) {}

    /// Null also when the server has gone.
    [[nodiscard]] SubscriptionPtr claim(std::function<void()> reopened) override;

private:
    Connection& m_connection;
};

} // namespace tessarel::x11
