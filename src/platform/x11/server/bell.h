#pragma once

#include "platform/x11/server/connection.h"
#include "ports/alert_sound_port.h"

namespace tessarel::x11 {

/// The server's bell, as loud as the user has set it.
class X11Bell : public AlertSoundPort {
public:
    /// `connection` outlives the bell.
    explicit X11Bell(Connection& connection) : m_connection(connection) {}

    void beep() override;

private:
    Connection& m_connection;
};

} // namespace tessarel::x11
