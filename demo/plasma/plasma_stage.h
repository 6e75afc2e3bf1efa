// SPDX-License-Identifier: MIT

#pragma once

#include "desktop/status_notifier_panel.h"
#include "support/plasma/plasma_session.h"

#include <filesystem>
#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel::plasmademo {

/// The desktop of the demo: KDE Plasma with its panel on one display, and programs.
class PlasmaStage {
public:
    static constexpr Size kDisplay{1920, 1080};

    /// Waits until the panel shows icons. Throws std::runtime_error if it does not.
    PlasmaStage();

    [[nodiscard]] plasmatest::PlasmaSession& session() { return m_session; }
    [[nodiscard]] const x11test::StatusNotifierPanel& panel() const { return m_panel; }

    /// Puts a window at this place, as a user would.
    void put(const std::string& windowClass, const Rect& frame);
    /// Makes a window the active one, and waits until it is.
    void activate(const std::string& windowClass);
    /// Returns the frame of the window with this title; null if there is none.
    [[nodiscard]] Rect frameOfTitle(std::string_view title);
    /// Returns the height of the panel along the bottom of the display; 0 while there is none.
    [[nodiscard]] double panelHeight();
    /// Takes a picture once two in a row are equal, and writes it to `file` (PPM).
    void shoot(const std::filesystem::path& file);

private:
    void copyFiles();
    void start(const std::vector<std::string>& command);
    [[nodiscard]] bool tellShell(const std::string& script);

    plasmatest::PlasmaSession m_session{plasmatest::Drawing::OpenGl, kDisplay};
    x11test::StatusNotifierPanel m_panel{m_session.environment()};
    std::list<x11test::ChildProcess> m_processes;
};

} // namespace tessarel::plasmademo
