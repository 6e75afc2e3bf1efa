#pragma once

#include "platform/x11/server/connection.h"
#include "platform/x11/windows/window_frame.h"
#include "platform/x11/windows/window_traits.h"
#include "ports/process_id.h"

#include <optional>
#include <unordered_map>
#include <vector>

namespace tessarel::x11 {

/// The managed windows of all programs, as they are in this turn: asked once, in as few round trips as can
/// be. A window that has gone answers nothing.
class ClientWindows {
public:
    explicit ClientWindows(Connection& connection);
    ClientWindows(const ClientWindows&) = delete;
    ClientWindows& operator=(const ClientWindows&) = delete;
    ~ClientWindows() = default;

    /// The managed window with the keyboard focus, or XCB_WINDOW_NONE. All about it comes along with the
    /// answer, unless the focus has moved since it was last heard of.
    [[nodiscard]] xcb_window_t activeWindow();
    /// Returns the outer frame of that window in pixels of the root window, or `std::nullopt` when there is
    /// none.
    [[nodiscard]] std::optional<Rect> activeFrame();
    /// All managed windows, the front-most first.
    [[nodiscard]] const std::vector<xcb_window_t>& frontToBack();
    /// All managed windows, the oldest first.
    [[nodiscard]] std::vector<xcb_window_t> managed();
    /// The managed windows of a process, the front-most first.
    [[nodiscard]] std::vector<xcb_window_t> windowsOf(ProcessId pid);

    [[nodiscard]] std::optional<ProcessId> pid(xcb_window_t window);
    [[nodiscard]] std::optional<WindowFrame> frame(xcb_window_t window);
    [[nodiscard]] WindowTraits traits(xcb_window_t window);

    /// Asks for all about `windows` in one round trip; the calls above then answer from memory.
    void learnAll(const std::vector<xcb_window_t>& windows);

    /// Makes `frame` ask again: the window has been written to.
    void forgetFrame(xcb_window_t window);

private:
    struct Known {
        std::optional<std::optional<WindowFrame>> frame;
        std::optional<WindowTraits> traits;
    };
    class Questions;

    void startTurn();
    void note(const Connection::Event& event);
    void follow(const Connection::Event& event);
    const Known& learn(xcb_window_t window);
    void learnPids(const std::vector<xcb_window_t>& windows);

    Connection& m_connection;
    std::uint64_t m_turn = 0; // the one that the following belong to
    std::optional<xcb_window_t> m_active;
    std::optional<std::vector<xcb_window_t>> m_frontToBack;
    std::unordered_map<xcb_window_t, Known> m_known;

    xcb_window_t m_lastActive = XCB_WINDOW_NONE;
    std::unordered_map<xcb_window_t, std::optional<ProcessId>> m_pids; // kept until windows come or go
    bool m_pidsOutdated = false;
    SubscriptionPtr m_observer;
    SubscriptionPtr m_handler;
};

} // namespace tessarel::x11
