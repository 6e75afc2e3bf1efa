#pragma once

#include "settings_ui/kit.h"
#include "settings_ui/recorder_button.h"
#include "settings_ui/tab_context.h"

#include <vector>

namespace tessarel {

/// The hot keys of all actions, each of which can be recorded anew and cleared.
class ShortcutsTab {
public:
    explicit ShortcutsTab(const TabContext& context);
    ShortcutsTab(const ShortcutsTab&) = delete;
    ShortcutsTab& operator=(const ShortcutsTab&) = delete;

    [[nodiscard]] QWidget* view() { return &m_view; }

    /// Shows the present hot keys; a recorder that waits for keys goes on doing so.
    void refresh();

    /// Takes the hot key from the action at position `tag`; a tag that no action has does nothing.
    void clearTapped(int tag);

private:
    void addRow(QWidget& document, int tag);
    void resetAll();

    TabContext m_context;
    FlippedView m_view;
    std::vector<RecorderButton*> m_recorders; ///< one per action, in their order; part of the view
};

} // namespace tessarel
