#pragma once

namespace tessarel {

/// The settings window, as far as the shell has to do with it.
class SettingsWindow {
public:
    virtual ~SettingsWindow() = default;

    /// Shows the window and brings it to the front, on the tab it was left on.
    virtual void show() = 0;

    /// Shows the present settings in an open window; does nothing while there is none.
    virtual void refreshAll() = 0;
};

} // namespace tessarel
