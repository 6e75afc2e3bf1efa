#pragma once

#include "model/carbon_mods.h"
#include "platform/x11/displays/monitors.h"
#include "platform/x11/input/raw_mouse.h"
#include "platform/x11/server/callback_list.h"
#include "platform/x11/server/connection.h"
#include "platform/x11/windows/client_windows.h"
#include "ports/main_queue_port.h"
#include "ports/mouse_port.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace tessarel::x11 {

/// The mouse by raw events, which come also while another program has grabbed it.
///
/// At rest only presses are reported to us, so a moving mouse or a typing user wakes nobody; movements,
/// releases and keys only between a press of the left button and its release. For all events that have been
/// read together the server is asked once: pointer, buttons and modifiers are those of that moment, but a
/// modifier key that goes after the button does not count. A release that was lost shows in the buttons. A
/// click that is over before it could be looked at is not reported.
class X11Mouse : public MousePort {
public:
    /// All of them outlive the mouse.
    X11Mouse(Connection& connection, Monitors& monitors, ClientWindows& windows, MainQueuePort& queue);
    X11Mouse(const X11Mouse&) = delete;
    X11Mouse& operator=(const X11Mouse&) = delete;
    ~X11Mouse() override;

    /// Null on servers without raw events.
    [[nodiscard]] SubscriptionPtr addGlobalMonitor(MouseEventKind kind,
                                                   std::function<void(const MouseEvent&)> handler) override;

private:
    class Monitor;

    /// What has been read and not looked into yet.
    struct News {
        std::vector<std::uint32_t> presses; ///< physical buttons
        bool heldReleased = false;
        bool moved = false;
        bool typed = false; ///< before the held button was released

        [[nodiscard]] bool any() const { return !presses.empty() || heldReleased || moved || typed; }
    };

    void note(const RawMouseEvent& event);
    void notePress(std::uint32_t button);
    void noteRelease(std::uint32_t button);
    void noteRead(const Connection::Event& event);
    void hear(const Connection::Event& event);
    void lookLater(MainQueuePort::Duration delay);
    void look();
    void takePress(const News& news, const xcb_query_pointer_reply_t& pointer);
    void keepInMind(const std::vector<std::uint32_t>& presses);
    void follow(const News& news, const xcb_query_pointer_reply_t& pointer);
    void deliver(MouseEventKind kind, const Point& rootPoint, ModifierFlags modifiers);
    [[nodiscard]] bool isOverOwnWindow(const xcb_query_pointer_reply_t& pointer);
    void updateSelection();

    Connection& m_connection;
    Monitors& m_monitors;
    ClientWindows& m_windows;
    MainQueuePort& m_queue;
    RawMouse m_raw;
    std::array<CallbackList<const MouseEvent&>, 3> m_handlers; ///< by kind
    int m_monitorCount = 0;

    std::optional<std::uint32_t> m_held; ///< the physical button that is the left one, while it is down
    bool m_isOurs = false;               ///< it went down over a window of this program
    Point m_lastPlace;                   ///< of the pointer in the root window, at the last event
    ModifierFlags m_lastModifiers = 0;   ///< at the last event
    bool m_releaseIsNear = false;        ///< its release has been read and not delivered yet
    News m_news;
    int m_looksLeft = 0;       ///< for a press that the buttons do not show yet
    std::size_t m_unheard = 0; ///< raw events read and not delivered yet
    bool m_isLooking = false;
    bool m_hasMore = false; ///< some of them were read while looking
    bool m_lookScheduled = false;
    std::shared_ptr<X11Mouse*> m_self; // shared with monitors and work, which may outlive us
    SubscriptionPtr m_observer;
    SubscriptionPtr m_events;
};

} // namespace tessarel::x11
