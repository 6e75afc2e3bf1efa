#pragma once

#include "platform/qt/qt_own_application.h"

#include <cstdint>
#include <functional>
#include <utility>

namespace tessarel::qt {

/// This program on X11. Qt's own request for the focus has the time of the last input to one of its windows,
/// which a window manager may take for outdated when the user has asked for a window elsewhere.
class QtX11Application : public QtOwnApplication {
public:
    /// Brings a mapped window to the user, whatever desktop it is on.
    using BringToUser = std::function<void(std::uint32_t window)>;

    explicit QtX11Application(BringToUser bringToUser) : m_bringToUser(std::move(bringToUser)) {}

    /// Brings every visible window to the user: a message first, so that it does not cover the settings, and
    /// a modal dialog last, so that it is in front.
    void activate() override;

private:
    BringToUser m_bringToUser;
};

} // namespace tessarel::qt
