// SPDX-License-Identifier: MIT

#pragma once

#include "ports/menu.h"

#include <QKeyCombination>
#include <QMenu>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace tessarel::qt {

/// A QMenu whose rows can also be chosen by their shortcuts while it is open. A plain QMenu only displays
/// them.
class KeyMenu : public QMenu {
public:
    /// `choose` is called with each key press and returns whether it has handled the keys.
    explicit KeyMenu(std::function<bool(QKeyCombination)> choose) : m_choose(std::move(choose)) {}

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    std::function<bool(QKeyCombination)> m_choose;
};

/// Shows a `Menu` as a QMenu.
class MenuView {
public:
    /// Who draws the rows, which determines how titles have to be escaped.
    enum class DrawnBy : std::uint8_t { Qt, Panel };

    /// Calls `chosen` with the row that was chosen. The call comes from inside the menu's event handling, so
    /// the callback must not destroy this view or show another menu.
    ///
    /// A submenu passes keys that it does not handle to `parent`, which must outlive it.
    MenuView(DrawnBy drawnBy, std::function<void(const MenuItem&)> chosen, MenuView* parent = nullptr);

    /// Shows the rows of `menu`. Does nothing when they are shown already, so that a panel that requests the
    /// menu often does not receive a new one each time.
    void show(const Menu& menu);

    [[nodiscard]] QMenu& widget() { return m_widget; }

private:
    void rebuild(const Menu& menu);
    [[nodiscard]] QAction* add(const MenuItem& item, std::size_t& usedSubmenus);
    [[nodiscard]] QAction* addSubmenu(const MenuItem& item, std::size_t& usedSubmenus);
    [[nodiscard]] QString titleOf(const MenuItem& item) const;
    void choose(const MenuItem& item);
    [[nodiscard]] bool chooseByKeys(QKeyCombination keys);

    DrawnBy m_drawnBy;
    std::function<void(const MenuItem&)> m_chosen;
    MenuView* m_parent;
    KeyMenu m_widget{[this](QKeyCombination keys) { return chooseByKeys(keys); }};
    std::vector<std::unique_ptr<MenuView>> m_submenus; // reused: QMenu::clear() does not delete them
    std::optional<Menu> m_shown;                       // empty when the rows may differ from it
};

} // namespace tessarel::qt
