// SPDX-License-Identifier: MIT

#pragma once

#include "platform/plasma/keys/shortcut_keys.h"
#include "platform/qt/qt_main_queue.h"
#include "platform/wayland/bus_link.h"
#include "support/plasma/plasma_session.h"
#include "support/plasma/wayland_client.h"

#include <QGuiApplication>
#include <QRasterWindow>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tessarel::contract {

/// Throws std::runtime_error with `what` in its text unless `holds` is true.
void require(bool holds, const char* what);

/// A private session of KDE Plasma on Wayland, and the Qt application under test in it, shared by all tests.
class PlasmaStage {
public:
    [[nodiscard]] static PlasmaStage& shared();

    [[nodiscard]] plasmatest::PlasmaSession& session() { return m_session; }
    /// Connects all displays again.
    void reset();
    void disconnectSecondDisplay();

    /// Runs JavaScript in KWin, with the window of this title as `w`.
    void change(const std::string& title, const std::string& script);
    /// Returns the window with this title as KWin sees it; null if there is none.
    [[nodiscard]] const plasmatest::SeenWindow* find(const std::string& title);

    /// Runs Qt's event loop until `holds` returns true. Returns false if it does not.
    [[nodiscard]] static bool runLoopUntil(const std::function<bool()>& holds);
    /// Opens a new window of the application under test and waits until it has the focus.
    void focusOwnWindow();
    void closeOwnWindow();

private:
    PlasmaStage();

    plasmatest::PlasmaSession m_session{plasmatest::Drawing::Software, {1440, 900}};
    bool m_isComplete = true; ///< all displays are connected
    int m_argumentCount = 1;
    std::array<char, 5> m_programName{"test"};
    std::array<char*, 2> m_arguments{m_programName.data(), nullptr};
    std::optional<QGuiApplication> m_application;
    std::optional<QRasterWindow> m_window;
};

/// A connection of the back end to the bus of the session, whose messages the Qt event loop delivers.
class PlasmaLine {
public:
    explicit PlasmaLine(const std::string& address);

    [[nodiscard]] wayland::BusLink& link() { return m_link; }
    [[nodiscard]] MainQueuePort& queue() { return m_queue; }

    /// Runs the loop until KWin has handled everything that was sent to it, and everything that it has sent
    /// before has been delivered.
    void roundTrip();

private:
    qt::QtMainQueue m_queue;
    wayland::BusLink m_link;
    SubscriptionPtr m_readable;
};

/// Another program that holds global shortcuts.
class ShortcutHolder {
public:
    /// `link` must outlive this object and what `hold` returns.
    explicit ShortcutHolder(wayland::BusLink& link) : m_link(link) {}

    /// Registers the combination, given as in `HotKeyRequest`, until the returned subscription is destroyed.
    /// Returns null when Plasma refuses.
    [[nodiscard]] SubscriptionPtr hold(std::uint32_t keyCode, std::uint32_t mods);

private:
    [[nodiscard]] wayland::BusMessage request(const std::string& member, const std::string& signature,
                                              std::vector<wayland::BusValue> values);

    wayland::BusLink& m_link;
    xkb::Keymap m_keymap = xkb::Keymap::us();
};

} // namespace tessarel::contract
