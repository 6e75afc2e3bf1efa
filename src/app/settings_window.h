#pragma once

#include <functional>
#include <memory>

namespace tessarel {

struct Ports;
struct Services;

/// The settings window, as far as the shell has to do with it.
class SettingsWindow {
public:
    virtual ~SettingsWindow() = default;

    /// Shows the window and brings it to the front, on the tab it was left on.
    virtual void show() = 0;

    /// Shows the present settings in every tab.
    virtual void refreshAll() = 0;
};

/// Makes the settings window when it is first asked for, and never answers null. What it is given outlives
/// the window.
using SettingsWindowFactory = std::function<std::unique_ptr<SettingsWindow>(Services&, const Ports&)>;

} // namespace tessarel
