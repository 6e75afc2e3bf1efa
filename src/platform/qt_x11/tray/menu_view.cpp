// SPDX-License-Identifier: MIT

#include "platform/qt_x11/tray/menu_view.h"

#include "platform/qt_x11/tray/menu_title.h"
#include "qt_values/text.h"

#include <QAction>
#include <QKeyEvent>
#include <QKeySequence>
#include <QObject>

#include <utility>

namespace tessarel::qt {

namespace {

/// Shows `key` as the row's shortcut with Ctrl; does nothing for an empty key.
void setKeyEquivalent(QAction& action, const std::string& key) {
    if (key.empty())
        return;
    action.setShortcut(QKeySequence(QStringLiteral("Ctrl+") + toQString(key)));
    action.setShortcutContext(Qt::WidgetShortcut); // not active while the menu is closed
    action.setShortcutVisibleInContextMenu(true);
}

} // namespace

void KeyMenu::keyPressEvent(QKeyEvent* event) {
    if (!m_choose(event->keyCombination()))
        QMenu::keyPressEvent(event);
}

MenuView::MenuView(DrawnBy drawnBy, std::function<void(const MenuItem&)> chosen, MenuView* parent)
    : m_drawnBy(drawnBy), m_chosen(std::move(chosen)), m_parent(parent) {}

void MenuView::show(const Menu& menu) {
    if (m_shown == menu)
        return;
    m_shown = menu;
    rebuild(*m_shown);
}

/// Replaces all rows. Submenus are reused in order.
void MenuView::rebuild(const Menu& menu) {
    m_widget.clear();
    std::size_t usedSubmenus = 0;
    QList<QAction*> actions;
    actions.reserve(static_cast<qsizetype>(menu.size()));
    for (const MenuItem& item : menu)
        actions.append(add(item, usedSubmenus));
    m_widget.addActions(actions);
}

QAction* MenuView::add(const MenuItem& item, std::size_t& usedSubmenus) {
    if (!item.submenu.empty())
        return addSubmenu(item, usedSubmenus);
    auto* const action = new QAction(&m_widget);
    action->setSeparator(item.isSeparator);
    action->setText(titleOf(item));
    action->setEnabled(item.isEnabled);
    action->setMenuRole(QAction::NoRole);
    // Only checked rows are checkable: an unchecked one would show an empty box.
    action->setCheckable(item.isChecked);
    action->setChecked(item.isChecked);
    setKeyEquivalent(*action, item.keyEquivalent);
    QObject::connect(action, &QAction::triggered, action, [this, item] { choose(item); });
    return action;
}

QAction* MenuView::addSubmenu(const MenuItem& item, std::size_t& usedSubmenus) {
    if (usedSubmenus == m_submenus.size())
        m_submenus.push_back(std::make_unique<MenuView>(
            m_drawnBy, [this](const MenuItem& row) { choose(row); }, this));
    MenuView& submenu = *m_submenus[usedSubmenus++];
    submenu.show(item.submenu);
    QAction* const action = submenu.widget().menuAction();
    action->setText(titleOf(item));
    action->setEnabled(item.isEnabled);
    return action;
}

QString MenuView::titleOf(const MenuItem& item) const {
    QString line = menu_title::oneLine(item.title, m_widget.fontMetrics());
    return m_drawnBy == DrawnBy::Qt ? menu_title::forWidget(std::move(line))
                                    : menu_title::forPanel(std::move(line));
}

/// Chooses the enabled row with the shortcut `keys` in this menu or its parents. Returns whether there was
/// one.
bool MenuView::chooseByKeys(QKeyCombination keys) {
    for (QAction* const action : m_widget.actions()) {
        if (!action->isEnabled() || action->shortcut() != QKeySequence(keys))
            continue;
        m_widget.close(); // also closes open submenus
        action->trigger();
        return true;
    }
    return m_parent && m_parent->chooseByKeys(keys);
}

/// Qt also passes on what a panel reports about rows that cannot be chosen.
void MenuView::choose(const MenuItem& item) {
    if (!item.isEnabled || item.isSeparator)
        return;
    m_shown.reset(); // Qt has toggled the mark of a checkable row, so the rows must be rebuilt
    m_chosen(item);
}

} // namespace tessarel::qt
