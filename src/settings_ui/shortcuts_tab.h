// SPDX-License-Identifier: MIT

#pragma once

#include "settings_ui/kit/kit.h"
#include "settings_ui/recorder_button.h"
#include "settings_ui/tab_context.h"

#include <vector>

namespace tessarel {

/// The "Shortcuts" tab: the user records, clears or resets the hot keys of all actions.
class ShortcutsTab {
public:
    /// Builds a row for each action. Everything that `context` refers to must outlive the tab.
    explicit ShortcutsTab(const TabContext& context);
    ShortcutsTab(const ShortcutsTab&) = delete;
    ShortcutsTab& operator=(const ShortcutsTab&) = delete;

    /// Returns the tab's view, which the tab owns.
    [[nodiscard]] QWidget* view() { return &m_view; }

    /// Shows the current hot keys. A recording continues.
    void refresh();

    /// Unbinds the action at position `tag`, counted from 0 as in the list of all actions, and saves. Does
    /// nothing if there is no such action.
    void clearTapped(int tag);

private:
    void addRow(QWidget& document, int tag);
    /// Restores the default hot keys of all actions.
    void resetAll();

    TabContext m_context;
    FlippedView m_view;
    std::vector<RecorderButton*> m_recorders; ///< one per action, in their order; owned by the view
};

} // namespace tessarel
