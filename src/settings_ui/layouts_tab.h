// SPDX-License-Identifier: MIT

#pragma once

#include "model/layout.h"
#include "settings_ui/kit/kit.h"
#include "settings_ui/tab_context.h"

#include <memory>
#include <string>
#include <vector>

class QCheckBox;
class QPushButton;

namespace tessarel {

class PopUpButton;
class RecorderButton;
class SegmentedControl;
class ZoneEditorView;
class ZoneFields;

/// The "Layouts" tab: the user designs zones with the mouse or by numbers, applies a layout, or saves the
/// zones as a layout.
class LayoutsTab {
public:
    /// Builds the controls and shows the current settings. Everything that `context` refers to must outlive
    /// the tab.
    explicit LayoutsTab(const TabContext& context);
    LayoutsTab(const LayoutsTab&) = delete;
    LayoutsTab& operator=(const LayoutsTab&) = delete;
    /// Commits a drag that is still in progress.
    ~LayoutsTab();

    /// Returns the tab's view, which the tab owns.
    [[nodiscard]] QWidget* view() { return &m_view; }

    /// Returns the position of the zone that the controls show, 0 to 8.
    [[nodiscard]] int selected() const { return m_selected; }

    /// Shows the current settings. The selected zone stays selected, and a running recording or edit goes on.
    void refresh();

private:
    void addLayoutRow();
    void addEditor();
    void addGrid();
    void addZoneControls();
    void addHotkey();

    // Called when the user changes a control.
    void layoutChosen();
    void saveLayout();
    void deleteLayout();
    void gridChosen();
    void enabledToggled(bool isEnabled);
    void addZone();
    void clearHotkey();
    void fieldsTyped();
    void fieldsEnded();

    /// Shows the zone at `index`, limited to 0 to 8, in all controls.
    void selectZone(int index);
    /// Shows the numbers of the selected zone and whether it is enabled.
    void refreshFields();
    /// Fills the layout menu with "Custom", the presets and the user's layouts, unless it lists them already.
    void rebuildPopup();
    /// Selects the layout in the menu that equals the current zones.
    void syncSelection();
    /// Returns the tag of the layout whose zones equal the current ones: the first such preset, else the
    /// user's layout that was saved or chosen last, else the first of the user's. `kCustomTag` if there is
    /// none.
    [[nodiscard]] int matchingTag() const;
    [[nodiscard]] Zone& selectedZone();

    TabContext m_context;
    Store& m_store;
    FlippedView m_view; // owns the controls
    PopUpButton* m_popup = nullptr;
    QPushButton* m_deleteLayoutButton = nullptr;
    ZoneEditorView* m_editor = nullptr;
    PopUpButton* m_gridPopup = nullptr;
    SegmentedControl* m_segments = nullptr;
    QCheckBox* m_enabledBox = nullptr;
    std::unique_ptr<ZoneFields> m_fields;
    RecorderButton* m_recorder = nullptr;
    int m_selected = 0;
    std::vector<std::string> m_listed; ///< names of the user's layouts in the menu
    std::string m_lastLayout;          ///< name of the user's layout that was saved or chosen last
};

} // namespace tessarel
