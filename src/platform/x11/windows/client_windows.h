// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/server/connection.h"
#include "platform/x11/server/window_manager_check.h"
#include "platform/x11/windows/window_frame.h"
#include "platform/x11/windows/window_traits.h"
#include "ports/desktop/process_id.h"

#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

namespace tessarel::x11 {

/// Merges `_NET_CLIENT_LIST_STACKING` and `_NET_CLIENT_LIST`, and returns each window once, front to back.
[[nodiscard]] std::vector<xcb_window_t> frontToBackFrom(std::span<const std::uint32_t> stacking,
                                                        std::span<const std::uint32_t> list);

/// Returns the key of a window's element, or of a process without a window (see `AccessibilityPort::key`).
/// The process id is part of the key because the server reuses window ids after a client has exited.
[[nodiscard]] std::uintptr_t elementKey(ProcessId pid, xcb_window_t window);

/// The managed windows of all clients, with a cache for the current turn.
///
/// Values are read in as few round trips as possible and, unless noted, cached until the turn ends. Window
/// ids are those of the clients, not of the frames around them. For a window that does not exist, every value
/// is empty.
class ClientWindows {
public:
    /// `connection` must outlive this object.
    explicit ClientWindows(Connection& connection);
    ClientWindows(const ClientWindows&) = delete;
    ClientWindows& operator=(const ClientWindows&) = delete;
    ~ClientWindows() = default;

    /// Returns the active window (`_NET_ACTIVE_WINDOW`), or XCB_WINDOW_NONE when no managed window is active.
    /// Its frame, traits and process id arrive in the same round trip, unless the active window has just
    /// changed.
    [[nodiscard]] xcb_window_t activeWindow();
    /// Returns the outer frame of the active window in pixels of the root window, or `std::nullopt` when no
    /// window is active.
    [[nodiscard]] std::optional<Rect> activeFrame();
    /// Returns all managed windows, front to back, in the order that the window manager publishes.
    [[nodiscard]] const std::vector<xcb_window_t>& frontToBack();
    /// Returns all managed windows in the order of `_NET_CLIENT_LIST`, oldest first. Not cached.
    [[nodiscard]] std::vector<xcb_window_t> managed();
    /// Returns the managed windows of a process, front to back.
    [[nodiscard]] std::vector<xcb_window_t> windowsOf(ProcessId pid);

    /// Returns the process that owns the window, or `std::nullopt` when it is unknown.
    [[nodiscard]] std::optional<ProcessId> pid(xcb_window_t window);
    /// Returns the position, extents and states of the window, or `std::nullopt` when it does not exist.
    [[nodiscard]] std::optional<WindowFrame> frame(xcb_window_t window);
    /// Returns the size of the window manager's outermost window around `window`, borders included, or
    /// `std::nullopt` when the window does not exist. Not cached.
    [[nodiscard]] std::optional<Size> frameWindowSize(xcb_window_t window);
    /// Returns the type of the window and what it says about its program.
    [[nodiscard]] WindowTraits traits(xcb_window_t window);

    /// Reads everything about `windows` in one round trip. `pid`, `frame` and `traits` then need none.
    void learnAll(const std::vector<xcb_window_t>& windows);

    /// Drops the cached frame. To be called after a write to the window.
    void forgetFrame(xcb_window_t window);

    /// Returns what the window manager supports (see `WindowManagerCheck::state`).
    [[nodiscard]] const WindowManagerState& manager() { return m_manager.state(); }

private:
    /// The cached values of one window. The inner optional of `frame` is empty when the window does not
    /// exist.
    struct Known {
        std::optional<std::optional<WindowFrame>> frame;
        std::optional<WindowTraits> traits;
    };
    class Questions;

    void startTurn();
    void note(const Connection::Event& event);
    void follow(const Connection::Event& event);
    const Known& learn(xcb_window_t window);
    [[nodiscard]] bool hasWindowState(xcb_window_t window);
    void learnPids(const std::vector<xcb_window_t>& windows);

    Connection& m_connection;
    WindowManagerCheck m_manager;
    std::uint64_t m_turn = 0; // the turn that the next three members were read in
    std::optional<xcb_window_t> m_active;
    std::optional<std::vector<xcb_window_t>> m_frontToBack;
    std::unordered_map<xcb_window_t, Known> m_known;

    xcb_window_t m_lastActive = XCB_WINDOW_NONE; // the guess that `activeWindow` reads ahead
    std::unordered_map<xcb_window_t, std::optional<ProcessId>> m_pids; // until the client list changes
    bool m_pidsOutdated = false;
    SubscriptionPtr m_observer;
    SubscriptionPtr m_handler;
};

} // namespace tessarel::x11
