#pragma once

#include "platform/x11/server/connection.h"
#include "ports/rect.h"

#include <cstdint>
#include <vector>

namespace tessarel::x11 {

/// A display as the server describes it.
struct Monitor {
    std::uint64_t id = 0; ///< the number of its name
    Rect rootFrame;       ///< pixels of the root window, y down

    bool operator==(const Monitor&) const = default;
};

/// The monitors of the desktop, read again only after they have changed.
class Monitors {
public:
    explicit Monitors(Connection& connection);

    /// The primary one first, then in the server's order. Where the server does not tell, the whole root
    /// window is the one monitor; none when it has gone.
    [[nodiscard]] const std::vector<Monitor>& all();
    /// Size of the root window.
    [[nodiscard]] Size rootSize();
    /// Where the two coordinate systems of the desktop meet: the top-left corner of the primary monitor.
    [[nodiscard]] Point primaryOrigin();

private:
    void note(const Connection::Event& event);
    void refresh();

    Connection& m_connection;
    bool m_isCurrent = false;
    std::vector<Monitor> m_monitors;
    Size m_rootSize;
    SubscriptionPtr m_observer;
};

} // namespace tessarel::x11
