// SPDX-License-Identifier: MIT

#include "settings_ui/layouts_tab.h"

#include "model/action_id.h"
#include "model/presets.h"
#include "qt_values/text.h"
#include "settings_ui/editor/zone_editor_view.h"
#include "settings_ui/editor/zone_fields.h"
#include "settings_ui/kit/pop_up_button.h"
#include "settings_ui/kit/segmented_control.h"
#include "settings_ui/recorder_button.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tessarel {

namespace {

/// Value of the row for zones that match no layout. The other rows have the tags of `Presets::layout`.
constexpr int kCustomTag = -1;

struct GridStep {
    const char* title;
    double percent;
};
constexpr std::array<GridStep, 5> kGridSteps = {
    {{"Off", 0}, {"1%", 1}, {"2.5%", 2.5}, {"5%", 5}, {"10%", 10}}};
/// A stored grid step selects a row of the menu if it differs by no more than this, in percent.
constexpr double kSameStep = 0.001;

QStringList zoneNumbers() {
    QStringList numbers;
    for (std::size_t i = 1; i <= kZoneSlots; ++i)
        numbers.append(QString::number(i));
    return numbers;
}

} // namespace

LayoutsTab::LayoutsTab(const TabContext& context) : m_context(context), m_store(context.services.store) {
    m_view.resize(kTabSize);
    addLayoutRow();
    addEditor();
    addGrid();
    addZoneControls();
    addHotkey();
    unifyNotes(m_view);
    selectZone(m_selected);
    refresh();
}

LayoutsTab::~LayoutsTab() {
    m_view.hide(); // ends a drag in the editor, whose callbacks use this object
}

void LayoutsTab::addLayoutRow() {
    QLabel* const label = makeLabel(m_view, QStringLiteral("Layout:"), {16, 15, 50, 18});
    m_popup = new PopUpButton(m_view, {70, 11, 250, 26}, [this] { layoutChosen(); });
    label->setBuddy(m_popup);
    m_popup->setAccessibleName(QStringLiteral("Layout"));
    makeButton(m_view, QStringLiteral("Save as..."), {330, 11, 90, 28}, [this] { saveLayout(); });
    m_deleteLayoutButton =
        makeButton(m_view, QStringLiteral("Delete"), {426, 11, 70, 28}, [this] { deleteLayout(); });
}

void LayoutsTab::addEditor() {
    m_editor = new ZoneEditorView(m_store.settings, &m_view);
    m_editor->setGeometry(16, 56, 500, 312);
    m_editor->onSelect = [this](int index) { selectZone(index); };
    m_editor->onEdit = [this] { refreshFields(); };
    // Hot keys and the menu depend on which zones are enabled, so the commit sends a notification.
    m_editor->onCommit = [this] {
        m_store.saveAndNotify();
        syncSelection();
        selectZone(m_selected);
    };
    // The keys work wherever the focus is. A text field, whose text they edit, takes them first.
    for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Backspace}) {
        auto* const shortcut = new QShortcut(key, &m_view);
        shortcut->setAutoRepeat(false);
        QObject::connect(shortcut, &QShortcut::activated, m_editor, [this] { m_editor->disableSelected(); });
    }
}

void LayoutsTab::addGrid() {
    QLabel* const label = makeLabel(m_view, QStringLiteral("Snap to grid:"), {16, 382, 90, 18});
    m_gridPopup = new PopUpButton(m_view, {110, 378, 90, 26}, [this] { gridChosen(); });
    label->setBuddy(m_gridPopup);
    m_gridPopup->setAccessibleName(QStringLiteral("Snap to grid"));
    for (const GridStep& step : kGridSteps)
        m_gridPopup->append(QString::fromLatin1(step.title), step.percent);
    makeWrap(
        m_view,
        QStringLiteral("Click a zone to select it. Drag it to move, drag its edges or corners to resize. "
                       "Hold Shift to turn snapping off. Press Delete to remove the selected zone."),
        {16, 414, 500, 44}, {.size = 12, .secondary = true});
}

void LayoutsTab::addZoneControls() {
    makeLabel(m_view, QStringLiteral("Zone"), {540, 56, 100, 20}, {.bold = true, .size = 14});
    m_segments = new SegmentedControl(m_view, zoneNumbers(), {540, 82, 230, 26},
                                      [this] { selectZone(m_segments->selectedSegment()); });
    m_segments->setAccessibleName(QStringLiteral("Zone"));
    m_enabledBox = makeCheckBox(m_view, QStringLiteral("Enabled"), {540, 120, 120, 20},
                                [this](bool isEnabled) { enabledToggled(isEnabled); });
    makeLabel(m_view, QStringLiteral("Position and size (% of screen)"), {540, 152, 230, 16},
              {.size = 11, .secondary = true});
    m_fields = std::make_unique<ZoneFields>(m_view);
    m_fields->onType = [this] { fieldsTyped(); };
    m_fields->onEnd = [this] { fieldsEnded(); };
}

void LayoutsTab::addHotkey() {
    makeLabel(m_view, QStringLiteral("Hotkey for this zone"), {540, 246, 230, 16},
              {.size = 11, .secondary = true});
    m_recorder = new RecorderButton(m_view, {540, 268, 150, 26}, m_context);
    m_recorder->onChange = m_context.refreshAll;
    makeButton(m_view, QStringLiteral("Clear"), {698, 266, 60, 28}, [this] {
        clearHotkey();
    })->setAccessibleName(QStringLiteral("Clear hotkey"));
    makeButton(m_view, QStringLiteral("Add zone"), {540, 316, 110, 28}, [this] { addZone(); });
    makeWrap(m_view,
             QStringLiteral("Zones are percentages of the usable screen area (%1).")
                 .arg(toQString(m_context.ports.words.usableArea)),
             {540, 356, 230, 50}, {.size = 12, .secondary = true});
}

void LayoutsTab::refresh() {
    rebuildPopup();
    // A step that is not in the menu leaves the shown one as it is.
    for (const GridStep& step : kGridSteps)
        if (std::abs(step.percent - m_store.settings.gridStep) <= kSameStep)
            m_gridPopup->select(step.percent);
    m_editor->zonesChanged();
    m_recorder->refresh();
    refreshFields();
}

Zone& LayoutsTab::selectedZone() {
    return m_store.settings.zones.at(static_cast<std::size_t>(m_selected));
}

void LayoutsTab::selectZone(int index) {
    m_selected = std::clamp(index, 0, static_cast<int>(kZoneSlots) - 1);
    m_editor->setSelected(m_selected);
    m_segments->setSelectedSegment(m_selected);
    m_recorder->configure(ActionID::zoneActions.at(static_cast<std::size_t>(m_selected)));
    refreshFields();
}

void LayoutsTab::refreshFields() {
    m_fields->show(selectedZone());
    m_enabledBox->setChecked(selectedZone().enabled);
}

// Layouts

void LayoutsTab::rebuildPopup() {
    std::vector<std::string> names;
    std::ranges::transform(m_store.settings.userLayouts, std::back_inserter(names), &Layout::name);
    // The user may be choosing from the list, which changes of other settings leave open.
    if (m_popup->count() > 0 && names == m_listed)
        return syncSelection();
    m_listed = std::move(names);
    m_popup->hidePopup();
    m_popup->clear();
    m_popup->append(QStringLiteral("Custom (current)"), kCustomTag);
    m_popup->appendSeparator();
    for (int tag = 0; const Layout& preset : Presets::all())
        m_popup->append(toQString(preset.name), tag++);
    if (!m_store.settings.userLayouts.empty())
        m_popup->appendSeparator();
    for (int tag = Presets::kFirstUserTag; const Layout& layout : m_store.settings.userLayouts)
        m_popup->append(QStringLiteral("Mine: ") + toQString(layout.name), tag++);
    syncSelection();
}

void LayoutsTab::syncSelection() {
    m_popup->select(matchingTag());
    m_deleteLayoutButton->setEnabled(m_popup->currentData().toInt() >= Presets::kFirstUserTag);
}

int LayoutsTab::matchingTag() const {
    // Stored layouts may have fewer than nine zones, the current set always has nine.
    const auto isCurrent = [this](const Layout& layout) {
        return Presets::pad(layout.zones) == m_store.settings.zones;
    };
    const auto isLast = [&](const Layout& layout) {
        return layout.name == m_lastLayout && isCurrent(layout);
    };
    const auto& presets = Presets::all();
    if (const auto preset = std::ranges::find_if(presets, isCurrent); preset != presets.end())
        return static_cast<int>(preset - presets.begin());
    const auto& own = m_store.settings.userLayouts;
    auto layout = std::ranges::find_if(own, isLast);
    if (layout == own.end())
        layout = std::ranges::find_if(own, isCurrent);
    return layout == own.end() ? kCustomTag : Presets::kFirstUserTag + static_cast<int>(layout - own.begin());
}

void LayoutsTab::layoutChosen() {
    const Layout* const layout =
        Presets::layout(m_popup->currentData().toInt(), m_store.settings.userLayouts);
    if (!layout)
        return syncSelection(); // "Custom" cannot be applied: show the layout in use again
    m_lastLayout = layout->name;
    m_store.settings.zones = Presets::pad(layout->zones);
    m_store.saveAndNotify();
    selectZone(0);
    refresh();
}

void LayoutsTab::saveLayout() {
    m_context.ports.application.activate();
    const auto typed =
        m_context.ports.alerts.runModalForText({"Save layout", "Name for this layout:", {"Save", "Cancel"}});
    const std::string name = toQString(typed.value_or("")).trimmed().toStdString();
    if (name.empty()) // cancelled, or a blank name
        return;
    std::vector<Layout>& layouts = m_store.settings.userLayouts;
    // A layout of the same name is replaced.
    const auto same = std::ranges::find(layouts, name, &Layout::name);
    if (same != layouts.end())
        same->zones = m_store.settings.zones;
    else
        layouts.push_back({name, m_store.settings.zones});
    m_lastLayout = name;
    m_store.saveAndNotify();
    rebuildPopup();
}

void LayoutsTab::deleteLayout() {
    const int index = m_popup->currentData().toInt() - Presets::kFirstUserTag;
    std::vector<Layout>& layouts = m_store.settings.userLayouts;
    if (index < 0 || static_cast<std::size_t>(index) >= layouts.size())
        return;
    // The zones in use stay; only the stored layout is removed.
    layouts.erase(layouts.begin() + index);
    m_store.saveAndNotify();
    rebuildPopup();
}

void LayoutsTab::gridChosen() {
    m_store.settings.gridStep = m_gridPopup->currentData().toDouble();
    m_store.save(); // without a notification: only the editor uses the step
}

// The selected zone

void LayoutsTab::enabledToggled(bool isEnabled) {
    selectedZone().enabled = isEnabled;
    m_store.saveAndNotify();
    syncSelection();
    selectZone(m_selected);
}

void LayoutsTab::addZone() {
    std::vector<Zone>& zones = m_store.settings.zones;
    const auto free = std::ranges::find(zones, false, &Zone::enabled);
    if (free == zones.end())
        return showMessage(m_context.ports, QStringLiteral("All 9 zones are in use"),
                           QStringLiteral("Remove a zone first (select it and press Delete)."));
    // Centred, with half the width and height of the usable area.
    *free = Presets::z(25, 25, 50, 50);
    const auto index = static_cast<int>(free - zones.begin());
    m_store.saveAndNotify();
    syncSelection();
    selectZone(index);
}

void LayoutsTab::clearHotkey() {
    m_store.setBinding(std::nullopt, ActionID::zoneActions.at(static_cast<std::size_t>(m_selected)));
    m_store.saveAndNotify();
    m_context.refreshAll();
}

void LayoutsTab::fieldsTyped() {
    selectedZone() = m_fields->typed(selectedZone());
    m_store.save(); // without a notification, which fieldsEnded() sends
    m_editor->zonesChanged();
}

void LayoutsTab::fieldsEnded() {
    m_store.saveAndNotify();
    syncSelection();
    refreshFields();
}

} // namespace tessarel
