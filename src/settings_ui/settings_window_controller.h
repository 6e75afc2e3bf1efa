#pragma once

#include "app/settings_window.h"
#include "settings_ui/about_tab.h"
#include "settings_ui/general_tab.h"
#include "settings_ui/kit.h"
#include "settings_ui/layouts_tab.h"
#include "settings_ui/shortcuts_tab.h"
#include "settings_ui/tab_context.h"

#include <memory>
#include <optional>

class QTabWidget;

namespace tessarel {

/// The settings window with its tabs. The tabs exist from the start; the window is made when it is first
/// shown, and closing it hides it.
class SettingsWindowController : public SettingsWindow {
public:
    /// The raw value is the position of the tab.
    enum class Tab { Layouts, Shortcuts, General, About };

    /// Both outlive the controller.
    SettingsWindowController(Services& services, const Ports& ports);
    SettingsWindowController(const SettingsWindowController&) = delete;
    SettingsWindowController& operator=(const SettingsWindowController&) = delete;
    ~SettingsWindowController() override;

    /// The tab at a position; none where there is none.
    [[nodiscard]] static std::optional<Tab> tab(int rawValue);

    void show() override { show(std::nullopt); }
    /// Shows the window with the present settings and brings it to the front, on `tab` or, without one, on
    /// the tab it was left on.
    void show(std::optional<Tab> tab);

    void refreshAll() override;

private:
    void makeWindow();
    void addTab(QWidget& view, const QString& label);

    const Ports& m_ports;
    // Before the tabs, whose views leave it when they end.
    std::unique_ptr<QWidget> m_window; // none before it is first shown
    QTabWidget* m_tabs = nullptr;
    TabContext m_context;
    LayoutsTab m_layouts;
    ShortcutsTab m_shortcuts;
    GeneralTab m_general;
    AboutTab m_about;
};

} // namespace tessarel
