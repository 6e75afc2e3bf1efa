// SPDX-License-Identifier: MIT

#include "settings_ui/recorder_button.h"

#include "model/carbon_mods.h"
#include "model/key_names.h"
#include "qt_values/text.h"
#include "settings_ui/kit/fitted_text.h"
#include "settings_ui/kit/kit.h"

#include <QFocusEvent>
#include <QHideEvent>
#include <QKeyEvent>
#include <QPalette>
#include <QStyleOptionButton>

#include <algorithm>
#include <optional>

namespace tessarel {

namespace {

constexpr std::int64_t kEscape = 53; // virtual key code

QString prompt() {
    return QStringLiteral("Press keys...");
}

QString addModifier(const ModifierNames& names) {
    return QStringLiteral("Add %1, %2 or %3")
        .arg(toQString(names.ctrl), toQString(names.opt), toQString(names.cmd));
}

/// Returns the first action other than `actionID` whose hot key is `combination`.
std::optional<ActionID> holder(const Store& store, const Binding& combination, ActionID actionID) {
    const auto& all = ActionID::allCases;
    const auto found = std::ranges::find_if(
        all, [&](ActionID other) { return other != actionID && store.binding(other) == combination; });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

} // namespace

RecorderButton::RecorderButton(QWidget& parent, const QRect& frame, const TabContext& context)
    : QPushButton(&parent), m_store(context.services.store), m_hotKeys(context.services.hotKeys),
      m_ports(context.ports), m_renamedKeys(m_ports.keyNames.onChange([this] { refresh(); })),
      m_takenObserver(context.services.hotKeys.onTakenChange([this] { refresh(); })) {
    setFont(systemFont(13));
    setGeometry(frame);
    fitted_text::init(*this, {});
    QObject::connect(this, &QPushButton::clicked, this, [this] { toggleRecording(); });
    configure(m_actionID);
}

void RecorderButton::configure(ActionID newActionID) {
    m_actionID = newActionID;
    stopRecording();
}

void RecorderButton::refresh() {
    if (m_isRecording)
        return;
    const auto nameOf = [this](std::int64_t keyCode) { return m_ports.keyNames.name(keyCode); };
    setTitle(toQString(KeyNames::describe(m_store.binding(m_actionID), m_ports.words.modifierNames, nameOf)));
    if (m_hotKeys.isTaken(m_actionID))
        markAsTaken();
}

/// Marks the shown combination as that of another program, until another title is set.
void RecorderButton::markAsTaken() {
    const QString note = QStringLiteral("Another program uses this combination");
    m_showsTaken = true;
    setToolTip(toolTip().isEmpty() ? note : toolTip() + QLatin1Char('\n') + note);
    setAccessibleDescription(accessibleDescription() + QStringLiteral(". ") + note);
    update();
}

void RecorderButton::toggleRecording() {
    if (m_isRecording)
        stopRecording();
    else
        startRecording();
}

void RecorderButton::startRecording() {
    m_isRecording = true;
    setTitle(prompt());
    // Losing the focus ends the recording, so the button needs it, and not every click moves it here.
    setFocus(Qt::OtherFocusReason);
    m_monitor = m_ports.localKeys.monitorKeyDown([this](const KeyDown& key) {
        keyDown(key);
        return true; // consumed: the key must not do anything else in the window
    });
}

void RecorderButton::stopRecording() {
    // This may run inside the monitor's own callback, which subscriptions allow.
    m_monitor.reset();
    m_message.reset();
    m_isRecording = false;
    refresh();
}

void RecorderButton::keyDown(const KeyDown& key) {
    if (key.keyCode == kEscape)
        return stopRecording();
    if (!key.keyCode) {
        m_ports.alertSound.beep();
        return flash(QStringLiteral("Cannot use this key"));
    }
    const Binding candidate{*key.keyCode, carbonMods(key.modifierFlags)};
    // A hot key without a modifier would take the key away from all other programs.
    if (candidate.mods == 0) {
        m_ports.alertSound.beep();
        return flash(addModifier(m_ports.words.modifierNames));
    }
    if (const auto other = holder(m_store, candidate, m_actionID))
        return flash(QStringLiteral("In use: ") + toQString(other->title()));

    m_store.setBinding(candidate, m_actionID);
    m_store.saveAndNotify();
    stopRecording();
    if (onChange)
        onChange();
}

void RecorderButton::flash(const QString& message) {
    setTitle(message);
    // Ends the time of an earlier message, which would cut this one short.
    m_message = m_ports.mainQueue.asyncAfter(kFlashTime, [this] { setTitle(prompt()); });
}

/// Changes the visible title. For screen readers the name of the button stays that of the action, and the
/// title becomes its description.
void RecorderButton::setTitle(const QString& title) {
    m_showsTaken = false;
    setFittedText(*this, title);
    setAccessibleName(toQString(m_actionID.title()));
    setAccessibleDescription(title);
}

void RecorderButton::initStyleOption(QStyleOptionButton* option) const {
    QPushButton::initStyleOption(option);
    if (m_showsTaken)
        option->palette.setColor(QPalette::ButtonText, warningColor(palette()));
}

void RecorderButton::focusOutEvent(QFocusEvent* event) {
    QPushButton::focusOutEvent(event);
    if (m_isRecording)
        stopRecording();
}

void RecorderButton::hideEvent(QHideEvent* event) {
    QPushButton::hideEvent(event);
    if (m_isRecording)
        stopRecording();
}

/// Makes Return click the button, as Space does. The auto-repeat of a held key is ignored.
void RecorderButton::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn)
        QPushButton::keyPressEvent(event);
    else if (!event->isAutoRepeat())
        click();
}

} // namespace tessarel
