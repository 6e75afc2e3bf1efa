// SPDX-License-Identifier: MIT

#include "settings_ui/shortcuts_tab.h"

#include "model/action_id.h"
#include "model/key_names.h"
#include "model/settings/app_settings.h"
#include "qt_values/text.h"
#include "settings_ui/kit/kit.h"

#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QString>

#include <cstddef>
#include <optional>

namespace tessarel {

namespace {

constexpr int kRowHeight = 32;
constexpr int kActions = static_cast<int>(ActionID::allCases.size());

/// Returns the action at position `tag`. Throws `std::out_of_range` if there is none.
ActionID actionAt(int tag) {
    return ActionID::allCases.at(static_cast<std::size_t>(tag));
}

QString help(const ModifierNames& names) {
    return QStringLiteral("Click a shortcut, then press the new key combination (include %1, %2 or %3). Zone "
                          "shortcuts only work for zones that are enabled in the Layouts tab.")
        .arg(toQString(names.ctrl), toQString(names.opt), toQString(names.cmd));
}

} // namespace

ShortcutsTab::ShortcutsTab(const TabContext& context) : m_context(context) {
    m_view.resize(kTabSize);
    makeLabel(m_view, "Keyboard shortcuts", {16, 14, 300, 22}, {.bold = true, .size = 16});
    makeWrap(m_view, help(m_context.ports.words.modifierNames), {16, 42, 740, 34}, {.secondary = true});

    auto* const scrollView = new QScrollArea(&m_view);
    setBezeled(*scrollView, {16, 84, 740, 340});
    scrollView->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrollView->setFocusPolicy(Qt::NoFocus); // its buttons have the focus, and it scrolls to them
    auto* const document = new FlippedView;
    document->resize(720, kRowHeight * kActions + 10);
    for (int tag = 0; tag < kActions; ++tag)
        addRow(*document, tag);
    scrollView->setWidget(document);

    makeButton(m_view, "Reset all shortcuts to defaults", {16, 436, 220, 28}, [this] { resetAll(); });
}

void ShortcutsTab::addRow(QWidget& document, int tag) {
    const int top = kRowHeight * tag + 6;
    const ActionID action = actionAt(tag);
    const QString title = toQString(action.title());
    makeLabel(document, title, {12, top + 4, 300, 18});

    auto* const recorder = new RecorderButton(document, {330, top, 200, 26}, m_context);
    recorder->configure(action);
    recorder->onChange = m_context.refreshAll;
    m_recorders.push_back(recorder);

    QPushButton* const clear =
        makeButton(document, "Clear", {540, top - 1, 64, 28}, [this, tag] { clearTapped(tag); });
    // The visible titles of all these buttons are equal.
    clear->setAccessibleName(QStringLiteral("Clear ") + title);
}

void ShortcutsTab::refresh() {
    for (RecorderButton* const recorder : m_recorders)
        recorder->refresh();
}

void ShortcutsTab::clearTapped(int tag) {
    if (tag < 0 || tag >= kActions)
        return;
    Store& store = m_context.services.store;
    store.setBinding(std::nullopt, actionAt(tag));
    store.saveAndNotify();
    m_context.refreshAll();
}

void ShortcutsTab::resetAll() {
    Store& store = m_context.services.store;
    store.settings.bindings = AppSettings::defaultBindings();
    store.saveAndNotify();
    m_context.refreshAll();
}

} // namespace tessarel
