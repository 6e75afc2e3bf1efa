// SPDX-License-Identifier: MIT

#include "settings_ui/general_tab.h"

#include "model/config.h"
#include "model/drag_trigger.h"
#include "qt_values/text.h"
#include "settings_ui/kit/pop_up_button.h"
#include "settings_ui/kit/slider.h"

#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVariant>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace tessarel {
namespace {

constexpr LabelStyle kHeading{.bold = true, .size = 14};
constexpr WrapStyle kNote{.size = 12, .secondary = true};
constexpr int kIgnoredRowHeight = 22;

QString appName() {
    return toQString(Config::appName);
}

/// Returns the position of `slider` for `points`: rounded to whole points, halves up, and limited to the
/// range of the slider.
int position(const QSlider& slider, double points) {
    const double rounded = std::round(points);
    return static_cast<int>(std::clamp<double>(rounded, slider.minimum(), slider.maximum()));
}

/// Returns the text beside a slider: `points` without its fraction.
QString readout(double points) {
    const double whole = std::trunc(points) + 0.0; // turns -0 into 0, which has no sign
    return QString::number(whole, 'f', 0) + QStringLiteral(" px");
}

/// Moves `slider` without a signal, which would store the rounded value in the settings.
void show(QSlider& slider, double points) {
    const QSignalBlocker silence(slider);
    slider.setValue(position(slider, points));
}

QString titleOf(DragTrigger trigger, const PlatformWords& words) {
    switch (trigger) {
    case DragTrigger::Shift:
        return QStringLiteral("Shift");
    case DragTrigger::Control:
        return toQString(words.controlKey);
    case DragTrigger::Command:
        return toQString(words.commandKey);
    case DragTrigger::Always:
        return QStringLiteral("Nothing (always)");
    }
    return {};
}

QString edgeNote(const PlatformWords& words) {
    const QString note =
        QStringLiteral("Edges give halves, corners give quarters, the top edge maximizes. %1; "
                       "turn one of the two off to avoid double snapping.")
            .arg(toQString(words.otherEdgeTiling));
    return words.dragNote.empty() ? note : note + QLatin1Char(' ') + toQString(words.dragNote);
}

} // namespace

GeneralTab::GeneralTab(const TabContext& context)
    : m_context(context),
      m_noteObserver(context.ports.words.dragNoteChanged.connect([this] { showEdgeNote(); })) {
    m_view.resize(kTabSize);
    buildLogin();
    buildSpacing();
    buildDragging();
    buildPermission();
    buildIgnored();
    buildRemembering();
    unifyNotes(m_view);
}

void GeneralTab::buildLogin() {
    // The box shows what the system has stored, not a setting of the document.
    m_loginBox = makeCheckBox(m_view, QStringLiteral("Launch %1 at login").arg(appName()), {16, 14, 320, 20},
                              [this](bool on) { loginToggled(on); });
}

void GeneralTab::buildSpacing() {
    makeLabel(m_view, QStringLiteral("Spacing"), {16, 50, 200, 20}, kHeading);
    QLabel* const gap = makeLabel(m_view, QStringLiteral("Gap between windows"), {16, 78, 170, 18});
    m_gapSlider = makeSlider(*gap, {190, 76, 190, 22}, 40);
    m_gapLabel = makeLabel(m_view, readout(0), {390, 78, 60, 18}, {.secondary = true});
    QLabel* const margin = makeLabel(m_view, QStringLiteral("Margin around the screen"), {16, 110, 170, 18});
    m_marginSlider = makeSlider(*margin, {190, 108, 190, 22}, 60);
    m_marginLabel = makeLabel(m_view, readout(0), {390, 110, 60, 18}, {.secondary = true});
}

/// Returns a slider from 0 to `maximum` points that screen readers announce by the text of `label`.
QSlider* GeneralTab::makeSlider(QLabel& label, const QRect& frame, int maximum) {
    auto* const slider = new Slider(m_view);
    slider->setGeometry(frame);
    slider->setRange(0, maximum);
    slider->setPageStep(5);
    nameAfter(label, *slider);
    QObject::connect(slider, &QSlider::valueChanged, slider, [this] { spacingChanged(); });
    return slider;
}

void GeneralTab::buildDragging() {
    makeLabel(m_view, QStringLiteral("Drag to snap"), {16, 154, 200, 20}, kHeading);
    m_dragBox = makeCheckBox(m_view, QStringLiteral("Show zones while dragging a window"), {16, 182, 380, 20},
                             [this](bool on) { dragToggled(on); });
    QLabel* const trigger =
        makeLabel(m_view, QStringLiteral("Zones appear while you hold:"), {36, 212, 180, 18});
    buildTriggerPopup(*trigger);
    m_edgeBox = makeCheckBox(m_view, QStringLiteral("Also snap at screen edges and corners"),
                             {16, 246, 380, 20}, [this](bool on) { edgeToggled(on); });
    const PlatformWords& words = m_context.ports.words;
    const int height = words.dragNote.empty() ? 50 : 74;
    m_edgeNote = makeWrap(m_view, edgeNote(words), {36, 270, 400, height}, kNote);
}

void GeneralTab::buildTriggerPopup(QLabel& label) {
    m_triggerPopup = new PopUpButton(m_view, {222, 208, 150, 26}, [this] { triggerChosen(); });
    // Only the titles depend on the platform; the values are those of the document.
    for (const DragTriggerEntry& entry : kDragTriggers)
        m_triggerPopup->append(titleOf(entry.trigger, m_context.ports.words), toQString(entry.name));
    nameAfter(label, *m_triggerPopup);
}

void GeneralTab::buildPermission() {
    const PlatformWords& words = m_context.ports.words;
    const int top = words.dragNote.empty() ? 346 : 366; // below the note about drags
    makeLabel(m_view, toQString(words.permission), {16, top, 250, 20}, kHeading);
    m_accLabel = makeLabel(m_view, {}, {16, top + 28, 440, 18});
    m_accButton = makeButton(m_view, toQString(words.openPermission), {16, top + 54, 210, 28},
                             [this] { openAccessibility(); });
}

void GeneralTab::buildIgnored() {
    QLabel* const heading = makeLabel(m_view, QStringLiteral("Ignored apps"), {470, 50, 200, 20}, kHeading);
    m_table = new QListWidget(&m_view);
    m_table->setFont(systemFont(13));
    setBezeled(*m_table, {470, 78, 290, 190});
    m_table->setUniformItemSizes(true);
    m_table->setTextElideMode(Qt::ElideMiddle);
    m_table->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    nameAfter(*heading, *m_table);
    makeButton(m_view, QStringLiteral("Add app..."), {470, 276, 100, 28}, [this] { addIgnored(); });
    makeButton(m_view, QStringLiteral("Remove"), {576, 276, 80, 28}, [this] { removeIgnored(); });
    makeWrap(m_view, appName() + QStringLiteral(" will not move or snap windows of these apps."),
             {470, 310, 290, 34}, kNote);
}

void GeneralTab::buildRemembering() {
    makeLabel(m_view, QStringLiteral("Remember app positions"), {470, 350, 290, 20}, kHeading);
    m_rememberBox = makeCheckBox(m_view, QStringLiteral("Reopen apps in their last zone"),
                                 {470, 376, 290, 20}, [this](bool on) { rememberToggled(on); });
    m_forgetButton = makeButton(m_view, QStringLiteral("Forget remembered apps"), {470, 402, 200, 28},
                                [this] { forgetApps(); });
    makeWrap(m_view,
             QStringLiteral("When an app opens a window, it goes to the zone you last snapped that app to."),
             {470, 436, 290, 34}, kNote);
}

void GeneralTab::refresh() {
    refreshSystemStates();
    show(*m_gapSlider, settings().gap);
    show(*m_marginSlider, settings().margin);
    showReadouts();
    showDragging();
    m_rememberBox->setChecked(settings().rememberApps);
    showRemembered();
    reloadTable();
}

void GeneralTab::refreshSystemStates() {
    m_loginBox->setChecked(m_context.services.loginItem.isEnabled());
    showPermission();
}

void GeneralTab::showReadouts() {
    setFittedText(*m_gapLabel, readout(settings().gap));
    setFittedText(*m_marginLabel, readout(settings().margin));
}

void GeneralTab::showDragging() {
    m_dragBox->setChecked(settings().dragEnabled);
    m_edgeBox->setChecked(settings().edgeSnap);
    m_triggerPopup->setEnabled(settings().dragEnabled);
    m_edgeBox->setEnabled(settings().dragEnabled);
    // An unknown trigger, which an edited document may contain, leaves the shown one as it is.
    m_triggerPopup->select(toQString(settings().dragTrigger));
}

void GeneralTab::showRemembered() {
    const auto count = settings().appZones.size();
    setFittedText(*m_forgetButton, QStringLiteral("Forget remembered apps (%1)").arg(count));
    m_forgetButton->setEnabled(count > 0);
}

/// Shows the note with what the system says about the keys now.
void GeneralTab::showEdgeNote() {
    setFittedText(*m_edgeNote, edgeNote(m_context.ports.words));
}

void GeneralTab::showPermission() {
    const PlatformWords& words = m_context.ports.words;
    const bool isTrusted = m_context.services.permissions.isTrusted();
    setFittedText(*m_accLabel, toQString(isTrusted ? words.trusted : words.notTrusted));
    m_accButton->setVisible(!isTrusted || m_context.services.permissions.hasSettings());
}

void GeneralTab::reloadTable() {
    int selected = selectedRow();
    const QVariant chosen = selected < 0 ? QVariant() : m_table->item(selected)->data(Qt::UserRole);
    m_table->clear();
    for (const std::string& bundleIdentifier : settings().ignoredApps) {
        auto* const row = new QListWidgetItem(displayName(bundleIdentifier), m_table);
        row->setSizeHint({0, kIgnoredRowHeight});
        row->setData(Qt::UserRole, toQString(bundleIdentifier));
        if (row->data(Qt::UserRole) == chosen)
            selected = m_table->count() - 1;
    }
    // The same application, or after its removal the next one, which has its row.
    m_table->setCurrentRow(selected < m_table->count() ? selected : -1);
}

/// Returns the selected row, or -1. Not `currentRow()`, because the current row need not be selected.
int GeneralTab::selectedRow() const {
    const auto selected = m_table->selectedItems();
    return selected.isEmpty() ? -1 : m_table->row(selected.first());
}

/// Returns the name of an application with its identifier in parentheses, or the identifier alone if the
/// application is not installed.
QString GeneralTab::displayName(const std::string& bundleIdentifier) const {
    QString identifier = toQString(bundleIdentifier);
    const auto name = m_context.ports.workspace.displayName(bundleIdentifier);
    if (!name)
        return identifier;
    const QString bare = toQString(*name).remove(QStringLiteral(".app"));
    return bare + QStringLiteral("  (") + identifier + QLatin1Char(')');
}

void GeneralTab::loginToggled(bool on) {
    LoginItem& loginItem = m_context.services.loginItem;
    const auto failure = loginItem.set(on);
    if (!failure)
        return;
    showMessage(m_context.ports, QStringLiteral("Could not change the login item"), toQString(*failure));
    m_loginBox->setChecked(loginItem.isEnabled()); // the change failed: show what applies
}

void GeneralTab::spacingChanged() {
    settings().gap = m_gapSlider->value();
    settings().margin = m_marginSlider->value();
    showReadouts();
    save();
}

void GeneralTab::dragToggled(bool on) {
    settings().dragEnabled = on;
    save();
    refresh();
}

void GeneralTab::triggerChosen() {
    settings().dragTrigger = m_triggerPopup->currentData().toString().toStdString();
    save();
}

void GeneralTab::edgeToggled(bool on) {
    settings().edgeSnap = on;
    save();
}

void GeneralTab::rememberToggled(bool on) {
    settings().rememberApps = on;
    save();
}

void GeneralTab::forgetApps() {
    settings().appZones.clear();
    save();
    refresh();
}

void GeneralTab::openAccessibility() {
    m_context.services.permissions.prompt();
    m_context.services.permissions.openSettings();
}

void GeneralTab::addIgnored() {
    const auto chosen = m_context.ports.openPanel.chooseApplication("Ignore");
    if (!chosen || std::ranges::count(settings().ignoredApps, *chosen) > 0)
        return;
    settings().ignoredApps.push_back(*chosen);
    save();
    reloadTable();
}

void GeneralTab::removeIgnored() {
    const int row = selectedRow();
    auto& ignored = settings().ignoredApps;
    if (row < 0 || row >= static_cast<int>(ignored.size()))
        return;
    ignored.erase(ignored.begin() + row);
    save();
    reloadTable();
}

AppSettings& GeneralTab::settings() const {
    return m_context.services.store.settings;
}

void GeneralTab::save() {
    m_context.services.store.save();
}

} // namespace tessarel
