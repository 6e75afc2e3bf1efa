// SPDX-License-Identifier: MIT

#pragma once

#include "model/carbon_mods.h"
#include "model/lifetime.h"
#include "model/signal.h"
#include "model/subscription.h"
#include "platform/x11/displays/monitors.h"
#include "platform/x11/input/raw_mouse.h"
#include "platform/x11/server/connection.h"
#include "platform/x11/windows/client_windows.h"
#include "ports/desktop/mouse_port.h"
#include "ports/main_queue_port.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace tessarel::x11 {

/// Global mouse monitoring with XInput 2 raw events, which arrive even while the window manager has grabbed
/// the pointer to move a window.
///
/// While the left button is up, only presses are selected, so that neither mouse movement nor typing wakes
/// the program. Motion, releases and keys are selected between a press of the left button and its release.
///
/// Where the user has several master pointers, a drag belongs to the one whose button went down first, and to
/// its keyboard: until the release, the other ones are ignored.
///
/// Raw events carry no root position and no modifiers. One XIQueryPointer for each batch of events provides
/// position, buttons and modifiers as of that moment; a modifier key that changes after the button was
/// released is ignored. The button mask also reveals a release whose event was lost. A click that is over
/// before the query is not reported.
class X11Mouse : public MousePort {
public:
    /// All referenced objects must outlive this one.
    X11Mouse(Connection& connection, Monitors& monitors, ClientWindows& windows, MainQueuePort& queue);
    X11Mouse(const X11Mouse&) = delete;
    X11Mouse& operator=(const X11Mouse&) = delete;
    ~X11Mouse() override;

    /// Calls `handler` with every event of `kind` outside this program's windows, until the returned
    /// subscription is destroyed. Returns null on servers without XInput 2.
    [[nodiscard]] SubscriptionPtr addGlobalMonitor(MouseEventKind kind,
                                                   std::function<void(const MouseEvent&)> handler) override;

private:
    struct Press {
        DeviceId device = 0;      ///< a master pointer
        std::uint32_t button = 0; ///< physical

        bool operator==(const Press&) const = default;
    };
    using Presses = std::vector<Press>; ///< in the order of the presses

    /// The raw events since the last query, merged. After a press only events of the devices in `m_held` and
    /// further presses count.
    struct News {
        Presses presses;           ///< of all master pointers
        bool heldReleased = false; ///< the button in `m_held` was released
        bool moved = false;
        bool typed = false;     ///< a key went down or up before the held button was released
        bool cancelled = false; ///< Escape went down before the held button was released

        [[nodiscard]] bool any() const { return !presses.empty() || heldReleased || moved || typed; }
    };

    /// The state of the left button while it is down.
    struct Held {
        Press press;                     ///< the pointer, and the button of it that acts as the left one
        DeviceId keyboard = 0;           ///< the master keyboard that belongs to the pointer
        bool isOurs = false;             ///< the press was over a window of this program
        bool isReleaseRead = false;      ///< the release has been read but not delivered yet
        Point lastRootPoint = {};        ///< pointer at the last delivered event, in root coordinates
        ModifierFlags lastModifiers = 0; ///< modifiers at the last delivered event
    };

    [[nodiscard]] static Presses pressesOf(const Presses& presses, DeviceId device);
    [[nodiscard]] bool isMonitored() const;
    void note(const RawMouseEvent& event);
    void noteKey(std::uint32_t keycode);
    void notePress(const Press& press);
    void noteRelease(const Press& press);
    void noteRead(const Connection::Event& event);
    void hear(const Connection::Event& event);
    void lookLater(MainQueuePort::Duration delay);
    void look();
    void takePress(const Presses& presses, const PointerState& pointer);
    void keepInMind(const Presses& presses);
    void lookAtOthers(const Presses& presses, DeviceId device);
    void endWithDevice();
    void follow(const News& news, const PointerState& pointer);
    void report(MouseEventKind kind, const Point& rootPoint, ModifierFlags modifiers);
    void deliver(MouseEventKind kind, const Point& rootPoint, ModifierFlags modifiers);
    [[nodiscard]] bool isOverOwnWindow(const PointerState& pointer);
    void updateSelection();

    Connection& m_connection;
    Monitors& m_monitors;
    ClientWindows& m_windows;
    MainQueuePort& m_queue;
    RawMouse m_raw;
    std::array<Signal<const MouseEvent&>, 4> m_handlers; ///< by kind

    std::optional<Held> m_held; ///< empty while the left button is up
    News m_news;
    int m_looksLeft = 0;             ///< retries left for a press that the button mask does not show yet
    std::size_t m_unheard = 0;       ///< raw events that were read but not delivered yet
    bool m_isLooking = false;        ///< a query is in progress
    bool m_hasMore = false;          ///< raw events were read while a query was in progress
    SubscriptionPtr m_scheduledLook; ///< null when none is pending
    Lifetime m_lifetime;
    SubscriptionPtr m_observer;
    SubscriptionPtr m_events;
};

} // namespace tessarel::x11
