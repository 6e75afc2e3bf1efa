// SPDX-License-Identifier: MIT

#pragma once

#include "app/settings_window.h"
#include "settings_ui/about_tab.h"
#include "settings_ui/general_tab.h"
#include "settings_ui/kit/kit.h"
#include "settings_ui/layouts_tab.h"
#include "settings_ui/shortcuts_tab.h"
#include "settings_ui/tab_context.h"

#include <memory>
#include <optional>

class QTabWidget;

namespace tessarel {

/// The settings window. Its tabs are created with the controller, the window itself when it is first shown.
/// Closing the window only hides it.
class SettingsWindowController : public SettingsWindow {
public:
    /// The raw value is the position of the tab.
    enum class Tab { Layouts, Shortcuts, General, About };

    /// `services` and `ports` must outlive the controller.
    SettingsWindowController(Services& services, const Ports& ports);
    SettingsWindowController(const SettingsWindowController&) = delete;
    SettingsWindowController& operator=(const SettingsWindowController&) = delete;
    ~SettingsWindowController() override;

    /// Returns the tab with a raw value, `std::nullopt` if there is none.
    [[nodiscard]] static std::optional<Tab> tab(int rawValue);

    void show() override { show(std::nullopt); }
    /// Shows the window with the current settings and brings it to the front, and onto a screen. Switches to
    /// `tab`; without one, the window shows the tab that was open last.
    void show(std::optional<Tab> tab);

    /// Shows the current settings in every tab.
    void refreshAll() override;

private:
    /// Creates the window with the views of all tabs, centred on a screen. It is not shown yet.
    void makeWindow();
    void addTab(QWidget& view, const QString& label);

    const Ports& m_ports;
    /// Null until the window is first shown. Declared before the tabs, so that it outlives their views, which
    /// become its descendants.
    std::unique_ptr<QWidget> m_window;
    QTabWidget* m_tabs = nullptr;
    TabContext m_context;
    LayoutsTab m_layouts;
    ShortcutsTab m_shortcuts;
    GeneralTab m_general;
    AboutTab m_about;
};

} // namespace tessarel
