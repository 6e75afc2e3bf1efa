#include "settings_ui/recorder_button.h"

#include "model/carbon_mods.h"
#include "model/key_names.h"
#include "settings_ui/fitted_text.h"
#include "settings_ui/kit.h"
#include "settings_ui/qt_text.h"

#include <QFocusEvent>
#include <QHideEvent>
#include <QKeyEvent>
#include <QPointer>

#include <algorithm>
#include <optional>

namespace tessarel {

namespace {

constexpr std::int64_t kEscape = 53;

QString prompt() {
    return QStringLiteral("Press keys...");
}

QString addModifier(const ModifierNames& names) {
    return QStringLiteral("Add %1, %2 or %3")
        .arg(toQString(names.ctrl), toQString(names.opt), toQString(names.cmd));
}

/// The first other action than `actionID` that has the combination.
std::optional<ActionID> holder(const Store& store, const Binding& combination, ActionID actionID) {
    const auto& all = ActionID::allCases;
    const auto found = std::ranges::find_if(
        all, [&](ActionID other) { return other != actionID && store.binding(other) == combination; });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

} // namespace

RecorderButton::RecorderButton(QWidget& parent, const QRect& frame, const TabContext& context)
    : QPushButton(&parent), m_store(context.services.store), m_ports(context.ports) {
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
    if (!m_isRecording)
        setTitle(toQString(KeyNames::describe(m_store.binding(m_actionID), m_ports.words.modifierNames)));
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
    setFocus(Qt::OtherFocusReason); // not every way to click a button gives it the focus
    m_monitor = m_ports.localKeys.monitorKeyDown([self = QPointer(this)](const KeyDown& key) {
        if (!self)
            return false;
        self->keyDown(key);
        return true;
    });
}

void RecorderButton::stopRecording() {
    m_monitor.reset();
    m_isRecording = false;
    refresh();
}

void RecorderButton::keyDown(const KeyDown& key) {
    if (key.keyCode == kEscape)
        return stopRecording();
    const Binding candidate{key.keyCode, carbonMods(key.modifierFlags)};
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
    m_ports.mainQueue.asyncAfter(kFlashTime, [self = QPointer(this)] {
        if (self && self->m_isRecording)
            self->setTitle(prompt());
    });
}

/// The name that is read out stays the action's, whatever the title says of it.
void RecorderButton::setTitle(const QString& title) {
    setFittedText(*this, title);
    setAccessibleName(toQString(m_actionID.title()));
    setAccessibleDescription(title);
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

/// Return works like Space; held down, it does not click again and again.
void RecorderButton::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn)
        QPushButton::keyPressEvent(event);
    else if (!event->isAutoRepeat())
        click();
}

} // namespace tessarel
