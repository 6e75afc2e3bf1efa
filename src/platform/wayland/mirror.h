// SPDX-License-Identifier: MIT

#pragma once

#include "model/signal.h"
#include "model/subscription.h"
#include "ports/desktop/process_id.h"
#include "ports/desktop/rect.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::wayland {

/// Identifies a window for the lifetime of the program; never reused.
using WindowId = std::uint64_t;

inline constexpr WindowId kNoWindow = 0;

/// Returns the key of a window's element (see `AccessibilityPort::key`). Windows have odd keys.
[[nodiscard]] constexpr std::uintptr_t elementKey(WindowId window) {
    return static_cast<std::uintptr_t>(2 * window + 1);
}

enum class WindowKind : std::uint8_t {
    Standard,
    Dialog,
    Floating, ///< a palette, a splash screen or the like
    Other,    ///< a panel, the desktop or anything else that is not for work
};

/// What the compositor reports about a window. Frames are in the compositor's coordinates, whose origin is
/// the top-left corner of the area that all displays cover.
struct WindowState {
    std::string name;  ///< the compositor's own identifier
    ProcessId pid = 0; ///< in a report 0 if the compositor does not know it; the mirror then makes one up
    std::string applicationId;
    std::string windowClass;
    Rect frame; ///< visible outer frame
    WindowKind kind = WindowKind::Standard;
    bool isMinimized = false;
    bool isFullScreen = false;
    bool isOnCurrentDesktop = true;
    double opacity = 1;

    bool operator==(const WindowState&) const = default;
};

/// What the compositor reports about a display.
struct DisplayState {
    Rect frame;
    Rect usable; ///< without panels

    bool operator==(const DisplayState&) const = default;
};

/// A step of the user's moving or resizing a window.
struct UserMove {
    enum class Phase : std::uint8_t { Started, Stepped, Finished, Cancelled };
    Phase phase = Phase::Started;
    WindowId window = kNoWindow;
    bool isMove = true; ///< otherwise the window is resized
    Point pointer;
    Rect frame;

    bool operator==(const UserMove&) const = default;
};

/// The windows and displays of the desktop as the compositor has last reported them, so that they can be read
/// without a round trip.
///
/// Reports are applied at once, maybe while the main thread waits for one. The signals about them are sent by
/// `deliver`, in the order of the reports. Call it after each report, so that handlers find the state that
/// the signal is about, but not during a wait.
class Mirror {
public:
    /// Everything that the compositor reports on startup.
    struct Snapshot {
        std::vector<WindowState> windows; ///< back to front
        std::string active;               ///< name of the window with the focus, or empty
        std::vector<DisplayState> displays;
    };

    Mirror() = default;
    Mirror(const Mirror&) = delete;
    Mirror& operator=(const Mirror&) = delete;
    ~Mirror() = default;

    /// Replaces everything. Windows with a known name keep their id. Those of the first snapshot count as
    /// open already.
    void reset(const Snapshot& snapshot);
    /// Adds a window in front of all others, or replaces what is known of it.
    void update(const WindowState& window);
    void remove(const std::string& name);
    /// Puts the windows into this order, back to front. Unknown and repeated names are ignored.
    void restack(const std::vector<std::string>& names);
    void activate(const std::string& name);
    /// Of displays that mirror each other, only the first is kept: they are the same place to the user.
    void setDisplays(const std::vector<DisplayState>& displays);
    void setFrame(const std::string& name, const Rect& frame);
    /// Sets the frame that a window has taken or kept when it was placed. Unlike `setFrame`, announces a
    /// frame that has not changed, too, because the program may not have waited for it.
    void settle(const std::string& name, const Rect& frame);
    /// Announces that something else, such as a key of the desktop, has requested another frame for a window
    /// since the last placement.
    void replace(WindowId window);
    /// Changes the frame only when the step is delivered, so that a program that is late finds the window
    /// where it was at that step. A frame that is reported otherwise in the meantime stays.
    void move(UserMove::Phase phase, const std::string& name, bool isMove, const Point& pointer,
              const Rect& frame);

    /// Returns whether the first snapshot has arrived.
    [[nodiscard]] bool isReady() const { return m_isReady; }
    /// Returns null if there is no such window.
    [[nodiscard]] const WindowState* find(WindowId window) const;
    [[nodiscard]] WindowId named(const std::string& name) const;
    [[nodiscard]] WindowId active() const { return m_active; }
    /// Returns the window that the user moves or resizes, as of the last step that was delivered.
    [[nodiscard]] WindowId movedByUser() const { return m_movedByUser; }
    [[nodiscard]] std::vector<WindowId> frontToBack() const;
    [[nodiscard]] const std::vector<DisplayState>& displays() const { return m_displays; }
    /// Returns the frame of the primary display; empty without displays.
    [[nodiscard]] Rect primary() const;

    /// Sends the signals about what was applied since the last call.
    void deliver();
    /// Calls `delivered` after each `deliver`.
    [[nodiscard]] SubscriptionPtr onDelivered(std::function<void()> delivered);
    /// Calls `ready` when the first snapshot has arrived.
    [[nodiscard]] SubscriptionPtr onReady(std::function<void()> ready);
    [[nodiscard]] SubscriptionPtr onOpened(std::function<void(WindowId)> opened);
    /// `closed` gets the window's last state.
    [[nodiscard]] SubscriptionPtr onClosed(std::function<void(WindowId, const WindowState&)> closed);
    [[nodiscard]] SubscriptionPtr onActivated(std::function<void()> activated);
    [[nodiscard]] SubscriptionPtr onFrameChanged(std::function<void(WindowId, const Rect&)> changed);
    [[nodiscard]] SubscriptionPtr onReplaced(std::function<void(WindowId)> replaced);
    [[nodiscard]] SubscriptionPtr onMove(std::function<void(const UserMove&)> moved);

private:
    void removeUnlisted(const Snapshot& snapshot);
    void sendMove(const UserMove& step);
    void note(std::function<void()> signal) { m_notices.push_back(std::move(signal)); }

    bool m_isReady = false;
    WindowId m_lastId = kNoWindow;
    std::map<WindowId, WindowState> m_windows;
    std::map<WindowId, std::uint64_t> m_knownFrames; ///< number of reports of a frame, but for moves
    std::map<std::string, WindowId> m_ids;
    std::vector<WindowId> m_backToFront;
    WindowId m_active = kNoWindow;
    std::vector<DisplayState> m_displays; ///< the primary one first
    std::optional<UserMove> m_userMove;   ///< the last step of a move that has not ended
    WindowId m_movedByUser = kNoWindow;
    std::deque<std::function<void()>> m_notices;
    Signal<> m_delivered;
    Signal<> m_ready;
    Signal<WindowId> m_opened;
    Signal<WindowId, const WindowState&> m_closed;
    Signal<> m_activated;
    Signal<WindowId, const Rect&> m_frameChanged;
    Signal<WindowId> m_replaced;
    Signal<const UserMove&> m_moved;
};

} // namespace tessarel::wayland
