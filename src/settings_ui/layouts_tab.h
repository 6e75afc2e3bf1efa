#pragma once

#include "model/layout.h"
#include "settings_ui/kit.h"
#include "settings_ui/tab_context.h"

#include <memory>

class QCheckBox;
class QPushButton;

namespace tessarel {

class PopUpButton;
class RecorderButton;
class SegmentedControl;
class ZoneEditorView;
class ZoneFields;

/// The zones of the screen: designed with the mouse or by numbers, taken from a layout, saved as one.
class LayoutsTab {
public:
    explicit LayoutsTab(const TabContext& context);
    LayoutsTab(const LayoutsTab&) = delete;
    LayoutsTab& operator=(const LayoutsTab&) = delete;
    ~LayoutsTab();

    [[nodiscard]] QWidget* view() { return &m_view; }

    /// Position of the zone that the controls are about, 0 to 8.
    [[nodiscard]] int selected() const { return m_selected; }

    /// Shows the present settings; the selected zone stays selected.
    void refresh();

private:
    void addLayoutRow();
    void addEditor();
    void addGrid();
    void addZoneControls();
    void addHotkey();

    void layoutChosen();
    void saveLayout();
    void deleteLayout();
    void gridChosen();
    void enabledToggled(bool isEnabled);
    void addZone();
    void clearHotkey();
    void fieldsTyped();
    void fieldsEnded();

    void selectZone(int index);
    void refreshFields();
    void rebuildPopup();
    void syncSelection();
    [[nodiscard]] int matchingTag() const;
    [[nodiscard]] const Layout* layoutOf(int tag) const;
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
};

} // namespace tessarel
