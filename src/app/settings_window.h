// SPDX-License-Identifier: MIT

#pragma once

#include <functional>
#include <memory>

namespace tessarel {

struct Ports;
struct Services;

/// The settings window as the application controls it. It is implemented in `settings_ui`, which this folder
/// may not include.
class SettingsWindow {
public:
    virtual ~SettingsWindow() = default;

    /// Shows the window and brings it to the front, with the tab that was open last.
    virtual void show() = 0;

    /// Updates every tab from the current settings.
    virtual void refreshAll() = 0;
};

/// Creates the settings window when it is first opened. Never returns null. The arguments outlive the window.
using SettingsWindowFactory = std::function<std::unique_ptr<SettingsWindow>(Services&, const Ports&)>;

} // namespace tessarel
